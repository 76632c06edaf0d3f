// The package classes, recorded and not done, for tests that link this in the place of the system's.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "packages/packages.h"

namespace fakes {

/// One call of a member with its arguments, in their order.
struct PackageCall {
    std::string member;
    std::vector<std::string> arguments;
    friend bool operator==(const PackageCall&, const PackageCall&) = default;
};

class FakePackages {
  public:
    FakePackages();
    FakePackages(const FakePackages&) = delete;
    FakePackages& operator=(const FakePackages&) = delete;
    ~FakePackages();
    static FakePackages& Current();

    /// False: the system has no such class, and creating an object gives none.
    bool has_package_class = true;
    bool has_application_class = true;
    /// The members that fail, and what they fail with.
    std::map<std::string, platform::PackageError> failures;

    /// What the enumeration gives; after `enumerated_before_failure` of them it fails.
    std::vector<platform::PackageInfo> installed;
    std::size_t enumerated_before_failure = std::numeric_limits<std::size_t>::max();

    /// Called behind every call that was recorded.
    std::function<void()> on_call;

    std::vector<PackageCall> calls;
    int packages_created = 0;
    int applications_created = 0;
    int open_objects = 0;
};

} // namespace fakes

// A fake of the package classes (packages/packages.h), linked instead of the real ones: calls are recorded
// and not executed.
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
    /// The instance that the classes use. Ends the test program if there is no instance.
    static FakePackages& Current();

    /// If false, the system has no such class and creating an object returns null.
    bool has_package_class = true;
    bool has_application_class = true;
    /// The members that fail, by name, with their failures.
    std::map<std::string, packages::PackageError> failures;

    /// The packages on the server. Reading the list fails after `enumerated_before_failure` of them.
    std::vector<packages::PackageInfo> installed;
    std::size_t enumerated_before_failure = std::numeric_limits<std::size_t>::max();

    /// Called after every recorded call.
    std::function<void()> on_call;

    std::vector<PackageCall> calls;
    int packages_created = 0;
    int applications_created = 0;
    int open_objects = 0; ///< created and not destroyed
};

} // namespace fakes

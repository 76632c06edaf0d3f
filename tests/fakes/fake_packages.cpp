// Implements packages/packages.h.
#include "fakes/fake_packages.h"

#include <cstdio>
#include <cstdlib>

namespace fakes {
namespace {
FakePackages* current = nullptr;
} // namespace

FakePackages::FakePackages() {
    current = this;
}

FakePackages::~FakePackages() {
    current = nullptr;
}

FakePackages& FakePackages::Current() {
    if (current == nullptr) {
        std::fputs("a package class was used, and the test has no FakePackages\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace packages {
namespace {

constexpr auto kFailure = static_cast<std::int32_t>(0x80004005U);

class OpenObject {
  public:
    OpenObject() { ++fakes::FakePackages::Current().open_objects; }
    OpenObject(const OpenObject&) = delete;
    OpenObject& operator=(const OpenObject&) = delete;
    ~OpenObject() { --fakes::FakePackages::Current().open_objects; }
};

void Called(const std::string& member, std::vector<std::string> arguments) {
    auto& fake = fakes::FakePackages::Current();
    fake.calls.push_back({member, std::move(arguments)});
    if (fake.on_call) {
        fake.on_call();
    }
    if (const auto failure = fake.failures.find(member); failure != fake.failures.end()) {
        throw PackageError(failure->second);
    }
}

class RecordedPackage final : public DtsPackage {
  public:
    void RemoveFromSQLServer(const std::string& server, const std::string& user, const std::string& password,
                             const std::string& package_name) override {
        Called("RemoveFromSQLServer", {server, user, password, package_name});
    }
    void LoadFromStorageFile(const std::string& path, const std::string& password) override {
        Called("LoadFromStorageFile", {path, password});
    }
    void SaveToSQLServer(const std::string& server, const std::string& user,
                         const std::string& password) override {
        Called("SaveToSQLServer", {server, user, password});
    }

  private:
    OpenObject open_;
};

class RecordedApplication final : public DtsApplication {
  public:
    void EnumPackageInfos(const std::string& server, const std::string& user, const std::string& password,
                          const std::function<void(const PackageInfo&)>& take) override {
        Called("EnumPackageInfos", {server, user, password});
        const auto& fake = fakes::FakePackages::Current();
        std::size_t given = 0;
        for (const PackageInfo& info : fake.installed) {
            if (given == fake.enumerated_before_failure) {
                break;
            }
            take(info);
            ++given;
        }
        if (given == fake.enumerated_before_failure) {
            throw PackageError(kFailure, "DTS.Application",
                               "The enumeration broke off after " + std::to_string(given) + " packages");
        }
    }

  private:
    OpenObject open_;
};

} // namespace

std::unique_ptr<DtsPackage> CreateDtsPackage() {
    auto& fake = fakes::FakePackages::Current();
    if (!fake.has_package_class) {
        return nullptr;
    }
    ++fake.packages_created;
    return std::make_unique<RecordedPackage>();
}

std::unique_ptr<DtsApplication> CreateDtsApplication() {
    auto& fake = fakes::FakePackages::Current();
    if (!fake.has_application_class) {
        return nullptr;
    }
    ++fake.applications_created;
    return std::make_unique<RecordedApplication>();
}

} // namespace packages

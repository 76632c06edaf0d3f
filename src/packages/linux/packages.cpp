// The two objects on Linux, which has no COM. They use the package file and the server's package store.
#include "packages/packages.h"

#include <optional>

#include "packages/package_store.h"

namespace packages {
namespace {

constexpr auto kInvalidParameter = static_cast<std::int32_t>(0x80030057U);
constexpr auto kUnexpected = static_cast<std::int32_t>(0x8000FFFFU);

class StoredDtsPackage final : public DtsPackage {
  public:
    void RemoveFromSQLServer(const std::string& server, const std::string& user, const std::string& password,
                             const std::string& package_name) override {
        PackageStore({server, user, password}).RemoveNewest(package_name);
    }

    void LoadFromStorageFile(const std::string& path, const std::string& password) override {
        if (!password.empty()) {
            throw PackageError(kInvalidParameter, "DTS.Package",
                               "The package file " + path + " has no password, but one was given");
        }
        file_ = ReadPackageFile(path);
    }

    void SaveToSQLServer(const std::string& server, const std::string& user,
                         const std::string& password) override {
        if (!file_) {
            throw PackageError(kUnexpected, "DTS.Package", "No package is loaded that could be saved");
        }
        PackageStore({server, user, password}).Add(*file_);
    }

  private:
    std::optional<PackageFile> file_;
};

class StoredDtsApplication final : public DtsApplication {
  public:
    void EnumPackageInfos(const std::string& server, const std::string& user, const std::string& password,
                          const std::function<void(const PackageInfo&)>& take) override {
        PackageStore({server, user, password}).List([&take](const StoredPackage& package) {
            take(package.info);
        });
    }
};

} // namespace

std::unique_ptr<DtsPackage> CreateDtsPackage() {
    return std::make_unique<StoredDtsPackage>();
}

std::unique_ptr<DtsApplication> CreateDtsApplication() {
    return std::make_unique<StoredDtsApplication>();
}

} // namespace packages

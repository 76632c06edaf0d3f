// The COM classes "DTS.Package" and "DTS.Application", called by the names of their members: no type library
// is needed to build, and on a machine without them no object is made. The types of the arguments
// (references, 16-bit integers, arguments left out) are those with which callers have always called these
// classes.
#include "packages/packages.h"

#include <array>

#include "packages/windows/automation.h"

namespace packages {
namespace {

constexpr short kNoFlags = 0;

class ComPackage final : public DtsPackage {
  public:
    explicit ComPackage(AutomationObject package) : package_(std::move(package)) {}

    void RemoveFromSQLServer(const std::string& server, const std::string& user, const std::string& password,
                             const std::string& package_name) override {
        Bstr server_text(server);
        Bstr user_text(user);
        Bstr password_text(password);
        Bstr name_text(package_name);
        // Omitted: flags, package identifier, version identifier.
        package_.Call(
            L"RemoveFromSQLServer",
            MakeArguments(Variant::StringReference(server_text), Variant::StringReference(user_text),
                          Variant::StringReference(password_text), Variant::Omitted(), Variant::Omitted(),
                          Variant::Omitted(), Variant::StringReference(name_text)));
    }

    void LoadFromStorageFile(const std::string& path, const std::string& password) override {
        Bstr path_text(path);
        package_.Call(L"LoadFromStorageFile",
                      MakeArguments(Variant::StringReference(path_text), Variant::String(password)));
    }

    void SaveToSQLServer(const std::string& server, const std::string& user,
                         const std::string& password) override {
        Bstr server_text(server);
        Bstr user_text(user);
        Bstr password_text(password);
        package_.Call(L"SaveToSQLServer",
                      MakeArguments(Variant::StringReference(server_text),
                                    Variant::StringReference(user_text),
                                    Variant::StringReference(password_text), Variant::Short(kNoFlags)));
    }

  private:
    AutomationObject package_;
};

PackageInfo ReadPackageInfo(const AutomationObject& object) {
    PackageInfo info;
    info.name = object.Property(L"name").ToText("name");
    info.description = object.Property(L"description").ToText("description");
    info.creation_date = object.Property(L"creationDate").ToLocalTime("creationDate");
    return info;
}

class ComApplication final : public DtsApplication {
  public:
    explicit ComApplication(AutomationObject application) : application_(std::move(application)) {}

    void EnumPackageInfos(const std::string& server, const std::string& user, const std::string& password,
                          const std::function<void(const PackageInfo&)>& take) override {
        Bstr server_text(server);
        Bstr user_text(user);
        Bstr password_text(password);
        const AutomationObject package_server = application_.CallForObject(
            L"GetPackageSQLServer",
            MakeArguments(Variant::StringReference(server_text), Variant::StringReference(user_text),
                          Variant::StringReference(password_text), Variant::Short(kNoFlags)),
            "PackageSQLServer");
        // No package name, not the latest versions only, no package identifier: every stored version.
        const AutomationObject infos = package_server.CallForObject(
            L"EnumPackageInfos",
            MakeArguments(Variant::String(""), Variant::Boolean(false), Variant::String("")), "PackageInfos");
        const ComPointer<IEnumVARIANT> enumerator = infos.Enumerator();
        while (true) {
            Variant item;
            ULONG fetched = 0;
            const HRESULT result = enumerator->Next(1, item.Receive(), &fetched);
            RequireSuccess(result, "PackageInfos.Next");
            if (result != S_OK || fetched == 0) {
                return;
            }
            take(ReadPackageInfo(
                {item.ToInterface<IDispatch>(IID_IDispatch, "PackageInfos.Next"), "PackageInfo"}));
        }
    }

  private:
    AutomationObject application_;
};

} // namespace

std::unique_ptr<DtsPackage> CreateDtsPackage() {
    AutomationObject package = AutomationObject::Create(L"DTS.Package", "DTS.Package");
    return package ? std::make_unique<ComPackage>(std::move(package)) : nullptr;
}

std::unique_ptr<DtsApplication> CreateDtsApplication() {
    AutomationObject application = AutomationObject::Create(L"DTS.Application", "DTS.Application");
    return application ? std::make_unique<ComApplication>(std::move(application)) : nullptr;
}

} // namespace packages

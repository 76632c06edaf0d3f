// The calls of the package classes by real COM, with the replacement DLL in this program's folder.
#include "packages/packages.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "packages/package_failure.h"
#include "packages/windows/automation.h"

namespace {

using package_tests::FailureOf;
using packages::CreateDtsApplication;
using packages::CreateDtsPackage;
using packages::PackageError;
using packages::PackageInfo;
using platform::LocalTime;
using testing::Test;

struct FreeModule {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};

/// The DLL and its two functions that register and unregister the classes.
class StandIn {
  public:
    StandIn() : module_(LoadLibraryA("dts_com_server.dll")) {}

    void Register() const { ASSERT_EQ(Call("DllRegisterServer"), S_OK); }
    void Unregister() const { ASSERT_EQ(Call("DllUnregisterServer"), S_OK); }

  private:
    HRESULT Call(const char* entry) const {
        using Entry = HRESULT(STDAPICALLTYPE*)();
        if (!module_) {
            return HRESULT_FROM_WIN32(GetLastError());
        }
        const auto call =
            reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module_.get(), entry)));
        return call == nullptr ? E_NOTIMPL : call();
    }

    std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule> module_;
};

class ComPackages : public Test {
  protected:
    static void SetUpTestSuite() { StandIn().Register(); }
    static void TearDownTestSuite() { StandIn().Unregister(); }

    ComPackages()
        : record_(std::filesystem::temp_directory_path() /
                  ("packages_test_" + std::to_string(GetCurrentProcessId()) + ".txt")) {
        std::filesystem::remove(record_);
        SetEnvironmentVariableA("KV_DTS_RECORD", record_.string().c_str());
    }
    ~ComPackages() override {
        for (const char* name : {"KV_DTS_RECORD", "KV_DTS_FAIL", "KV_DTS_PACKAGES"}) {
            SetEnvironmentVariableA(name, nullptr);
        }
        std::filesystem::remove(record_);
    }

    static void Order(const std::string& failures) {
        SetEnvironmentVariableA("KV_DTS_FAIL", failures.c_str());
    }

    std::vector<std::string> Recorded() const {
        std::ifstream file(record_, std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    std::filesystem::path record_;
};

std::vector<PackageInfo> List() {
    std::vector<PackageInfo> infos;
    CreateDtsApplication()->EnumPackageInfos("SRV", "sa", "pw",
                                             [&](const PackageInfo& info) { infos.push_back(info); });
    return infos;
}

constexpr HRESULT kAccessDenied = E_ACCESSDENIED;

TEST_F(ComPackages, RemoveTakesReferencesAndThreeArgumentsLeftOut) {
    CreateDtsPackage()->RemoveFromSQLServer("SRV\\KV_BATCH", "sa", "p;w", "StdSynchronize");
    EXPECT_EQ(Recorded(), (std::vector<std::string>{
                              "DTS.Package created",
                              "DTS.Package GetIDsOfNames RemoveFromSQLServer",
                              "DTS.Package Invoke RemoveFromSQLServer METHOD (BYREF|BSTR \"SRV\\KV_BATCH\", "
                              "BYREF|BSTR \"sa\", BYREF|BSTR \"p;w\", ERROR 0x80020004, ERROR 0x80020004, "
                              "ERROR 0x80020004, BYREF|BSTR \"StdSynchronize\")",
                              "DTS.Package released",
                          }));
}

TEST_F(ComPackages, LoadTakesThePathAsAReferenceAndThePasswordAsAValue) {
    CreateDtsPackage()->LoadFromStorageFile("C:\\Scripts\\StdSynchronize.dts", "");
    EXPECT_EQ(Recorded(), (std::vector<std::string>{
                              "DTS.Package created",
                              "DTS.Package GetIDsOfNames LoadFromStorageFile",
                              "DTS.Package Invoke LoadFromStorageFile METHOD "
                              "(BYREF|BSTR \"C:\\Scripts\\StdSynchronize.dts\", BSTR \"\")",
                              "DTS.Package released",
                          }));
}

TEST_F(ComPackages, SaveTakesReferencesAndAShortZero) {
    CreateDtsPackage()->SaveToSQLServer("SRV", "sa", "");
    EXPECT_EQ(Recorded(), (std::vector<std::string>{
                              "DTS.Package created",
                              "DTS.Package GetIDsOfNames SaveToSQLServer",
                              "DTS.Package Invoke SaveToSQLServer METHOD "
                              "(BYREF|BSTR \"SRV\", BYREF|BSTR \"sa\", BYREF|BSTR \"\", I2 0)",
                              "DTS.Package released",
                          }));
}

TEST_F(ComPackages, OneObjectServesAWholeInstallation) {
    {
        const auto package = CreateDtsPackage();
        package->RemoveFromSQLServer("S", "u", "p", "N");
        package->LoadFromStorageFile("F", "");
        package->SaveToSQLServer("S", "u", "p");
    }
    const std::vector<std::string> lines = Recorded();
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines.front(), "DTS.Package created");
    EXPECT_EQ(lines.back(), "DTS.Package released");
}

TEST_F(ComPackages, TheEnumerationAsksForEveryVersionAndReadsThreeMembersOfEach) {
    SetEnvironmentVariableA("KV_DTS_PACKAGES", "1");
    List();
    EXPECT_EQ(Recorded(),
              (std::vector<std::string>{
                  "DTS.Application created",
                  "DTS.Application GetIDsOfNames GetPackageSQLServer",
                  "DTS.Application Invoke GetPackageSQLServer METHOD|PROPERTYGET "
                  "(BYREF|BSTR \"SRV\", BYREF|BSTR \"sa\", BYREF|BSTR \"pw\", I2 0) for its result",
                  "PackageSQLServer created",
                  "PackageSQLServer GetIDsOfNames EnumPackageInfos",
                  "PackageSQLServer Invoke EnumPackageInfos METHOD|PROPERTYGET "
                  "(BSTR \"\", BOOL False, BSTR \"\") for its result",
                  "PackageInfos created",
                  "PackageInfos Invoke _NewEnum METHOD|PROPERTYGET () for its result",
                  "PackageInfos Next 1",
                  "PackageInfo created",
                  "PackageInfo GetIDsOfNames name",
                  "PackageInfo Invoke Name PROPERTYGET () for its result",
                  "PackageInfo GetIDsOfNames description",
                  "PackageInfo Invoke Description PROPERTYGET () for its result",
                  "PackageInfo GetIDsOfNames creationDate",
                  "PackageInfo Invoke CreationDate PROPERTYGET () for its result",
                  "PackageInfo released",
                  "PackageInfos Next 1",
                  "PackageInfos released",
                  "PackageSQLServer released",
                  "DTS.Application released",
              }));
}

TEST_F(ComPackages, ListsEveryVersionWithItsTextsAndDatesInTheServersOrder) {
    const std::vector<PackageInfo> infos = List();
    ASSERT_EQ(infos.size(), 3U);
    EXPECT_EQ(infos[0].name, "StdSynchronize");
    EXPECT_EQ(infos[0].description, "Second version");
    EXPECT_EQ(infos[0].creation_date, (platform::LocalTime{2004, 2, 29, 23, 59, 58}));
    EXPECT_EQ(infos[1].name, "StdSynchronize");
    EXPECT_EQ(infos[1].description, "");
    EXPECT_EQ(infos[1].creation_date, (platform::LocalTime{1999, 12, 31, 0, 0, 0}));
    EXPECT_EQ(infos[2].name, "\xDC"
                             "bersicht");
    EXPECT_EQ(infos[2].description, "Preis \x80 5");
    EXPECT_EQ(infos[2].creation_date, (platform::LocalTime{2026, 1, 1, 12, 30, 1}));
}

TEST_F(ComPackages, AServerWithoutPackagesListsNothing) {
    SetEnvironmentVariableA("KV_DTS_PACKAGES", "0");
    EXPECT_TRUE(List().empty());
}

TEST_F(ComPackages, TextOfAllKindsArrivesUnchanged) {
    const std::string all = "\x80\x99\xE4\xFF 'quoted' \"double\" ###TOKEN###";
    CreateDtsPackage()->LoadFromStorageFile(all, "");
    const std::vector<std::string> lines = Recorded();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[2],
              "DTS.Package Invoke LoadFromStorageFile METHOD (BYREF|BSTR \"" + all + "\", BSTR \"\")");
}

TEST_F(ComPackages, AnExceptionGivesItsCodeSourceAndDescription) {
    Order("RemoveFromSQLServer:0x80040E14:The specified package does not exist");
    const PackageError error = FailureOf([] { CreateDtsPackage()->RemoveFromSQLServer("S", "u", "p", "N"); });
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x80040E14U));
    EXPECT_EQ(error.Source(), "DTS.Package");
    EXPECT_STREQ(error.what(), "The specified package does not exist");
}

TEST_F(ComPackages, AFailureWithoutExceptionGivesTheResultAndTheMember) {
    Order("SaveToSQLServer:0x80070005");
    const PackageError error = FailureOf([] { CreateDtsPackage()->SaveToSQLServer("S", "u", "p"); });
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(kAccessDenied));
    EXPECT_TRUE(std::string(error.what()).starts_with("DTS.Package.SaveToSQLServer: ")) << error.what();
}

TEST_F(ComPackages, EachMemberCanFailAndTheObjectIsStillReleased) {
    const std::array members = {"GetPackageSQLServer", "EnumPackageInfos", "_NewEnum", "Next", "Name",
                                "Description",         "CreationDate"};
    for (const char* member : members) {
        std::filesystem::remove(record_);
        Order(std::string(member) + ":0x80004005:ordered");
        EXPECT_EQ(FailureOf(List).Number(), E_FAIL) << member;
        const std::vector<std::string> lines = Recorded();
        EXPECT_FALSE(lines.empty());
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                                [](const std::string& line) { return line.ends_with(" created"); }),
                  std::count_if(lines.begin(), lines.end(),
                                [](const std::string& line) { return line.ends_with(" released"); }))
            << member;
    }
}

TEST_F(ComPackages, AnEnumerationThatFailsKeepsThePackagesBeforeTheFailure) {
    Order("Next@3:0x80004005");
    std::vector<std::string> names;
    const auto application = CreateDtsApplication();
    FailureOf([&] {
        application->EnumPackageInfos("SRV", "sa", "pw",
                                      [&](const PackageInfo& info) { names.push_back(info.name); });
    });
    EXPECT_EQ(names, (std::vector<std::string>{"StdSynchronize", "StdSynchronize"}));
}

TEST_F(ComPackages, AFailedCallLeavesTheObjectUsable) {
    Order("RemoveFromSQLServer:0x80040E14:gone");
    const auto package = CreateDtsPackage();
    FailureOf([&] { package->RemoveFromSQLServer("S", "u", "p", "N"); });
    package->LoadFromStorageFile("F", "");
    EXPECT_NO_THROW(package->SaveToSQLServer("S", "u", "p"));
}

TEST_F(ComPackages, AClassThatCantMakeItsObjectGivesNull) {
    Order("DTS.Package:0x80040111;DTS.Application:0x80070005");
    EXPECT_EQ(CreateDtsPackage(), nullptr);
    EXPECT_EQ(CreateDtsApplication(), nullptr);
}

TEST_F(ComPackages, AClassThatIsNotRegisteredGivesNull) {
    StandIn().Unregister();
    EXPECT_EQ(CreateDtsPackage(), nullptr);
    EXPECT_EQ(CreateDtsApplication(), nullptr);
    StandIn().Register();
    EXPECT_NE(CreateDtsPackage(), nullptr);
    EXPECT_NE(CreateDtsApplication(), nullptr);
}

} // namespace

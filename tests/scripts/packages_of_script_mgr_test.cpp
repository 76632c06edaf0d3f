// CSQLScriptMgr's operations on DTS packages: finding their files, installing and listing them.
#include "fakes/fake_packages.h"
#include "scripts/script_mgr_fixture.h"

namespace kv {
namespace {

using Calls = std::vector<fakes::PackageCall>;

class PackagesOfScriptMgr : public ScriptMgrTest {
  protected:
    PackagesOfScriptMgr() {
        scripts_.UseServerA(true);
        scripts_.ServerA("NodeA");
        scripts_.UserA("ua");
        scripts_.PasswordA("pa");
        scripts_.ServerB("NodeB");
        scripts_.UserB("ub");
        scripts_.PasswordB("pb");
        files_.AddFolder("S:\\Scripts");
    }
    void UseFolderWithPackages() {
        scripts_.ScriptFolder("S:\\Scripts");
        files_.AddFile("S:\\Scripts\\BatchSummaryExport.dts", "");
    }
    void ExpectFailureWithoutCalls(const char* description = "No valid script folder was specified!") {
        EXPECT_FALSE(scripts_.InstallDTSPackage(dtsBatchSummaryExport));
        EXPECT_TRUE(packages_.calls.empty());
        EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::InstallDTSPackage(4)"});
        ExpectRaised("CSQLScriptMgr", description);
    }

    CSQLScriptMgr scripts_;
    fakes::FakePackages packages_;
};

TEST_F(PackagesOfScriptMgr, TheSixPackagesHaveTheirNamesAndFiles) {
    const char* const names[] = {"StdSynchronize",      "UpgradeDatabase_V1_to_V2",
                                 "BatchOverviewExport", "BatchOverviewRecalcExport",
                                 "BatchSummaryExport",  "BatchSummaryRecalcExport"};
    ASSERT_EQ(kDtsPackages.size(), std::size(names));
    for (std::size_t i = 0; i < kDtsPackages.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(kDtsPackages[i]), i);
        EXPECT_EQ(PackageName(kDtsPackages[i]), names[i]);
        EXPECT_EQ(PackageFileName(kDtsPackages[i]), std::string(names[i]) + ".dts");
    }
}

TEST_F(PackagesOfScriptMgr, APackageExistsIfItsFileIsInTheScriptFolder) {
    UseFolderWithPackages();
    EXPECT_TRUE(scripts_.DTSPackageExist(dtsBatchSummaryExport));
    EXPECT_FALSE(scripts_.DTSPackageExist(dtsStdSynchronize));
}

TEST_F(PackagesOfScriptMgr, AnEmptyScriptFolderLooksInTheRootOfTheDrive) {
    scripts_.ScriptFolder("");
    EXPECT_FALSE(scripts_.DTSPackageExist(dtsStdSynchronize));
    files_.AddFile("\\StdSynchronize.dts", "");
    EXPECT_TRUE(scripts_.DTSPackageExist(dtsStdSynchronize));
}

TEST_F(PackagesOfScriptMgr, APackageIsRemovedLoadedAndSavedInThisOrder) {
    UseFolderWithPackages();
    EXPECT_TRUE(scripts_.InstallDTSPackage(dtsBatchSummaryExport));
    EXPECT_EQ(packages_.calls, (Calls{{"RemoveFromSQLServer", {"NodeA", "ua", "pa", "BatchSummaryExport"}},
                                      {"LoadFromStorageFile", {"S:\\Scripts\\BatchSummaryExport.dts", ""}},
                                      {"SaveToSQLServer", {"NodeA", "ua", "pa"}}}));
    EXPECT_EQ(packages_.packages_created, 1);
    EXPECT_EQ(packages_.open_objects, 0);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(PackagesOfScriptMgr, ServerBIsUsedIfItIsSelected) {
    UseFolderWithPackages();
    scripts_.UseServerA(false);
    EXPECT_TRUE(scripts_.InstallDTSPackage(dtsBatchSummaryExport));
    EXPECT_EQ(packages_.calls.front().arguments,
              (std::vector<std::string>{"NodeB", "ub", "pb", "BatchSummaryExport"}));
    EXPECT_EQ(packages_.calls.back().arguments, (std::vector<std::string>{"NodeB", "ub", "pb"}));
}

TEST_F(PackagesOfScriptMgr, AFailingRemovalIsIgnored) {
    UseFolderWithPackages();
    packages_.failures.insert(
        {"RemoveFromSQLServer", packages::PackageError(-2147217843, "ODBC", "Login failed")});
    EXPECT_TRUE(scripts_.InstallDTSPackage(dtsBatchSummaryExport));
    EXPECT_EQ(packages_.calls.size(), 3U);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(PackagesOfScriptMgr, AFailingSaveIsLogged) {
    UseFolderWithPackages();
    packages_.failures.insert(
        {"SaveToSQLServer", packages::PackageError(-2147217843, "ODBC", "Login failed")});
    EXPECT_FALSE(scripts_.InstallDTSPackage(dtsBatchSummaryExport));
    EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::InstallDTSPackage(4)"});
    EXPECT_EQ(packages_.open_objects, 0);
}

TEST_F(PackagesOfScriptMgr, AMissingFileFailsAfterTheOldCopyWasRemoved) {
    UseFolderWithPackages();
    packages_.failures.insert(
        {"LoadFromStorageFile", packages::PackageError(-2147287038, "DTS", "not found")});
    EXPECT_FALSE(scripts_.InstallDTSPackage(dtsStdSynchronize));
    ASSERT_EQ(packages_.calls.size(), 2U);
    EXPECT_EQ(packages_.calls[0].member, "RemoveFromSQLServer");
    EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::InstallDTSPackage(0)"});
}

TEST_F(PackagesOfScriptMgr, AScriptFolderThatWasNeverSetFails) {
    files_.AddFile("\\a file in the root of the drive", "");
    ExpectFailureWithoutCalls();
}

TEST_F(PackagesOfScriptMgr, AMissingScriptFolderFails) {
    scripts_.ScriptFolder("S:\\None");
    ExpectFailureWithoutCalls();
}

TEST_F(PackagesOfScriptMgr, AFolderWithOnlySubfoldersFails) {
    scripts_.ScriptFolder("S:\\Scripts");
    files_.AddFolder("S:\\Scripts\\Sub");
    files_.AddFile("S:\\Scripts\\Sub\\BatchSummaryExport.dts", "");
    ExpectFailureWithoutCalls();
}

TEST_F(PackagesOfScriptMgr, TheRootOfTheDriveIsTestedForAnEmptyScriptFolder) {
    scripts_.ScriptFolder("");
    ExpectFailureWithoutCalls();
}

TEST_F(PackagesOfScriptMgr, MissingComponentsAreLogged) {
    UseFolderWithPackages();
    packages_.has_package_class = false;
    ExpectFailureWithoutCalls("Installing SQL DTS package failed! Can not create DTS.Package object.");
}

TEST_F(PackagesOfScriptMgr, TheListBeginsWithAnEmptyElement) {
    packages_.installed = {{"A", "first", {2006, 5, 12, 14, 3, 22}}, {"A", "second", {}}, {"B", "", {}}};
    std::vector<DTSPackageInfo> list = {{"stale", "", {}}, {"stale", "", {}}};
    EXPECT_TRUE(scripts_.GetInstalledDTSPackages(list));
    ASSERT_EQ(list.size(), 4U);
    EXPECT_EQ(list[0].name + list[0].description, "");
    EXPECT_EQ(list[1].name, "A");
    EXPECT_EQ(list[1].description, "first");
    EXPECT_EQ(list[1].creationDate, (platform::LocalTime{2006, 5, 12, 14, 3, 22}));
    EXPECT_EQ(list[2].description, "second");
    EXPECT_EQ(list[3].name, "B");
}

TEST_F(PackagesOfScriptMgr, AServerWithoutPackagesReturnsTheEmptyElementOnly) {
    std::vector<DTSPackageInfo> list;
    EXPECT_TRUE(scripts_.GetInstalledDTSPackages(list));
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(PackagesOfScriptMgr, PackagesReadBeforeAFailureStayInTheList) {
    packages_.installed = {{"A", "", {}}, {"B", "", {}}, {"C", "", {}}};
    packages_.enumerated_before_failure = 2;
    std::vector<DTSPackageInfo> list;
    EXPECT_FALSE(scripts_.GetInstalledDTSPackages(list));
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[2].name, "B");
    EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::GetInstalledDTSPackages()"});
}

TEST_F(PackagesOfScriptMgr, WithoutTheApplicationClassTheListFails) {
    packages_.has_application_class = false;
    std::vector<DTSPackageInfo> list;
    EXPECT_FALSE(scripts_.GetInstalledDTSPackages(list));
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::GetInstalledDTSPackages()"});
}

} // namespace
} // namespace kv

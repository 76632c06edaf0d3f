// The two package objects of a system without COM: how they use the package file and the store.
#include "packages/packages.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/scripted_odbc.h"
#include "packages/package_failure.h"

namespace {

using package_tests::FailureOf;
using packages::CreateDtsApplication;
using packages::CreateDtsPackage;
using packages::PackageError;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kContent = "LKDTS 1\nName: StdSynchronize\nDescription: d\n"
                                 "PackageId: {8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}\n"
                                 "VersionId: {3C59DC04-8E88-4024-9BBE-079A5D4B1A02}\n\nbody";

class LinuxPackages : public testing::Test {
  protected:
    LinuxPackages()
        : path_(std::filesystem::temp_directory_path() /
                (std::string("linux_packages_") +
                 testing::UnitTest::GetInstance()->current_test_info()->name() + ".dts")) {
        std::ofstream(path_, std::ios::binary) << kContent;
    }
    ~LinuxPackages() override { std::filesystem::remove(path_); }

    fakes::ScriptedOdbc odbc_;
    std::filesystem::path path_;
};

TEST_F(LinuxPackages, SavesTheLoadedPackageOnTheNamedServer) {
    const auto package = CreateDtsPackage();
    package->LoadFromStorageFile(path_.string(), "");
    EXPECT_THAT(odbc_.connection_strings, SizeIs(0));
    package->SaveToSQLServer("SRV", "sa", "pw");
    EXPECT_THAT(odbc_.connection_strings,
                testing::ElementsAre("Driver={SQL Server};Server=SRV;Database=msdb;Uid=sa;Pwd=pw;"));
    EXPECT_EQ(std::get<odbc::Bytes>(odbc_.executed.at(0).parameters.at(6).value).data, kContent);
}

TEST_F(LinuxPackages, NothingCanBeSavedBeforeAPackageIsLoaded) {
    const auto package = CreateDtsPackage();
    EXPECT_THAT(FailureOf([&] { package->SaveToSQLServer("SRV", "sa", "pw"); }).what(),
                HasSubstr("No package is loaded"));
    EXPECT_THAT(odbc_.connection_strings, SizeIs(0));
}

TEST_F(LinuxPackages, AFailedLoadLeavesThePackageThatWasLoaded) {
    const auto package = CreateDtsPackage();
    package->LoadFromStorageFile(path_.string(), "");
    FailureOf([&] { package->LoadFromStorageFile(path_.string() + ".none", ""); });
    EXPECT_NO_THROW(package->SaveToSQLServer("SRV", "sa", "pw"));
}

TEST_F(LinuxPackages, APasswordForAFileWithoutOneIsRefused) {
    EXPECT_THAT(FailureOf([&] { CreateDtsPackage()->LoadFromStorageFile(path_.string(), "x"); }).what(),
                HasSubstr("has no password"));
}

TEST_F(LinuxPackages, RemovingAnAbsentPackageFails) {
    odbc_.answers.emplace_back();
    odbc_.answers.back().columns.resize(10);
    EXPECT_THAT(
        FailureOf([] { CreateDtsPackage()->RemoveFromSQLServer("S", "u", "p", "StdSynchronize"); }).what(),
        HasSubstr("'StdSynchronize' does not exist"));
}

TEST_F(LinuxPackages, AServerWithoutPackagesListsNothing) {
    odbc_.answers.emplace_back();
    odbc_.answers.back().columns.resize(10);
    int taken = 0;
    CreateDtsApplication()->EnumPackageInfos("S", "u", "p", [&](const packages::PackageInfo&) { ++taken; });
    EXPECT_EQ(taken, 0);
    EXPECT_THAT(odbc_.executed, SizeIs(1));
}

} // namespace

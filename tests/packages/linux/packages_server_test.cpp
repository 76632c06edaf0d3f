// The package objects of Linux with a development server: packages are stored, listed, replaced and removed.
#include "packages/packages.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/dev_server.h"
#include "odbc/odbc.h"
#include "odbc/odbc_rows.h"
#include "packages/package_failure.h"

namespace {

using package_tests::FailureOf;
using packages::CreateDtsApplication;
using packages::CreateDtsPackage;
using packages::PackageError;
using packages::PackageInfo;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string kUser = "sa";
const std::string kPassword = "Test-1";

std::string Head(const std::string& name, const std::string& description, int number) {
    return "LKDTS 1\r\nName: " + name + "\r\nDescription: " + description +
           "\r\nPackageId: {8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D0" + std::to_string(number) +
           "}\r\nVersionId: {3C59DC04-8E88-4024-9BBE-079A5D4B1A02}\r\n\r\n";
}

/// Each test has its own server, which starts in less than a second.
class PackagesOnServer : public testing::Test {
  protected:
    PackagesOnServer()
        : path_(std::filesystem::temp_directory_path() /
                (std::string("packages_server_") +
                 testing::UnitTest::GetInstance()->current_test_info()->name() + ".dts")) {}
    ~PackagesOnServer() override { std::filesystem::remove(path_); }

    void Save(const std::string& content) {
        // A datetime has steps of 1/300 s, and versions of the same step have no order.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        std::ofstream(path_, std::ios::binary | std::ios::trunc) << content;
        const auto package = CreateDtsPackage();
        package->LoadFromStorageFile(path_.string(), "");
        package->SaveToSQLServer(server_.Name(), kUser, kPassword);
    }

    void Remove(const std::string& name) {
        CreateDtsPackage()->RemoveFromSQLServer(server_.Name(), kUser, kPassword, name);
    }

    std::vector<PackageInfo> List() {
        std::vector<PackageInfo> infos;
        CreateDtsApplication()->EnumPackageInfos(server_.Name(), kUser, kPassword,
                                                 [&](const PackageInfo& info) { infos.push_back(info); });
        return infos;
    }

    /// "name: description" of each.
    std::vector<std::string> Listed() {
        std::vector<std::string> texts;
        for (const PackageInfo& info : List()) {
            texts.push_back(info.name + ": " + info.description);
        }
        return texts;
    }

    /// The stored bytes of the only package.
    std::string StoredBytes() {
        using namespace odbc;
        const Environment environment;
        Connection connection(environment);
        connection.DriverConnect("Driver={SQL Server};Server=" + server_.Name() +
                                     ";Database=msdb;Uid=" + kUser + ";Pwd=" + kPassword + ";",
                                 60);
        Statement statement(connection);
        statement.ExecDirect("SELECT packagedata FROM msdb.dbo.sysdtspackages");
        RowReader reader(statement);
        std::vector<Value> row;
        EXPECT_TRUE(reader.Next(row));
        const auto* bytes = row.empty() ? nullptr : std::get_if<Bytes>(row.data());
        EXPECT_NE(bytes, nullptr);
        return bytes == nullptr ? "" : bytes->data;
    }

    fakes::DevServer server_;
    std::filesystem::path path_;
};

TEST_F(PackagesOnServer, AFreshServerHasNoPackages) {
    EXPECT_THAT(List(), IsEmpty());
}

TEST_F(PackagesOnServer, StoresNameDescriptionAndDate) {
    const std::time_t before = std::time(nullptr);
    Save(Head("StdSynchronize", "Brings the partner up to date", 1));
    const std::vector<PackageInfo> infos = List();
    ASSERT_EQ(infos.size(), 1U);
    EXPECT_EQ(infos[0].name, "StdSynchronize");
    EXPECT_EQ(infos[0].description, "Brings the partner up to date");
    const platform::LocalTime& at = infos[0].creation_date;
    std::tm created{};
    created.tm_year = at.year - 1900;
    created.tm_mon = at.month - 1;
    created.tm_mday = at.day;
    created.tm_hour = at.hour;
    created.tm_min = at.minute;
    created.tm_sec = at.second;
    created.tm_isdst = -1;
    EXPECT_NEAR(static_cast<double>(std::mktime(&created)), static_cast<double>(before), 30);
}

TEST_F(PackagesOnServer, TextOfTheCodePageRoundTrips) {
    Save(Head("\xDC"
              "bersicht",
              "Preis \x80 5, it's \"so\"", 1));
    EXPECT_THAT(Listed(), ElementsAre("\xDC"
                                      "bersicht: Preis \x80 5, it's \"so\""));
}

TEST_F(PackagesOnServer, AnEmptyDescriptionStaysEmpty) {
    Save(Head("A", "", 1));
    EXPECT_THAT(Listed(), ElementsAre("A: "));
}

TEST_F(PackagesOnServer, EveryVersionIsListedTheNewestOfEachFirst) {
    Save(Head("A", "first", 1));
    Save(Head("B", "other", 2));
    Save(Head("A", "second", 1));
    EXPECT_THAT(Listed(), ElementsAre("A: second", "A: first", "B: other"));
}

TEST_F(PackagesOnServer, RemovingDeletesOnlyTheNewestVersion) {
    Save(Head("A", "first", 1));
    Save(Head("A", "second", 1));
    Save(Head("B", "other", 2));
    Remove("A");
    EXPECT_THAT(Listed(), UnorderedElementsAre("A: first", "B: other"));
    Remove("A");
    EXPECT_THAT(Listed(), ElementsAre("B: other"));
}

TEST_F(PackagesOnServer, RemovingAndSavingAgainLeavesOneCopy) {
    Save(Head("UpgradeDatabase_V1_to_V2", "old", 1));
    Remove("UpgradeDatabase_V1_to_V2");
    Save(Head("UpgradeDatabase_V1_to_V2", "new", 1));
    EXPECT_THAT(Listed(), ElementsAre("UpgradeDatabase_V1_to_V2: new"));
}

TEST_F(PackagesOnServer, AnUnderscoreInANameIsNotAWildcard) {
    Save(Head("A_B", "wanted", 1));
    Save(Head("AxB", "its like", 2));
    Remove("a_b");
    EXPECT_THAT(Listed(), ElementsAre("AxB: its like"));
    EXPECT_THAT(FailureOf([&] { Remove("A_B"); }).what(), HasSubstr("'A_B' does not exist"));
    EXPECT_THAT(Listed(), ElementsAre("AxB: its like"));
}

TEST_F(PackagesOnServer, AnAbsentPackageCannotBeRemoved) {
    EXPECT_THAT(FailureOf([&] { Remove("StdSynchronize"); }).what(),
                HasSubstr("'StdSynchronize' does not exist"));
}

TEST_F(PackagesOnServer, AWrongPasswordIsTheServersRefusal) {
    const PackageError error = FailureOf(
        [&] { CreateDtsPackage()->RemoveFromSQLServer(server_.Name(), kUser, "wrong", "StdSynchronize"); });
    EXPECT_THAT(error.what(), HasSubstr("Login failed for user 'sa'"));
    EXPECT_THAT(error.what(), HasSubstr("error 18456"));
}

TEST_F(PackagesOnServer, AMegabyteOfEveryByteIsStoredUnchanged) {
    std::string content = Head("Big", "", 1);
    while (content.size() < 1024 * 1024) {
        content += static_cast<char>(content.size() * 31 % 251 + (content.size() >> 12));
    }
    Save(content);
    const std::string stored = StoredBytes();
    EXPECT_EQ(stored.size(), content.size());
    EXPECT_TRUE(stored == content);
    EXPECT_THAT(Listed(), ElementsAre("Big: "));
}

TEST_F(PackagesOnServer, TheBodyMayHoldAnyByte) {
    std::string content = Head("Bytes", "", 1);
    for (int byte = 0; byte < 256; ++byte) {
        content += static_cast<char>(byte);
    }
    Save(content);
    EXPECT_EQ(StoredBytes(), content);
}

TEST_F(PackagesOnServer, AServerThatIsGoneIsAFailure) {
    server_.Stop();
    EXPECT_THROW(List(), PackageError);
    EXPECT_THROW(Remove("A"), PackageError);
}

} // namespace

// The calls that the package store makes, and how it handles the answers of a scripted server.
#include "packages/package_store.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/scripted_odbc.h"
#include "packages/package_failure.h"

namespace {

using fakes::OdbcAnswer;
using odbc::Bytes;
using odbc::Guid;
using odbc::SqlType;
using odbc::Timestamp;
using odbc::Value;
using package_tests::FailureOf;
using packages::PackageError;
using packages::PackageFile;
using packages::PackageStore;
using packages::StoredPackage;
using platform::LocalTime;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr Guid kPackage = {0x8F14E45F, 0xCEEA, 0x467F, {0xA8, 0xB6, 0x2C, 0x1F, 0x1B, 0x7A, 0x9D, 0x01}};
constexpr Guid kOlder = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr Guid kNewer = {0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}};
constexpr Value kNull = {};

PackageFile SomeFile() {
    return {"StdSynchronize", "Brings the partner up to date", "{8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}",
            "{3C59DC04-8E88-4024-9BBE-079A5D4B1A02}", std::string("LKDTS 1\n\0\xFF\r\n", 12)};
}

OdbcAnswer Packages(std::vector<std::vector<Value>> rows) {
    OdbcAnswer answer;
    answer.columns.resize(10);
    answer.rows = std::move(rows);
    return answer;
}

std::vector<Value> Row(const std::string& name, const Guid& version, const Timestamp& created) {
    return {name,    kPackage,          version,         std::string("about ") + name,
            created, std::string("sa"), std::int64_t{3}, Bytes{"abc"},
            true,    std::int64_t{0}};
}

odbc::Diagnostic Error(const std::string& sql_state, std::int32_t native_error, const std::string& message) {
    odbc::Diagnostic diagnostic;
    diagnostic.sql_state = sql_state;
    diagnostic.native_error = native_error;
    diagnostic.message = message;
    return diagnostic;
}

std::vector<Value> ValuesOf(const fakes::ScriptedOdbc::Executed& executed) {
    std::vector<Value> values;
    for (const auto& parameter : executed.parameters) {
        values.push_back(parameter.value);
    }
    return values;
}

Value Text(const std::string& text) {
    return text;
}

/// A GUID of version 4, without braces.
bool IsRandomId(const std::string& id) {
    const std::string form = "xxxxxxxx-xxxx-4xxx-Vxxx-xxxxxxxxxxxx";
    return std::equal(id.begin(), id.end(), form.begin(), form.end(), [](char given, char wanted) {
        return wanted == 'x'   ? std::string("0123456789ABCDEF").find(given) != std::string::npos
               : wanted == 'V' ? std::string("89AB").find(given) != std::string::npos
                               : given == wanted;
    });
}

class ScriptedStore : public testing::Test {
  protected:
    std::vector<StoredPackage> List() {
        std::vector<StoredPackage> packages;
        store_.List([&](const StoredPackage& package) { packages.push_back(package); });
        return packages;
    }

    fakes::ScriptedOdbc odbc_;
    PackageStore store_{{"SRV\\KV_BATCH", "sa", "p w"}};
};

TEST_F(ScriptedStore, ConnectsToMsdbWithTheTextsAsTheyAre) {
    store_.Add(SomeFile());
    EXPECT_THAT(odbc_.connection_strings,
                ElementsAre("Driver={SQL Server};Server=SRV\\KV_BATCH;Database=msdb;Uid=sa;Pwd=p w;"));
}

TEST_F(ScriptedStore, AddsTheWholeFileUnderItsPackageId) {
    store_.Add(SomeFile());
    ASSERT_EQ(odbc_.executed.size(), 1U);
    EXPECT_EQ(odbc_.executed[0].sql, "{call sp_add_dtspackage(?, ?, ?, ?, ?, ?, ?)}");
    const std::vector<Value> values = ValuesOf(odbc_.executed[0]);
    ASSERT_EQ(values.size(), 7U);
    EXPECT_EQ(values[0], Text("StdSynchronize"));
    EXPECT_EQ(values[1], Text("8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01"));
    EXPECT_EQ(values[3], Text("Brings the partner up to date"));
    EXPECT_EQ(values[4], kNull);
    EXPECT_EQ(values[5], Text("sa"));
    EXPECT_EQ(values[6], Value(Bytes{SomeFile().content}));
    EXPECT_EQ(odbc_.executed[0].parameters[6].type, SqlType::LongVarBinary);
    EXPECT_TRUE(odbc_.drained);
}

TEST_F(ScriptedStore, EverySaveIsANewVersion) {
    store_.Add(SomeFile());
    store_.Add(SomeFile());
    const auto first = std::get<std::string>(odbc_.executed.at(0).parameters.at(2).value);
    const auto second = std::get<std::string>(odbc_.executed.at(1).parameters.at(2).value);
    EXPECT_TRUE(IsRandomId(first)) << first;
    EXPECT_TRUE(IsRandomId(second)) << second;
    EXPECT_NE(first, second);
    EXPECT_NE(first, "3C59DC04-8E88-4024-9BBE-079A5D4B1A02");
}

TEST_F(ScriptedStore, ListsEveryVersionInTheServersOrder) {
    odbc_.answers.push_back(
        Packages({Row("B", kOlder, {2026, 2, 28, 23, 59, 58, 997000000}),
                  Row("A", kNewer, {1999, 12, 31, 0, 0, 0, 0}), Row("B", kNewer, {2000, 1, 1, 0, 0, 0, 0})}));
    odbc_.answers.back().rows[1][3] = kNull;
    const std::vector<StoredPackage> packages = List();
    EXPECT_EQ(odbc_.executed.at(0).sql, "{call sp_enum_dtspackages}");
    ASSERT_EQ(packages.size(), 3U);
    EXPECT_EQ(packages[0].info.name, "B");
    EXPECT_EQ(packages[0].info.description, "about B");
    EXPECT_EQ(packages[0].info.creation_date, (platform::LocalTime{2026, 2, 28, 23, 59, 58}));
    EXPECT_EQ(packages[0].package_id, "{8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}");
    EXPECT_EQ(packages[0].version_id, "{00000001-0002-0003-0405-060708090A0B}");
    EXPECT_EQ(packages[1].info.name, "A");
    EXPECT_EQ(packages[1].info.description, "");
    EXPECT_EQ(packages[2].version_id, "{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}");
}

TEST_F(ScriptedStore, AListThatFailsKeepsThePackagesBeforeTheFailure) {
    odbc_.answers.push_back(Packages({Row("A", kOlder, {2026, 1, 1, 0, 0, 0, 0})}));
    odbc_.answers.back().late_error = {
        Error("08S01", 20006, "[FreeTDS][SQL Server]Write to the server failed")};
    std::vector<std::string> names;
    const PackageError error = FailureOf(
        [&] { store_.List([&](const StoredPackage& package) { names.push_back(package.info.name); }); });
    EXPECT_THAT(names, ElementsAre("A"));
    EXPECT_STREQ(error.what(), "Write to the server failed (SQLSTATE 08S01, error 20006)");
}

TEST_F(ScriptedStore, RemovesOnlyTheNewestVersion) {
    odbc_.answers.push_back(Packages(
        {Row("a_b", kOlder, {2025, 12, 31, 23, 59, 59, 0}), Row("A_B", kNewer, {2026, 1, 1, 0, 0, 0, 0})}));
    store_.RemoveNewest("A_B");
    ASSERT_EQ(odbc_.executed.size(), 2U);
    EXPECT_EQ(odbc_.executed[0].sql, "{call sp_enum_dtspackages(?, ?, ?, ?)}");
    EXPECT_THAT(ValuesOf(odbc_.executed[0]),
                ElementsAre(Text("A[_]B"), Text("%"), kNull, Value(std::int64_t{1})));
    EXPECT_EQ(odbc_.executed[1].sql, "{call sp_drop_dtspackage(?, ?, ?)}");
    EXPECT_THAT(ValuesOf(odbc_.executed[1]),
                ElementsAre(Text("A_B"), Text("8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01"),
                            Text("FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF")));
    EXPECT_TRUE(odbc_.drained);
}

TEST_F(ScriptedStore, WildcardsInANameAreLiteral) {
    FailureOf([&] { store_.RemoveNewest("50%[x]_"); });
    EXPECT_EQ(odbc_.executed.at(0).parameters.at(0).value, Text("50[%][[]x][_]"));
}

TEST_F(ScriptedStore, AnAbsentPackageIsNamedAndNothingIsDropped) {
    odbc_.answers.push_back(Packages({}));
    const PackageError error = FailureOf([&] { store_.RemoveNewest("StdSynchronize"); });
    EXPECT_EQ(error.Number(), -2147217900);
    EXPECT_STREQ(error.what(), "The package 'StdSynchronize' does not exist on the server");
    EXPECT_EQ(odbc_.executed.size(), 1U);
}

TEST_F(ScriptedStore, ANameThatIsTooLongIsRefused) {
    EXPECT_THAT(FailureOf([&] { store_.RemoveNewest(std::string(129, 'n')); }).what(),
                HasSubstr("is too long"));
    EXPECT_TRUE(odbc_.executed.empty());
}

TEST_F(ScriptedStore, AnErrorGetsTheNumberOfItsState) {
    const std::vector<std::pair<std::string, std::int32_t>> numbers = {
        {"42000", -2147217900}, {"42S02", -2147217865}, {"28000", -2147217843}, {"23000", -2147217873},
        {"HYT00", -2147217871}, {"22001", -2147217833}, {"08001", -2147467259},
    };
    for (const auto& [sql_state, number] : numbers) {
        odbc_.answers.push_back({});
        odbc_.answers.back().error = {Error(sql_state, 50000, "no")};
        EXPECT_EQ(FailureOf([&] { store_.Add(SomeFile()); }).Number(), number) << sql_state;
    }
}

TEST_F(ScriptedStore, ARefusedLoginHasTheServersText) {
    odbc_.connect_error = {Error("42000", 18456, "[FreeTDS][SQL Server]Login failed for user 'sa'."),
                           Error("08001", 0, "[FreeTDS][SQL Server]Unable to connect to data source")};
    EXPECT_STREQ(FailureOf([&] { List(); }).what(),
                 "Login failed for user 'sa'. (SQLSTATE 42000, error 18456)");
}

TEST_F(ScriptedStore, AnErrorAfterTheFirstResultFailsTheCall) {
    odbc_.answers.push_back({});
    odbc_.answers.back().late_error = {Error("42000", 14590, "Package already exists")};
    EXPECT_THAT(FailureOf([&] { store_.Add(SomeFile()); }).what(), HasSubstr("error 14590"));
}

TEST_F(ScriptedStore, AnAnswerOfAnotherShapeIsRefused) {
    odbc_.answers.push_back(Packages({Row("A", kOlder, {2026, 1, 1, 0, 0, 0, 0})}));
    odbc_.answers.back().rows[0][4] = std::string("yesterday");
    EXPECT_THAT(FailureOf([&] { List(); }).what(), HasSubstr("column 5"));
    odbc_.answers.push_back({});
    EXPECT_THAT(FailureOf([&] { List(); }).what(), HasSubstr("column 1"));
}

} // namespace

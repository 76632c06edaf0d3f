// CUpgradeDbMgr's UpgradeDatabase: the version rules, and what a failure at each step leaves.
#include "admin/manager_fixture.h"
#include "admin/upgrade_db_mgr.h"
#include "base/failure.h"

namespace kv {
namespace {

using ado::Null;
using ado::Variant;
using fakes::Failing;
using fakes::Rows;

class UpgradeDatabase : public ManagerTest {
  protected:
    UpgradeDatabase() { FillPair(manager_); }

    /// Runs the upgrade with these answers for the versions of source and destination.
    bool Upgrade(const fakes::AdoAnswer& source, const fakes::AdoAnswer& destination) {
        ado_.calls.clear();
        ado_.Answer(kVersionQuery, source);
        ado_.Answer(kVersionQuery, destination);
        return manager_.UpgradeDatabase("Batch", "Tmp");
    }
    bool Upgrade(const Variant& source, const Variant& destination) {
        return Upgrade(Rows({{source}}), Rows({{destination}}));
    }
    /// Checks that both versions were read and nothing else was done.
    void ExpectRefused(const std::string& description) {
        ExpectRaised("CUpgradeDbMgr", description);
        EXPECT_EQ(ado_.Statements(), (Lines{kVersionQuery, kVersionQuery}));
        EXPECT_EQ(LogLines(), Lines{kSource});
        EXPECT_EQ(manager_.ErrorCount(), Int16(0));
        EXPECT_EQ(ado_.calls.back(), "Close");
        ForgetLog();
    }

    static constexpr char kVersion1[] = "A destination databases with version 1 can not be upgraded!";
    static constexpr char kSame2[] = "The source and destination databases have the same version: 2";
    static constexpr char kSource[] = "CUpgradeDbMgr::UpgradeDatabase('Batch', 'Tmp')";
    static constexpr char kUninstall[] = "spUninstallReplication";
    static constexpr char kUpgrade[] = "spUpgradeDatabase 2, 3, N'Tmp', N'Batch', N'saA', N'pwA'";
    CUpgradeDbMgr manager_;
};

TEST_F(UpgradeDatabase, ReadsBothVersionsOverOneConnectionAndRunsBothProcedures) {
    EXPECT_TRUE(Upgrade("2", "3"));
    const Lines wanted = {"CursorLocation 3",
                          "CommandTimeout 300",
                          "ConnectionTimeout 300",
                          "ConnectionString " + ConnectionStringA("Tmp"),
                          "Open '' '' '' -1",
                          std::string("Execute 1 ") + kVersionQuery,
                          "Close",
                          "ConnectionString " + ConnectionStringA("Batch"),
                          "Open '' '' '' -1",
                          std::string("Execute 1 ") + kVersionQuery,
                          std::string("Execute 1 ") + kUninstall,
                          std::string("Execute 1 ") + kUpgrade,
                          "Close"};
    EXPECT_EQ(ado_.calls, wanted);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(UpgradeDatabase, CollectsTheErrorsOfEveryStatement) {
    fakes::AdoAnswer source = Rows({{"2"}});
    fakes::AdoAnswer destination = Rows({{"3"}});
    source.errors = fakes::WithErrors({-1}).errors;
    destination.errors = fakes::WithErrors({-2}).errors;
    ado_.Answer(kUninstall, fakes::WithErrors({-3}));
    ado_.Answer(kUpgrade, fakes::WithErrors({-4}));
    EXPECT_TRUE(Upgrade(source, destination));
    EXPECT_EQ(manager_.ErrorCount(), Int16(4));
}

TEST_F(UpgradeDatabase, PassesTheLoginOfTheSelectedServer) {
    manager_.UseServerA(false);
    EXPECT_TRUE(Upgrade("1", "2"));
    EXPECT_EQ(ado_.Statements().back(), "spUpgradeDatabase 1, 2, N'Tmp', N'Batch', N'saB', N'pwB'");
}

TEST_F(UpgradeDatabase, EscapesNothing) {
    manager_.PasswordA("it's");
    EXPECT_TRUE(Upgrade("1", "2"));
    EXPECT_EQ(ado_.Statements().back(), "spUpgradeDatabase 1, 2, N'Tmp', N'Batch', N'saA', N'it's'");
}

TEST_F(UpgradeDatabase, ADestinationOfVersion1IsRefused) {
    EXPECT_FALSE(Upgrade("0", "1"));
    ExpectRefused(kVersion1);
}

TEST_F(UpgradeDatabase, BothAtVersion1AreRefused) {
    EXPECT_FALSE(Upgrade("1", "1"));
    ExpectRefused(kVersion1);
}

TEST_F(UpgradeDatabase, EqualVersionsAreRefused) {
    EXPECT_FALSE(Upgrade("2", "2"));
    ExpectRefused(kSame2);
}

TEST_F(UpgradeDatabase, AnOlderDestinationIsRefused) {
    EXPECT_FALSE(Upgrade("3", "2"));
    ExpectRefused(
        "The destination database version is older than the source have the same version. Dest. ver.: 2 "
        "Soucrce. ver.: 3");
}

TEST_F(UpgradeDatabase, VersionsCompareAsNumbers) {
    EXPECT_TRUE(Upgrade("9", "10"));
    EXPECT_FALSE(Upgrade("10", "9"));
}

TEST_F(UpgradeDatabase, ADatabaseWithoutAVersionCountsAs1) {
    EXPECT_FALSE(Upgrade(Rows({{"3"}}), Rows({})));
    ExpectRefused(kVersion1);
    EXPECT_TRUE(Upgrade(Rows({}), Rows({{"2"}})));
    EXPECT_EQ(ado_.Statements().back(), "spUpgradeDatabase 1, 2, N'Tmp', N'Batch', N'saA', N'pwA'");
    EXPECT_TRUE(Upgrade({.no_recordset = true}, Rows({{"2"}})));
    EXPECT_EQ(ado_.Statements().back(), "spUpgradeDatabase 1, 2, N'Tmp', N'Batch', N'saA', N'pwA'");
}

TEST_F(UpgradeDatabase, AClosedRecordsetFailsWhenItIsRead) {
    EXPECT_FALSE(Upgrade({}, Rows({{"2"}})));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(ado_.Statements(), Lines{kVersionQuery});
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(UpgradeDatabase, OnlyTheFirstRowCounts) {
    EXPECT_TRUE(Upgrade(Rows({{"2"}, {"x"}}), Rows({{"3"}, {"1"}})));
    EXPECT_EQ(ado_.Statements().back(), kUpgrade);
}

TEST_F(UpgradeDatabase, AFractionIsRoundedToTheEvenNeighbour) {
    EXPECT_TRUE(Upgrade("1.5", "3.5"));
    EXPECT_EQ(ado_.Statements().back(), "spUpgradeDatabase 2, 4, N'Tmp', N'Batch', N'saA', N'pwA'");
    EXPECT_FALSE(Upgrade("1.5", "2.5"));
    ExpectRefused(kSame2);
}

TEST_F(UpgradeDatabase, TheVersionMayBeANumber) {
    EXPECT_TRUE(Upgrade(Variant(2), Variant(ado::Decimal{"3.00"})));
    EXPECT_EQ(ado_.Statements().back(), kUpgrade);
}

TEST_F(UpgradeDatabase, AValueThatIsNotA16BitNumberFails) {
    for (const Variant& value :
         {Variant("two"), Variant(""), Variant("32768"), Variant("-32769"), Variant(Null())}) {
        EXPECT_FALSE(Upgrade(value, "3"));
        EXPECT_EQ(ado_.Statements(), Lines{kVersionQuery});
        EXPECT_EQ(LogLines(), Lines{kSource});
        ForgetLog();
        ado_.Take(kVersionQuery); // the destination's answer was not asked for
        EXPECT_FALSE(Upgrade("2", value));
        EXPECT_EQ(ado_.Statements(), (Lines{kVersionQuery, kVersionQuery}));
        ForgetLog();
    }
}

TEST_F(UpgradeDatabase, ASourceThatCannotBeOpenedChangesNothing) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Upgrade("2", "3"));
    EXPECT_TRUE(ado_.Statements().empty());
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Open '' '' '' -1"); // a connection that is not open is not closed
}

TEST_F(UpgradeDatabase, ADestinationThatCannotBeOpenedChangesNothing) {
    ado_.Answer("Open", {});
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Upgrade("2", "3"));
    EXPECT_EQ(ado_.Statements(), Lines{kVersionQuery});
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Open '' '' '' -1");
}

TEST_F(UpgradeDatabase, AMissingConfigurationTableChangesNothing) {
    EXPECT_FALSE(Upgrade(Failing(-2147217865, "Invalid object name 'LKConfig'."), {}));
    EXPECT_EQ(ado_.Statements(), Lines{kVersionQuery});
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    ado_.Take(kVersionQuery);
    EXPECT_FALSE(Upgrade(Rows({{"2"}}), Failing()));
    EXPECT_EQ(ado_.Statements(), (Lines{kVersionQuery, kVersionQuery}));
    EXPECT_EQ(LogLines(), (Lines{kSource, kSource}));
}

TEST_F(UpgradeDatabase, IsNotRunIfReplicationCannotBeUninstalled) {
    ado_.Answer(kUninstall, Failing());
    EXPECT_FALSE(Upgrade("2", "3"));
    EXPECT_EQ(ado_.Statements().back(), kUninstall);
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(UpgradeDatabase, AFailingProcedureLeavesReplicationUninstalled) {
    ado_.Answer(kUpgrade, Failing());
    EXPECT_FALSE(Upgrade("2", "3"));
    EXPECT_EQ(ado_.Statements(), (Lines{kVersionQuery, kVersionQuery, kUninstall, kUpgrade}));
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

} // namespace
} // namespace kv

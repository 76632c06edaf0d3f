// CSQLReplicationMgr: whether replication is installed, installing and uninstalling it.
#include "admin/sql_replication_mgr.h"

#include "admin/manager_fixture.h"

namespace kv {
namespace {

using fakes::Failing;
using fakes::Rows;

class Replication : public ManagerTest {
  protected:
    Replication() { FillPair(manager_); }

    void ExpectUnanswered(const std::string& database = "Batch") {
        bool installed = true;
        EXPECT_FALSE(manager_.IsReplicationInstalled(database, installed));
        EXPECT_FALSE(installed);
        EXPECT_EQ(LogLines(), Lines{"CSQLReplicationMgr::IsReplicationInstalled('" + database + "')"});
    }

    CSQLReplicationMgr manager_;
};

TEST_F(Replication, ADistributionJobOfTheServerMeansInstalledForEveryDatabase) {
    ado_.Answer(kJobQuery, Rows({{"6F9619FF"}}));
    bool installed = false;
    EXPECT_TRUE(manager_.IsReplicationInstalled("Unrelated", installed));
    EXPECT_TRUE(installed);
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringA("Unrelated"), {kJobQuery}));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(Replication, WithoutAJobTheAnswerIsFalseAndTheResultTrue) {
    ado_.Answer(kJobQuery, Rows({}));
    bool installed = true;
    EXPECT_TRUE(manager_.IsReplicationInstalled("Batch", installed));
    EXPECT_FALSE(installed);
}

TEST_F(Replication, ADatabaseThatDoesNotExistFailsAndReportsNotInstalled) {
    ado_.Answer("Open", Failing());
    ExpectUnanswered("None");
    EXPECT_TRUE(ado_.Statements().empty());
}

/// The operation's handler fails too, so the answer is never assigned.
TEST_F(Replication, AFailureRaisedToTheCallerReportsNotInstalled) {
    ado_.Answer("Open", Failing());
    files_.FailNext("append", kLogFile, platform::FileFault::PathNotFound);
    bool installed = true;
    EXPECT_ANY_THROW(manager_.IsReplicationInstalled("Batch", installed));
    EXPECT_FALSE(installed);
}

TEST_F(Replication, AFailedQueryReportsNotInstalled) {
    ado_.Answer(kJobQuery, Failing());
    ExpectUnanswered();
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(Replication, AQueryWithoutARecordsetReportsNotInstalled) {
    ado_.Answer(kJobQuery, {.no_recordset = true});
    ExpectUnanswered();
    ExpectRaised("CSQLReplicationMgr", "Replication information could not be retrieved from the SQL Server!");
}

TEST_F(Replication, AClosedRecordsetFailsWhenItIsRead) {
    ExpectUnanswered();
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
}

TEST_F(Replication, IfTheConnectionCannotBeClosedItReportsNotInstalled) {
    ado_.Answer(kJobQuery, Rows({{"6F9619FF"}}));
    ado_.Answer("Close", Failing());
    ExpectUnanswered();
}

TEST_F(Replication, InstallRunsTheDatabasesProcedure) {
    manager_.UseServerA(false);
    EXPECT_TRUE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringB("Batch"), {"exec spInstallReplication"}));
}

TEST_F(Replication, UninstallRunsTheDatabasesProcedure) {
    EXPECT_TRUE(manager_.UninstallReplication("Batch"));
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringA("Batch"), {"exec spUninstallReplication"}));
}

TEST_F(Replication, ADatabaseWithoutTheProceduresFailsWithTheServersError) {
    ado_.Answer("exec spInstallReplication", Failing(-2147217900, "Could not find stored procedure"));
    EXPECT_FALSE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    ado_.Answer("exec spUninstallReplication", Failing());
    EXPECT_FALSE(manager_.UninstallReplication("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), (Lines{"CSQLReplicationMgr::InstallReplication('Batch')",
                                 "CSQLReplicationMgr::UninstallReplication('Batch')"}));
}

} // namespace
} // namespace kv

// CSynchronizeDbMgr's Synchronize: its statements, and what a failure at each of them leaves.
#include "admin/synchronize_db_mgr.h"

#include "admin/manager_fixture.h"

namespace kv {
namespace {

using fakes::Failing;
using fakes::Rows;

constexpr char kUninstall[] = "exec spUninstallReplication";
constexpr char kInstall[] = "exec spInstallReplication";
constexpr char kSynchronize[] =
    "spStdSynchronize N'saA', N'pwA', N'NodeB', N'NodeA\\KV_BATCH', N'Dest', N'Source', "
    "N'saB', N'saA', N'pwB', N'pwA'";
constexpr char kSource[] = "CSynchronizeDbMgr::Synchronize('Source', 'Dest')";

class Synchronize : public ManagerTest {
  protected:
    Synchronize() { FillPair(manager_); }

    bool Run(bool with_job) {
        ado_.Answer(kJobQuery, with_job ? Rows({{"6F9619FF"}}) : Rows({}));
        return manager_.Synchronize("Source", "Dest");
    }
    void ExpectFailedAfter(const Lines& statements) {
        EXPECT_EQ(ado_.Statements(), statements);
        EXPECT_EQ(LogLines(), Lines{kSource});
        EXPECT_EQ(manager_.ErrorCount(), Int16(1));
        EXPECT_EQ(ado_.calls.back(), "Close");
    }

    CSynchronizeDbMgr manager_;
};

TEST_F(Synchronize, WithoutAReplicationJobTwoStatementsRun) {
    EXPECT_TRUE(Run(false));
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringA("Source"), {kJobQuery, kSynchronize}));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(Synchronize, WithAReplicationJobFourStatementsRun) {
    EXPECT_TRUE(Run(true));
    EXPECT_EQ(ado_.calls,
              StandardCalls(ConnectionStringA("Source"), {kJobQuery, kUninstall, kSynchronize, kInstall}));
}

TEST_F(Synchronize, TheOtherDirectionSwapsServersAndLoginsButNotDatabases) {
    manager_.UseServerA(false);
    EXPECT_TRUE(Run(false));
    const std::string swapped =
        "spStdSynchronize N'saB', N'pwB', N'NodeA\\KV_BATCH', N'NodeB', N'Dest', N'Source', "
        "N'saA', N'saB', N'pwA', N'pwB'";
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringB("Source"), {kJobQuery, swapped}));
}

TEST_F(Synchronize, EqualLoginsAndServersAreAccepted) {
    manager_.ServerB(manager_.ServerA());
    manager_.UserB(manager_.UserA());
    manager_.PasswordB("");
    manager_.PasswordA("");
    EXPECT_TRUE(Run(false));
    EXPECT_EQ(ado_.Statements().back(), "spStdSynchronize N'saA', N'', N'NodeA\\KV_BATCH', "
                                        "N'NodeA\\KV_BATCH', N'Dest', N'Source', N'saA', N'saA', "
                                        "N'', N''");
}

TEST_F(Synchronize, ASourceThatCannotBeOpenedChangesNothing) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Run(false));
    EXPECT_TRUE(ado_.Statements().empty());
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(Synchronize, AFailingJobQueryChangesNothing) {
    ado_.Answer(kJobQuery, Failing());
    EXPECT_FALSE(manager_.Synchronize("Source", "Dest"));
    ExpectFailedAfter({kJobQuery});
}

TEST_F(Synchronize, AJobQueryWithoutARecordsetChangesNothing) {
    ado_.Answer(kJobQuery, {.no_recordset = true});
    EXPECT_FALSE(manager_.Synchronize("Source", "Dest"));
    ExpectRaised("CSynchronizeDbMgr", "Replication information could not be retrieved from the SQL Server!");
    EXPECT_EQ(ado_.Statements(), Lines{kJobQuery});
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(Synchronize, AClosedRecordsetOfJobsFailsAndChangesNothing) {
    EXPECT_FALSE(manager_.Synchronize("Source", "Dest"));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(ado_.Statements(), Lines{kJobQuery});
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(Synchronize, IsNotRunIfReplicationCannotBeUninstalled) {
    ado_.Answer(kUninstall, Failing());
    EXPECT_FALSE(Run(true));
    ExpectFailedAfter({kJobQuery, kUninstall});
}

TEST_F(Synchronize, AFailureLeavesReplicationUninstalled) {
    ado_.Answer(kSynchronize, Failing());
    EXPECT_FALSE(Run(true));
    ExpectFailedAfter({kJobQuery, kUninstall, kSynchronize});
}

TEST_F(Synchronize, FailsIfReplicationCannotBeInstalledAgain) {
    ado_.Answer(kInstall, Failing());
    EXPECT_FALSE(Run(true));
    ExpectFailedAfter({kJobQuery, kUninstall, kSynchronize, kInstall});
}

TEST_F(Synchronize, EveryStatementsMessagesAreCollected) {
    for (const char* statement : {kUninstall, kSynchronize, kInstall}) {
        ado_.Answer(statement, fakes::WithErrors({-2}));
    }
    EXPECT_TRUE(Run(true));
    EXPECT_EQ(manager_.ErrorCount(), Int16(3));
}

} // namespace
} // namespace kv

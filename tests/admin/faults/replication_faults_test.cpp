// Replication is installed, uninstalled and asked for, and two servers without replication are synchronised,
// with a fault at each statement. The stored procedures are stubs: each one only records that it has run.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"

namespace kv {
namespace {

/// Finds out whether replication is installed: it is if msdb has a distribution job.
constexpr char kAskForJob[] = "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id "
                              "From msdb.dbo.syscategories Where "
                              "(category_class = 1) AND ([name] = 'REPL-Distribution'))";

/// An operation on a database with two tables: Replicated has a row while replication is installed, and
/// Synchronised has a row for each synchronisation. The caller adds the call and its steps.
FaultyOperation OnReplicatedDatabase(bool replicated) {
    FaultyOperation operation;
    operation.prepare = [replicated](FaultFixture& fixture) {
        fixture.CreateDatabase(
            "Batch",
            {"CREATE TABLE Replicated (a int)", "CREATE TABLE Synchronised (a int)",
             "CREATE PROCEDURE spUninstallReplication AS DELETE Replicated",
             "CREATE PROCEDURE spInstallReplication AS INSERT Replicated VALUES (1)",
             "CREATE PROCEDURE spStdSynchronize @user nvarchar(50), @password nvarchar(50), "
             "@to nvarchar(50), @from nvarchar(50), @destination nvarchar(50), @source nvarchar(50), "
             "@user2 nvarchar(50), @user1 nvarchar(50), @password2 nvarchar(50), "
             "@password1 nvarchar(50) AS INSERT Synchronised VALUES (1)",
             replicated ? "INSERT Replicated VALUES (1)" : "PRINT 'not replicated'"});
    };
    operation.state = [](FaultFixture& fixture) {
        return fixture.AskOne("Batch", "SELECT COUNT(*) FROM Replicated") + " replicated " +
               fixture.AskOne("Batch", "SELECT COUNT(*) FROM Synchronised") + " synchronised";
    };
    operation.state_before = replicated ? "1 replicated 0 synchronised" : "0 replicated 0 synchronised";
    return operation;
}

/// A call of CSQLReplicationMgr that logs in and runs one statement, and changes nothing. A caller whose
/// statement does change something sets the last step's state.
template <class Operation>
FaultyOperation Switch(bool replicated, Operation operation, const char* statement, const char* log_line) {
    FaultyOperation change = OnReplicatedDatabase(replicated);
    change.run = [operation](FaultFixture& fixture) {
        CSQLReplicationMgr manager;
        fixture.Fill(manager);
        return operation(manager);
    };
    change.steps = {{"login", change.state_before}, {statement, change.state_before}};
    change.log_lines = [log_line](std::size_t) { return Lines{log_line}; };
    return change;
}

TEST(ReplicationFaults, AnInstallationIsDoneOrChangesNothing) {
    FaultyOperation install = Switch(
        false, [](CSQLReplicationMgr& manager) { return manager.InstallReplication("Batch"); },
        "exec spInstallReplication", "CSQLReplicationMgr::InstallReplication('Batch')");
    install.steps.back().state = "1 replicated 0 synchronised";
    TryEveryFault("InstallReplication", install);
}

TEST(ReplicationFaults, AnUninstallationIsDoneOrChangesNothing) {
    FaultyOperation uninstall = Switch(
        true, [](CSQLReplicationMgr& manager) { return manager.UninstallReplication("Batch"); },
        "exec spUninstallReplication", "CSQLReplicationMgr::UninstallReplication('Batch')");
    uninstall.steps.back().state = "0 replicated 0 synchronised";
    TryEveryFault("UninstallReplication", uninstall);
}

TEST(ReplicationFaults, AskingChangesNothing) {
    TryEveryFault("IsReplicationInstalled",
                  Switch(
                      true,
                      [](CSQLReplicationMgr& manager) {
                          bool installed = false;
                          return manager.IsReplicationInstalled("Batch", installed);
                      },
                      kAskForJob, "CSQLReplicationMgr::IsReplicationInstalled('Batch')"));
}

TEST(SynchronizeWithoutReplicationFaults, ASynchronisationIsDoneOrChangesNothing) {
    FaultyOperation synchronize = OnReplicatedDatabase(false);
    synchronize.run = [](FaultFixture& fixture) {
        CSynchronizeDbMgr manager;
        fixture.Fill(manager);
        return manager.Synchronize("Batch", "Copy");
    };
    synchronize.steps = {{"login", synchronize.state_before},
                         {kAskForJob, synchronize.state_before},
                         {"spStdSynchronize N'sa', N'Test-1', N'other', N'{server}', N'Copy', N'Batch', "
                          "N'sb', N'sa', N'pwB', N'Test-1'",
                          "0 replicated 1 synchronised"}};
    synchronize.log_lines = [](std::size_t) {
        return Lines{"CSynchronizeDbMgr::Synchronize('Batch', 'Copy')"};
    };
    TryEveryFault("Synchronize without replication", synchronize);
}

} // namespace
} // namespace kv

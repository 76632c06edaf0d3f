// UpgradeDatabase and Synchronize with a fault at each of their statements. The databases' procedures are
// small ones of the test's own: what counts is which of them ran.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"

namespace kv {
namespace {

constexpr char kVersionQuery[] = "SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'";
constexpr char kJobQuery[] = "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id "
                             "From msdb.dbo.syscategories Where "
                             "(category_class = 1) AND ([name] = 'REPL-Distribution'))";

/// The batches of a database of this version.
Lines Database(const std::string& version) {
    return {"CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50))",
            "INSERT LKConfig VALUES ('DatabaseVersion', '" + version + "')",
            "CREATE TABLE Things (a int)",
            "CREATE TABLE Replicated (a int)",
            "CREATE PROCEDURE spUninstallReplication AS DELETE Replicated",
            "CREATE PROCEDURE spInstallReplication AS INSERT Replicated VALUES (1)",
            "INSERT Replicated VALUES (1)"};
}

/// Rows of the old and of the new database, and whether the new one is replicated.
std::string UpgradeState(FaultRoom& room) {
    return room.AskOne("Tmp", "SELECT COUNT(*) FROM Things") + " old " +
           room.AskOne("Batch", "SELECT COUNT(*) FROM Things") + " new replicated " +
           room.AskOne("Batch", "SELECT COUNT(*) FROM Replicated");
}

FaultyOperation Upgrade() {
    FaultyOperation upgrade;
    upgrade.prepare = [](FaultRoom& room) {
        room.CreateDatabase("Tmp", Database("1"));
        room.CreateDatabase("Batch", Database("2"));
        room.Ask("Tmp", "INSERT Things VALUES (1) INSERT Things VALUES (2)");
        room.Ask("Batch", "CREATE PROCEDURE spUpgradeDatabase @old int, @new int, @source nvarchar(50), "
                          "@destination nvarchar(50), @user nvarchar(50), @password nvarchar(50) AS "
                          "EXEC ('INSERT [' + @destination + '].dbo.Things SELECT a FROM [' + @source + "
                          "'].dbo.Things')");
    };
    upgrade.run = [](FaultRoom& room) {
        CUpgradeDbMgr manager;
        room.Fill(manager);
        return manager.UpgradeDatabase("Batch", "Tmp");
    };
    upgrade.state = UpgradeState;
    upgrade.state_before = "2 old 0 new replicated 1";
    upgrade.steps = {
        {"login", upgrade.state_before},
        {kVersionQuery, upgrade.state_before},
        {"login", upgrade.state_before},
        {kVersionQuery, upgrade.state_before},
        {"spUninstallReplication", "2 old 0 new replicated 0"},
        {"spUpgradeDatabase 1, 2, N'Tmp', N'Batch', N'sa', N'Test-1'", "2 old 2 new replicated 0"},
    };
    upgrade.log_lines = [](std::size_t) { return Lines{"CUpgradeDbMgr::UpgradeDatabase('Batch', 'Tmp')"}; };
    return upgrade;
}

TEST(UpgradeDatabaseFaults, LeaveTheOldRowsAndWhatTheStepsBeforeLeft) {
    TryEveryFault("UpgradeDatabase", Upgrade());
}

/// A database that replicates, on a server with a distribution job: the longer of the two ways.
FaultyOperation Synchronize() {
    FaultyOperation synchronize;
    synchronize.prepare = [](FaultRoom& room) {
        room.CreateDatabase("Batch", Database("2"));
        room.Ask("Batch",
                 "CREATE PROCEDURE spStdSynchronize @user nvarchar(50), @password nvarchar(50), "
                 "@to nvarchar(50), @from nvarchar(50), @destination nvarchar(50), @source nvarchar(50), "
                 "@user2 nvarchar(50), @user1 nvarchar(50), @password2 nvarchar(50), @password1 nvarchar(50) "
                 "AS INSERT Things VALUES (1)");
        room.Ask("msdb", "INSERT msdb.dbo.syscategories (category_class, category_type, name) "
                         "SELECT 1, 1, 'REPL-Distribution' WHERE NOT EXISTS "
                         "(SELECT * FROM msdb.dbo.syscategories WHERE name = 'REPL-Distribution')");
        room.Ask("msdb", "EXEC msdb.dbo.sp_add_job @job_name = N'distribution', "
                         "@category_name = N'REPL-Distribution'");
    };
    synchronize.run = [](FaultRoom& room) {
        CSynchronizeDbMgr manager;
        room.Fill(manager);
        return manager.Synchronize("Batch", "Copy");
    };
    synchronize.state = [](FaultRoom& room) {
        return "synchronised " + room.AskOne("Batch", "SELECT COUNT(*) FROM Things") + " replicated " +
               room.AskOne("Batch", "SELECT COUNT(*) FROM Replicated");
    };
    synchronize.state_before = "synchronised 0 replicated 1";
    synchronize.steps = {
        {"login", synchronize.state_before},
        {kJobQuery, synchronize.state_before},
        {"exec spUninstallReplication", "synchronised 0 replicated 0"},
        {"spStdSynchronize N'sa', N'Test-1', N'other', N'{server}', N'Copy', N'Batch', N'sb', N'sa', N'pwB', "
         "N'Test-1'",
         "synchronised 1 replicated 0"},
        {"exec spInstallReplication", "synchronised 1 replicated 1"},
    };
    synchronize.log_lines = [](std::size_t) {
        return Lines{"CSynchronizeDbMgr::Synchronize('Batch', 'Copy')"};
    };
    return synchronize;
}

TEST(SynchronizeFaults, LeaveReplicationAsTheStepsBeforeLeftIt) {
    TryEveryFault("Synchronize", Synchronize());
}

} // namespace
} // namespace kv

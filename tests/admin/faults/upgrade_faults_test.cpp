// UpgradeDatabase and Synchronize with a fault at each of their statements. The stored procedures are small
// ones written for these tests, which show that they ran.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "support/program_statements.h"

namespace kv {
namespace {

using support::kJobQuery;
using support::kVersionQuery;

/// The batches that make a database of this version.
Lines Database(const std::string& version) {
    return {"CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50))",
            "INSERT LKConfig VALUES ('DatabaseVersion', '" + version + "')",
            "CREATE TABLE Things (a int)",
            "CREATE TABLE Replicated (a int)",
            "CREATE PROCEDURE spUninstallReplication AS DELETE Replicated",
            "CREATE PROCEDURE spInstallReplication AS INSERT Replicated VALUES (1)",
            "INSERT Replicated VALUES (1)"};
}

/// The number of rows of the old and of the new database, and whether the new one is replicated.
std::string UpgradeState(FaultFixture& fixture) {
    return fixture.AskOne("Tmp", "SELECT COUNT(*) FROM Things") + " old " +
           fixture.AskOne("Batch", "SELECT COUNT(*) FROM Things") + " new replicated " +
           fixture.AskOne("Batch", "SELECT COUNT(*) FROM Replicated");
}

FaultyOperation Upgrade() {
    FaultyOperation upgrade;
    upgrade.prepare = [](FaultFixture& fixture) {
        fixture.CreateDatabase("Tmp", Database("1"));
        fixture.CreateDatabase("Batch", Database("2"));
        fixture.Ask("Tmp", "INSERT Things VALUES (1) INSERT Things VALUES (2)");
        fixture.Ask("Batch", "CREATE PROCEDURE spUpgradeDatabase @old int, @new int, @source nvarchar(50), "
                             "@destination nvarchar(50), @user nvarchar(50), @password nvarchar(50) AS "
                             "EXEC ('INSERT [' + @destination + '].dbo.Things SELECT a FROM [' + @source + "
                             "'].dbo.Things')");
    };
    upgrade.run = [](FaultFixture& fixture) {
        CUpgradeDbMgr manager;
        fixture.Fill(manager);
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

TEST(UpgradeDatabaseFaults, LeaveTheOldRowsAndTheStateOfThePreviousStep) {
    TryEveryFault("UpgradeDatabase", Upgrade());
}

/// A replicated database on a server with a distribution job: the longer of the two sequences.
FaultyOperation Synchronize() {
    FaultyOperation synchronize;
    synchronize.prepare = [](FaultFixture& fixture) {
        fixture.CreateDatabase("Batch", Database("2"));
        fixture.Ask(
            "Batch",
            "CREATE PROCEDURE spStdSynchronize @user nvarchar(50), @password nvarchar(50), "
            "@to nvarchar(50), @from nvarchar(50), @destination nvarchar(50), @source nvarchar(50), "
            "@user2 nvarchar(50), @user1 nvarchar(50), @password2 nvarchar(50), @password1 nvarchar(50) "
            "AS INSERT Things VALUES (1)");
        fixture.Ask("msdb", "INSERT msdb.dbo.syscategories (category_class, category_type, name) "
                            "SELECT 1, 1, 'REPL-Distribution' WHERE NOT EXISTS "
                            "(SELECT * FROM msdb.dbo.syscategories WHERE name = 'REPL-Distribution')");
        fixture.Ask("msdb", "EXEC msdb.dbo.sp_add_job @job_name = N'distribution', "
                            "@category_name = N'REPL-Distribution'");
    };
    synchronize.run = [](FaultFixture& fixture) {
        CSynchronizeDbMgr manager;
        fixture.Fill(manager);
        return manager.Synchronize("Batch", "Copy");
    };
    synchronize.state = [](FaultFixture& fixture) {
        return "synchronised " + fixture.AskOne("Batch", "SELECT COUNT(*) FROM Things") + " replicated " +
               fixture.AskOne("Batch", "SELECT COUNT(*) FROM Replicated");
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

TEST(SynchronizeFaults, LeaveTheStateOfThePreviousStep) {
    TryEveryFault("Synchronize", Synchronize());
}

} // namespace
} // namespace kv

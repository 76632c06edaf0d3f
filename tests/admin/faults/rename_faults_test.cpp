// RenameDatabase with a fault at each of its statements: the state is that after the steps before the fault,
// and the old rows are never lost.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/upgrade_db_mgr.h"

namespace kv {
namespace {

/// Asks on a connection to "master": one to a database in single-user mode would keep the next one out for a
/// moment.
std::string Rows(const FaultFixture& fixture, const std::string& database) {
    return fixture.AskOne("master", "SELECT COUNT(*) FROM " + database + ".dbo.Things");
}

/// Which of four files exist ("x") or not ("-"): old data, old log, new data, new log.
std::string Files(const FaultFixture& fixture) {
    std::string there;
    for (const auto& path : {fixture.OldFolder() / "Batch_dat.mdf", fixture.OldFolder() / "Batch_lg.ldf",
                             fixture.DataFolder() / "Tmp_data.mdf", fixture.DataFolder() / "Tmp_log.ldf"}) {
        there += std::filesystem::exists(path) ? 'x' : '-';
    }
    return there;
}

/// Attaches a detached database, from its old files if they exist, and counts its rows.
std::string RescuedRows(FaultFixture& fixture) {
    const bool old = std::filesystem::exists(fixture.OldFolder() / "Batch_dat.mdf");
    const auto data = old ? fixture.OldFolder() / "Batch_dat.mdf" : fixture.DataFolder() / "Tmp_data.mdf";
    const auto log = old ? fixture.OldFolder() / "Batch_lg.ldf" : fixture.DataFolder() / "Tmp_log.ldf";
    fixture.Ask("master", "sp_attach_db N'Rescue', N'" + data.string() + "', N'" + log.string() + "'");
    return Rows(fixture, "Rescue");
}

/// The database's name, its user access, its logical files and number of rows, and the files on disk.
std::string State(FaultFixture& fixture) {
    const std::string files = Files(fixture);
    for (const char* name : {"Batch", "Tmp"}) {
        if (!fixture.HasDatabase(name)) {
            continue;
        }
        std::string state = name;
        state += " " + fixture.AskOne("master",
                                      std::string("SELECT DATABASEPROPERTYEX('") + name + "', 'UserAccess')");
        for (const std::string& logical : fixture.Ask("master", std::string("SELECT RTRIM(name) FROM ") +
                                                                    name + ".dbo.sysfiles ORDER BY fileid")) {
            state += " " + logical;
        }
        return state + " " + Rows(fixture, name) + " rows " + files;
    }
    return "detached " + RescuedRows(fixture) + " rows " + files;
}

FaultyOperation Rename() {
    FaultyOperation rename;
    rename.prepare = [](FaultFixture& fixture) {
        fixture.CreateDatabase("Batch", {"CREATE TABLE Things (a int)", "INSERT Things VALUES (1)",
                                         "INSERT Things VALUES (2)", "INSERT Things VALUES (3)"});
    };
    rename.run = [](FaultFixture& fixture) {
        CUpgradeDbMgr manager;
        fixture.Fill(manager);
        return manager.RenameDatabase("Batch", "Tmp");
    };
    rename.state = State;
    rename.state_before = "Batch MULTI_USER Batch_dat Batch_lg 3 rows xx--";
    const std::string before = rename.state_before;
    const std::string renamed = "Tmp MULTI_USER Batch_dat Batch_lg 3 rows xx--";
    const std::string both_names = "Tmp MULTI_USER Tmp_data Tmp_log 3 rows xx--";
    rename.steps = {
        {"login", before},
        {"use [Batch] exec sp_helpfile", before},
        {"login", before},
        {"use master", before},
        {"ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
         "Batch SINGLE_USER Batch_dat Batch_lg 3 rows xx--"},
        {"ALTER DATABASE [Batch] SET MULTI_USER", before},
        {"ALTER DATABASE Batch MODIFY NAME = Tmp", renamed},
        {"ALTER DATABASE Tmp MODIFY FILE (NAME=Batch_dat, NEWNAME=Tmp_data)",
         "Tmp MULTI_USER Tmp_data Batch_lg 3 rows xx--"},
        {"ALTER DATABASE Tmp MODIFY FILE (NAME=Batch_lg, NEWNAME=Tmp_log)", both_names},
        {"sp_detach_db N'Tmp', N'true'", "detached 3 rows xx--"},
        {R"(sp_attach_db N'Tmp', N'{data}\Tmp_data.mdf', N'{data}\Tmp_log.ldf')",
         "Tmp MULTI_USER Tmp_data Tmp_log 3 rows --xx", "detached 3 rows --xx"},
    };
    // The inner operation, which asks for the files, logs its own line.
    rename.log_lines = [](std::size_t step) {
        constexpr std::size_t kInnerSteps = 2;
        Lines lines = {"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"};
        if (step < kInnerSteps) {
            lines.insert(lines.begin(), "CUpgradeDbMgr::GetDatabaseInfo('Batch')");
        }
        return lines;
    };
    return rename;
}

TEST(RenameDatabaseFaults, LeaveTheStateOfThePreviousStepAndEveryRow) {
    TryEveryFault("RenameDatabase", Rename());
}

} // namespace
} // namespace kv

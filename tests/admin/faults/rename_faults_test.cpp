// RenameDatabase with a fault at each of its statements: what stands afterwards is what the steps before it
// left, and the old rows can always be had.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/upgrade_db_mgr.h"

namespace kv {
namespace {

/// Asked from another database: who asks in a database with a single user keeps the next out for a moment.
std::string Rows(const FaultRoom& room, const std::string& database) {
    return room.AskOne("master", "SELECT COUNT(*) FROM " + database + ".dbo.Things");
}

/// Which of the four files are there: old data, old log, new data, new log.
std::string Files(const FaultRoom& room) {
    std::string there;
    for (const auto& path : {room.OldFolder() / "Batch_dat.mdf", room.OldFolder() / "Batch_lg.ldf",
                             room.DataFolder() / "Tmp_data.mdf", room.DataFolder() / "Tmp_log.ldf"}) {
        there += std::filesystem::exists(path) ? 'x' : '-';
    }
    return there;
}

/// Takes a detached database's files to the server again, the old ones if they are there, and counts its
/// rows.
std::string RescuedRows(FaultRoom& room) {
    const bool old = std::filesystem::exists(room.OldFolder() / "Batch_dat.mdf");
    const auto data = old ? room.OldFolder() / "Batch_dat.mdf" : room.DataFolder() / "Tmp_data.mdf";
    const auto log = old ? room.OldFolder() / "Batch_lg.ldf" : room.DataFolder() / "Tmp_log.ldf";
    room.Ask("master", "sp_attach_db N'Rescue', N'" + data.string() + "', N'" + log.string() + "'");
    return Rows(room, "Rescue");
}

/// The database's name, who may use it, its logical and physical files and its rows; and the files on disk.
std::string State(FaultRoom& room) {
    const std::string files = Files(room);
    for (const char* name : {"Batch", "Tmp"}) {
        if (!room.HasDatabase(name)) {
            continue;
        }
        std::string state = name;
        state += " " + room.AskOne("master",
                                   std::string("SELECT DATABASEPROPERTYEX('") + name + "', 'UserAccess')");
        for (const std::string& logical : room.Ask("master", std::string("SELECT RTRIM(name) FROM ") + name +
                                                                 ".dbo.sysfiles ORDER BY fileid")) {
            state += " " + logical;
        }
        return state + " " + Rows(room, name) + " rows " + files;
    }
    return "detached " + RescuedRows(room) + " rows " + files;
}

FaultyOperation Rename() {
    FaultyOperation rename;
    rename.prepare = [](FaultRoom& room) {
        room.CreateDatabase("Batch", {"CREATE TABLE Things (a int)", "INSERT Things VALUES (1)",
                                      "INSERT Things VALUES (2)", "INSERT Things VALUES (3)"});
    };
    rename.run = [](FaultRoom& room) {
        CUpgradeDbMgr manager;
        room.Fill(manager);
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
    // The inner operation, which asks for the files, has a line of its own.
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

TEST(RenameDatabaseFaults, LeaveWhatTheStepsBeforeLeftAndEveryRow) {
    TryEveryFault("RenameDatabase", Rename());
}

} // namespace
} // namespace kv

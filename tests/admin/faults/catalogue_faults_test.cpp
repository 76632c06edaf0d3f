// The lists of databases, a database's files and its removal with a fault at each statement: asking changes
// nothing, and a removal leaves the database whole until it is dropped.
#include <gtest/gtest.h>

#include "admin/faults/fault_fixture.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"

namespace kv {
namespace {

/// The database with its users and rows, and which of its two files are there.
std::string CatalogueState(FaultFixture& fixture) {
    std::string state = "none";
    if (fixture.HasDatabase("Batch")) {
        state = fixture.AskOne("master", "SELECT DATABASEPROPERTYEX('Batch', 'UserAccess')") + " " +
                fixture.AskOne("master", "SELECT COUNT(*) FROM Batch.dbo.Things") + " rows";
    }
    for (const char* file : {"Batch_dat.mdf", "Batch_lg.ldf"}) {
        state += std::filesystem::exists(fixture.OldFolder() / file) ? " x" : " -";
    }
    return state;
}

constexpr char kWhole[] = "MULTI_USER 2 rows x x";

FaultyOperation OnOneDatabase() {
    FaultyOperation operation;
    operation.prepare = [](FaultFixture& fixture) {
        fixture.CreateDatabase(
            "Batch", {"CREATE TABLE Things (a int)", "INSERT Things VALUES (1)", "INSERT Things VALUES (2)"});
    };
    operation.state = CatalogueState;
    operation.state_before = kWhole;
    return operation;
}

template <class Manager>
FaultyOperation List(const char* statement, const char* log_line) {
    FaultyOperation list = OnOneDatabase();
    list.run = [](FaultFixture& fixture) {
        Manager manager;
        fixture.Fill(manager);
        std::vector<std::string> names;
        return manager.GetDatabases(names);
    };
    list.steps = {{"login", kWhole}, {statement, kWhole}};
    list.log_lines = [log_line](std::size_t) { return Lines{log_line}; };
    return list;
}

template <class Manager>
FaultyOperation Files(const char* log_line) {
    FaultyOperation files = OnOneDatabase();
    files.run = [](FaultFixture& fixture) {
        Manager manager;
        fixture.Fill(manager);
        std::string texts[4];
        return manager.GetDatabaseInfo("Batch", texts[0], texts[1], texts[2], texts[3]);
    };
    files.steps = {{"login", kWhole}, {"use [Batch] exec sp_helpfile", kWhole}};
    files.log_lines = [log_line](std::size_t) { return Lines{log_line}; };
    return files;
}

FaultyOperation Removal() {
    const std::string guard = "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'Batch') ";
    FaultyOperation removal = OnOneDatabase();
    removal.run = [](FaultFixture& fixture) {
        CUpgradeDbMgr manager;
        fixture.Fill(manager);
        return manager.RemoveDatabase("Batch");
    };
    removal.steps = {
        {"login", kWhole},
        {guard + "ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE", "SINGLE_USER 2 rows x x"},
        {guard + "ALTER DATABASE [Batch] SET MULTI_USER", kWhole},
        {guard + "DROP DATABASE [Batch]", "none - -"}};
    removal.log_lines = [](std::size_t) { return Lines{"CUpgradeDbMgr::RemoveDatabase('Batch')"}; };
    return removal;
}

TEST(CatalogueFaults, OfTheListsOfDatabasesChangeNothing) {
    TryEveryFault("CUpgradeDbMgr::GetDatabases",
                  List<CUpgradeDbMgr>("exec sp_helpdb", "CUpgradeDbMgr::GetDatabases"));
    TryEveryFault("CSynchronizeDbMgr::GetDatabases",
                  List<CSynchronizeDbMgr>("use [master] exec sp_helpdb", "CSynchronizeDbMgr::GetDatabases"));
}

TEST(CatalogueFaults, OfADatabasesFilesChangeNothing) {
    TryEveryFault("CUpgradeDbMgr::GetDatabaseInfo",
                  Files<CUpgradeDbMgr>("CUpgradeDbMgr::GetDatabaseInfo('Batch')"));
    TryEveryFault("CSynchronizeDbMgr::GetDatabaseInfo",
                  Files<CSynchronizeDbMgr>("CSynchronizeDbMgr::GetDatabaseInfo('Batch')"));
}

TEST(RemoveDatabaseFaults, LeaveTheDatabaseWholeUntilItIsDropped) {
    TryEveryFault("RemoveDatabase", Removal());
}

} // namespace
} // namespace kv

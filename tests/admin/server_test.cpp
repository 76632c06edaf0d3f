// The operations of the managers on two development servers with real files. On Windows this tests the code
// that is delivered there. The stored procedures are small ones written for these tests.
#include <gtest/gtest.h>

#include <algorithm>

#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "platform/files.h"
#include "support/log_lines.h"
#include "support/servers.h"

namespace kv {
namespace {

using support::Ask;
using support::ServerA;
using support::ServerB;
using support::SharedPath;
using Lines = std::vector<std::string>;

constexpr char kMultiUser[] = "SELECT DATABASEPROPERTYEX('Batch', 'UserAccess')";

class OnServers : public ::testing::Test {
  protected:
    OnServers() {
        registry_.AddText(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey, "",
                          SharedPath("Log"));
        CreateFolder("Log");
        CreateFolder("old");
        CreateFolder("data");
    }
    ~OnServers() override {
        for (const std::string& server : {ServerA(), ServerB()}) {
            for (const char* name : {"Batch", "Tmp", "my Batch", "it's"}) {
                support::DropDatabase(server, name);
            }
            Ask(server, "msdb", "DELETE msdb.dbo.sysjobs");
        }
        if (platform::FileExists(LogFile())) {
            platform::DeleteFileAt(LogFile());
        }
    }

    template <class Manager>
    static void Fill(Manager& manager, bool use_server_a = true) {
        manager.UseServerA(use_server_a);
        manager.ServerA(ServerA());
        manager.ServerB(ServerB());
        manager.UserA(support::FromServers("KV_USER"));
        manager.UserB(support::FromServers("KV_USER"));
        manager.PasswordA(support::FromServers("KV_PASSWORD"));
        manager.PasswordB(support::FromServers("KV_PASSWORD"));
        manager.SQLDataPathA(SharedPath("data"));
        manager.SQLDataPathB(SharedPath("data"));
    }

    static std::string OldData(const std::string& name) { return SharedPath("old") + "\\" + name + ".mdf"; }
    static std::string OldLog(const std::string& name) { return SharedPath("old") + "\\" + name + ".ldf"; }

    /// Creates a database with two files in the folder "old" and the rows 1 and 2 in the table Things.
    static void CreateDatabase(const std::string& server, const std::string& name,
                               const Lines& batches = {}) {
        const std::string plain = name == "Batch" || name == "Tmp" ? name : "odd";
        Ask(server, "master",
            "CREATE DATABASE [" + name + "] ON (NAME=" + plain + "_dat, FILENAME='" + OldData(plain) +
                "') LOG ON (NAME=" + plain + "_lg, FILENAME='" + OldLog(plain) + "')");
        Ask(server, name, "CREATE TABLE Things (a int) INSERT Things VALUES (1) INSERT Things VALUES (2)");
        for (const std::string& batch : batches) {
            Ask(server, name, batch);
        }
    }
    static bool HasDatabase(const std::string& server, const std::string& name) {
        const Lines names = Ask(server, "master", "SELECT name FROM master.dbo.sysdatabases");
        return std::ranges::find(names, name) != names.end();
    }
    static Lines Things(const std::string& server, const std::string& database) {
        return Ask(server, database, "SELECT a FROM Things ORDER BY a");
    }

    static Lines LogLines() {
        return platform::FileExists(LogFile()) ? support::LogLines(platform::ReadWholeFile(LogFile()))
                                               : Lines{};
    }
    /// The box that the operator would see.
    template <class Manager>
    std::string Shown(Manager& manager) {
        screen_.calls.clear();
        manager.ShowDbError();
        return screen_.calls.empty() ? "" : screen_.calls.front();
    }

  private:
    static std::string LogFile() { return SharedPath("Log") + "\\" + platform::ExecutableName() + ".log"; }
    static void CreateFolder(const char* name) {
        if (!platform::FolderExists(SharedPath(name))) {
            platform::CreateFolder(SharedPath(name));
        }
    }

    fakes::FakeClock clock_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
};

TEST_F(OnServers, GetDatabasesListsTheServersDatabases) {
    CreateDatabase(ServerB(), "Batch");
    for (const bool server_a : {true, false}) {
        const std::string server = server_a ? ServerA() : ServerB();
        Lines wanted = Ask(server, "master", "exec sp_helpdb");
        CUpgradeDbMgr upgrade;
        CSynchronizeDbMgr synchronize;
        Fill(upgrade, server_a);
        Fill(synchronize, server_a);
        Lines names;
        ASSERT_TRUE(upgrade.GetDatabases(names));
        EXPECT_EQ(names.front(), "");
        ASSERT_EQ(names.size(), wanted.size() + 1);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_TRUE(wanted[i].starts_with(names[i + 1] + " ")) << wanted[i];
        }
        EXPECT_EQ(std::ranges::count(names, "master"), 1);
        EXPECT_EQ(std::ranges::count(names, "Batch"), server_a ? 0 : 1);
        Lines same;
        ASSERT_TRUE(synchronize.GetDatabases(same));
        EXPECT_EQ(same, names);
    }
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(OnServers, GetDatabaseInfoReadsTheFiles) {
    CreateDatabase(ServerA(), "my Batch");
    CSynchronizeDbMgr manager;
    Fill(manager);
    Lines files(4);
    EXPECT_TRUE(manager.GetDatabaseInfo("my Batch", files[0], files[1], files[2], files[3]));
    EXPECT_EQ(files, (Lines{"odd_dat", OldData("odd"), "odd_lg", OldLog("odd")}));
}

TEST_F(OnServers, TheSecondFileIsTheOneThatTheServerListsSecond) {
    Ask(ServerA(), "master",
        "CREATE DATABASE Batch ON (NAME=one, FILENAME='" + OldData("Batch") + "'), (NAME=two, FILENAME='" +
            SharedPath("old") + "\\two.ndf') LOG ON (NAME=three, FILENAME='" + OldLog("Batch") + "')");
    const Lines rows = Ask(ServerA(), "Batch", "exec sp_helpfile");
    CUpgradeDbMgr manager;
    Fill(manager);
    Lines files(4);
    EXPECT_TRUE(manager.GetDatabaseInfo("Batch", files[0], files[1], files[2], files[3]));
    EXPECT_EQ(files[0], "one");
    EXPECT_TRUE(rows.at(1).starts_with(files[2] + " ")); // the second row, data file or log
}

TEST_F(OnServers, AMissingDatabaseAndAWrongPasswordAreTheServersErrors) {
    CUpgradeDbMgr manager;
    Fill(manager);
    Lines files(4);
    EXPECT_FALSE(manager.GetDatabaseInfo("None", files[0], files[1], files[2], files[3]));
    EXPECT_NE(Shown(manager).find("\r\n\t911\r\n\tSQL Server\r\n"), std::string::npos) << Shown(manager);
    EXPECT_EQ(files, Lines(4));
    manager.PasswordA("wrong");
    Lines names;
    EXPECT_FALSE(manager.GetDatabases(names));
    EXPECT_EQ(names, Lines{""});
    EXPECT_NE(Shown(manager).find("\r\n\t18456\r\n"), std::string::npos) << Shown(manager);
    EXPECT_EQ(LogLines(), (Lines{"CUpgradeDbMgr::GetDatabaseInfo('None')", "CUpgradeDbMgr::GetDatabases"}));
}

TEST_F(OnServers, ASemicolonInAPasswordEndsIt) {
    CUpgradeDbMgr manager;
    Fill(manager);
    Lines names;
    manager.PasswordA(manager.PasswordA() + ";APP=other");
    EXPECT_TRUE(manager.GetDatabases(names)); // the text after the semicolon is another key
    manager.PasswordA("x;" + manager.PasswordA());
    EXPECT_FALSE(manager.GetDatabases(names));
}

TEST_F(OnServers, RemoveDropsADatabaseThatOthersUse) {
    CreateDatabase(ServerA(), "Batch");
    ado::Connection idle = support::Connect(ServerA(), "Batch");
    ado::Connection writing = support::Connect(ServerA(), "Batch");
    std::int64_t affected = 0;
    writing.Execute("BEGIN TRANSACTION INSERT Things VALUES (3)", affected, ado::adCmdText);
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_TRUE(manager.RemoveDatabase("Batch"));
    EXPECT_FALSE(HasDatabase(ServerA(), "Batch"));
    EXPECT_FALSE(platform::FileExists(OldData("Batch")) || platform::FileExists(OldLog("Batch")));
    for (ado::Connection* disconnected : {&idle, &writing}) {
        EXPECT_THROW(disconnected->Execute("SELECT a FROM Things", affected, ado::adCmdText), ado::CallError);
    }
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(OnServers, RemovingAMissingDatabaseSucceeds) {
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_TRUE(manager.RemoveDatabase("Batch"));
    EXPECT_EQ(manager.ErrorCount(), Int16(0));
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(OnServers, RemoveAcceptsBlanksInANameButNoQuotes) {
    CreateDatabase(ServerA(), "my Batch");
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_TRUE(manager.RemoveDatabase("my Batch"));
    EXPECT_FALSE(HasDatabase(ServerA(), "my Batch"));
    CreateDatabase(ServerA(), "it's");
    EXPECT_FALSE(manager.RemoveDatabase("it's")); // the quote ends the text in the guard
    EXPECT_TRUE(HasDatabase(ServerA(), "it's"));
    EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RemoveDatabase('it's')"});
}

TEST_F(OnServers, RenameMovesTheDatabaseWithItsLogicalAndPhysicalFiles) {
    for (const bool server_a : {true, false}) {
        const std::string server = server_a ? ServerA() : ServerB();
        CreateDatabase(server, "Batch");
        const ado::Connection holder = support::Connect(server, "Batch");
        CUpgradeDbMgr manager;
        Fill(manager, server_a);
        EXPECT_TRUE(manager.RenameDatabase("Batch", "Tmp"));
        EXPECT_FALSE(HasDatabase(server, "Batch"));
        EXPECT_EQ(Things(server, "Tmp"), (Lines{"1", "2"}));
        Lines files(4);
        EXPECT_TRUE(manager.GetDatabaseInfo("Tmp", files[0], files[1], files[2], files[3]));
        EXPECT_EQ(files, (Lines{"Tmp_data", SharedPath("data") + "\\Tmp_data.mdf", "Tmp_log",
                                SharedPath("data") + "\\Tmp_log.ldf"}));
        EXPECT_FALSE(platform::FileExists(OldData("Batch")) || platform::FileExists(OldLog("Batch")));
        EXPECT_TRUE(platform::FileExists(files[1]) && platform::FileExists(files[3]));
        support::DropDatabase(server, "Tmp");
    }
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(OnServers, RenamingTwiceKeepsTheRows) {
    CreateDatabase(ServerA(), "Batch");
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_TRUE(manager.RenameDatabase("Batch", "Tmp"));
    EXPECT_TRUE(manager.RenameDatabase("Tmp", "Batch"));
    EXPECT_EQ(Things(ServerA(), "Batch"), (Lines{"1", "2"}));
}

TEST_F(OnServers, RenameFailsForANameThatNeedsBracketsAndForAnExistingOne) {
    CreateDatabase(ServerA(), "my Batch");
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_FALSE(manager.RenameDatabase("my Batch", "Tmp"));
    EXPECT_EQ(Things(ServerA(), "my Batch"), (Lines{"1", "2"}));
    CreateDatabase(ServerA(), "Batch");
    EXPECT_FALSE(manager.RenameDatabase("Batch", "my Batch"));
    CreateDatabase(ServerA(), "Tmp");
    EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    EXPECT_NE(Shown(manager).find("\r\n\t1801\r\n"), std::string::npos) << Shown(manager);
    EXPECT_EQ(Ask(ServerA(), "master", kMultiUser), Lines{"MULTI_USER"});
    EXPECT_EQ(Things(ServerA(), "Batch"), (Lines{"1", "2"}));
    EXPECT_EQ(LogLines(), (Lines{"CUpgradeDbMgr::RenameDatabase('my Batch', 'Tmp')",
                                 "CUpgradeDbMgr::RenameDatabase('Batch', 'my Batch')",
                                 "CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"}));
}

TEST_F(OnServers, RenamingAMissingDatabaseLogsTwoLines) {
    CUpgradeDbMgr manager;
    Fill(manager);
    EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(LogLines(), (Lines{"CUpgradeDbMgr::GetDatabaseInfo('Batch')",
                                 "CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"}));
}

/// The batches that make a database of this version, with procedures that record their calls.
Lines Versioned(const std::string& version) {
    return {
        "CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50))",
        "INSERT LKConfig VALUES ('DatabaseVersion', '" + version + "')",
        "CREATE TABLE Calls (text nvarchar(400))",
        "CREATE PROCEDURE spUninstallReplication AS INSERT Calls VALUES ('uninstall')",
        "CREATE PROCEDURE spUpgradeDatabase @old int, @new int, @source nvarchar(50), @destination "
        "nvarchar(50), "
        "@user nvarchar(50), @password nvarchar(50) AS INSERT Calls VALUES (CAST(@old AS varchar(9)) + ' ' + "
        "CAST(@new AS varchar(9)) + ' ' + @source + ' ' + @destination + ' ' + @user + ' ' + @password)"};
}

class UpgradeOnServers : public OnServers {
  protected:
    bool Upgrade(const Lines& source, const Lines& destination) {
        support::DropDatabase(ServerA(), "Tmp");
        support::DropDatabase(ServerA(), "Batch");
        CreateDatabase(ServerA(), "Tmp", source);
        CreateDatabase(ServerA(), "Batch", destination);
        Fill(manager_);
        return manager_.UpgradeDatabase("Batch", "Tmp");
    }
    static Lines Calls() { return Ask(ServerA(), "Batch", "SELECT text FROM Calls"); }

    CUpgradeDbMgr manager_;
};

TEST_F(UpgradeOnServers, ANewerDatabaseCallsBothProceduresWithVersionsDatabasesAndLogin) {
    EXPECT_TRUE(Upgrade(Versioned("1"), Versioned("2")));
    EXPECT_EQ(Calls(), (Lines{"uninstall", "1 2 Tmp Batch " + support::FromServers("KV_USER") + " " +
                                               support::FromServers("KV_PASSWORD")}));
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(UpgradeOnServers, VersionsThatTheRulesRefuseChangeNothing) {
    for (const auto& [source, destination] : std::vector<std::pair<const char*, const char*>>{
             {"1", "1"}, {"2", "2"}, {"3", "2"}, {"x", "2"}, {"1", "40000"}}) {
        EXPECT_FALSE(Upgrade(Versioned(source), Versioned(destination))) << source << " " << destination;
        EXPECT_EQ(Calls(), Lines());
        EXPECT_EQ(manager_.ErrorCount(), Int16(0));
    }
    EXPECT_EQ(LogLines(), Lines(5, "CUpgradeDbMgr::UpgradeDatabase('Batch', 'Tmp')"));
}

TEST_F(UpgradeOnServers, MissingTablesAndProceduresAreTheServersErrors) {
    EXPECT_FALSE(Upgrade({}, Versioned("2")));
    EXPECT_NE(Shown(manager_).find("Error:\t-2147217865\r\n"), std::string::npos) << Shown(manager_);
    EXPECT_FALSE(Upgrade(Versioned("1"), {}));
    EXPECT_NE(Shown(manager_).find("\r\n\t208\r\n"), std::string::npos) << Shown(manager_);
    Lines without_uninstall = Versioned("2");
    without_uninstall.emplace_back("DROP PROCEDURE spUninstallReplication");
    EXPECT_FALSE(Upgrade(Versioned("1"), without_uninstall));
    EXPECT_NE(Shown(manager_).find("\r\n\t2812\r\n"), std::string::npos) << Shown(manager_);
    EXPECT_EQ(Calls(), Lines());
}

TEST_F(UpgradeOnServers, AProcedureThatRaisesAnErrorFailsWithReplicationUninstalled) {
    Lines raising = Versioned("2");
    raising.back() = "CREATE PROCEDURE spUpgradeDatabase @1 int, @2 int, @3 nvarchar(50), @4 nvarchar(50), "
                     "@5 nvarchar(50), @6 nvarchar(50) AS PRINT 'begun' SELECT a FROM Things "
                     "RAISERROR('cannot', 16, 1)";
    // The rows come first, so the error does not fail the call; it is shown nevertheless.
    EXPECT_TRUE(Upgrade(Versioned("1"), raising));
    EXPECT_NE(Shown(manager_).find("cannot"), std::string::npos);
    raising.back() = "CREATE PROCEDURE spUpgradeDatabase @1 int, @2 int, @3 nvarchar(50), @4 nvarchar(50), "
                     "@5 nvarchar(50), @6 nvarchar(50) AS PRINT 'begun' INSERT Things VALUES (4) "
                     "RAISERROR('cannot', 16, 1)";
    EXPECT_FALSE(Upgrade(Versioned("1"), raising));
    EXPECT_EQ(Calls(), Lines{"uninstall"});
    EXPECT_NE(Shown(manager_).find("cannot"), std::string::npos);
}

constexpr char kAddJob[] =
    "IF NOT EXISTS (SELECT * FROM msdb.dbo.syscategories WHERE name = 'REPL-Distribution') "
    "INSERT msdb.dbo.syscategories (category_class, category_type, name) "
    "VALUES (1, 1, 'REPL-Distribution') "
    "EXEC msdb.dbo.sp_add_job @job_name = N'distribution', "
    "@category_name = N'REPL-Distribution'";

/// The batches that make procedures which add and delete a distribution job and record their calls.
Lines Replicating() {
    return {"CREATE TABLE Calls (text nvarchar(400))",
            std::string("CREATE PROCEDURE spInstallReplication AS INSERT Calls VALUES ('install') ") +
                kAddJob,
            "CREATE PROCEDURE spUninstallReplication AS INSERT Calls VALUES ('uninstall') "
            "EXEC msdb.dbo.sp_delete_job @job_name = N'distribution'",
            "CREATE PROCEDURE spStdSynchronize @1 nvarchar(50), @2 nvarchar(50), @3 nvarchar(50), @4 "
            "nvarchar(50), "
            "@5 nvarchar(50), @6 nvarchar(50), @7 nvarchar(50), @8 nvarchar(50), @9 nvarchar(50), @10 "
            "nvarchar(50) AS "
            "INSERT Calls VALUES (@3 + ' ' + @4 + ' ' + @5 + ' ' + @6)"};
}

TEST_F(OnServers, ReplicationIsInstalledAndUninstalled) {
    for (const bool server_a : {true, false}) {
        const std::string server = server_a ? ServerA() : ServerB();
        CreateDatabase(server, "Batch", Replicating());
        CreateDatabase(server, "Tmp");
        CSQLReplicationMgr manager;
        Fill(manager, server_a);
        bool installed = true;
        EXPECT_TRUE(manager.IsReplicationInstalled("Batch", installed));
        EXPECT_FALSE(installed);
        EXPECT_TRUE(manager.InstallReplication("Batch"));
        EXPECT_TRUE(manager.IsReplicationInstalled("Batch", installed));
        EXPECT_TRUE(installed);
        installed = false;
        EXPECT_TRUE(manager.IsReplicationInstalled("Tmp", installed)); // a database that is not replicated
        EXPECT_TRUE(installed);
        EXPECT_TRUE(manager.UninstallReplication("Batch"));
        EXPECT_TRUE(manager.IsReplicationInstalled("Batch", installed));
        EXPECT_FALSE(installed);
        support::DropDatabase(server, "Batch");
        support::DropDatabase(server, "Tmp");
    }
    EXPECT_EQ(LogLines(), Lines());
}

TEST_F(OnServers, ReplicationFailsWithoutTheDatabaseOrItsProcedures) {
    CreateDatabase(ServerA(), "Tmp");
    CSQLReplicationMgr manager;
    Fill(manager);
    bool installed = true;
    EXPECT_FALSE(manager.IsReplicationInstalled("None", installed));
    EXPECT_FALSE(installed);
    EXPECT_FALSE(manager.InstallReplication("Tmp"));
    EXPECT_NE(Shown(manager).find("\r\n\t2812\r\n"), std::string::npos) << Shown(manager);
    EXPECT_EQ(LogLines(), (Lines{"CSQLReplicationMgr::IsReplicationInstalled('None')",
                                 "CSQLReplicationMgr::InstallReplication('Tmp')"}));
}

TEST_F(OnServers, SynchronizeRunsOnTheSourceServerInBothDirections) {
    for (const bool server_a : {true, false}) {
        const std::string source = server_a ? ServerA() : ServerB();
        const std::string destination = server_a ? ServerB() : ServerA();
        CreateDatabase(source, "Batch", Replicating());
        CSynchronizeDbMgr manager;
        Fill(manager, server_a);
        const std::string call = destination + " " + source + " Copy Batch";
        EXPECT_TRUE(manager.Synchronize("Batch", "Copy"));
        EXPECT_EQ(Ask(source, "Batch", "SELECT text FROM Calls"), Lines{call});
        Ask(source, "msdb", kAddJob);
        EXPECT_TRUE(manager.Synchronize("Batch", "Copy"));
        EXPECT_EQ(Ask(source, "Batch", "SELECT text FROM Calls"),
                  (Lines{call, "uninstall", call, "install"}));
        support::DropDatabase(source, "Batch");
        Ask(source, "msdb", "DELETE msdb.dbo.sysjobs");
    }
    EXPECT_EQ(LogLines(), Lines());
}

} // namespace
} // namespace kv

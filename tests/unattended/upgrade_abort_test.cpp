// The unattended upgrade with failures, those that end the run and those that do not: what ran, what was
// logged, and where the old data are afterwards.
#include "unattended/upgrade_fixture.h"

namespace kv {
namespace {

using fakes::Failing;
using fakes::Rows;
using platform::FileFault;

using AutomaticUpgradeAbort = AutomaticUpgrade;

constexpr char kInfoLine[] = "CUpgradeDbMgr::GetDatabaseInfo('Batch')";

TEST_F(AutomaticUpgradeAbort, WithoutInformationOnTheDatabaseNothingIsDone) {
    fakes::AdoAnswer no_recordset;
    no_recordset.no_recordset = true;
    fakes::AdoAnswer no_rows = Rows({});
    no_rows.fields = {"name", "fileid", "filename"};
    for (const fakes::AdoAnswer& answer :
         {Failing(), no_recordset, no_rows, Rows({{"Batch_data", 1, kOldData}})}) {
        ForgetRun();
        ado_.Answer(kFileQuery, answer);
        Run();
        ExpectNothingDone();
        EXPECT_EQ(ado_.Statements(), Lines{kFileQuery});
        EXPECT_EQ(LogLines(), (Lines{kInfoLine, kOwnLine}));
        ExpectRaised("modMain", "Database information could not be found for 'Batch'!");
        EXPECT_EQ(Bar(), "0 / 17 0");
    }
}

TEST_F(AutomaticUpgradeAbort, IfTheServerRefusesTheLoginNothingIsDone) {
    ado_.Answer("Open", Failing(-2147217843, "Login failed"));
    Run();
    ExpectNothingDone();
    EXPECT_EQ(LogLines(), (Lines{kInfoLine, kOwnLine}));
}

TEST_F(AutomaticUpgradeAbort, EmptyLoginValuesEndTheRun) {
    for (const bool server : {true, false}) {
        ForgetRun();
        Login(server ? "" : "NodeA", server ? "lk_admin" : "", "pw");
        Run();
        EXPECT_EQ(ado_.calls[1], "ConnectionString ");
        ExpectNothingDone();
        EXPECT_EQ(LogLines(), (Lines{kInfoLine, kOwnLine}));
    }
}

// The second run would remove the temporary database of the first, the only copy of the old data.
TEST_F(AutomaticUpgradeAbort, WhileAnotherUpgradeRunsNothingIsDone) {
    for (const char* held : {"server nodea", "program "}) {
        SCOPED_TRACE(held);
        ForgetRun();
        locks_.held_elsewhere = {held};
        Run();
        EXPECT_TRUE(ado_.calls.empty());
        ExpectNothingDone();
        EXPECT_EQ(LogLines(), Lines{kOwnLine});
        EXPECT_EQ(screen_.After("label ").back(), "Another upgrade is running. Nothing was changed.");
        EXPECT_TRUE(locks_.held.empty());
    }
    locks_.held_elsewhere.clear();
    RunToTheEnd();
    EXPECT_EQ(Files(), "--xx");
}

TEST_F(AutomaticUpgradeAbort, ALoginOutsideTheCodePageIsRefusedByName) {
    struct Case {
        const char* server;
        const char* user;
        const char* password;
        const char* name;
    };
    constexpr char kOutside[] = "a\x81"
                                "141\x9D";
    for (const Case& one : {Case{kOutside, "u", "p", "ServerName"}, Case{"S", kOutside, "p", "UserID"},
                            Case{"S", "u", kOutside, "PWD"}}) {
        SCOPED_TRACE(one.name);
        ForgetRun();
        Login(one.server, one.user, one.password);
        Run();
        EXPECT_TRUE(ado_.calls.empty());
        EXPECT_EQ(LogLines(), Lines{kOwnLine});
        EXPECT_EQ(screen_.After("label ").back(),
                  std::string("The registry's ") + one.name +
                      " has characters that code page 1252 lacks. Nothing was changed.");
    }
}

TEST_F(AutomaticUpgradeAbort, ADataPathOutsideTheCodePageIsRefusedByName) {
    AnswerFiles("/home/?ukasz/Batch.mdf", "/home/?ukasz/Batch.ldf");
    Run();
    ExpectNothingDone();
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(screen_.After("label ").back(),
              "The path '/home/?ukasz/Batch.mdf' has characters that code page 1252 "
              "lacks. Nothing was changed.");
}

class AutomaticUpgradeWithoutLogin : public ScriptMgrTest {
  protected:
    fakes::FakeNamedLocks locks_;
    fakes::FakeAdo ado_;
};

TEST_F(AutomaticUpgradeWithoutLogin, LogsTheThreeReadsAndEnds) {
    registry_.SetSystemMessage(registry::error::kFileNotFound, "Not there.\r\n");
    DoAutomaticUpgrade("S:\\Scripts");
    const Lines log = LogLines();
    ASSERT_EQ(log.size(), 8U);
    std::size_t line = 0;
    for (const char* value : {"ServerName", "UserID", "PWD"}) {
        for (const char* routine : {"GetStringKey", "GetLocalSetting"}) {
            EXPECT_TRUE(log[line].starts_with(std::string("mRegistry::") + routine + "('")) << log[line];
            EXPECT_NE(log[line].find(value), std::string::npos) << log[line];
            ++line;
        }
    }
    EXPECT_EQ(log[6], kInfoLine);
    EXPECT_EQ(log[7], "modMain::DoAutomaticUpgrade");
    EXPECT_EQ(ado_.calls[1], "ConnectionString ");
    EXPECT_TRUE(ado_.Statements().empty());
    EXPECT_EQ(ado_.connections, 0U);
    EXPECT_EQ(screen_.Count("box"), 0);
    EXPECT_EQ(screen_.calls.back(), "window gone");
}

TEST_F(AutomaticUpgradeAbort, AVersionWithoutAPointEndsTheRunBeforeAnythingIsChanged) {
    Version("14");
    RunToTheEnd();
    ExpectNothingDone();
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
}

TEST_F(AutomaticUpgradeAbort, AnUnknownVersionIsReportedInABoxAndTheRunEndsAfterTheRename) {
    Version("11.0.2100.60");
    SqlPath("80", "C:\\none");
    RunToTheEnd();
    EXPECT_EQ(screen_.After("box "),
              Lines{"[exclamation] KVLSQLDbMgr: Can't determine installed SQL Server version!"});
    EXPECT_TRUE(processes_.started.empty());
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
}

// At a first upgrade there is no temporary database; here there is one, and it cannot be removed.
TEST_F(AutomaticUpgradeAbort, AFailedRemovalDoesNotEndTheRun) {
    ado_.Answer(std::string(kGuard) + "DROP DATABASE [TmpBatchUpgradeDb]", Failing());
    RunToTheEnd();
    EXPECT_EQ(LogLines(), Lines{kRemoveLine});
    EXPECT_EQ(Bar(), "17 / 17 17");
    EXPECT_EQ(Executed().size(), 3U);
}

TEST_F(AutomaticUpgradeAbort, AfterAFailedRenameTheScriptsRunOnTheOldDatabase) {
    ado_.Answer("ALTER DATABASE Batch MODIFY NAME = TmpBatchUpgradeDb", Failing());
    ado_.Answer(kVersionQuery, Failing()); // the temporary database does not exist
    AnswerFiles(kOldData, kOldLog);
    AnswerFiles(kOldData, kOldLog);
    Run();
    EXPECT_EQ(LogLines(), (Lines{kRenameLine, kUpgradeLine}));
    EXPECT_EQ(Executed(),
              (Lines{"Create_Batch_Database", "Create_Batch_Stored_Procedures", "Insert_Default_Data"}));
    EXPECT_EQ(packages_.calls.size(), 18U);
    EXPECT_EQ(Bar(), "17 / 17 17");
    EXPECT_EQ(Files(), "xx--"); // Batch keeps the old data
    EXPECT_EQ(ado_.Statements().back(), kVersionQuery);
    ExpectQuietEnd();
}

TEST_F(AutomaticUpgradeAbort, AFileThatCannotBeMovedDoesNotEndTheRun) {
    for (const FileFault fault : {FileFault::DiskFull, FileFault::AccessDenied}) {
        ForgetRun();
        AddOldFiles();
        files_.FailNext("copy", kOldLog, fault);
        RunToTheEnd();
        EXPECT_EQ(LogLines(), Lines{kRenameLine});
        EXPECT_EQ(Files(), "xxx-");
        EXPECT_EQ(Executed().size(), 3U);
        EXPECT_EQ(Bar(), "17 / 17 17");
    }
}

TEST_F(AutomaticUpgradeAbort, AMissingTemplateLeavesTheOldDataInTheTemporaryDatabase) {
    struct Case {
        const char* name;
        const char* bar;
    };
    for (const Case& one :
         {Case{"Create_Batch_Database.sql", "3 / 17 3"}, Case{"Insert_Default_Data.sql", "4 / 17 4"},
          Case{"Create_Batch_Stored_Procedures.sql", "5 / 17 5"}}) {
        SCOPED_TRACE(one.name);
        ForgetRun();
        AddOldFiles();
        const std::string path = std::string("S:\\Scripts\\") + one.name;
        files_.files.erase(fakes::FakeFiles::Plain(path));
        RunToTheEnd();
        EXPECT_TRUE(ado_.Statements().back().starts_with("sp_attach_db N'TmpBatchUpgradeDb'"));
        EXPECT_EQ(Files(), "--xx");
        EXPECT_EQ(LogLines(), Lines{kOwnLine});
        EXPECT_EQ(Bar(), one.bar);
        ExpectNothingInstalled();
        files_.AddFile(path, "");
    }
}

TEST_F(AutomaticUpgradeAbort, AMissingToolLeavesTheOldDataInTheTemporaryDatabase) {
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    SqlPath("80", "C:\\none");
    RunToTheEnd();
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(Bar(), "6 / 17 6");
    ExpectNothingInstalled();
}

TEST_F(AutomaticUpgradeAbort, AModifiedScriptThatCannotBeWrittenEndsTheRun) {
    files_.FailNext("write", R"(C:\Lotkeeper\Server\Data\Insert_Default_Data.sql)", FileFault::DiskFull);
    RunToTheEnd();
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(Bar(), "4 / 17 4");
    ExpectNothingInstalled();
}

// The results of scripts and packages are ignored. So while the new database is built, the run can only fail
// if the log cannot be written.
TEST_F(AutomaticUpgradeAbort, AFailureWhileTheNewDatabaseIsBuiltLeavesTheOldDataInTheTemporaryDatabase) {
    packages_.failures.insert({"SaveToSQLServer", packages::PackageError(-2147467259, "ODBC", "gone")});
    files_.FailNext("append", kLogFile, FileFault::AccessDenied);
    RunToTheEnd();
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(Executed().size(), 3U);
    EXPECT_EQ(packages_.calls.size(), 3U); // the first package's
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(Bar(), "10 / 17 10");
    ExpectQuietEnd();
}

TEST_F(AutomaticUpgradeAbort, AToolThatDoesNotStartAndPackagesThatCannotBeInstalledDoNotEndTheRun) {
    processes_.on_start = [](const platform::ShellExecuteInfo&) { return false; };
    packages_.failures.insert({"LoadFromStorageFile", packages::PackageError(-2147467259, "DTS", "bad")});
    RunToTheEnd();
    Lines wanted;
    for (int i = 0; i < 6; ++i) {
        wanted.push_back("CSQLScriptMgr::InstallDTSPackage(" + std::to_string(i) + ")");
    }
    EXPECT_EQ(LogLines(), wanted);
    EXPECT_EQ(Executed().size(), 3U);
    EXPECT_EQ(Bar(), "17 / 17 17");
}

TEST_F(AutomaticUpgradeAbort, AnUpgradeThatFailsEndsTheRunAsUsual) {
    const std::string upgrade = "spUpgradeDatabase 1, 2, N'TmpBatchUpgradeDb', N'Batch', N'lk_admin', N'pw'";
    for (const std::string& failing :
         {std::string(kVersionQuery), std::string("spUninstallReplication"), upgrade}) {
        SCOPED_TRACE(failing);
        ForgetRun();
        AddOldFiles();
        ado_.Answer(failing, Failing());
        RunToTheEnd();
        EXPECT_EQ(ado_.Statements().back(), failing);
        EXPECT_EQ(LogLines(), Lines{kUpgradeLine});
        EXPECT_EQ(Bar(), "17 / 17 17");
        EXPECT_EQ(Files(), "--xx");
        ExpectQuietEnd();
        while (!ado_.Take(kVersionQuery).rows.empty()) { // removes the answers that this run did not ask for
        }
    }
}

TEST_F(AutomaticUpgradeAbort, VersionsThatTheRulesRefuseEndTheRunAsUsual) {
    struct Case {
        const char* old_version;
        const char* new_version;
    };
    for (const Case& one : {Case{"1", "1"}, Case{"2", "2"}, Case{"3", "2"}, Case{"1", "two"}}) {
        ForgetRun();
        AddOldFiles();
        AnswerAll(one.old_version, one.new_version);
        Run();
        EXPECT_EQ(ado_.Statements().back(), kVersionQuery);
        EXPECT_EQ(LogLines(), Lines{kUpgradeLine});
        EXPECT_EQ(Bar(), "17 / 17 17");
    }
}

// If collecting the server's errors fails, the operation's handler fails too, and the failure reaches the
// handler of the run.
TEST_F(AutomaticUpgradeAbort, ErrorsThatCannotBeCollectedEndTheRun) {
    const std::string drop = std::string(kGuard) + "DROP DATABASE [TmpBatchUpgradeDb]";
    ado_.Answer(drop, fakes::WithErrors({0, -5}));
    RunToTheEnd();
    EXPECT_EQ(ado_.Statements().back(), drop);
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(Bar(), "1 / 17 1");
    EXPECT_EQ(Files(), "xx--");
    ExpectNothingInstalled();
}

TEST_F(AutomaticUpgradeAbort, ErrorsOfTheUpgradeThatCannotBeCollectedSkipOnlyTheLastStep) {
    ado_.Answer("spUninstallReplication", fakes::WithErrors({0, -5}));
    RunToTheEnd();
    EXPECT_EQ(ado_.Statements().back(), "spUninstallReplication");
    EXPECT_EQ(LogLines(), Lines{kOwnLine});
    EXPECT_EQ(Bar(), "16 / 17 16");
    EXPECT_EQ(Files(), "--xx");
    ExpectQuietEnd();
}

TEST_F(AutomaticUpgradeAbort, IfTheLogFailsTheFailureIsRaisedToTheCallerAndTheWindowIsClosed) {
    files_.files.erase("S:/Scripts/Create_Batch_Database.sql");
    files_.FailNext("append", kLogFile, FileFault::AccessDenied);
    AnswerAll();
    EXPECT_THROW(Run(), platform::FileError);
    EXPECT_EQ(screen_.calls.back(), "window gone");
}

TEST_F(AutomaticUpgradeAbort, ARunAfterOneThatLeftNoDatabaseChangesNothing) {
    files_.files.erase("S:/Scripts/Create_Batch_Database.sql");
    RunToTheEnd();
    ForgetRun();
    ado_.Answer(kFileQuery, Failing()); // there is no "Batch"
    Run();
    EXPECT_EQ(ado_.Statements(), Lines{kFileQuery});
    EXPECT_EQ(LogLines(), (Lines{kInfoLine, kOwnLine}));
    EXPECT_EQ(Files(), "--xx");
}

// The one case in which old data are lost, which is intended: a run that fails after it has created the new
// database leaves the only copy in the temporary database, and the next run removes that without asking.
TEST_F(AutomaticUpgradeAbort, ARunAfterOneThatLeftANewDatabaseRemovesTheOnlyCopyOfTheOldData) {
    ado_.Answer("spUpgradeDatabase 1, 2, N'TmpBatchUpgradeDb', N'Batch', N'lk_admin', N'pw'", Failing());
    RunToTheEnd();
    ASSERT_EQ(LogLines(), Lines{kUpgradeLine});
    ForgetRun();
    AddOldFiles(); // here the files of the new database
    RunToTheEnd();
    const Lines statements = ado_.Statements();
    ASSERT_GE(statements.size(), 4U);
    EXPECT_EQ(statements[0], kFileQuery);
    EXPECT_EQ(statements[3], std::string(kGuard) + "DROP DATABASE [TmpBatchUpgradeDb]");
    EXPECT_EQ(screen_.Count("box"), 0);
    EXPECT_TRUE(LogLines().empty());
}

} // namespace
} // namespace kv

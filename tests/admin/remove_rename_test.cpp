// CUpgradeDbMgr's RemoveDatabase and RenameDatabase: their statements, and what a failure at each of them
// leaves.
#include "admin/manager_fixture.h"
#include "admin/upgrade_db_mgr.h"

namespace kv {
namespace {

using fakes::Failing;
using fakes::Rows;
using platform::FileFault;

class RemoveDatabase : public ManagerTest {
  protected:
    RemoveDatabase() { FillPair(manager_); }

    const Lines statements_ = {
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'Batch') ALTER DATABASE [Batch] "
        "SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'Batch') ALTER DATABASE [Batch] "
        "SET MULTI_USER",
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'Batch') DROP DATABASE [Batch]",
    };
    CUpgradeDbMgr manager_;
};

TEST_F(RemoveDatabase, DisconnectsEveryUserAndDrops) {
    EXPECT_TRUE(manager_.RemoveDatabase("Batch"));
    EXPECT_EQ(ado_.calls, StandardCalls(ConnectionStringA("master"), statements_));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RemoveDatabase, StopsAtTheStatementThatFails) {
    for (std::size_t failing = 0; failing < statements_.size(); ++failing) {
        ado_.calls.clear();
        ForgetLog();
        ado_.Answer(statements_[failing], Failing());
        EXPECT_FALSE(manager_.RemoveDatabase("Batch"));
        EXPECT_EQ(ado_.Statements(),
                  Lines(statements_.begin(), statements_.begin() + static_cast<std::ptrdiff_t>(failing) + 1));
        EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RemoveDatabase('Batch')"});
        EXPECT_EQ(manager_.ErrorCount(), Int16(1));
        EXPECT_EQ(ado_.calls.back(), "Close");
    }
}

TEST_F(RemoveDatabase, EscapesNothingInTheName) {
    manager_.RemoveDatabase("a]'b");
    EXPECT_EQ(
        ado_.Statements().back(),
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'a]'b') DROP DATABASE [a]'b]");
}

TEST_F(RemoveDatabase, CollectsTheErrorsOfEveryStatement) {
    for (const std::string& statement : statements_) {
        ado_.Answer(statement, fakes::WithErrors({-3}));
    }
    EXPECT_TRUE(manager_.RemoveDatabase("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(3));
}

class RenameDatabase : public ManagerTest {
  protected:
    RenameDatabase() {
        FillPair(manager_);
        files_.AddFolder("D:\\DataA");
        files_.AddFolder("C:\\Old");
        files_.AddFile(kOldData, "data");
        files_.AddFile(kOldLog, "log");
    }

    void AnswerInfo() {
        ado_.Answer("use [Batch] exec sp_helpfile",
                    Rows({{"Batch_Data", 1, kOldData}, {"Batch_Log", 2, kOldLog}}));
    }
    bool Rename() {
        AnswerInfo();
        return manager_.RenameDatabase("Batch", "Tmp");
    }
    /// The statement that asks for the files, and `statements_` up to and including the one at `last`.
    Lines UpTo(std::size_t last) const {
        Lines wanted = {"use [Batch] exec sp_helpfile"};
        wanted.insert(wanted.end(), statements_.begin(),
                      statements_.begin() + static_cast<std::ptrdiff_t>(last) + 1);
        return wanted;
    }
    void ExpectFailed() const {
        EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
        EXPECT_EQ(ado_.calls.back(), "Close");
    }
    /// Which of four files exist ("x") or not ("-"): old data, old log, new data, new log.
    std::string Files() const {
        std::string there;
        for (const char* path : {kOldData, kOldLog, kNewData, kNewLog}) {
            there += files_.HasFile(path) ? 'x' : '-';
        }
        return there;
    }

    static constexpr char kOldData[] = R"(C:\Old\Batch.mdf)";
    static constexpr char kOldLog[] = R"(C:\Old\Batch.ldf)";
    static constexpr char kNewData[] = R"(D:\DataA\Tmp_data.mdf)";
    static constexpr char kNewLog[] = R"(D:\DataA\Tmp_log.ldf)";
    static constexpr std::size_t kDetach = 6;
    const Lines statements_ = {
        "use master",
        "ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
        "ALTER DATABASE [Batch] SET MULTI_USER",
        "ALTER DATABASE Batch MODIFY NAME = Tmp",
        "ALTER DATABASE Tmp MODIFY FILE (NAME=Batch_Data, NEWNAME=Tmp_data)",
        "ALTER DATABASE Tmp MODIFY FILE (NAME=Batch_Log, NEWNAME=Tmp_log)",
        "sp_detach_db N'Tmp', N'true'",
        R"(sp_attach_db N'Tmp', N'D:\DataA\Tmp_data.mdf', N'D:\DataA\Tmp_log.ldf')",
    };
    CUpgradeDbMgr manager_;
};

TEST_F(RenameDatabase, RenamesDatabaseLogicalAndPhysicalFiles) {
    EXPECT_TRUE(Rename());
    Lines wanted = StandardCalls(ConnectionStringA("master"), {"use [Batch] exec sp_helpfile"});
    const Lines second = StandardCalls(ConnectionStringA("master"), statements_);
    wanted.insert(wanted.end(), second.begin(), second.end());
    EXPECT_EQ(ado_.calls, wanted);
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(files_.Content(kNewData), "data");
    EXPECT_EQ(files_.Content(kNewLog), "log");
    EXPECT_EQ(files_.Log(), (Lines{std::string("copy ") + kOldData + " " + kNewData,
                                   std::string("copy ") + kOldLog + " " + kNewLog,
                                   std::string("delete ") + kOldData, std::string("delete ") + kOldLog}));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RenameDatabase, MovesTheFilesToTheDataPathOfTheSelectedServer) {
    manager_.UseServerA(false);
    EXPECT_TRUE(Rename());
    EXPECT_TRUE(files_.HasFile(R"(E:\DataB\Tmp_data.mdf)"));
    EXPECT_EQ(ado_.Statements().back(),
              R"(sp_attach_db N'Tmp', N'E:\DataB\Tmp_data.mdf', N'E:\DataB\Tmp_log.ldf')");
}

TEST_F(RenameDatabase, PathsWithSlashesKeepSlashes) {
    for (const char* folder : {"/var/data", "/var/data/", "\\var\\data"}) {
        SCOPED_TRACE(folder);
        files_.AddFolder("/var/data");
        files_.AddFile("/srv/Batch.mdf", "data");
        files_.AddFile("/srv/Batch.ldf", "log");
        ado_.Answer("use [Batch] exec sp_helpfile",
                    Rows({{"Batch_Data", 1, "/srv/Batch.mdf"}, {"Batch_Log", 2, "/srv/Batch.ldf"}}));
        manager_.SQLDataPathA(folder);
        EXPECT_TRUE(manager_.RenameDatabase("Batch", "Tmp"));
        EXPECT_EQ(ado_.Statements().back(),
                  "sp_attach_db N'Tmp', N'/var/data/Tmp_data.mdf', N'/var/data/Tmp_log.ldf'");
        EXPECT_EQ(files_.Content("/var/data/Tmp_data.mdf"), "data");
        EXPECT_FALSE(files_.HasFile("/srv/Batch.mdf"));
    }
}

TEST_F(RenameDatabase, APathOutsideTheCodePageChangesNothing) {
    ado_.Answer("use [Batch] exec sp_helpfile",
                Rows({{"Batch_Data", 1, kOldData}, {"Batch_Log", 2, "/home/?ukasz/Batch.ldf"}}));
    EXPECT_FALSE(manager_.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(ado_.Statements(), Lines{"use [Batch] exec sp_helpfile"});
    EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_EQ(Files(), "xx--");
}

TEST_F(RenameDatabase, WithoutInformationNothingRunsAndTwoLinesAreLogged) {
    ado_.Answer("use [Batch] exec sp_helpfile", Failing());
    EXPECT_FALSE(manager_.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(ado_.Statements(), Lines{"use [Batch] exec sp_helpfile"});
    EXPECT_EQ(LogLines(), (Lines{"CUpgradeDbMgr::GetDatabaseInfo('Batch')",
                                 "CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"}));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1)); // collected by the inner operation
    ExpectRaised("CUpgradeDbMgr", "Database information could not be found for 'Batch'!");
    EXPECT_EQ(Files(), "xx--");
}

TEST_F(RenameDatabase, AnInnerOperationThatFailsInItsFailurePathLogsOnlyTheOuterLine) {
    ado_.Answer("use [Batch] exec sp_helpfile", fakes::WithErrors({0, -5}));
    EXPECT_FALSE(manager_.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_EQ(Files(), "xx--");
}

TEST_F(RenameDatabase, TheErrorsOfTheInnerOperationAreKept) {
    fakes::AdoAnswer info = Rows({{"Batch_Data", 1, kOldData}, {"Batch_Log", 2, kOldLog}});
    info.errors = fakes::WithErrors({-8}).errors;
    ado_.Answer("use [Batch] exec sp_helpfile", info);
    ado_.Answer("use master", fakes::WithErrors({-9}));
    EXPECT_TRUE(manager_.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(2));
}

TEST_F(RenameDatabase, CollectsTheErrorsOfEveryStatement) {
    for (const std::string& statement : statements_) {
        ado_.Answer(statement, fakes::WithErrors({-3}));
    }
    EXPECT_TRUE(Rename());
    EXPECT_EQ(manager_.ErrorCount(), Int16(static_cast<std::int64_t>(statements_.size())));
}

TEST_F(RenameDatabase, ASecondConnectionThatIsRefusedChangesNothing) {
    ado_.Answer("Open", {});
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Rename());
    EXPECT_EQ(ado_.Statements(), Lines{"use [Batch] exec sp_helpfile"});
    EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_EQ(Files(), "xx--");
}

TEST_F(RenameDatabase, StopsAtEachStatementThatFailsAndUndoesNothing) {
    for (std::size_t failing = 0; failing < statements_.size(); ++failing) {
        SCOPED_TRACE(statements_[failing]);
        files_.files.clear();
        files_.AddFile(kOldData, "data");
        files_.AddFile(kOldLog, "log");
        ado_.calls.clear();
        ado_.Answer(statements_[failing], Failing());
        EXPECT_FALSE(Rename());
        EXPECT_EQ(ado_.Statements(), UpTo(failing));
        ExpectFailed();
        EXPECT_EQ(manager_.ErrorCount(), Int16(1));
        // Only the last statement, which attaches the files, comes after the old files were deleted.
        EXPECT_EQ(Files(), failing <= kDetach ? "xx--" : "--xx");
    }
}

TEST_F(RenameDatabase, AFailingFileOperationLeavesTheDatabaseDetachedAndTheFilesPartlyMoved) {
    struct Case {
        const char* operation;
        const char* path;
        const char* remains;
    };
    for (const FileFault fault : {FileFault::DiskFull, FileFault::AccessDenied, FileFault::InUse}) {
        for (const Case& one : {Case{"copy", kOldData, "xx--"}, Case{"copy", kOldLog, "xxx-"},
                                Case{"delete", kOldData, "xxxx"}, Case{"delete", kOldLog, "-xxx"}}) {
            SCOPED_TRACE(std::string(one.operation) + " " + one.path);
            files_.files.clear();
            files_.AddFile(kOldData, "data");
            files_.AddFile(kOldLog, "log");
            ado_.calls.clear();
            files_.FailNext(one.operation, one.path, fault);
            EXPECT_FALSE(Rename());
            EXPECT_EQ(ado_.Statements(), UpTo(kDetach)); // the database is not attached again
            ExpectFailed();
            EXPECT_EQ(manager_.ErrorCount(), Int16(0)); // the server reported nothing
            EXPECT_EQ(Files(), one.remains);
        }
    }
}

TEST_F(RenameDatabase, IfTheOldFilesCannotBeReachedTheFirstCopyFails) {
    files_.files.clear();
    EXPECT_FALSE(Rename());
    EXPECT_EQ(ado_.Statements(), UpTo(kDetach));
    ExpectFailed();
}

TEST_F(RenameDatabase, OnlyTheFirstTwoAlterStatementsHaveBrackets) {
    ado_.Answer("use [my Batch] exec sp_helpfile", Rows({{"D", 1, kOldData}, {"L", 2, kOldLog}}));
    ado_.Answer("ALTER DATABASE my Batch MODIFY NAME = new one", Failing());
    EXPECT_FALSE(manager_.RenameDatabase("my Batch", "new one"));
    EXPECT_EQ(ado_.Statements(), (Lines{"use [my Batch] exec sp_helpfile", "use master",
                                        "ALTER DATABASE [my Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
                                        "ALTER DATABASE [my Batch] SET MULTI_USER",
                                        "ALTER DATABASE my Batch MODIFY NAME = new one"}));
    EXPECT_EQ(Files(), "xx--");
}

} // namespace
} // namespace kv

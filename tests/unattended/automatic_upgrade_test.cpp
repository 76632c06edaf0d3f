// The unattended upgrade without failures: its order, its settings and its progress bar.
#include "unattended/automatic_runs.h"

#include <algorithm>
#include <set>

#include "unattended/upgrade_fixture.h"

namespace kv {
namespace {

/// The calls of an operation that opens "master" by the standard sequence.
Lines OnMaster(const Lines& statements) {
    Lines calls = {"CursorLocation 3",
                   "ConnectionString Driver={SQL Server};Server=NodeA;Database=master;Uid=lk_admin;Pwd=pw;",
                   "CommandTimeout 300", "ConnectionTimeout 300", "Open '' '' '' -1"};
    for (const std::string& statement : statements) {
        // Copying and deleting files happens between the statements.
        const bool file = statement.starts_with("copy ") || statement.starts_with("delete ");
        calls.push_back(file ? statement : "Execute 1 " + statement);
    }
    calls.emplace_back("Close");
    return calls;
}

Lines Joined(const std::vector<Lines>& parts) {
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::string BarAt(int place) {
    return "bar 0 17 " + std::to_string(place);
}

/// A step of the bar and the text that follows it.
Lines Next(int place, const std::string& text) {
    return {BarAt(place), "label " + text, "events"};
}

class UpgradeOrder : public AutomaticUpgrade {
  protected:
    const Lines rename_ = OnMaster({
        "use master",
        "ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
        "ALTER DATABASE [Batch] SET MULTI_USER",
        "ALTER DATABASE Batch MODIFY NAME = TmpBatchUpgradeDb",
        "ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE (NAME=Batch_data, NEWNAME=TmpBatchUpgradeDb_data)",
        "ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE (NAME=Batch_log, NEWNAME=TmpBatchUpgradeDb_log)",
        "sp_detach_db N'TmpBatchUpgradeDb', N'true'",
        std::string("copy ") + kOldData + " " + kNewData,
        std::string("copy ") + kOldLog + " " + kNewLog,
        std::string("delete ") + kOldData,
        std::string("delete ") + kOldLog,
        std::string("sp_attach_db N'TmpBatchUpgradeDb', N'") + kNewData + "', N'" + kNewLog + "'",
    });

    Lines Removal() const {
        const std::string guard = kGuard;
        return OnMaster({guard + "ALTER DATABASE [TmpBatchUpgradeDb] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
                         guard + "ALTER DATABASE [TmpBatchUpgradeDb] SET MULTI_USER",
                         guard + "DROP DATABASE [TmpBatchUpgradeDb]"});
    }
    static Lines Modifying() {
        Lines lines = Next(3, "Modifying sql scripts...");
        for (int place = 4; place <= 7; ++place) {
            lines.push_back(BarAt(place));
        }
        lines.insert(lines.end(), {"label Installing the new database...", "events",
                                   R"(create folder C:\Lotkeeper\Server\Data)"});
        for (const char* script :
             {"Create_Batch_Database", "Insert_Default_Data", "Create_Batch_Stored_Procedures"}) {
            lines.push_back(R"(write C:\Lotkeeper\Server\Data\)" + std::string(script) + ".sql");
        }
        return lines;
    }
    static Lines Packages() {
        Lines lines;
        for (const eDTSPackage package : kDtsPackages) {
            if (package != kDtsPackages.front()) {
                lines.push_back(BarAt(10 + static_cast<int>(package)));
            }
            lines.push_back("RemoveFromSQLServer " + PackageName(package));
            lines.emplace_back("LoadFromStorageFile ");
            lines.emplace_back("SaveToSQLServer pw");
        }
        return lines;
    }
    static Lines TakingOver() {
        const std::string head = "ConnectionString Driver={SQL Server};Server=NodeA;Database=";
        return {"CursorLocation 3",
                "CommandTimeout 300",
                "ConnectionTimeout 300",
                head + "TmpBatchUpgradeDb;Uid=lk_admin;Pwd=pw;",
                "Open '' '' '' -1",
                std::string("Execute 1 ") + kVersionQuery,
                "Close",
                head + "Batch;Uid=lk_admin;Pwd=pw;",
                "Open '' '' '' -1",
                std::string("Execute 1 ") + kVersionQuery,
                "Execute 1 spUninstallReplication",
                "Execute 1 spUpgradeDatabase 1, 2, N'TmpBatchUpgradeDb', N'Batch', N'lk_admin', N'pw'"};
    }
};

// The journal takes the records of an operation's end and of the bar's next step at the same time, those of
// the screen first.
TEST_F(UpgradeOrder, IsFixed) {
    RunToTheEnd();
    Lines wanted = Joined({{"window made Installing / Upgrading Lotkeeper database", "bar 0 100 0", BarAt(0),
                            "label Retrieving upgrade information...", "events", "show", "events"},
                           OnMaster({kFileQuery}),
                           Next(1, "Deleting existing temporary database..."),
                           Removal(),
                           Next(2, "Renaming existing database..."),
                           OnMaster({kFileQuery}),
                           rename_,
                           Modifying(),
                           {"run Create_Batch_Database"},
                           Next(8, "Installing batch stored procedures..."),
                           {"run Create_Batch_Stored_Procedures"},
                           Next(9, "Inserting batch default data..."),
                           {"run Insert_Default_Data"},
                           Next(10, "Installing DTS packages..."),
                           Packages(),
                           Next(16, "Upgrading database 'Batch' from 'TmpBatchUpgradeDb'..."),
                           TakingOver(),
                           {BarAt(17), "window gone", "Close"}});
    // So a "Close" is recorded after the next lines of the screen, and its position is not compared.
    const auto without = [](Lines lines) {
        std::erase(lines, "Close");
        return lines;
    };
    EXPECT_EQ(without(journal_), without(wanted));
    EXPECT_EQ(std::count(journal_.begin(), journal_.end(), "Close"),
              std::count(wanted.begin(), wanted.end(), "Close"));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(AutomaticUpgrade, TheBarMovesExactlyToItsEnd) {
    RunToTheEnd();
    EXPECT_EQ(Bar(), "17 / 17 17");
}

TEST_F(AutomaticUpgrade, TheLoginIsReadFromTheRegistry) {
    RunToTheEnd();
    Lines asked;
    for (const std::string& call : registry_.Calls()) {
        if (call.starts_with("Query ") && asked.size() < 3) {
            asked.push_back(call);
        }
    }
    EXPECT_EQ(asked, (Lines{"Query ServerName", "Query UserID", "Query PWD"}));
    for (const auto& info : processes_.started) {
        EXPECT_EQ(info.parameters.find(" -S NodeA -U lk_admin -P pw -i "), 0U) << info.parameters;
    }
    EXPECT_EQ(packages_.calls.front().arguments, (Lines{"NodeA", "lk_admin", "pw", "StdSynchronize"}));
}

TEST_F(AutomaticUpgrade, ThePasswordOfTheRegistryIsUsedUnchanged) {
    const std::string password = " =Ab%20\\3D\xE4+/== ";
    Login("NodeA", "lk_admin", password.c_str());
    RunToTheEnd();
    EXPECT_EQ(ado_.calls[1],
              "ConnectionString Driver={SQL Server};Server=NodeA;Database=master;Uid=lk_admin;Pwd=" +
                  password + ";");
    EXPECT_EQ(processes_.started.front().parameters.find(" -S NodeA -U lk_admin -P " + password + " -i "),
              0U);
    EXPECT_EQ(packages_.calls.front().arguments[2], password);
    EXPECT_TRUE(ado_.Statements().back().ends_with(", N'" + password + "'"));
}

TEST_F(AutomaticUpgrade, NewFilesAreInTheFolderOfTheOldDataFile) {
    RunToTheEnd();
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\Create_Batch_Database.sql)"),
              "USE NODEA D:\\Old Data\r\n\r\n");
    EXPECT_EQ(Files(), "--xx");
    EXPECT_EQ(files_.Content(kNewData), "old rows");
    EXPECT_EQ(files_.Content(kNewLog), "old log");
}

// Each of the two managers cuts one backslash at the end of the folder.
TEST_F(AutomaticUpgrade, TheDataPathIsCutAfterItsLastSeparator) {
    struct Case {
        const char* file;
        const char* folder;
    };
    for (const Case& one :
         {Case{R"(D:\A\B\Batch.mdf)", R"(D:\A\B)"}, Case{R"(D:\Batch.mdf)", "D:"},
          Case{R"(D:\A\\Batch.mdf)", R"(D:\A)"}, Case{R"(\Batch.mdf)", ""}, Case{"Batch.mdf", "Batch.mdf"},
          Case{"/a/b/Batch.mdf", "/a/b"}, Case{"/Batch.mdf", "/"}}) {
        SCOPED_TRACE(one.file);
        AnswerFiles(one.file, kOldLog);
        Run();
        EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\Create_Batch_Database.sql)"),
                  std::string("USE NODEA ") + one.folder + "\r\n\r\n");
    }
}

TEST_F(AutomaticUpgrade, APathWithSlashesKeepsSlashes) {
    files_.AddFolder("/var/data");
    files_.AddFile("/var/data/Batch.mdf", "old rows");
    files_.AddFile("/var/data/Batch.ldf", "old log");
    AnswerFiles("/var/data/Batch.mdf", "/var/data/Batch.ldf");
    AnswerFiles("/var/data/Batch.mdf", "/var/data/Batch.ldf");
    ado_.Answer(kVersionQuery, fakes::Rows({{"1"}}));
    ado_.Answer(kVersionQuery, fakes::Rows({{"2"}}));
    Run();
    EXPECT_TRUE(LogLines().empty());
    EXPECT_EQ(files_.Content("/var/data/TmpBatchUpgradeDb_data.mdf"), "old rows");
    const Lines statements = ado_.Statements();
    EXPECT_EQ(std::count(statements.begin(), statements.end(),
                         "sp_attach_db N'TmpBatchUpgradeDb', N'/var/data/TmpBatchUpgradeDb_data.mdf', "
                         "N'/var/data/TmpBatchUpgradeDb_log.ldf'"),
              1);
}

TEST_F(AutomaticUpgrade, HoldsItsLocksFromTheLoginToTheEnd) {
    std::multiset<std::string> held;
    ado_.on_errors_read = [&] { held = locks_.held; };
    RunToTheEnd();
    EXPECT_EQ(held, (std::multiset<std::string>{R"(Lotkeeper upgrade: program c:\lotkeeper\server)",
                                                "Lotkeeper upgrade: server nodea"}));
    EXPECT_TRUE(locks_.held.empty());
}

TEST_F(AutomaticUpgrade, WithoutPackageFilesTheBarStillMovesAndTheUpgradeFollows) {
    for (const eDTSPackage package : kDtsPackages) {
        files_.files.erase("S:/Scripts/" + PackageFileName(package));
    }
    RunToTheEnd();
    EXPECT_TRUE(packages_.calls.empty());
    EXPECT_EQ(Bar(), "17 / 17 17");
    EXPECT_TRUE(ado_.Statements().back().starts_with("spUpgradeDatabase 1, 2, "));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(AutomaticUpgrade, ASecondRunWorksTheSameWay) {
    RunToTheEnd();
    const Lines first = journal_;
    journal_.clear();
    AddOldFiles();
    files_.folders.erase(fakes::FakeFiles::Plain(kDataFolder));
    RunToTheEnd();
    Lines second = journal_;
    // The one difference: the modified scripts of the first run are deleted first.
    std::erase_if(second, [](const std::string& line) {
        return line.starts_with(std::string("delete ") + kDataFolder);
    });
    EXPECT_EQ(second, first);
    EXPECT_TRUE(LogLines().empty());
}

} // namespace
} // namespace kv

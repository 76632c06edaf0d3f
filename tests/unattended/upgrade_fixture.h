// The fixture of the unattended upgrade's tests: a system in memory with the server's login in its registry,
// a script folder, and a database that answers as the test says.
#pragma once

#include <string>
#include <vector>

#include "fakes/fake_ado.h"
#include "fakes/fake_named_lock.h"
#include "fakes/fake_packages.h"
#include "scripts/script_mgr_fixture.h"
#include "support/program_statements.h"
#include "unattended/automatic_runs.h"

namespace kv {

using support::kVersionQuery;
using Lines = std::vector<std::string>;

class AutomaticUpgrade : public ScriptMgrTest {
  protected:
    static constexpr char kOldData[] = R"(D:\Old Data\Batch_data.mdf)";
    static constexpr char kOldLog[] = R"(D:\Old Data\Batch_log.ldf)";
    static constexpr char kNewData[] = R"(D:\Old Data\TmpBatchUpgradeDb_data.mdf)";
    static constexpr char kNewLog[] = R"(D:\Old Data\TmpBatchUpgradeDb_log.ldf)";
    static constexpr char kFileQuery[] = "use [Batch] exec sp_helpfile";
    static constexpr char kGuard[] =
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ";
    static constexpr char kOwnLine[] = "modMain::DoAutomaticUpgrade";
    static constexpr char kRenameLine[] = "CUpgradeDbMgr::RenameDatabase('Batch', 'TmpBatchUpgradeDb')";
    static constexpr char kRemoveLine[] = "CUpgradeDbMgr::RemoveDatabase('TmpBatchUpgradeDb')";
    static constexpr char kUpgradeLine[] = "CUpgradeDbMgr::UpgradeDatabase('Batch', 'TmpBatchUpgradeDb')";

    AutomaticUpgrade() {
        Login("NodeA", "lk_admin", "pw");
        files_.AddFolder("S:\\Scripts");
        for (const char* name :
             {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql"}) {
            files_.AddFile(std::string("S:\\Scripts\\") + name, "USE ###SERVER### ###DATAPATH###");
        }
        for (const eDTSPackage package : kDtsPackages) {
            files_.AddFile("S:\\Scripts\\" + PackageFileName(package), "");
        }
        AddOldFiles();
        ado_.on_errors_read = [this] { Note(); };
        packages_.on_call = [this] { Note(); };
        processes_.on_start = [this](const platform::ShellExecuteInfo& /*info*/) {
            Note();
            return true;
        };
    }
    /// No test may leave a connection or a package object open.
    ~AutomaticUpgrade() override {
        EXPECT_EQ(ado_.connections, 0U);
        EXPECT_EQ(packages_.open_objects, 0);
    }

    /// Stores the server's name and the login in the registry.
    void Login(const char* server, const char* user, const char* password) {
        Text(registry_locations::kLoginKey, registry_locations::kServerNameValue, server);
        Text(registry_locations::kLoginKey, registry_locations::kUserIdValue, user);
        Text(registry_locations::kLoginKey, registry_locations::kPasswordValue, password);
    }
    /// Puts the files of the old database on the disk.
    void AddOldFiles() {
        files_.AddFolder(R"(D:\Old Data)");
        files_.AddFile(kOldData, "old rows");
        files_.AddFile(kOldLog, "old log");
    }
    /// Sets the server's answers for a run without failures, with these schema versions.
    void AnswerAll(const char* old_version = "1", const char* new_version = "2") {
        AnswerFiles(kOldData, kOldLog);
        AnswerFiles(kOldData, kOldLog); // RenameDatabase asks again
        ado_.Answer(kVersionQuery, fakes::Rows({{old_version}}));
        ado_.Answer(kVersionQuery, fakes::Rows({{new_version}}));
    }
    void AnswerFiles(const char* data, const char* log) {
        ado_.Answer(kFileQuery, fakes::Rows({{"Batch_data", 1, data}, {"Batch_log", 2, log}}));
    }
    /// A run on a server that answers without failures.
    void RunToTheEnd() {
        AnswerAll();
        Run();
    }
    void Run() {
        DoAutomaticUpgrade("S:\\Scripts");
        Note();
    }

    /// How often the bar moved, its range and its last position, as "steps / range position".
    std::string Bar() const {
        const Lines bars = screen_.After("bar 0 ");
        // The first two come from loading the window and from InitProgressBar.
        return std::to_string(bars.size() - 2) + " / " + bars.back();
    }
    /// Which of four files exist ("x") or not ("-"): old data, old log, temporary data, temporary log.
    std::string Files() const {
        std::string there;
        for (const char* path : {kOldData, kOldLog, kNewData, kNewLog}) {
            there += files_.HasFile(path) ? 'x' : '-';
        }
        return there;
    }
    /// Checks that the run ended without a box and closed its window.
    void ExpectQuietEnd() {
        EXPECT_EQ(screen_.Count("box"), 0);
        EXPECT_EQ(screen_.calls.back(), "window gone");
    }
    /// Checks that the server was only asked for the database's files, and nothing was changed.
    void ExpectNothingDone() {
        for (const std::string& statement : ado_.Statements()) {
            EXPECT_EQ(statement, kFileQuery);
        }
        ExpectNothingInstalled();
        EXPECT_EQ(Files(), "xx--");
    }
    void ExpectNothingInstalled() {
        EXPECT_TRUE(processes_.started.empty());
        EXPECT_TRUE(packages_.calls.empty());
        ExpectQuietEnd();
    }
    /// Removes the log and all records of a run, so that a second run can be checked alone.
    void ForgetRun() {
        files_.files.erase(fakes::FakeFiles::Plain(kLogFile));
        ado_.calls.clear();
        screen_.calls.clear();
        processes_.started.clear();
        packages_.calls.clear();
        journal_.clear();
        seen_ = {.files = files_.Log().size()};
    }

    /// What the program did to screen, files, database, packages and processes, in order.
    Lines journal_;
    fakes::FakeAdo ado_;
    fakes::FakePackages packages_;
    fakes::FakeNamedLocks locks_;

  private:
    /// Appends to the journal what the fakes have recorded since the last call. The fakes call it after each
    /// record whose order relative to another fake's records matters.
    void Note() {
        Append(screen_.calls, seen_.screen);
        Append(files_.Log(), seen_.files);
        Append(ado_.calls, seen_.ado);
        for (; seen_.packages < packages_.calls.size(); ++seen_.packages) {
            const fakes::PackageCall& call = packages_.calls[seen_.packages];
            journal_.push_back(call.member + " " + call.arguments.back());
        }
        for (; seen_.processes < processes_.started.size(); ++seen_.processes) {
            journal_.push_back("run " + ScriptOf(processes_.started[seen_.processes]));
        }
    }
    void Append(const Lines& calls, std::size_t& seen) {
        journal_.insert(journal_.end(), calls.begin() + static_cast<std::ptrdiff_t>(seen), calls.end());
        seen = calls.size();
    }

    /// How many records of each fake are in the journal.
    struct Seen {
        std::size_t screen = 0;
        std::size_t files = 0;
        std::size_t ado = 0;
        std::size_t packages = 0;
        std::size_t processes = 0;
    };
    Seen seen_;
};

} // namespace kv

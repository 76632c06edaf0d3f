// What the tests of the unattended upgrade have in common: a machine in memory with the server's login in its
// registry, a script folder, and a database that answers as the test says.
#pragma once

#include <string>
#include <vector>

#include "fakes/fake_ado.h"
#include "fakes/fake_named_lock.h"
#include "fakes/fake_packages.h"
#include "scripts/script_mgr_fixture.h"
#include "unattended/automatic_upgrade.h"

namespace kv {

using Lines = std::vector<std::string>;

class AutomaticUpgrade : public ScriptMgrTest {
  protected:
    static constexpr char kOldData[] = R"(D:\Old Data\Batch_data.mdf)";
    static constexpr char kOldLog[] = R"(D:\Old Data\Batch_log.ldf)";
    static constexpr char kNewData[] = R"(D:\Old Data\TmpBatchUpgradeDb_data.mdf)";
    static constexpr char kNewLog[] = R"(D:\Old Data\TmpBatchUpgradeDb_log.ldf)";
    static constexpr char kFileQuery[] = "use [Batch] exec sp_helpfile";
    static constexpr char kVersionQuery[] =
        "SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'";
    static constexpr char kGuard[] =
        "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ";
    static constexpr char kOwnLine[] = " : Error in modMain::DoAutomaticUpgrade";
    static constexpr char kRenameLine[] =
        " : Error in CUpgradeDbMgr::RenameDatabase('Batch', 'TmpBatchUpgradeDb')";
    static constexpr char kRemoveLine[] = " : Error in CUpgradeDbMgr::RemoveDatabase('TmpBatchUpgradeDb')";
    static constexpr char kUpgradeLine[] =
        " : Error in CUpgradeDbMgr::UpgradeDatabase('Batch', 'TmpBatchUpgradeDb')";

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
    /// Whatever a test does, no connection and no package object survives it.
    ~AutomaticUpgrade() override {
        EXPECT_EQ(ado_.connections, 0U);
        EXPECT_EQ(packages_.open_objects, 0);
    }

    void Login(const char* server, const char* user, const char* password) {
        Text(registry_locations::kLoginKey, registry_locations::kServerNameValue, server);
        Text(registry_locations::kLoginKey, registry_locations::kUserIdValue, user);
        Text(registry_locations::kLoginKey, registry_locations::kPasswordValue, password);
    }
    void AddOldFiles() {
        files_.AddFolder(R"(D:\Old Data)");
        files_.AddFile(kOldData, "old rows");
        files_.AddFile(kOldLog, "old log");
    }
    /// The server's answers in a run that meets no obstacle, with these schema versions.
    void AnswerAll(const char* old_version = "1", const char* new_version = "2") {
        AnswerFiles(kOldData, kOldLog);
        AnswerFiles(kOldData, kOldLog); // RenameDatabase asks for itself
        ado_.Answer(kVersionQuery, fakes::Rows({{old_version}}));
        ado_.Answer(kVersionQuery, fakes::Rows({{new_version}}));
    }
    void AnswerFiles(const char* data, const char* log) {
        ado_.Answer(kFileQuery, fakes::Rows({{"Batch_data", 1, data}, {"Batch_log", 2, log}}));
    }
    /// A run on a server that answers all of it.
    void RunToTheEnd() {
        AnswerAll();
        Run();
    }
    void Run() {
        DoAutomaticUpgrade("S:\\Scripts");
        Note();
    }

    /// The scripts that the query tool was started with, in order.
    Lines Executed() const {
        Lines names;
        for (const auto& info : processes_.started) {
            names.push_back(ScriptOf(info));
        }
        return names;
    }
    static std::string ScriptOf(const platform::ShellExecuteInfo& info) {
        const auto end = info.parameters.find(".sql\"");
        const auto begin = info.parameters.rfind('\\', end) + 1;
        return info.parameters.substr(begin, end - begin);
    }
    /// How often the bar moved, and where it stood at the end, as "steps / range and last position".
    std::string Bar() const {
        const Lines bars = screen_.Behind("bar 0 ");
        // The first two are the loaded window's own and InitProgressBar's.
        return std::to_string(bars.size() - 2) + " / " + bars.back();
    }
    /// Which of the four files are there: old data, old log, temporary data, temporary log.
    std::string Files() const {
        std::string there;
        for (const char* path : {kOldData, kOldLog, kNewData, kNewLog}) {
            there += files_.HasFile(path) ? 'x' : '-';
        }
        return there;
    }
    /// The run ended as every run does: no box, the window gone.
    void ExpectQuietEnd() {
        EXPECT_EQ(screen_.Count("box"), 0);
        EXPECT_EQ(screen_.calls.back(), "window gone");
    }
    /// Nothing was done on the server behind the question where the database lies.
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
    void ForgetRun() {
        files_.files.erase(fakes::FakeFiles::Plain(kLogFile));
        ado_.calls.clear();
        screen_.calls.clear();
        processes_.started.clear();
        packages_.calls.clear();
        journal_.clear();
        seen_ = {.files = files_.Log().size()};
    }

    /// What the program did to screen, files, database, packages and programs, in one order.
    Lines journal_;
    fakes::FakeAdo ado_;
    fakes::FakePackages packages_;
    fakes::FakeNamedLocks locks_;

  private:
    /// Takes over what the fakes have recorded since the last time. They call it behind whatever of theirs
    /// could change its order with another's.
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

    /// How many of each fake's records the journal has.
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

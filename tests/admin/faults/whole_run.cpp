// The runs of whole_run.h: their scripts and processes, and the outcome that is expected for each fault.
#include "admin/faults/whole_run.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <future>
#include <stdexcept>

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/files.h"

namespace kv {
namespace {

namespace fs = std::filesystem;
using support::Fault;

constexpr char kCreateDatabase[] = R"(IF EXISTS (SELECT * FROM master.dbo.sysdatabases WHERE name = N'Batch')
    RAISERROR (N'Batch exists', 16, 127)
GO
CREATE DATABASE [Batch] ON (NAME = Batch_data, FILENAME = N'###DATAPATH###\Batch_data.mdf')
    LOG ON (NAME = Batch_log, FILENAME = N'###DATAPATH###\Batch_log.ldf')
GO
USE [Batch]
GO
CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50)) CREATE TABLE Things (a int)
GO
)";
constexpr char kGuard[] = R"(IF NOT EXISTS (SELECT * FROM master.dbo.sysdatabases WHERE name = N'Batch')
    RAISERROR (N'no Batch', 16, 127)
GO
USE [Batch]
GO
)";
constexpr char kCreateProcedures[] = R"(CREATE PROCEDURE spUninstallReplication AS RETURN
GO
CREATE PROCEDURE spUpgradeDatabase @old int, @new int, @source nvarchar(50), @destination nvarchar(50),
    @user nvarchar(50), @password nvarchar(50) AS INSERT Things SELECT a FROM TmpBatchUpgradeDb.dbo.Things
GO
)";
constexpr char kInsertData[] =
    R"(IF NOT EXISTS (SELECT * FROM LKConfig WHERE ParameterName = 'DatabaseVersion')
    INSERT LKConfig VALUES ('DatabaseVersion', '2')
GO
)";

/// The steps at which a fault is tried: all, those of the query tool, or those that have a time limit.
enum class Steps : std::uint8_t { All, OfQueryTool, WithLimit };

struct RunFault {
    Fault fault;
    Steps steps;
    bool always; ///< tried always; others are tried only if EveryFault() is true
};

constexpr RunFault kRunFaults[] = {{Fault::CutBefore, Steps::All, true},
                                   {Fault::CutAfter, Steps::All, true},
                                   {Fault::KillBefore, Steps::All, true},
                                   {Fault::KillAfter, Steps::All, false},
                                   {Fault::HangBefore, Steps::WithLimit, true},
                                   {Fault::HangAfter, Steps::WithLimit, false},
                                   {Fault::ResetBefore, Steps::All, false},
                                   {Fault::ResetAfter, Steps::All, false},
                                   {Fault::KillProgramBefore, Steps::All, false},
                                   {Fault::KillProgramAfter, Steps::All, false},
                                   {Fault::KillStarter, Steps::OfQueryTool, false},
                                   {Fault::RefuseRight, Steps::All, false},
                                   {Fault::RefuseRoom, Steps::All, false}};

bool IsOfTool(const RunStep& step) {
    return step.sender == Sender::QueryTool;
}

bool IsLogin(const RunStep& step) {
    return std::string_view(step.event) == "login";
}

bool HappensAt(const RunFault& fault, const RunStep& step) {
    switch (fault.steps) {
    case Steps::OfQueryTool:
        return IsOfTool(step);
    case Steps::WithLimit:
        // The query tool's limit for a login is eight seconds, so that is tried only with every fault.
        return !IsOfTool(step) || (IsLogin(step) && EveryFault());
    default:
        return true;
    }
}

void Write(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// Puts the program, the query tool and the registry of one run into the server's folder.
fs::path Install(const FaultFixture& fixture, const fs::path& common) {
    const fs::path installed = fixture.Folder() / "installed";
    fs::create_directories(installed / "tools" / "Binn");
    fs::create_hard_link(common / "KVLSQLDbMgr", installed / "KVLSQLDbMgr");
    fs::create_hard_link(common / "OSQL.EXE", installed / "tools" / "Binn" / "OSQL.EXE");
    const std::string hive = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\";
    const std::string sql_server = hive + "Microsoft\\Microsoft SQL Server\\";
    Write(fixture.Folder() / "registry.reg",
          "REGEDIT4\n\n" + hive + "ORVIK\\QUORLEN\\Log]\n@=\"" + (fixture.Folder() / "Log").string() +
              "\"\n\n" + hive + "Orvik\\Quorlen\\Lotkeeper\\Login]\n\"ServerName\"=\"" +
              fixture.ServerName() + "\"\n\"UserID\"=\"sa\"\n\"PWD\"=\"Test-1\"\n\n" + sql_server +
              "KV_BATCH\\MSSQLServer\\CurrentVersion]\n\"CurrentVersion\"=\"14.0.1000.169\"\n\n" +
              sql_server + "140\\Tools\\ClientSetup]\n\"SQLPath\"=\"" + (installed / "tools").string() +
              "\"\n");
    return installed / "KVLSQLDbMgr";
}

/// The process that the program has started; 0 if there is none.
pid_t ChildOf(pid_t program) {
    const std::string number = std::to_string(program);
    pid_t child = 0;
    std::ifstream("/proc/" + number + "/task/" + number + "/children") >> child;
    return child;
}

/// The processes of a run, for the faults that kill one of them.
class RunProcesses {
  public:
    void Start(const fs::path& program, const Lines& arguments) {
        Lines words = {program.string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> raw;
        for (std::string& word : words) {
            raw.push_back(word.data());
        }
        raw.push_back(nullptr);
        pid_t process = 0;
        if (posix_spawn(&process, raw.front(), nullptr, nullptr, raw.data(), environ) != 0) {
            throw std::runtime_error("the program could not be started");
        }
        started_.set_value(process);
    }

    void KillProgram() {
        tool_ = ChildOf(program_.get());
        kill(program_.get(), SIGKILL);
    }

    void KillTool() {
        if (const pid_t tool = ChildOf(program_.get()); tool != 0) {
            kill(tool, SIGKILL);
        }
    }

    /// Waits for the end of the program and of the query tool that it left; returns the program's status.
    int Wait() {
        int status = -1;
        waitpid(program_.get(), &status, 0);
        if (tool_ != 0) {
            waitpid(tool_, nullptr, 0);
        }
        return status;
    }

  private:
    std::promise<pid_t> started_;
    std::shared_future<pid_t> program_ = started_.get_future().share();
    std::atomic<pid_t> tool_ = 0; ///< the query tool that still runs after the program was killed; 0: none
};

/// True if the fault at this step kills the program itself.
bool KillsTheProgram(Fault fault, const RunStep& step) {
    return fault == Fault::KillStarter ||
           (!IsOfTool(step) && (fault == Fault::KillProgramBefore || fault == Fault::KillProgramAfter));
}

/// Runs the program to its end and checks how it has ended.
void Run(const WholeRun& run, FaultFixture& fixture, const fs::path& common, bool kills_program) {
    prctl(PR_SET_CHILD_SUBREAPER, 1); // so that a query tool without its program can be waited for
    RunProcesses processes;
    fixture.Proxy().KillProgramBy(
        [&processes, kills_program] { kills_program ? processes.KillProgram() : processes.KillTool(); });
    processes.Start(Install(fixture, common), run.arguments(fixture));
    const int status = processes.Wait();
    EXPECT_EQ(status, kills_program ? SIGKILL : 0);
    EXPECT_TRUE(fixture.Proxy().Struck());
}

void ExpectEvents(FaultFixture& fixture, const std::vector<RunStep>& steps) {
    const Lines events = fixture.Proxy().Events();
    std::string all;
    for (const std::string& event : events) {
        all += event + "\n";
    }
    ASSERT_EQ(events.size(), steps.size()) << all;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_TRUE(events[i].starts_with(steps[i].event))
            << i << ": " << events[i] << "\nnot " << steps[i].event;
    }
}

/// A run without failures in which the statements of the query tool, which have no time limit, are slow.
void TrySlow(const WholeRun& run, const fs::path& common) {
    FaultFixture fixture(common / "model");
    fixture.Proxy().Ignore("PRINT ''");
    const auto first = std::ranges::find_if(run.steps, IsOfTool) - run.steps.begin();
    fixture.Proxy().Arm(static_cast<std::size_t>(first),
                        static_cast<std::size_t>(first + std::ranges::count_if(run.steps, IsOfTool) - 1),
                        Fault::Slow);
    Run(run, fixture, common, false);
    EXPECT_EQ(run.state(fixture), run.good.state);
    EXPECT_EQ(fixture.LogLines(), run.good.log);
    ExpectEvents(fixture, run.steps);
}

/// The state if the server or the program ends before the step.
const std::string& StateAt(const WholeRun& run, std::size_t step) {
    return step < run.steps.size() ? run.steps[step].ends.state : run.good.state;
}

/// The outcome if the step fails; after the last step, that of a good run.
const Outcome& FailureOf(const WholeRun& run, std::size_t step) {
    return step < run.steps.size() ? run.steps[step].fails : run.good;
}

/// The step after the last one of the script that the step belongs to. Each script has a login of its own.
std::size_t AfterScript(const WholeRun& run, std::size_t step) {
    const auto next =
        std::find_if(run.steps.begin() + static_cast<std::ptrdiff_t>(step) + 1, run.steps.end(), IsLogin);
    return static_cast<std::size_t>(next - run.steps.begin());
}

Outcome WantedOutcome(const WholeRun& run, std::size_t number, Fault fault) {
    const RunStep& step = run.steps[number];
    switch (fault) {
    case Fault::KillBefore:
        return step.ends;
    case Fault::KillAfter:
        return {StateAt(run, number + 1), step.ends.log};
    case Fault::KillStarter:
        return {StateAt(run, AfterScript(run, number)), {}};
    case Fault::KillProgramBefore:
        return IsOfTool(step) ? step.fails : Outcome{StateAt(run, number), {}};
    case Fault::KillProgramAfter:
        if (!IsOfTool(step)) {
            return {StateAt(run, number + 1), {}};
        }
        [[fallthrough]];
    case Fault::CutAfter:
    case Fault::ResetAfter:
    case Fault::HangAfter:
        return step.unanswered.value_or(FailureOf(run, number + 1));
    case Fault::RefuseRight:
    case Fault::RefuseRoom:
        return step.refused.value_or(step.fails);
    default:
        return step.fails;
    }
}

/// Runs once with the fault at the step, and compares the state and the log with the expected ones.
void Try(const WholeRun& run, const fs::path& common, std::size_t step, Fault fault) {
    FaultFixture fixture(common / "model");
    fixture.Proxy().Ignore("PRINT ''");
    fixture.Proxy().Arm(step, fault);
    Run(run, fixture, common, KillsTheProgram(fault, run.steps[step]));
    if (fault == Fault::KillBefore || fault == Fault::KillAfter) {
        fixture.RestartServer();
    }
    const Outcome wanted = WantedOutcome(run, step, fault);
    EXPECT_EQ(run.state(fixture), wanted.state);
    EXPECT_EQ(fixture.LogLines(), wanted.log);
}

} // namespace

void PrepareCommonFiles(const fs::path& common, const Lines& packages,
                        const std::function<void(FaultFixture&)>& prepare_server) {
    const fs::path binaries = platform::ExecutableFolder();
    fs::create_directories(common / "scripts");
    fs::create_directory(common / "model");
    fs::copy(binaries / "program_with_short_limits", common / "KVLSQLDbMgr");
    fs::copy(binaries / "OSQL.EXE", common / "OSQL.EXE");
    for (const std::string& package : packages) {
        fs::copy(fs::path(KV_SAMPLES) / package, common / "scripts");
    }
    Write(common / "scripts" / "Create_Batch_Database.sql", kCreateDatabase);
    Write(common / "scripts" / "Create_Batch_Stored_Procedures.sql", std::string(kGuard) + kCreateProcedures);
    Write(common / "scripts" / "Insert_Default_Data.sql", std::string(kGuard) + kInsertData);
    MakeServerModel(prepare_server, common / "model");
}

std::string DatabaseState(const FaultFixture& fixture, const std::string& name) {
    if (!fixture.HasDatabase(name)) {
        return "none";
    }
    const std::string single =
        fixture.AskOne("master", "SELECT DATABASEPROPERTYEX('" + name + "', 'UserAccess')") == "MULTI_USER"
            ? ""
            : " single";
    if (fixture.Ask("master", "SELECT name FROM " + name + ".dbo.sysobjects WHERE name = 'LKConfig'")
            .empty()) {
        return "empty" + single;
    }
    const std::string version = fixture.AskOne("master", "SELECT Value FROM " + name + ".dbo.LKConfig");
    return (version.empty() ? "-" : version) + ":" +
           fixture.AskOne("master", "SELECT COUNT(*) FROM " + name + ".dbo.Things") + single;
}

void TryEveryFault(const WholeRun& run, const fs::path& common) {
    std::vector<support::Case> cases = {{"slow statements", [&] { TrySlow(run, common); }}};
    for (std::size_t i = 0; i < run.steps.size(); ++i) {
        for (const RunFault& fault : kRunFaults) {
            if ((!fault.always && !EveryFault()) || !HappensAt(fault, run.steps[i])) {
                continue;
            }
            cases.push_back({std::string(support::NameOf(fault.fault)) + " at " + std::to_string(i) + " " +
                                 run.steps[i].event,
                             [&, i] { Try(run, common, i, fault.fault); }});
        }
    }
    support::RunInChildren(cases, kFaultsAtOnce);
    const auto slow = static_cast<std::size_t>(std::ranges::count_if(run.steps, IsOfTool));
    std::printf("%s: %zu faults tried at %zu steps\n", run.name, cases.size() - 1 + slow, run.steps.size());
}

} // namespace kv

// The whole unattended upgrade, run as a separate program with its query tool, with a fault at each statement
// that is sent to the server: the databases afterwards, the log, and that the old rows are not lost. The
// scripts are small ones written for this test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <optional>

#include "admin/faults/fault_fixture.h"
#include "platform/files.h"
#include "platform/process.h"
#include "support/temp_folder.h"

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

// Lines of the log.
constexpr char kInfo[] = "CUpgradeDbMgr::GetDatabaseInfo('Batch')";
constexpr char kAbort[] = "modMain::DoAutomaticUpgrade";
constexpr char kRemove[] = "CUpgradeDbMgr::RemoveDatabase('TmpBatchUpgradeDb')";
constexpr char kRename[] = "CUpgradeDbMgr::RenameDatabase('Batch', 'TmpBatchUpgradeDb')";
constexpr char kPackage[] = "CSQLScriptMgr::InstallDTSPackage(0)";
constexpr char kUpgrade[] = "CUpgradeDbMgr::UpgradeDatabase('Batch', 'TmpBatchUpgradeDb')";

/// The state after a run, with "version:rows" of each database and the number of packages, and the lines of
/// the log.
struct Outcome {
    std::string state;
    Lines log;
};

/// A statement that is sent to the server, and the outcomes of faults at it.
struct UpgradeStep {
    const char* event; ///< the beginning of the statement
    Outcome fails;     ///< if this statement fails and the server keeps running
    Outcome ends;      ///< if the server ends before the statement
    /// The statement has a time limit. Those of the query tool and of the packages have none.
    bool limited = true;
    /// The outcome if the statement runs and its answer is lost. If it is not set, it is the outcome of a
    /// failure of the next step.
    std::optional<Outcome> unanswered{};
};

const Outcome kGood = {"Batch=2:3 Tmp=1:3 packages=1", {}};

std::vector<UpgradeStep> Information() {
    const Outcome untouched = {"Batch=1:3 Tmp=1:7 packages=0", {kInfo, kAbort}};
    return {{"login", untouched, untouched},
            {"use [Batch] exec sp_helpfile", untouched, untouched, true, untouched}};
}

/// If the temporary database of an earlier run is not removed, the old database cannot be renamed to it.
std::vector<UpgradeStep> Removal() {
    const Outcome fails = {"Batch=1:3 Tmp=1:7 packages=1", {kRemove, kRename, kUpgrade}};
    const Outcome ends = {"Batch=1:3 Tmp=1:7 packages=0", {kRemove, kInfo, kRename, kPackage, kUpgrade}};
    Outcome fails_single = fails;
    Outcome ends_single = ends;
    fails_single.state = "Batch=1:3 Tmp=1:7 single packages=1";
    ends_single.state = "Batch=1:3 Tmp=1:7 single packages=0";
    return {{"login", fails, ends},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ALTER "
             "DATABASE "
             "[TmpBatchUpgradeDb] SET SINGLE_USER",
             fails, ends},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ALTER "
             "DATABASE "
             "[TmpBatchUpgradeDb] SET MULTI_USER",
             fails_single, ends_single},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') DROP "
             "DATABASE",
             fails, ends, true, Outcome{kGood.state, {kRemove}}}};
}

std::vector<UpgradeStep> Renaming() {
    const Outcome inner_fails = {"Batch=1:3 Tmp=none packages=1", {kInfo, kRename, kUpgrade}};
    const Outcome inner_ends = {"Batch=1:3 Tmp=none packages=0", {kInfo, kRename, kPackage, kUpgrade}};
    const Outcome fails = {"Batch=1:3 Tmp=none packages=1", {kRename, kUpgrade}};
    const Outcome ends = {"Batch=1:3 Tmp=none packages=0", {kRename, kPackage, kUpgrade}};
    const Outcome fails_single = {"Batch=1:3 single Tmp=none packages=1", {kRename, kUpgrade}};
    const Outcome ends_single = {"Batch=1:3 single Tmp=none packages=0", {kRename, kPackage, kUpgrade}};
    // After the name was changed the rest of the run succeeds.
    const Outcome renamed_fails = {kGood.state, {kRename}};
    const Outcome renamed_ends = {"Batch=none Tmp=1:3 packages=0", {kRename, kPackage, kUpgrade}};
    const Outcome detached_fails = {"Batch=2:0 Tmp=none packages=1 detached 3", {kRename, kUpgrade}};
    const Outcome detached_ends = {"Batch=none Tmp=none packages=0 detached 3",
                                   {kRename, kPackage, kUpgrade}};
    return {{"login", inner_fails, inner_ends},
            {"use [Batch] exec sp_helpfile", inner_fails, inner_ends, true, inner_fails},
            {"login", fails, ends},
            {"use master", fails, ends},
            {"ALTER DATABASE [Batch] SET SINGLE_USER", fails, ends},
            {"ALTER DATABASE [Batch] SET MULTI_USER", fails_single, ends_single},
            {"ALTER DATABASE Batch MODIFY NAME", fails, ends},
            {"ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE", renamed_fails, renamed_ends},
            {"ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE", renamed_fails, renamed_ends},
            {"sp_detach_db", renamed_fails, renamed_ends},
            {"sp_attach_db", detached_fails, detached_ends, true, renamed_fails}};
}

/// The statements of the query tool, which begin with its session's options.
std::vector<UpgradeStep> Scripts() {
    const Outcome nothing_fails = {"Batch=none Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome nothing_ends = {"Batch=none Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    const Outcome empty_fails = {"Batch=empty Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome empty_ends = {"Batch=empty Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    const Outcome no_procedures_fails = {"Batch=2:0 Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome unversioned_fails = {"Batch=-:0 Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome unversioned_ends = {"Batch=-:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    return {{"login", nothing_fails, nothing_ends, false},
            {"SET ANSI_NULLS ON", nothing_fails, nothing_ends, false},
            {"SET QUOTED_IDENTIFIER OFF", nothing_fails, nothing_ends, false},
            {"IF EXISTS", nothing_fails, nothing_ends, false},
            {"CREATE DATABASE", nothing_fails, nothing_ends, false},
            {"USE [Batch]", empty_fails, empty_ends, false},
            {"CREATE TABLE", empty_fails, empty_ends, false},
            {"", kGood, unversioned_ends, false, kGood}, // the blank line at the end of every modified script
            {"login", no_procedures_fails, unversioned_ends, false},
            {"SET ANSI_NULLS ON", no_procedures_fails, unversioned_ends, false},
            {"SET QUOTED_IDENTIFIER OFF", no_procedures_fails, unversioned_ends, false},
            {"IF NOT EXISTS", no_procedures_fails, unversioned_ends, false},
            {"USE [Batch]", no_procedures_fails, unversioned_ends, false},
            {"CREATE PROCEDURE spUninstallReplication", no_procedures_fails, unversioned_ends, false},
            {"CREATE PROCEDURE spUpgradeDatabase", no_procedures_fails, unversioned_ends, false},
            {"", kGood, unversioned_ends, false, kGood},
            {"login", unversioned_fails, unversioned_ends, false},
            {"SET ANSI_NULLS ON", unversioned_fails, unversioned_ends, false},
            {"SET QUOTED_IDENTIFIER OFF", unversioned_fails, unversioned_ends, false},
            {"IF NOT EXISTS", unversioned_fails, unversioned_ends, false},
            {"USE [Batch]", unversioned_fails, unversioned_ends, false},
            {"IF NOT EXISTS", unversioned_fails, unversioned_ends, false},
            {"", kGood, {"Batch=2:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}}, false, kGood}};
}

/// The first call removes the old package; its failure is not noticed.
std::vector<UpgradeStep> Packages() {
    const Outcome unnoticed = kGood;
    const Outcome fails = {"Batch=2:3 Tmp=1:3 packages=0", {kPackage}};
    const Outcome ends = {"Batch=2:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    return {{"login", unnoticed, ends, false},
            {"call", unnoticed, ends, false, unnoticed},
            {"login", fails, ends, false},
            {"call", fails, ends, false, Outcome{kGood.state, {kPackage}}}};
}

std::vector<UpgradeStep> TakingOver() {
    const Outcome fails = {"Batch=2:0 Tmp=1:3 packages=1", {kUpgrade}};
    return {{"login", fails, fails},
            {"SELECT Value FROM LKConfig", fails, fails},
            {"login", fails, fails},
            {"SELECT Value FROM LKConfig", fails, fails},
            {"spUninstallReplication", fails, fails},
            {"spUpgradeDatabase 1, 2, ", fails, fails, true, Outcome{kGood.state, {kUpgrade}}}};
}

std::vector<UpgradeStep> AllSteps() {
    std::vector<UpgradeStep> all;
    for (const auto& part : {Information(), Removal(), Renaming(), Scripts(), Packages(), TakingOver()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

void Write(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// Makes the files that all runs have in common: the programs, the scripts and, in "model", the server.
void PrepareCommonFiles(const fs::path& common) {
    const fs::path binaries = platform::ExecutableFolder();
    fs::create_directories(common / "scripts");
    fs::create_directory(common / "model");
    fs::copy(binaries / "upgrade_runner", common / "KVLSQLDbMgr");
    fs::copy(binaries / "OSQL.EXE", common / "OSQL.EXE");
    fs::copy(fs::path(KV_SAMPLES) / "StdSynchronize.dts", common / "scripts");
    Write(common / "scripts" / "Create_Batch_Database.sql", kCreateDatabase);
    Write(common / "scripts" / "Create_Batch_Stored_Procedures.sql", std::string(kGuard) + kCreateProcedures);
    Write(common / "scripts" / "Insert_Default_Data.sql", std::string(kGuard) + kInsertData);
    MakeServerModel(
        [](FaultFixture& fixture) {
            for (const auto& [name, rows] : {std::pair("Batch", 3), std::pair("TmpBatchUpgradeDb", 7)}) {
                fixture.CreateDatabase(
                    name, {"CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50))",
                           "INSERT LKConfig VALUES ('DatabaseVersion', '1')", "CREATE TABLE Things (a int)",
                           "DECLARE @i int SET @i = 0 WHILE @i < " + std::to_string(rows) +
                               " BEGIN INSERT Things VALUES (@i) SET @i = @i + 1 END"});
            }
        },
        common / "model");
}

/// Runs the upgrade in a new folder with the program, the query tool and the registry.
void RunUpgrade(FaultFixture& fixture, const fs::path& common) {
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
    platform::ShellExecuteInfo info;
    info.mask = platform::kNoCloseProcess;
    info.file = (installed / "KVLSQLDbMgr").string();
    info.parameters = "\"" + (common / "scripts").string() + "/\"";
    std::unique_ptr<platform::Process> process;
    ASSERT_TRUE(platform::ShellExecuteProgram(info, process));
    process->Wait(platform::kInfiniteWait);
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

std::string State(FaultFixture& fixture) {
    const std::string batch = DatabaseState(fixture, "Batch");
    const std::string temporary = DatabaseState(fixture, "TmpBatchUpgradeDb");
    std::string state = "Batch=" + batch + " Tmp=" + temporary + " packages=" +
                        fixture.AskOne("master", "SELECT COUNT(*) FROM msdb.dbo.sysdtspackages");
    if (!batch.starts_with("1:3") && !temporary.starts_with("1:3")) {
        // No database has the old rows. They are in the detached files, which may have been moved.
        const std::string files = fixture.OldFolder().string();
        const bool moved = fs::exists(files + "/TmpBatchUpgradeDb_data.mdf");
        fixture.Ask("master", "sp_attach_db N'Rescue', N'" + files +
                                  (moved ? "/TmpBatchUpgradeDb_data.mdf" : "/Batch_dat.mdf") + "', N'" +
                                  files + (moved ? "/TmpBatchUpgradeDb_log.ldf'" : "/Batch_lg.ldf'"));
        state += " detached " + fixture.AskOne("Rescue", "SELECT COUNT(*) FROM Things");
    }
    return state;
}

void ExpectEvents(FaultFixture& fixture, const std::vector<UpgradeStep>& steps) {
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

/// A run without failures in which every statement without a time limit is slow: those of the query tool and
/// of the packages.
void TrySlow(const fs::path& common, const std::vector<UpgradeStep>& steps) {
    FaultFixture fixture(common / "model");
    fixture.Proxy().Ignore("PRINT ''");
    const auto unlimited = [](const UpgradeStep& step) { return !step.limited; };
    const auto first = std::ranges::find_if(steps, unlimited) - steps.begin();
    fixture.Proxy().Arm(static_cast<std::size_t>(first),
                        static_cast<std::size_t>(first + std::ranges::count_if(steps, unlimited) - 1),
                        Fault::Slow);
    RunUpgrade(fixture, common);
    EXPECT_TRUE(fixture.Proxy().Struck());
    EXPECT_EQ(State(fixture), kGood.state);
    EXPECT_EQ(fixture.LogLines(), kGood.log);
    ExpectEvents(fixture, steps);
}

/// The state of a run whose server is gone before the step.
const std::string& StateAt(const std::vector<UpgradeStep>& steps, std::size_t step) {
    return step < steps.size() ? steps[step].ends.state : kGood.state;
}

Outcome WantedOutcome(const std::vector<UpgradeStep>& steps, std::size_t step, Fault fault) {
    switch (fault) {
    case Fault::KillBefore:
        return steps[step].ends;
    case Fault::KillAfter:
        return {StateAt(steps, step + 1), steps[step].ends.log};
    case Fault::CutAfter:
    case Fault::ResetAfter:
    case Fault::HangAfter:
        return steps[step].unanswered ? *steps[step].unanswered : steps[step + 1].fails;
    default:
        return steps[step].fails;
    }
}

void Try(const fs::path& common, const std::vector<UpgradeStep>& steps, std::size_t step, Fault fault) {
    FaultFixture fixture(common / "model");
    fixture.Proxy().Ignore("PRINT ''");
    fixture.Proxy().Arm(step, fault);
    RunUpgrade(fixture, common);
    EXPECT_TRUE(fixture.Proxy().Struck());
    if (fault == Fault::KillBefore || fault == Fault::KillAfter) {
        fixture.RestartServer();
    }
    const Outcome wanted = WantedOutcome(steps, step, fault);
    EXPECT_EQ(State(fixture), wanted.state);
    EXPECT_EQ(fixture.LogLines(), wanted.log);
}

TEST(WholeUpgradeFaults, NeverLoseTheOldRows) {
    const support::TempFolder folder;
    const fs::path common = folder.Path();
    PrepareCommonFiles(common);
    const std::vector<UpgradeStep> steps = AllSteps();
    std::size_t slow = 0;
    std::vector<support::Case> cases = {{"slow statements", [&] { TrySlow(common, steps); }}};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        std::vector<Fault> faults = {Fault::CutBefore, Fault::CutAfter, Fault::KillBefore};
        if (steps[i].limited) {
            faults.push_back(Fault::HangBefore);
        } else {
            ++slow;
        }
        if (EveryFault()) {
            faults.insert(faults.end(), {Fault::ResetBefore, Fault::ResetAfter});
        }
        if (EveryFault() && steps[i].limited) {
            // The query tool goes on after a statement that is refused.
            faults.insert(faults.end(),
                          {Fault::HangAfter, Fault::KillAfter, Fault::RefuseRight, Fault::RefuseRoom});
        }
        for (const Fault fault : faults) {
            cases.push_back(
                {std::string(support::NameOf(fault)) + " at " + std::to_string(i) + " " + steps[i].event,
                 [&, i, fault] { Try(common, steps, i, fault); }});
        }
    }
    support::RunInChildren(cases, kFaultsAtOnce);
    std::printf("unattended upgrade: %zu faults tried at %zu steps\n", cases.size() - 1 + slow, steps.size());
}

} // namespace
} // namespace kv

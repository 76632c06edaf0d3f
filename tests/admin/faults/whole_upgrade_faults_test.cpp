// The whole unattended upgrade with a fault at each statement that is sent to the server: the databases
// afterwards, the log, and that the old rows are not lost.
#include <gtest/gtest.h>

#include "admin/faults/whole_run.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

// Lines of the log.
constexpr char kInfo[] = "CUpgradeDbMgr::GetDatabaseInfo('Batch')";
constexpr char kAbort[] = "modMain::DoAutomaticUpgrade";
constexpr char kRemove[] = "CUpgradeDbMgr::RemoveDatabase('TmpBatchUpgradeDb')";
constexpr char kRename[] = "CUpgradeDbMgr::RenameDatabase('Batch', 'TmpBatchUpgradeDb')";
constexpr char kPackage[] = "CSQLScriptMgr::InstallDTSPackage(0)";
constexpr char kUpgrade[] = "CUpgradeDbMgr::UpgradeDatabase('Batch', 'TmpBatchUpgradeDb')";

const Outcome kGood = {"Batch=2:3 Tmp=1:3 packages=1", {}};

std::vector<RunStep> Information() {
    const Outcome untouched = {"Batch=1:3 Tmp=1:7 packages=0", {kInfo, kAbort}};
    return {{"login", untouched, untouched},
            {"use [Batch] exec sp_helpfile", untouched, untouched, Sender::Program, untouched}};
}

/// If the temporary database of an earlier run is not removed, the old database cannot be renamed to it.
std::vector<RunStep> Removal() {
    const Outcome fails = {"Batch=1:3 Tmp=1:7 packages=1", {kRemove, kRename, kUpgrade}};
    const Outcome ends = {"Batch=1:3 Tmp=1:7 packages=0", {kRemove, kInfo, kRename, kPackage, kUpgrade}};
    Outcome fails_single = fails;
    Outcome ends_single = ends;
    fails_single.state = "Batch=1:3 Tmp=1:7 single packages=1";
    ends_single.state = "Batch=1:3 Tmp=1:7 single packages=0";
    return {{"login", fails, ends},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ALTER "
             "DATABASE [TmpBatchUpgradeDb] SET SINGLE_USER",
             fails, ends},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') ALTER "
             "DATABASE [TmpBatchUpgradeDb] SET MULTI_USER",
             fails_single, ends_single},
            {"IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'TmpBatchUpgradeDb') DROP "
             "DATABASE",
             fails, ends, Sender::Program, Outcome{kGood.state, {kRemove}}}};
}

std::vector<RunStep> Renaming() {
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
            {"use [Batch] exec sp_helpfile", inner_fails, inner_ends, Sender::Program, inner_fails},
            {"login", fails, ends},
            {"use master", fails, ends},
            {"ALTER DATABASE [Batch] SET SINGLE_USER", fails, ends},
            {"ALTER DATABASE [Batch] SET MULTI_USER", fails_single, ends_single},
            {"ALTER DATABASE Batch MODIFY NAME", fails, ends},
            {"ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE", renamed_fails, renamed_ends},
            {"ALTER DATABASE TmpBatchUpgradeDb MODIFY FILE", renamed_fails, renamed_ends},
            {"sp_detach_db", renamed_fails, renamed_ends},
            {"sp_attach_db", detached_fails, detached_ends, Sender::Program, renamed_fails}};
}

/// The statements of the query tool, which begin with its session's options.
std::vector<RunStep> Scripts() {
    const Outcome nothing_fails = {"Batch=none Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome nothing_ends = {"Batch=none Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    const Outcome empty_fails = {"Batch=empty Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome empty_ends = {"Batch=empty Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    const Outcome no_procedures_fails = {"Batch=2:0 Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome unversioned_fails = {"Batch=-:0 Tmp=1:3 packages=1", {kUpgrade}};
    const Outcome unversioned_ends = {"Batch=-:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    return {
        {"login", nothing_fails, nothing_ends, Sender::QueryTool},
        {"SET ANSI_NULLS ON", nothing_fails, nothing_ends, Sender::QueryTool, {}, kGood},
        {"SET QUOTED_IDENTIFIER OFF", nothing_fails, nothing_ends, Sender::QueryTool, {}, kGood},
        {"IF EXISTS", nothing_fails, nothing_ends, Sender::QueryTool, {}, kGood},
        {"CREATE DATABASE", nothing_fails, nothing_ends, Sender::QueryTool},
        {"USE [Batch]", empty_fails, empty_ends, Sender::QueryTool},
        {"CREATE TABLE", empty_fails, empty_ends, Sender::QueryTool},
        // The blank line at the end of every modified script.
        {"", kGood, unversioned_ends, Sender::QueryTool, kGood},
        {"login", no_procedures_fails, unversioned_ends, Sender::QueryTool},
        {"SET ANSI_NULLS ON", no_procedures_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"SET QUOTED_IDENTIFIER OFF", no_procedures_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"IF NOT EXISTS", no_procedures_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"USE [Batch]", no_procedures_fails, unversioned_ends, Sender::QueryTool},
        {"CREATE PROCEDURE spUninstallReplication", no_procedures_fails, unversioned_ends, Sender::QueryTool},
        {"CREATE PROCEDURE spUpgradeDatabase", no_procedures_fails, unversioned_ends, Sender::QueryTool},
        {"", kGood, unversioned_ends, Sender::QueryTool, kGood},
        {"login", unversioned_fails, unversioned_ends, Sender::QueryTool},
        {"SET ANSI_NULLS ON", unversioned_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"SET QUOTED_IDENTIFIER OFF", unversioned_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"IF NOT EXISTS", unversioned_fails, unversioned_ends, Sender::QueryTool, {}, kGood},
        {"USE [Batch]", unversioned_fails, unversioned_ends, Sender::QueryTool},
        {"IF NOT EXISTS", unversioned_fails, unversioned_ends, Sender::QueryTool},
        {"", kGood, {"Batch=2:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}}, Sender::QueryTool, kGood}};
}

/// The first call removes the old package; its failure is not noticed.
std::vector<RunStep> Packages() {
    const Outcome unnoticed = kGood;
    const Outcome fails = {"Batch=2:3 Tmp=1:3 packages=0", {kPackage}};
    const Outcome ends = {"Batch=2:0 Tmp=1:3 packages=0", {kPackage, kUpgrade}};
    return {{"login", unnoticed, ends},
            {"call", unnoticed, ends, Sender::Program, unnoticed},
            {"login", fails, ends},
            {"call", fails, ends, Sender::Program, Outcome{kGood.state, {kPackage}}}};
}

std::vector<RunStep> TakingOver() {
    const Outcome fails = {"Batch=2:0 Tmp=1:3 packages=1", {kUpgrade}};
    return {{"login", fails, fails},
            {"SELECT Value FROM LKConfig", fails, fails},
            {"login", fails, fails},
            {"SELECT Value FROM LKConfig", fails, fails},
            {"spUninstallReplication", fails, fails},
            {"spUpgradeDatabase 1, 2, ", fails, fails, Sender::Program, Outcome{kGood.state, {kUpgrade}}}};
}

std::vector<RunStep> AllSteps() {
    std::vector<RunStep> all;
    for (const auto& part : {Information(), Removal(), Renaming(), Scripts(), Packages(), TakingOver()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
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

void PrepareServer(FaultFixture& fixture) {
    for (const auto& [name, rows] : {std::pair("Batch", 3), std::pair("TmpBatchUpgradeDb", 7)}) {
        fixture.CreateDatabase(
            name, {"CREATE TABLE LKConfig (ParameterName nvarchar(50), Value nvarchar(50))",
                   "INSERT LKConfig VALUES ('DatabaseVersion', '1')", "CREATE TABLE Things (a int)",
                   "DECLARE @i int SET @i = 0 WHILE @i < " + std::to_string(rows) +
                       " BEGIN INSERT Things VALUES (@i) SET @i = @i + 1 END"});
    }
}

TEST(WholeUpgradeFaults, NeverLoseTheOldRows) {
    const support::TempFolder folder;
    PrepareCommonFiles(folder.Path(), {"StdSynchronize.dts"}, PrepareServer);
    const auto arguments = [&](const FaultFixture&) {
        return Lines{"/upgradedb", "/scriptfolder", (folder.Path() / "scripts").string()};
    };
    TryEveryFault({"unattended upgrade", arguments, State, kGood, AllSteps()}, folder.Path());
}

} // namespace
} // namespace kv

// The whole unattended installation with a fault at each statement that is sent to the server: the new
// database, its procedures, the packages and the log afterwards. A script or package that fails does not stop
// the run.
#include <gtest/gtest.h>

#include "admin/faults/whole_run.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

// Lines of the log. A script that fails leaves none.
constexpr char kFirstPackage[] = "CSQLScriptMgr::InstallDTSPackage(0)";
constexpr char kSecondPackage[] = "CSQLScriptMgr::InstallDTSPackage(4)";
const Lines kNoPackage = {kFirstPackage, kSecondPackage};

const Outcome kInstalled = {"Batch=2:0 procedures=2 packages=2", {}};

std::vector<RunStep> Creation() {
    const Outcome nothing_fails = {"Batch=none packages=2", {}};
    const Outcome nothing_ends = {"Batch=none packages=0", kNoPackage};
    const Outcome empty_fails = {"Batch=empty procedures=2 packages=2", {}};
    const Outcome empty_ends = {"Batch=empty procedures=0 packages=0", kNoPackage};
    const Outcome created_ends = {"Batch=-:0 procedures=0 packages=0", kNoPackage};
    return {{"login", nothing_fails, nothing_ends, Sender::QueryTool},
            {"SET ANSI_NULLS ON", nothing_fails, nothing_ends, Sender::QueryTool, {}, kInstalled},
            {"SET QUOTED_IDENTIFIER OFF", nothing_fails, nothing_ends, Sender::QueryTool, {}, kInstalled},
            {"IF EXISTS", nothing_fails, nothing_ends, Sender::QueryTool, {}, kInstalled},
            {"CREATE DATABASE", nothing_fails, nothing_ends, Sender::QueryTool},
            {"USE [Batch]", empty_fails, empty_ends, Sender::QueryTool},
            {"CREATE TABLE", empty_fails, empty_ends, Sender::QueryTool},
            // The blank line at the end of every modified script.
            {"", kInstalled, created_ends, Sender::QueryTool, kInstalled}};
}

std::vector<RunStep> DefaultData() {
    const Outcome fails = {"Batch=-:0 procedures=2 packages=2", {}};
    const Outcome ends = {"Batch=-:0 procedures=0 packages=0", kNoPackage};
    const Outcome inserted_ends = {"Batch=2:0 procedures=0 packages=0", kNoPackage};
    return {{"login", fails, ends, Sender::QueryTool},
            {"SET ANSI_NULLS ON", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"SET QUOTED_IDENTIFIER OFF", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"IF NOT EXISTS", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"USE [Batch]", fails, ends, Sender::QueryTool},
            {"IF NOT EXISTS", fails, ends, Sender::QueryTool},
            {"", kInstalled, inserted_ends, Sender::QueryTool, kInstalled}};
}

std::vector<RunStep> Procedures() {
    const Outcome fails = {"Batch=2:0 procedures=0 packages=2", {}};
    const Outcome ends = {"Batch=2:0 procedures=0 packages=0", kNoPackage};
    const Outcome one_fails = {"Batch=2:0 procedures=1 packages=2", {}};
    const Outcome one_ends = {"Batch=2:0 procedures=1 packages=0", kNoPackage};
    const Outcome all_ends = {"Batch=2:0 procedures=2 packages=0", kNoPackage};
    return {{"login", fails, ends, Sender::QueryTool},
            {"SET ANSI_NULLS ON", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"SET QUOTED_IDENTIFIER OFF", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"IF NOT EXISTS", fails, ends, Sender::QueryTool, {}, kInstalled},
            {"USE [Batch]", fails, ends, Sender::QueryTool},
            {"CREATE PROCEDURE spUninstallReplication", fails, ends, Sender::QueryTool, {}, one_fails},
            {"CREATE PROCEDURE spUpgradeDatabase", one_fails, one_ends, Sender::QueryTool},
            {"", kInstalled, all_ends, Sender::QueryTool, kInstalled}};
}

/// The first call of each package removes an older one; its failure is not noticed.
std::vector<RunStep> PackagesOfInstallation() {
    const Outcome ends = {"Batch=2:0 procedures=2 packages=0", kNoPackage};
    const Outcome first_fails = {"Batch=2:0 procedures=2 packages=1", {kFirstPackage}};
    const Outcome second_fails = {"Batch=2:0 procedures=2 packages=1", {kSecondPackage}};
    const Outcome first_unanswered = {kInstalled.state, {kFirstPackage}};
    const Outcome second_unanswered = {kInstalled.state, {kSecondPackage}};
    return {{"login", kInstalled, ends},
            {"call", kInstalled, ends, Sender::Program, kInstalled},
            {"login", first_fails, ends},
            {"call", first_fails, ends, Sender::Program, first_unanswered},
            {"login", kInstalled, second_fails},
            {"call", kInstalled, second_fails, Sender::Program, kInstalled},
            {"login", second_fails, second_fails},
            {"call", second_fails, second_fails, Sender::Program, second_unanswered}};
}

std::vector<RunStep> StepsOfInstallation() {
    std::vector<RunStep> all;
    for (const auto& part : {Creation(), DefaultData(), Procedures(), PackagesOfInstallation()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::string StateOfInstallation(FaultFixture& fixture) {
    std::string state = "Batch=" + DatabaseState(fixture, "Batch");
    if (fixture.HasDatabase("Batch")) {
        state +=
            " procedures=" + fixture.AskOne("Batch", "SELECT COUNT(*) FROM sysobjects WHERE xtype = 'P'");
    }
    return state + " packages=" + fixture.AskOne("master", "SELECT COUNT(*) FROM msdb.dbo.sysdtspackages");
}

TEST(WholeInstallFaults, LeaveEverythingElseInstalled) {
    const support::TempFolder folder;
    PrepareCommonFiles(folder.Path(), {"StdSynchronize.dts", "BatchSummaryExport.dts"}, [](FaultFixture&) {});
    const auto arguments = [&](const FaultFixture& fixture) {
        return Lines{"/installdb",    "/installdts",
                     "/scriptfolder", (folder.Path() / "scripts").string(),
                     "/server",       fixture.ServerName(),
                     "/user",         "sa",
                     "/password",     "Test-1",
                     "/sqldatapath",  fixture.DataFolder().string()};
    };
    TryEveryFault(
        {"unattended installation", arguments, StateOfInstallation, kInstalled, StepsOfInstallation()},
        folder.Path());
}

} // namespace
} // namespace kv

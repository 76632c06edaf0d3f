// A whole unattended run on a development server, with a fault at each statement that is sent to the server.
// As in real use, the program and its query tool are processes of their own, in a folder of their own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "admin/faults/fault_fixture.h"

namespace kv {

/// The state of the server after a run, and the lines of the log.
struct Outcome {
    std::string state;
    Lines log;
};

enum class Sender : std::uint8_t {
    Program,  ///< sets a time limit for everything that it sends
    QueryTool ///< sets one for the login only
};

/// A statement that is sent to the server, and the outcomes of faults at it.
struct RunStep {
    const char* event;               ///< the beginning of the statement
    Outcome fails;                   ///< if this statement fails and the server keeps running
    Outcome ends;                    ///< if the server ends before the statement
    Sender sender = Sender::Program; ///< the process that sends it
    /// The outcome if the statement runs and its answer is lost. If it is not set, it is the outcome of a
    /// failure of the next step.
    std::optional<Outcome> unanswered{};
    /// The outcome if the server refuses the statement and the connection stays. If it is not set, it is
    /// `fails`.
    std::optional<Outcome> refused{};
};

struct WholeRun {
    const char* name;
    /// The words of the command line.
    std::function<Lines(const FaultFixture&)> arguments;
    /// Describes the state of the server.
    std::function<std::string(FaultFixture&)> state;
    Outcome good; ///< of a run without a fault
    std::vector<RunStep> steps;
};

/// Makes the files that all runs have in common: the programs, small scripts written for these tests, the
/// packages with these file names and, in "model", the server. The scripts create the database Batch at
/// version 2, without rows, and the procedures spUninstallReplication and spUpgradeDatabase in it.
void PrepareCommonFiles(const std::filesystem::path& common, const Lines& packages,
                        const std::function<void(FaultFixture&)>& prepare_server);

/// "none", "empty" if there are no tables, else "version:rows"; and " single" if it is in single-user mode.
std::string DatabaseState(const FaultFixture& fixture, const std::string& name);

/// Runs once with slow statements of the query tool and once for each fault at each step, several at a time,
/// and prints the number of faults.
void TryEveryFault(const WholeRun& run, const std::filesystem::path& common);

} // namespace kv

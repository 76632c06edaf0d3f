// DoAutomaticInstall: what /installdb, /installsp and /installdts run, with no operator present.
#pragma once

#include <string>

namespace kv {

/// Prepares the scripts, runs them through the query tool and stores the packages, all on one server, in a
/// fixed order. Returns when the run is over, whatever its outcome: a failure is one line of the log, nothing
/// is undone, and what the query tool said stands in its output files in the folder Data. `InstallDb` implies
/// `InstallSp`.
void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server, const std::string& User,
                        const std::string& Password, const std::string& SQLDataPath, bool InstallDb,
                        bool InstallSp, bool InstallDts);

} // namespace kv

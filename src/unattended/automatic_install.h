// DoAutomaticInstall: the unattended run of /installdb, /installsp and /installdts.
#pragma once

#include <string>

namespace kv {

/// Creates the modified scripts, runs them with the query tool and installs the packages, all on one server
/// and in a fixed order. Returns when the run is over, whatever its outcome: a failure is logged as one line,
/// nothing is undone, and the query tool's messages are in its output files in the folder Data. The caller
/// sets `InstallSp` whenever it sets `InstallDb`.
void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server, const std::string& User,
                        const std::string& Password, const std::string& SQLDataPath, bool InstallDb,
                        bool InstallSp, bool InstallDts);

} // namespace kv

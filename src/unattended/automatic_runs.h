// The unattended runs: DoAutomaticInstall for /installdb, /installsp and /installdts, DoAutomaticUpgrade for
// /upgradedb.
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

/// Renames the database "Batch", on the server that the registry names, to "TmpBatchUpgradeDb", builds a new
/// one from the scripts in the folder of the old data file, and copies the old data into it. Returns when the
/// run is over, whatever its outcome: a failure is logged as one line and nothing is undone. The old data
/// stay in the temporary database until the next run, whose first step removes it. So if a run fails after it
/// has created the new database, the next run loses the old data. A run that starts while another one is
/// running changes nothing, says so in the status window and fails.
void DoAutomaticUpgrade(const std::string& strScriptFolder);

} // namespace kv

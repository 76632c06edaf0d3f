// The two unattended runs: DoAutomaticInstall for the arguments /installdb, /installsp and /installdts, and
// DoAutomaticUpgrade for /upgradedb.
#pragma once

#include <string>

namespace kv {

/// Creates the modified scripts, runs them with the query tool and installs the packages, all on one server
/// and in a fixed order. The flags select the database, the stored procedures and the DTS packages; the
/// caller sets `InstallSp` whenever it sets `InstallDb`. `SQLDataPath` is the server's folder for the
/// database's files. Returns when the run is over, whatever its outcome: a failure is logged as one line,
/// nothing is undone, and the query tool's messages are in its output files in the folder Data.
void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server, const std::string& User,
                        const std::string& Password, const std::string& SQLDataPath, bool InstallDb,
                        bool InstallSp, bool InstallDts);

/// Renames the database "Batch", on the server that the registry names, to "TmpBatchUpgradeDb". Then builds a
/// new database "Batch" with the scripts of `strScriptFolder` and copies the old data into it. The files of
/// both databases are in the folder of the old data file. Returns when the run is over, whatever its outcome:
/// a failure is logged as one line and nothing is undone. The old data stay in the temporary database until
/// the next run, whose first step removes that. So if a run fails after it has created the new database, the
/// next run loses the old data. A run that starts while another one is running changes nothing: it shows a
/// text in the status window and fails.
void DoAutomaticUpgrade(const std::string& strScriptFolder);

} // namespace kv

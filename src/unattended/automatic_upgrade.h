// DoAutomaticUpgrade: what /upgradedb runs, with no operator present.
#pragma once

#include <string>

namespace kv {

/// Takes the database "Batch" of the server that the registry names out of the way under the name
/// "TmpBatchUpgradeDb", builds a new one from the scripts where the old one's data file lay, and has it take
/// the old data over. Returns when the run is over, whatever its outcome: a failure is one line of the log
/// and nothing is undone. The old data stay under the temporary name until the next run removes them first of
/// all: a run after one that failed after the creation of the new database loses them. A run that starts
/// while another one runs changes nothing, reports it in the window and fails.
void DoAutomaticUpgrade(const std::string& strScriptFolder);

} // namespace kv

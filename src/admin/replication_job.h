// How two of the manager classes tell whether a server replicates, and the statements that switch
// replication.
#pragma once

#include "managers/database_manager.h"

namespace kv {

inline constexpr char kInstallReplication[] = "exec spInstallReplication";
inline constexpr char kUninstallReplication[] = "exec spUninstallReplication";

/// True if the server has a distribution job, whatever database it serves.
bool ServerHasReplicationJob(Operation& operation);

} // namespace kv

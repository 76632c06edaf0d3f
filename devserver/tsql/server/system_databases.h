// The databases that every server has: master, model, msdb and tempdb.
#pragma once

#include <filesystem>

#include "devserver/engine/engine.h"

namespace devsql {

class Server;

/// Makes those that are missing, empties tempdb, and enters the logins and the server's own name into master.
void CreateSystemDatabases(const EngineOptions& options);

/// Runs the T-SQL that belongs in master and msdb, once for each version of it.
void RunBootstrap(Server& server);

/// Writes every write-ahead log that is left over back into its database file. SQLite does it when the last
/// connection closes a file, but not when two close at the same moment.
void SettleFiles(const std::filesystem::path& master);

} // namespace devsql

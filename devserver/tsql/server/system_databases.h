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

/// Brings every write-ahead log back into its file: two sessions that close a file at once both leave it.
void SettleFiles(const std::filesystem::path& master);

} // namespace devsql

// CSQLReplicationMgr: switches transactional replication on and off and tells whether it is on. What
// replication is lies in stored procedures of the database.
#pragma once

#include <string>

#include "managers/database_manager.h"

namespace kv {

/// Every operation gives true if it ran to its end. A failure is one line of the log and what the server
/// reported in the object's errors.
class CSQLReplicationMgr : public DatabaseManager {
  public:
    CSQLReplicationMgr() : DatabaseManager("CSQLReplicationMgr") {}

    /// `blnReplicationIsInstalled` is the answer where the result is true, and false otherwise. It speaks of
    /// the whole server: the database says only where the connection goes.
    bool IsReplicationInstalled(const std::string& strDbName, bool& blnReplicationIsInstalled);
    bool InstallReplication(const std::string& strDbName);
    bool UninstallReplication(const std::string& strDbName);
};

} // namespace kv

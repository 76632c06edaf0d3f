// CSQLReplicationMgr: installs and uninstalls transactional replication, and finds out whether it is
// installed. Stored procedures of the database do the work.
#pragma once

#include <string>

#include "managers/database_manager.h"

namespace kv {

/// The statements that install and uninstall replication.
inline constexpr char kInstallReplication[] = "exec spInstallReplication";
inline constexpr char kUninstallReplication[] = "exec spUninstallReplication";

/// True if the server has a job that distributes a database's changes, whichever database that is.
bool ServerHasReplicationJob(Operation& operation);

/// Every operation returns true if it ran to its end. A failure is logged as one line, and the server's
/// errors are kept in the object.
class CSQLReplicationMgr : public DatabaseManager {
  public:
    CSQLReplicationMgr() : DatabaseManager("CSQLReplicationMgr") {}

    /// Stores in `blnReplicationIsInstalled` whether the server replicates any database; false if the
    /// operation fails. `strDbName` is only the database that the connection opens.
    bool IsReplicationInstalled(const std::string& strDbName, bool& blnReplicationIsInstalled);
    bool InstallReplication(const std::string& strDbName);
    bool UninstallReplication(const std::string& strDbName);
};

} // namespace kv

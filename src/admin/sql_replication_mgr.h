// CSQLReplicationMgr: installs and uninstalls transactional replication and reports whether it is installed.
// The work is done by stored procedures of the database.
#pragma once

#include <string>

#include "managers/database_manager.h"

namespace kv {

inline constexpr char kInstallReplication[] = "exec spInstallReplication";
inline constexpr char kUninstallReplication[] = "exec spUninstallReplication";

/// True if the server has a distribution job, for whichever database.
bool ServerHasReplicationJob(Operation& operation);

/// Every operation returns true if it ran to its end. A failure is logged as one line, and the server's
/// errors are kept in the object.
class CSQLReplicationMgr : public DatabaseManager {
  public:
    CSQLReplicationMgr() : DatabaseManager("CSQLReplicationMgr") {}

    /// `blnReplicationIsInstalled` is the answer if the result is true, and false otherwise. It is about the
    /// whole server: the database is only the one that the connection opens.
    bool IsReplicationInstalled(const std::string& strDbName, bool& blnReplicationIsInstalled);
    bool InstallReplication(const std::string& strDbName);
    bool UninstallReplication(const std::string& strDbName);
};

} // namespace kv

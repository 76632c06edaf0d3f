// CSynchronizeDbMgr: brings a database of the other server of the pair up to one of the selected server. The
// work lies in a stored procedure of the source database.
#pragma once

#include <string>
#include <vector>

#include "admin/database_catalogue.h"

namespace kv {

/// Every operation gives true if it ran to its end. A failure is one line of the log and what the server
/// reported in the object's errors; nothing is undone.
class CSynchronizeDbMgr : public CatalogueManager {
  public:
    CSynchronizeDbMgr() : CatalogueManager("CSynchronizeDbMgr") {}

    /// As CUpgradeDbMgr has them.
    bool GetDatabases(std::vector<std::string>& arrDatabase);
    bool GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                         std::string& strDataFilePath, std::string& strLogFileName,
                         std::string& strLogFilePath);
    /// From `strSourceDb` on the selected server to `strDestDb` on the other. If the source server replicates
    /// anything, replication is taken off before and put back behind; a failure in between leaves it off.
    bool Synchronize(const std::string& strSourceDb, const std::string& strDestDb);

  private:
    /// The call of the stored procedure with the logins of both servers.
    std::string SynchronizeStatement(const std::string& strSourceDb, const std::string& strDestDb) const;
};

} // namespace kv

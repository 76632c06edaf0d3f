// CSynchronizeDbMgr: copies the data of a database on the selected server to a database on the other server
// of the pair. A stored procedure of the source database does the work.
#pragma once

#include <string>
#include <vector>

#include "admin/database_catalogue.h"

namespace kv {

/// Every operation returns true if it ran to its end. A failure is logged as one line, and the server's
/// errors are kept in the object; nothing is undone.
class CSynchronizeDbMgr : public CatalogueManager {
  public:
    CSynchronizeDbMgr() : CatalogueManager("CSynchronizeDbMgr") {}

    // These two do the same as those of CUpgradeDbMgr.

    bool GetDatabases(std::vector<std::string>& arrDatabase);
    bool GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                         std::string& strDataFilePath, std::string& strLogFileName,
                         std::string& strLogFilePath);
    /// Copies from `strSourceDb` on the selected server to `strDestDb` on the other. If the source server
    /// replicates any database, replication is uninstalled before the copying and installed again after it.
    /// After a failure in between it stays uninstalled.
    bool Synchronize(const std::string& strSourceDb, const std::string& strDestDb);

  private:
    /// Returns the statement that calls the stored procedure, with the logins of both servers.
    std::string SynchronizeStatement(const std::string& strSourceDb, const std::string& strDestDb) const;
};

} // namespace kv

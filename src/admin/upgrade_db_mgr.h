// CUpgradeDbMgr: lists, removes, renames and upgrades databases on the selected server. Knows no window.
#pragma once

#include <string>
#include <vector>

#include "admin/database_catalogue.h"

namespace kv {

/// Every operation returns true if it ran to its end. A failure is logged as one line, and the server's
/// errors are kept in the object; nothing is undone.
class CUpgradeDbMgr : public CatalogueManager {
  public:
    CUpgradeDbMgr() : CatalogueManager("CUpgradeDbMgr") {}

    /// Returns the names of all databases, in the server's order, from element 1 on; element 0 is empty.
    bool GetDatabases(std::vector<std::string>& arrDatabase);
    /// Returns the logical names and the full paths of the database's first two files. After a failure the
    /// arguments keep the values that were already read.
    bool GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                         std::string& strDataFilePath, std::string& strLogFileName,
                         std::string& strLogFilePath);
    /// Disconnects every user of the database and drops it. Succeeds if the database does not exist.
    bool RemoveDatabase(const std::string& strDbName);
    /// Renames the database and its logical files, and moves its physical files to new names in the data path
    /// (SQLDataPath) of the selected server. Works only if this machine can reach the server's paths.
    bool RenameDatabase(const std::string& strDbName, const std::string& strNewDbName);
    /// Copies the data of the older database `strSourceDBName` into the newer database `strDbName`. Fails
    /// unless the version of `strDbName` is higher than that of `strSourceDBName`. A stored procedure does
    /// the copying.
    bool UpgradeDatabase(const std::string& strDbName, const std::string& strSourceDBName);
};

} // namespace kv

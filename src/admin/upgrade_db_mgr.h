// CUpgradeDbMgr: lists, removes, renames and upgrades databases on the selected server. Knows no window.
#pragma once

#include <string>
#include <vector>

#include "admin/database_catalogue.h"

namespace kv {

/// Every operation gives true if it ran to its end. A failure is one line of the log and what the server
/// reported in the object's errors; nothing is undone.
class CUpgradeDbMgr : public CatalogueManager {
  public:
    CUpgradeDbMgr() : CatalogueManager("CUpgradeDbMgr") {}

    /// The names of all databases, in the server's order, from element 1 on; element 0 is empty.
    bool GetDatabases(std::vector<std::string>& arrDatabase);
    /// Logical names and whole paths of the database's first two files. What was read before a failure stays.
    bool GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                         std::string& strDataFilePath, std::string& strLogFileName,
                         std::string& strLogFilePath);
    /// Throws everybody out of the database and drops it. One that is not there is a success.
    bool RemoveDatabase(const std::string& strDbName);
    /// Renames the database, its logical files and its physical files, which move to the data path of the
    /// selected server. Works only where this machine reaches the server's paths.
    bool RenameDatabase(const std::string& strDbName, const std::string& strNewDbName);
    /// Has the newer database `strDbName` take over the data of the older `strSourceDBName`.
    bool UpgradeDatabase(const std::string& strDbName, const std::string& strSourceDBName);
};

} // namespace kv

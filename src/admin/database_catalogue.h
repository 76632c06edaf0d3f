// The base of the managers that list databases: the steps of GetDatabases and GetDatabaseInfo, which
// CUpgradeDbMgr and CSynchronizeDbMgr both have.
#pragma once

#include <string>
#include <vector>

#include "managers/database_manager.h"

namespace kv {

/// Where to store the logical names and full physical paths of a database's first two files. The first is
/// taken to be the data file and the second the log, without checking.
struct DatabaseFiles {
    std::string& data_file_name;
    std::string& data_file_path;
    std::string& log_file_name;
    std::string& log_file_path;
};

class CatalogueManager : public DatabaseManager {
  protected:
    using DatabaseManager::DatabaseManager;
    ~CatalogueManager() = default;

    /// Fills the array with the databases that `statement` lists, from element 1 on; element 0 stays empty.
    bool ListDatabases(const char* statement, std::vector<std::string>& arrDatabase);
    bool ReadDatabaseInfo(const std::string& strDbName, const DatabaseFiles& files);
};

} // namespace kv

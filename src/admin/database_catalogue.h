// The base of CUpgradeDbMgr and CSynchronizeDbMgr: lists databases and finds their files. Both classes have
// these operations, under the names GetDatabases and GetDatabaseInfo.
#pragma once

#include <string>
#include <vector>

#include "managers/database_manager.h"

namespace kv {

/// The variables that receive the logical names and the full physical paths of a database's first two files.
/// The first file counts as the data file and the second as the log; this is not checked.
struct DatabaseFiles {
    std::string& data_file_name;
    std::string& data_file_path;
    std::string& log_file_name;
    std::string& log_file_path;
};

/// The shared operations. They return true if they ran to their end; a failure is logged.
class CatalogueManager : public DatabaseManager {
  protected:
    using DatabaseManager::DatabaseManager;
    ~CatalogueManager() = default;

    /// Fills the array with the names of the databases that `statement` lists, from element 1 on; element 0
    /// is empty.
    bool ListDatabases(const char* statement, std::vector<std::string>& arrDatabase);
    /// Finds the files of the database. After a failure the variables keep the values that were already read.
    bool ReadDatabaseInfo(const std::string& strDbName, const DatabaseFiles& files);
};

} // namespace kv

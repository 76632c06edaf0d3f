// What the selected server holds: the steps of GetDatabases and GetDatabaseInfo, which two classes have.
#pragma once

#include <string>
#include <vector>

#include "managers/database_manager.h"

namespace kv {

/// The logical names and the whole physical paths of a database's first two files, which are taken for its
/// data and its log without a look at what they are.
struct DatabaseFiles {
    std::string& data_file_name;
    std::string& data_file_path;
    std::string& log_file_name;
    std::string& log_file_path;
};

/// The base of the two classes, there to be written once.
class CatalogueManager : public DatabaseManager {
  protected:
    using DatabaseManager::DatabaseManager;
    ~CatalogueManager() = default;

    /// Fills the array with the databases that `statement` lists, from element 1 on; element 0 stays empty.
    bool ListDatabases(const char* statement, std::vector<std::string>& arrDatabase);
    bool ReadDatabaseInfo(const std::string& strDbName, const DatabaseFiles& files);
};

} // namespace kv

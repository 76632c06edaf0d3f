// The server's list of databases and logins, kept in tables of master's file; master is SQLite's "main" of
// every connection. Knows nothing of sessions.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/value.h"
#include "devserver/storage/sqlite.h"

namespace devsql {

struct DatabaseFile {
    int id = 0; ///< 1 the primary data file, 2 the first log
    std::string name;
    std::string client_path;    ///< as the client wrote it
    std::filesystem::path path; ///< where it lies
    bool log = false;
    std::string file_group; ///< "PRIMARY"; empty for logs
    std::string size;       ///< as asked for: "20480 KB"
    std::string max_size;   ///< "Unlimited"
    std::string growth;     ///< "10%", "5120 KB"
};

struct DatabaseInfo {
    int id = 0;
    std::string name;
    std::string owner;
    std::int64_t created = 0; ///< as a datetime stands in SQLite
    std::vector<DatabaseFile> files;
    std::map<std::string, std::string> options; ///< upper case: "RECOVERY" "SIMPLE", "SINGLE_USER" "ON"

    const DatabaseFile& DataFile() const { return files.front(); }
    bool Option(const std::string& name) const;
};

/// Makes the tables in master's file if they do not exist.
void CreateDatabaseList(SqliteConnection& connection);
std::optional<DatabaseInfo> FindDatabase(SqliteConnection& connection, std::string_view name);
/// By id.
std::vector<DatabaseInfo> ListDatabases(SqliteConnection& connection);
/// Adds the database under the lowest free id, and returns the id.
int AddDatabase(SqliteConnection& connection, DatabaseInfo database);
void RemoveDatabase(SqliteConnection& connection, int id);
/// Name, owner and files.
void UpdateDatabase(SqliteConnection& connection, const DatabaseInfo& database);
/// Stores one option of the database and leaves the others as they are.
void StoreOption(SqliteConnection& connection, int id, std::string_view option, std::string_view value);

struct LoginInfo {
    std::string name;
    std::string password_hash; ///< empty: of the logins file
    std::string database;
    bool administrator = false;
};
std::optional<LoginInfo> FindLogin(SqliteConnection& connection, std::string_view name);
void SaveLogin(SqliteConnection& connection, const LoginInfo& login);
void RemoveLogin(SqliteConnection& connection, std::string_view name);

/// A salted hash of the password, and its check.
std::string HashPassword(std::string_view password);
bool PasswordMatches(std::string_view password, std::string_view hash);

} // namespace devsql

// The server's list of databases and logins, kept in tables of master's file. Every connection to SQLite has
// master as its main file ("main"). Every function can throw StorageError. Knows nothing of sessions.
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
    int id = 0; ///< 1 for the primary data file, 2 for the first log
    std::string name;
    std::string client_path;    ///< as the client wrote it
    std::filesystem::path path; ///< the file's path on this machine
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
    std::int64_t created = 0; ///< in the form of a datetime in SQLite, see codec.h
    std::vector<DatabaseFile> files;
    /// Values by name, both in upper case: "RECOVERY" has "SIMPLE", "SINGLE_USER" has "ON".
    std::map<std::string, std::string> options;

    const DatabaseFile& DataFile() const { return files.front(); }
    /// True if the option has the value "ON".
    bool Option(const std::string& name) const;
};

/// Makes the tables in master's file if they do not exist.
void CreateDatabaseList(SqliteConnection& connection);
std::optional<DatabaseInfo> FindDatabase(SqliteConnection& connection, std::string_view name);
/// All databases in the order of their ids.
std::vector<DatabaseInfo> ListDatabases(SqliteConnection& connection);
/// Adds the database under the lowest free id, and returns the id.
int AddDatabase(SqliteConnection& connection, DatabaseInfo database);
void RemoveDatabase(SqliteConnection& connection, int id);
/// Stores the name, the owner and the list of files anew. The options stay as they are.
void UpdateDatabase(SqliteConnection& connection, const DatabaseInfo& database);
/// Stores one option of the database and leaves the others as they are.
void StoreOption(SqliteConnection& connection, int id, std::string_view option, std::string_view value);

struct LoginInfo {
    std::string name;
    std::string password_hash; ///< empty for a login of the logins file, which holds its password
    std::string database;      ///< the default database; empty: master
    bool administrator = false;
};
std::optional<LoginInfo> FindLogin(SqliteConnection& connection, std::string_view name);
/// Adds the login, or replaces it.
void SaveLogin(SqliteConnection& connection, const LoginInfo& login);
void RemoveLogin(SqliteConnection& connection, std::string_view name);

/// "SALT:HASH", a new salt and the SHA-256 of salt and password; PasswordMatches checks a password with it.
std::string HashPassword(std::string_view password);
bool PasswordMatches(std::string_view password, std::string_view hash);

} // namespace devsql

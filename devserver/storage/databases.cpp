// The tables of databases, files, options and logins in master's file. See databases.h.
#include "devserver/storage/databases.h"

#include <random>

#include "devserver/storage/paths.h"
#include "devserver/system/digest.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_time.h"

namespace devsql {
namespace {

constexpr const char* kTables = R"(
CREATE TABLE IF NOT EXISTS devsql_databases(id INTEGER PRIMARY KEY, name TEXT COLLATE TSQL UNIQUE, owner TEXT,
    created INTEGER);
CREATE TABLE IF NOT EXISTS devsql_files(database INTEGER, id INTEGER, name TEXT, client_path TEXT, path TEXT,
    log INTEGER, file_group TEXT, size TEXT, max_size TEXT, growth TEXT, PRIMARY KEY(database, id));
CREATE TABLE IF NOT EXISTS devsql_options(database INTEGER, name TEXT, value TEXT, PRIMARY KEY(database, name));
CREATE TABLE IF NOT EXISTS devsql_logins(name TEXT COLLATE TSQL PRIMARY KEY, hash TEXT, database TEXT,
    administrator INTEGER, created INTEGER, sid BLOB);
CREATE TABLE IF NOT EXISTS devsql_servers(id INTEGER PRIMARY KEY, name TEXT COLLATE TSQL UNIQUE, product TEXT,
    provider TEXT, source TEXT, subscriber INTEGER, publisher INTEGER, distributor INTEGER, login TEXT, password TEXT);
)";

DatabaseInfo ReadDatabase(SqliteConnection& connection, const SqliteStatement& row) {
    DatabaseInfo info;
    info.id = static_cast<int>(row.Int(0));
    info.name = row.Text(1);
    info.owner = row.Text(2);
    info.created = row.Int(3);
    SqliteStatement file =
        connection.Prepare("SELECT id, name, client_path, path, log, file_group, size, max_size, "
                           "growth FROM devsql_files WHERE database = ?1 ORDER BY id");
    file.BindInt(1, info.id);
    while (file.Step()) {
        info.files.push_back({static_cast<int>(file.Int(0)), file.Text(1), file.Text(2), PathOf(file.Text(3)),
                              file.Int(4) != 0, file.Text(5), file.Text(6), file.Text(7), file.Text(8)});
    }
    SqliteStatement option = connection.Prepare("SELECT name, value FROM devsql_options WHERE database = ?1");
    option.BindInt(1, info.id);
    while (option.Step()) {
        info.options[option.Text(0)] = option.Text(1);
    }
    return info;
}

/// The local time in the form of a datetime, see codec.h.
std::int64_t NowTicks() {
    const DateTime now = Now();
    return std::int64_t{now.days} * kTicksPerDay + now.ticks;
}

} // namespace

bool DatabaseInfo::Option(const std::string& option) const {
    const auto found = options.find(option);
    return found != options.end() && found->second == "ON";
}

void CreateDatabaseList(SqliteConnection& connection) {
    connection.Execute(kTables);
}

std::optional<DatabaseInfo> FindDatabase(SqliteConnection& connection, std::string_view name) {
    SqliteStatement row =
        connection.Prepare("SELECT id, name, owner, created FROM devsql_databases WHERE name = ?1");
    row.BindText(1, name);
    return row.Step() ? std::optional(ReadDatabase(connection, row)) : std::nullopt;
}

std::vector<DatabaseInfo> ListDatabases(SqliteConnection& connection) {
    std::vector<DatabaseInfo> list;
    SqliteStatement row =
        connection.Prepare("SELECT id, name, owner, created FROM devsql_databases ORDER BY id");
    while (row.Step()) {
        list.push_back(ReadDatabase(connection, row));
    }
    return list;
}

int AddDatabase(SqliteConnection& connection, DatabaseInfo database) {
    connection.Execute("SAVEPOINT add_database");
    SqliteStatement free =
        connection.Prepare("SELECT min(id) + 1 FROM (SELECT 0 AS id UNION SELECT id FROM devsql_databases) "
                           "WHERE id + 1 NOT IN (SELECT id FROM devsql_databases)");
    free.Step();
    database.id = static_cast<int>(free.Int(0));
    free.Reset();
    try {
        connection.Prepare("INSERT INTO devsql_databases VALUES(?1, ?2, ?3, ?4)")
            .BindInt(1, database.id)
            .BindText(2, database.name)
            .BindText(3, database.owner)
            .BindInt(4, NowTicks())
            .Run();
        UpdateDatabase(connection, database);
        for (const auto& [option, value] : database.options) {
            StoreOption(connection, database.id, option, value);
        }
    } catch (...) {
        connection.Execute("ROLLBACK TO add_database; RELEASE add_database");
        throw;
    }
    connection.Execute("RELEASE add_database");
    return database.id;
}

void RemoveDatabase(SqliteConnection& connection, int id) {
    const std::string number = std::to_string(id);
    connection.Execute("SAVEPOINT remove_database; DELETE FROM devsql_databases WHERE id = " + number +
                       "; DELETE FROM devsql_files WHERE database = " + number +
                       "; DELETE FROM devsql_options WHERE database = " + number +
                       "; RELEASE remove_database");
}

void StoreOption(SqliteConnection& connection, int id, std::string_view option, std::string_view value) {
    connection.Prepare("INSERT OR REPLACE INTO devsql_options VALUES(?1, ?2, ?3)")
        .BindInt(1, id)
        .BindText(2, option)
        .BindText(3, value)
        .Run();
}

void UpdateDatabase(SqliteConnection& connection, const DatabaseInfo& database) {
    connection.Execute("SAVEPOINT update_database");
    try {
        connection.Prepare("UPDATE devsql_databases SET name = ?2, owner = ?3 WHERE id = ?1")
            .BindInt(1, database.id)
            .BindText(2, database.name)
            .BindText(3, database.owner)
            .Run();
        connection.Prepare("DELETE FROM devsql_files WHERE database = ?1").BindInt(1, database.id).Run();
        for (const DatabaseFile& file : database.files) {
            connection.Prepare("INSERT INTO devsql_files VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)")
                .BindInt(1, database.id)
                .BindInt(2, file.id)
                .BindText(3, file.name)
                .BindText(4, file.client_path)
                .BindText(5, Utf8(file.path))
                .BindInt(6, file.log)
                .BindText(7, file.file_group)
                .BindText(8, file.size)
                .BindText(9, file.max_size)
                .BindText(10, file.growth)
                .Run();
        }
    } catch (...) {
        connection.Execute("ROLLBACK TO update_database; RELEASE update_database");
        throw;
    }
    connection.Execute("RELEASE update_database");
}

std::optional<LoginInfo> FindLogin(SqliteConnection& connection, std::string_view name) {
    SqliteStatement row =
        connection.Prepare("SELECT name, hash, database, administrator FROM devsql_logins WHERE name = ?1");
    row.BindText(1, name);
    if (!row.Step()) {
        return std::nullopt;
    }
    return LoginInfo{row.Text(0), row.Text(1), row.Text(2), row.Int(3) != 0};
}

void SaveLogin(SqliteConnection& connection, const LoginInfo& login) {
    connection
        .Prepare("INSERT INTO devsql_logins VALUES(?1, ?2, ?3, ?4, ?5, CASE WHEN ?1 = 'sa' THEN x'01' ELSE "
                 "randomblob(16) END) ON CONFLICT(name) DO UPDATE SET hash = ?2, database = ?3, "
                 "administrator = ?4")
        .BindText(1, login.name)
        .BindText(2, login.password_hash)
        .BindText(3, login.database)
        .BindInt(4, login.administrator)
        .BindInt(5, NowTicks())
        .Run();
}

void RemoveLogin(SqliteConnection& connection, std::string_view name) {
    connection.Prepare("DELETE FROM devsql_logins WHERE name = ?1").BindText(1, name).Run();
}

std::string HashPassword(std::string_view password) {
    std::random_device random;
    const std::string salt = std::to_string(random()) + std::to_string(random());
    return salt + ":" + HexText(system::Sha256(salt + std::string(password)));
}

bool PasswordMatches(std::string_view password, std::string_view hash) {
    const std::size_t colon = hash.find(':');
    return colon != std::string_view::npos &&
           HexText(system::Sha256(std::string(hash.substr(0, colon)) + std::string(password))) ==
               hash.substr(colon + 1);
}

} // namespace devsql

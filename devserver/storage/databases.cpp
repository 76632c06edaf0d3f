#include "devserver/storage/databases.h"

#include <array>
#include <bit>
#include <random>

#include "devserver/storage/paths.h"
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

std::int64_t NowTicks() {
    const DateTime now = Now();
    return std::int64_t{now.days} * kTicksPerDay + now.ticks;
}

// ------------------------------------------------------------------ SHA-256 (FIPS 180-4)

using Digest = std::array<std::uint32_t, 8>;

/// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

void HashBlock(Digest& digest, const unsigned char* block) {
    std::array<std::uint32_t, 64> w{};
    for (std::size_t i = 0; i < 16; ++i) {
        w[i] = static_cast<std::uint32_t>(block[4 * i] << 24 | block[4 * i + 1] << 16 |
                                          block[4 * i + 2] << 8 | block[4 * i + 3]);
    }
    for (std::size_t i = 16; i < 64; ++i) {
        const std::uint32_t a = w[i - 15];
        const std::uint32_t b = w[i - 2];
        w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
    }
    Digest v = digest;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t s1 = std::rotr(v[4], 6) ^ std::rotr(v[4], 11) ^ std::rotr(v[4], 25);
        const std::uint32_t t1 = v[7] + s1 + ((v[4] & v[5]) ^ (~v[4] & v[6])) + kRound[i] + w[i];
        const std::uint32_t s0 = std::rotr(v[0], 2) ^ std::rotr(v[0], 13) ^ std::rotr(v[0], 22);
        const std::uint32_t t2 = s0 + ((v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]));
        v = {t1 + t2, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
    }
    for (std::size_t i = 0; i < 8; ++i) {
        digest[i] += v[i];
    }
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

void UpdateDatabase(SqliteConnection& connection, const DatabaseInfo& database) {
    connection.Execute("SAVEPOINT update_database");
    try {
        connection.Prepare("UPDATE devsql_databases SET name = ?2, owner = ?3 WHERE id = ?1")
            .BindInt(1, database.id)
            .BindText(2, database.name)
            .BindText(3, database.owner)
            .Run();
        for (const char* text : {"DELETE FROM devsql_files WHERE database = ?1",
                                 "DELETE FROM devsql_options WHERE database = ?1"}) {
            connection.Prepare(text).BindInt(1, database.id).Run();
        }
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
        for (const auto& [name, value] : database.options) {
            connection.Prepare("INSERT INTO devsql_options VALUES(?1, ?2, ?3)")
                .BindInt(1, database.id)
                .BindText(2, name)
                .BindText(3, value)
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

std::string Sha256(std::string text) {
    const std::uint64_t bits = text.size() * 8;
    text += '\x80';
    while (text.size() % 64 != 56) {
        text += '\0';
    }
    for (int shift = 56; shift >= 0; shift -= 8) {
        text += static_cast<char>(bits >> shift & 0xFF);
    }
    Digest digest = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                     0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    for (std::size_t at = 0; at < text.size(); at += 64) {
        HashBlock(digest, reinterpret_cast<const unsigned char*>(text.data() + at));
    }
    std::string hex;
    for (const std::uint32_t word : digest) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            hex += "0123456789abcdef"[word >> shift & 0xF];
        }
    }
    return hex;
}

std::string HashPassword(std::string_view password) {
    std::random_device random;
    const std::string salt = std::to_string(random()) + std::to_string(random());
    return salt + ":" + Sha256(salt + std::string(password));
}

bool PasswordMatches(std::string_view password, std::string_view hash) {
    const std::size_t colon = hash.find(':');
    return colon != std::string_view::npos &&
           Sha256(std::string(hash.substr(0, colon)) + std::string(password)) == hash.substr(colon + 1);
}

} // namespace devsql

// The tables of linked servers and their logins in master's file. See linked_servers.h.
#include "devserver/storage/linked_servers.h"

#include <fstream>
#include <random>
#include <stdexcept>

#include "devserver/storage/databases.h"
#include "devserver/system/digest.h"
#include "devserver/tsql/scalar/conversion_parts.h"

namespace devsql {
namespace {

// databases.cpp makes the table devsql_servers. `sealed` is the encrypted password in hexadecimal digits.
constexpr const char* kTables = R"(
CREATE TABLE IF NOT EXISTS devsql_server_options(server INTEGER, name TEXT, value TEXT, PRIMARY KEY(server, name));
CREATE TABLE IF NOT EXISTS devsql_server_logins(server INTEGER, local TEXT COLLATE TSQL, own INTEGER, remote TEXT,
    salt TEXT, sealed TEXT, PRIMARY KEY(server, local));
)";

constexpr const char* kColumns =
    "SELECT id, name, product, provider, source, publisher, subscriber, distributor FROM devsql_servers ";

LinkedServer ReadServer(SqliteConnection& connection, const SqliteStatement& row) {
    LinkedServer server;
    server.id = static_cast<int>(row.Int(0));
    server.name = row.Text(1);
    server.product = row.Text(2);
    server.provider = row.Text(3);
    server.source = row.Text(4);
    server.publisher = row.Int(5) != 0;
    server.subscriber = row.Int(6) != 0;
    server.distributor = row.Int(7) != 0;
    SqliteStatement option =
        connection.Prepare("SELECT name, value FROM devsql_server_options WHERE server = ?1");
    option.BindInt(1, server.id);
    while (option.Step()) {
        server.options[option.Text(0)] = option.Text(1);
    }
    return server;
}

/// 64 hexadecimal digits that nobody can guess.
std::string RandomHex() {
    constexpr int kNumbers = 8;
    std::random_device random;
    std::string text;
    for (int i = 0; i < kNumbers; ++i) {
        text += "0123456789abcdef"[random() & 0xF];
        text += std::to_string(random());
    }
    return HexText(system::Sha256(text));
}

} // namespace

bool LinkedServer::Is(const std::string& option) const {
    return Option(option) == "true";
}

std::string LinkedServer::Option(const std::string& option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::string() : found->second;
}

void CreateServerList(SqliteConnection& connection) {
    connection.Execute(kTables);
}

std::optional<LinkedServer> FindServer(SqliteConnection& connection, std::string_view name) {
    SqliteStatement row = connection.Prepare(std::string(kColumns) + "WHERE name = ?1");
    row.BindText(1, name);
    return row.Step() ? std::optional(ReadServer(connection, row)) : std::nullopt;
}

std::vector<LinkedServer> ListServers(SqliteConnection& connection) {
    SqliteStatement row = connection.Prepare(std::string(kColumns) + "ORDER BY id");
    std::vector<LinkedServer> list;
    while (row.Step()) {
        list.push_back(ReadServer(connection, row));
    }
    return list;
}

void SaveServer(SqliteConnection& connection, const LinkedServer& server) {
    int id = server.id;
    if (id < 0) {
        SqliteStatement next = connection.Prepare("SELECT coalesce(max(id), 0) + 1 FROM devsql_servers");
        next.Step();
        id = static_cast<int>(next.Int(0));
    }
    connection
        .Prepare("INSERT OR REPLACE INTO devsql_servers(id, name, product, provider, source, publisher, "
                 "subscriber, distributor) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)")
        .BindInt(1, id)
        .BindText(2, server.name)
        .BindText(3, server.product)
        .BindText(4, server.provider)
        .BindText(5, server.source)
        .BindInt(6, server.publisher ? 1 : 0)
        .BindInt(7, server.subscriber ? 1 : 0)
        .BindInt(8, server.distributor ? 1 : 0)
        .Run();
    connection.Prepare("DELETE FROM devsql_server_options WHERE server = ?1").BindInt(1, id).Run();
    for (const auto& [name, value] : server.options) {
        connection.Prepare("INSERT INTO devsql_server_options VALUES(?1, ?2, ?3)")
            .BindInt(1, id)
            .BindText(2, name)
            .BindText(3, value)
            .Run();
    }
}

void RemoveServer(SqliteConnection& connection, int id) {
    const std::string number = std::to_string(id);
    connection.Execute("DELETE FROM devsql_server_logins WHERE server = " + number +
                       "; DELETE FROM devsql_server_options WHERE server = " + number +
                       "; DELETE FROM devsql_servers WHERE id = " + number);
}

// ------------------------------------------------------------------ logins

std::optional<LinkedLogin> LinkedLogins::Find(int server, std::string_view local) {
    std::optional<LinkedLogin> found;
    SqliteStatement row =
        connection_.Prepare("SELECT local, own, remote, salt, sealed FROM devsql_server_logins "
                            "WHERE server = ?1 AND (local = ?2 OR local = '') ORDER BY local = ''");
    row.BindInt(1, server).BindText(2, local);
    if (row.Step()) {
        found = {row.Text(0), row.Int(1) != 0, row.Text(2),
                 Apply(row.Text(3), BytesFromHex(row.Text(4), false).value_or(""))};
    }
    return found;
}

std::vector<LinkedLogin> LinkedLogins::List(int server) {
    SqliteStatement row = connection_.Prepare(
        "SELECT local, own, remote FROM devsql_server_logins WHERE server = ?1 ORDER BY local");
    row.BindInt(1, server);
    std::vector<LinkedLogin> list;
    while (row.Step()) {
        list.push_back({row.Text(0), row.Int(1) != 0, row.Text(2), ""});
    }
    return list;
}

void LinkedLogins::Save(int server, const LinkedLogin& login) {
    const std::string salt = RandomHex();
    connection_.Prepare("INSERT OR REPLACE INTO devsql_server_logins VALUES(?1, ?2, ?3, ?4, ?5, ?6)")
        .BindInt(1, server)
        .BindText(2, login.local)
        .BindInt(3, login.own ? 1 : 0)
        .BindText(4, login.remote_user)
        .BindText(5, salt)
        .BindText(6, HexText(Apply(salt, login.password)))
        .Run();
}

bool LinkedLogins::Remove(int server, std::string_view local) {
    connection_.Prepare("DELETE FROM devsql_server_logins WHERE server = ?1 AND local = ?2")
        .BindInt(1, server)
        .BindText(2, local)
        .Run();
    return connection_.Changes() > 0;
}

std::string LinkedLogins::Key() {
    std::string key;
    if (std::ifstream file(key_file_); file >> key && !key.empty()) {
        return key;
    }
    {
        // An empty file first, so that its permissions are set before the key is in it.
        const std::ofstream empty(key_file_);
    }
    std::error_code error;
    std::filesystem::permissions(
        key_file_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
    key = RandomHex();
    std::ofstream file(key_file_);
    if (!(file << key << std::endl)) {
        throw std::runtime_error("the key of the linked logins can't be written to " + key_file_.string());
    }
    return key;
}

/// Encrypts or decrypts: combines the text by XOR with a stream of bytes made from the key and the salt.
std::string LinkedLogins::Apply(const std::string& salt, std::string text) {
    if (text.empty()) {
        return text;
    }
    const std::string key = Key();
    std::string stream;
    for (int block = 0; stream.size() < text.size(); ++block) {
        stream += system::Sha256(key + ":" + salt + ":" + std::to_string(block));
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char>(text[i] ^ stream[i]);
    }
    return text;
}

} // namespace devsql

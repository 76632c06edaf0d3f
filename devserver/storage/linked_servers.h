// The linked servers and the logins for them: tables of master's file. Passwords are encrypted with a key in
// a file beside the databases, so that a copy of master alone does not reveal them. Knows nothing of
// connections.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/storage/sqlite.h"

namespace devsql {

struct LinkedServer {
    int id = -1; ///< 0 for this server itself; -1 for a server that is not in the list yet
    std::string name;
    std::string product;
    std::string provider;
    std::string source; ///< HOST, "HOST,PORT", HOST\INSTANCE
    bool publisher = false;
    bool subscriber = false;
    bool distributor = false;
    /// The values by the options' names, which are in lower case: "catalog", "location", "provider string",
    /// "rpc out", "connect timeout" (in seconds). An option that is switched on has the value "true".
    std::map<std::string, std::string> options;

    /// True if the option is switched on.
    bool Is(const std::string& option) const;
    /// The option's value; empty if it is not set.
    std::string Option(const std::string& option) const;
};

/// How a login of this server logs in at another one.
struct LinkedLogin {
    std::string local; ///< the login on this server; empty: every login without a row of its own
    bool own = true;   ///< logs in with its own name and password; otherwise with those below
    std::string remote_user;
    std::string password;
};

/// Makes the tables in master's file if they do not exist.
void CreateServerList(SqliteConnection& connection);
std::optional<LinkedServer> FindServer(SqliteConnection& connection, std::string_view name);
/// In the order of their ids.
std::vector<LinkedServer> ListServers(SqliteConnection& connection);
/// Replaces the server with that id and its options; adds the server if its id is -1.
void SaveServer(SqliteConnection& connection, const LinkedServer& server);
/// Removes the server, its options and its logins.
void RemoveServer(SqliteConnection& connection, int id);

/// Keeps the logins. `key_file` holds the key that encrypts the passwords. The file is made when it is first
/// needed; only its owner can read it.
class LinkedLogins {
  public:
    LinkedLogins(SqliteConnection& connection, std::filesystem::path key_file)
        : connection_(connection), key_file_(std::move(key_file)) {}

    /// The row of that login, otherwise the row for all logins.
    std::optional<LinkedLogin> Find(int server, std::string_view local);
    /// The rows without their passwords.
    std::vector<LinkedLogin> List(int server);
    void Save(int server, const LinkedLogin& login);
    /// Returns false if there was no such row.
    bool Remove(int server, std::string_view local);

  private:
    /// Reads the key; makes the file with a new key first if there is none. Throws std::runtime_error if it
    /// cannot be written.
    std::string Key();
    std::string Apply(const std::string& salt, std::string text);

    SqliteConnection& connection_;
    std::filesystem::path key_file_;
};

} // namespace devsql

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
    int id = -1; ///< 0 this server itself; -1 not yet in the list
    std::string name;
    std::string product;
    std::string provider;
    std::string source; ///< HOST, "HOST,PORT", HOST\INSTANCE
    bool publisher = false;
    bool subscriber = false;
    bool distributor = false;
    /// Lower case: "rpc out" "true", "connect timeout" "15", "catalog", "provider string", "location".
    std::map<std::string, std::string> options;

    /// True where the option says "true".
    bool Is(const std::string& option) const;
    /// Empty where the option isn't set.
    std::string Option(const std::string& option) const;
};

/// How a login of this server logs in at another one.
struct LinkedLogin {
    std::string local; ///< empty: every login without a row of its own
    bool own = true;   ///< with the name and password that it has here
    std::string remote_user;
    std::string password;
};

/// Makes the tables in master's file if they do not exist.
void CreateServerList(SqliteConnection& connection);
std::optional<LinkedServer> FindServer(SqliteConnection& connection, std::string_view name);
/// By id.
std::vector<LinkedServer> ListServers(SqliteConnection& connection);
/// Adds the server if its id is -1.
void SaveServer(SqliteConnection& connection, const LinkedServer& server);
/// With its options and logins.
void RemoveServer(SqliteConnection& connection, int id);

/// Keeps logins; `key_file` holds the key, and is made, readable by its owner alone, when it is first needed.
class LinkedLogins {
  public:
    LinkedLogins(SqliteConnection& connection, std::filesystem::path key_file)
        : connection_(connection), key_file_(std::move(key_file)) {}

    /// The row of that login, otherwise the row for all logins.
    std::optional<LinkedLogin> Find(int server, std::string_view local);
    std::vector<LinkedLogin> List(int server);
    void Save(int server, const LinkedLogin& login);
    /// Returns false if there was no such row.
    bool Remove(int server, std::string_view local);

  private:
    std::string Key();
    std::string Apply(const std::string& salt, std::string text);

    SqliteConnection& connection_;
    std::filesystem::path key_file_;
};

} // namespace devsql

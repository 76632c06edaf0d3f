// Gives a test program access to the two development servers that with_servers.py has started for it. For
// Linux and Windows. A failed connection or statement throws the failure of the database layer
// (base/failure.h).
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "ado/connection.h"

namespace support {

/// The value of an environment variable that with_servers.py sets. Throws std::logic_error if it is not set.
std::string FromServers(const char* name);

/// The servers' names as in a connection string, "host,port".
inline std::string ServerA() {
    return FromServers("KV_SERVER_A");
}
inline std::string ServerB() {
    return FromServers("KV_SERVER_B");
}

/// The path of a file in the folder that the program and the servers share, in the form of the system that
/// the program runs on.
std::string SharedPath(const std::string& name);

/// Opens a connection to the database with the tests' login. Connecting and each statement may take ten
/// seconds.
ado::Connection Connect(const std::string& server, const std::string& database);

/// Runs the statement and returns the rows of its first result, one text for each row: the columns are
/// separated by a blank, and NULL is "-".
std::vector<std::string> Ask(const std::string& server, const std::string& database,
                             const std::string& statement);

/// Drops a database even if it is in use; does nothing if there is no such database.
void DropDatabase(const std::string& server, const std::string& name);

} // namespace support

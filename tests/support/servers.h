// The development servers that with_servers.py has started for a test program, on every system.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "ado/connection.h"

namespace support {

/// A variable that with_servers.py sets; throws std::logic_error if with_servers.py did not start the
/// program.
std::string FromServers(const char* name);

inline std::string ServerA() {
    return FromServers("KV_SERVER_A");
}
inline std::string ServerB() {
    return FromServers("KV_SERVER_B");
}

/// A path in the folder that the program and the servers share, in the form of this system.
std::string SharedPath(const std::string& name);

/// A connection that is open on the database with the tests' login, with time-outs of ten seconds.
ado::Connection Connect(const std::string& server, const std::string& database);

/// The rows of the first result, columns separated by a blank, "-" for NULL.
std::vector<std::string> Ask(const std::string& server, const std::string& database,
                             const std::string& statement);

/// Drops a database even if it is in use; does nothing if there is no such database.
void DropDatabase(const std::string& server, const std::string& name);

} // namespace support

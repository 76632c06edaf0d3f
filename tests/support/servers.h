// The development servers that with_servers.py has started beside a test program, on every system.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "ado/connection.h"

namespace support {

/// A variable that with_servers.py sets; throws std::logic_error where it did not start the program.
std::string FromServers(const char* name);

inline std::string ServerA() {
    return FromServers("KV_SERVER_A");
}
inline std::string ServerB() {
    return FromServers("KV_SERVER_B");
}

/// A path in the folder that the program and the servers reach, as this system writes it.
std::string SharedPath(const std::string& name);

/// Opened on the database, as the tests' user, with ten seconds for everything.
ado::Connection Connect(const std::string& server, const std::string& database);

/// The rows of the first result, columns separated by a blank, "-" for NULL.
std::vector<std::string> Ask(const std::string& server, const std::string& database,
                             const std::string& statement);

/// Takes a database away, whoever uses it; one that is not there is all right.
void DropDatabase(const std::string& server, const std::string& name);

} // namespace support

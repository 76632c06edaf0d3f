// The client of a session, as it has logged in.
#pragma once

#include <cstdint>
#include <string>

namespace devsql {

struct ClientInfo {
    std::int32_t id = 0; ///< the number of the session: @@SPID
    std::string login;
    std::string host_name;
    std::string application;
    std::string password; ///< the client's own, which the session also uses to log in to linked servers
};

} // namespace devsql

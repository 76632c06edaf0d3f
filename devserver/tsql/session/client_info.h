// Who is connected.
#pragma once

#include <cstdint>
#include <string>

namespace devsql {

struct ClientInfo {
    std::int32_t id = 0; ///< the number of the session: @@SPID
    std::string login;
    std::string host_name;
    std::string application;
    std::string password; ///< as the client logged in with it; linked servers are logged in to with it
};

} // namespace devsql

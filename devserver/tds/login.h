// The login message of TDS 7.1 to 7.4.
// Knows nothing of who may log in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "devserver/tds/wire.h"

namespace devsql::tds {

/// What the client sent, in UTF-8.
struct Login {
    Version version = Version::V74;
    std::uint32_t packet_size = 0; ///< as asked for; 0 leaves it to the server
    bool odbc = false;             ///< the client is a driver that expects the ANSI settings
    std::string host_name;
    std::string user;
    std::string password;
    std::string application;
    std::string server; ///< as the client calls this server
    std::string library;
    std::string language;
    std::string database;
};

/// Throws ProtocolError: 17832 for what is structurally wrong or a version below 7.1, 18452 for a login by
/// the operating system, 40510 for what else is not offered. When the version is known and at least 7.1, it
/// is left in `version` even then, since the error has to be written in it.
Login ParseLogin(std::string_view data, Version& version);

} // namespace devsql::tds

// Reads the login message of TDS 7.1 to 7.4.
// Knows nothing of who may log in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "devserver/tds/wire.h"

namespace devsql::tds {

/// The fields of the message; texts are UTF-8.
struct Login {
    Version version = Version::V74;
    std::uint32_t packet_size = 0; ///< in bytes, as the client asks; 0: the server chooses
    bool odbc = false;             ///< the client is a driver that expects the ANSI settings
    std::string host_name;
    std::string user;
    std::string password;
    std::string application;
    std::string server; ///< the client's name for this server
    std::string library;
    std::string language;
    std::string database;
};

/// Throws ProtocolError: 17832 for a message that is structurally wrong or of a version before 7.1, 18452 for
/// a login by the operating system, 40510 for other features that the server does not have. If the version
/// could be read and is at least 7.1, `version` is set even then, because the error is written in that
/// version.
Login ParseLogin(std::string_view data, Version& version);

} // namespace devsql::tds

// The version number that the server sends in the prelogin answer, in LOGINACK and as SQL Browser. Clients
// choose their catalogue queries and statements by it.
#pragma once

#include <cstdint>

namespace devsql::tds {

inline constexpr std::uint8_t kServerMajor = 14;
inline constexpr std::uint8_t kServerMinor = 0;
inline constexpr std::uint16_t kServerBuild = 1000;

} // namespace devsql::tds

// The version number that the server gives in the prelogin answer and in LOGINACK, by which clients choose
// their catalogue queries and statements.
#pragma once

#include <cstdint>

namespace devsql::tds {

inline constexpr std::uint8_t kServerMajor = 14;
inline constexpr std::uint8_t kServerMinor = 0;
inline constexpr std::uint16_t kServerBuild = 1000;

} // namespace devsql::tds

// What the server says of itself.
#pragma once

#include <string_view>

namespace devsql {

/// Of the server whose behaviour this one follows; clients choose their ways by it.
inline constexpr std::string_view kProductVersion = "14.0.1000.169";
inline constexpr std::string_view kVersionText =
    "Lotkeeper development server 14.0.1000.169 (T-SQL on SQLite). This is not Microsoft SQL Server: it is a "
    "server for "
    "trying, rehearsing and testing.";

} // namespace devsql

// The version that the server reports.
#pragma once

#include <string_view>

namespace devsql {

/// The version of SQL Server whose behaviour this server follows; clients decide by it what they may send.
inline constexpr std::string_view kProductVersion = "14.0.1000.169";
inline constexpr std::string_view kVersionText =
    "Lotkeeper development server 14.0.1000.169 (T-SQL on SQLite). This is not Microsoft SQL Server: it is a "
    "server for "
    "trying, rehearsing and testing.";

} // namespace devsql

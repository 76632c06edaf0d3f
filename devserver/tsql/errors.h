// Raising errors by number with texts from the message table, and the few numbers that the table of SQL
// Server 2000's messages doesn't have.
#pragma once

#include <initializer_list>
#include <string_view>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

/// An error of the message table, or of the server's own few: 321, 40510 ("Statement '%1' is not supported"),
/// 40517 ("Keyword or statement option '%1' is not supported").
SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments = {}, std::uint8_t state = 1);
[[noreturn]] void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                             std::uint8_t state = 1);

} // namespace devsql

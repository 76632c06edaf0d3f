// Raising errors by number with texts from the message table, and the few numbers that the table of SQL
// Server 2000's messages doesn't have.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

/// An error of the message table, or of the server's own few: 321, 40510 ("Statement '%1' is not supported"),
/// 40517 ("Keyword or statement option '%1' is not supported").
SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                 std::uint8_t state = 1);
[[noreturn]] void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                             std::uint8_t state = 1);

/// The text of any message with its arguments put in; none for a number that has no message.
std::optional<std::string> NumberedText(std::int32_t number, const std::vector<std::string>& arguments);

} // namespace devsql

// Raising errors by number with texts from the message table, and the few numbers that the table of SQL
// Server 2000's messages doesn't have.
#pragma once

#include <initializer_list>
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

/// Null for a number that has no message.
const MessageTemplate* FindTemplate(std::int32_t number);
/// A message's text with its arguments put in.
std::string Filled(std::string_view text, const std::vector<std::string>& arguments);
/// Every message once.
std::vector<const MessageTemplate*> AllTemplates();

} // namespace devsql

// The two halves of the message table; sql_error.cpp joins them.
#pragma once

#include <span>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

/// Numbers below 3000: syntax, names, types, definitions. Ascending.
std::span<const MessageTemplate> LanguageMessages();
/// Numbers from 3000 on: transactions, databases, procedures of the system, logins. Ascending.
std::span<const MessageTemplate> ServerMessages();

} // namespace devsql

// Messages by number: the server's own, and those that sp_addmessage has put into master.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "devserver/tsql/scalar/functions.h"

namespace devsql {

class SessionCore;

struct NumberedMessage {
    std::int64_t severity;
    std::string text; ///< with the arguments put in
};

/// None for a number that has no message.
std::optional<NumberedMessage> FindMessageText(SessionCore& session, std::int32_t number,
                                               std::span<const FormatArgument> arguments);

/// The server's own messages as the rows of a query in SQLite's SQL: error, severity, description. Where a
/// message takes an argument, "%ls" stands.
std::string MessageRows();

} // namespace devsql

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

/// Returns nothing for a number that has no message.
std::optional<NumberedMessage> FindMessageText(SessionCore& session, std::int32_t number,
                                               std::span<const FormatArgument> arguments);

/// The server's own messages as the rows of a query in SQLite's SQL: error, severity, description. Arguments
/// are written as "%ls".
std::string MessageRows();

} // namespace devsql

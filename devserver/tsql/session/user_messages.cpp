// Finds messages by number, in the server's table and in master.
#include "devserver/tsql/session/user_messages.h"

#include <vector>

#include "devserver/storage/sqlite.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

std::optional<NumberedMessage> FindMessageText(SessionCore& session, std::int32_t number,
                                               std::span<const FormatArgument> arguments) {
    std::vector<std::string> texts;
    for (const FormatArgument& argument : arguments) {
        texts.push_back(IsNull(argument.value) ? "(null)" : ValueText(argument.value, argument.type));
    }
    if (const MessageTemplate* own = FindMessage(number)) {
        return NumberedMessage{own->severity,
                               Filled(own->text, std::vector<std::string_view>(texts.begin(), texts.end()))};
    }
    SqliteStatement row = session.connection().Prepare(
        "SELECT severity, description FROM main.sysusermessages WHERE error = ?1");
    row.BindInt(1, number);
    if (!row.Step()) {
        return std::nullopt;
    }
    return NumberedMessage{row.Int(0), FormatRaiserror(row.Text(1), arguments)};
}

std::string MessageRows() {
    static const std::string rows = [] {
        const std::vector<std::string_view> places(9, "%ls");
        std::string text =
            "(SELECT column1 AS error, column2 AS severity, column3 AS description FROM (VALUES";
        char separator = ' ';
        for (const MessageTemplate& message : AllMessages()) {
            text += separator + ("(" + std::to_string(message.number)) + "," +
                    std::to_string(message.severity) + "," + QuoteText(Filled(message.text, places)) + ")";
            separator = ',';
        }
        return text + "))";
    }();
    return rows;
}

} // namespace devsql

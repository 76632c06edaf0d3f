// Sends messages and the ends of statements to the client.
#include "devserver/tsql/session/results.h"

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/session/call_stack.h"
#include "devserver/tsql/session/options.h"
#include "devserver/tsql/session/status.h"

namespace devsql {

void Results::Print(const Message& message) {
    Message sent = message;
    // Severity 10 goes to clients as 0, for the sake of older ones.
    sent.severity = message.severity == 10 ? 0 : message.severity;
    sink_->Send(sent);
}

void Results::Info(std::int32_t number, std::initializer_list<std::string_view> arguments,
                   std::uint8_t state) {
    const SqlError error = ErrorOf(number, arguments, state);
    Print({number, error.severity(), state, error.text(), calls_.frame().procedure, status_.line});
}

void Results::Done(Command command, std::optional<std::int64_t> rows) {
    statement_ended_ = true;
    sink_->StatementDone(command, options_.nocount ? std::nullopt : rows, !calls_.frame().procedure.empty());
}

void Results::EndStatement() {
    const bool silent = options_.nocount && !calls_.frame().procedure.empty();
    if (!statement_ended_ && !silent) {
        Done(Command::None, std::nullopt);
    }
}

} // namespace devsql

// Writes the tokens of an answer in their order. See response.h.
#include "devserver/tds/response.h"

#include <utility>

namespace devsql::tds {

namespace {

constexpr std::uint8_t kFirstError = 11;

} // namespace

template <class Writing>
void Response::Guarded(Writing write) {
    if (lost_ || cancelled_.load()) {
        // Repeated with every token: the call may have begun just after it was first asked to end.
        stop_();
        return;
    }
    try {
        write();
    } catch (const ConnectionLost&) {
        lost_ = true;
        stop_();
    }
}

template <class Writing>
void Response::EndMessage(Writing write) {
    if (lost_) {
        return;
    }
    try {
        write();
        packets_.EndMessage();
    } catch (const ConnectionLost&) {
        lost_ = true;
    }
}

void Response::WritePending(bool more) {
    if (!pending_) {
        return;
    }
    const PendingDone done = *pending_;
    pending_.reset();
    const auto status = static_cast<std::uint16_t>(done.status | (more ? done_status::kMore : 0));
    tokens_.WriteDone(done.token, status, done.command, done.rows);
}

void Response::Hold(DoneToken token, std::uint16_t status, Command command, std::int64_t rows) {
    WritePending(true);
    pending_ = PendingDone{token, status, command, rows};
}

DoneToken Response::StatementToken(bool in_procedure) const {
    return in_procedure || kind_ == Kind::Procedure ? DoneToken::DoneInProcedure : DoneToken::Done;
}

void Response::EndFailedStatement() {
    if (statement_error_) {
        Hold(StatementToken(false), done_status::kError, Command::None, 0);
        statement_error_ = false;
    }
    rows_open_ = false;
}

void Response::Columns(const std::vector<Column>& columns) {
    Guarded([&] {
        EndFailedStatement();
        WritePending(true);
        tokens_.WriteColumns(columns);
        rows_open_ = true;
    });
}

void Response::Row(const std::vector<Value>& values) {
    Guarded([&] { tokens_.WriteRow(values); });
}

void Response::StatementDone(Command command, std::optional<std::int64_t> rows, bool in_procedure) {
    Guarded([&] {
        // A count of rows without a result set belongs to a statement that has succeeded. So the error before
        // it was that of another statement: a procedure of the server has reported it and has gone on.
        if (statement_error_ && !rows_open_ && rows.value_or(0) > 0) {
            EndFailedStatement();
        }
        std::uint16_t status = done_status::kFinal;
        if (statement_error_) {
            status = done_status::kError;
        } else if (rows) {
            status = done_status::kCount;
        }
        Hold(StatementToken(in_procedure), status, command, statement_error_ ? 0 : rows.value_or(0));
        statement_error_ = false;
        rows_open_ = false;
    });
}

void Response::Send(const Message& message) {
    if (message.severity >= kFirstError) {
        failed_ = true;
    }
    Guarded([&] {
        WritePending(true);
        tokens_.WriteMessage(message);
        if (message.severity >= kFirstError) {
            statement_error_ = true;
        }
    });
}

void Response::DatabaseChanged(const std::string& from, const std::string& to) {
    Guarded([&] {
        WritePending(true);
        tokens_.WriteDatabaseChange(from, to);
    });
}

void Response::OutputParameter(const std::string& name, const Type& type, const Value& value) {
    outputs_.push_back({name, type, value});
}

void Response::ReturnStatus(std::int32_t status) {
    return_status_ = status;
    // In a batch each EXEC ends with its status. A call by RPC sends it once, before its output parameters.
    if (kind_ == Kind::Batch) {
        Guarded([&] { WriteProcedureEnd(); });
    }
}

void Response::Flush() {
    Guarded([&] {
        WritePending(true);
        packets_.Flush();
    });
}

void Response::WriteProcedureEnd() {
    const bool error = statement_error_;
    WritePending(true);
    if (return_status_) {
        tokens_.WriteReturnStatus(*return_status_);
    }
    return_status_.reset();
    statement_error_ = false;
    rows_open_ = false;
    std::size_t ordinal = 0;
    for (const Output& output : std::exchange(outputs_, {})) {
        tokens_.WriteReturnValue(PlaceOf(output.name, ordinal++), output.name, output.type, output.value);
    }
    Hold(DoneToken::DoneProcedure, error ? done_status::kError : done_status::kFinal, Command::None, 0);
}

void Response::Begin(Kind kind) {
    kind_ = kind;
    failed_ = false;
    passed_.clear();
    outputs_.clear();
    return_status_.reset();
}

void Response::BeginCall(const RpcCall& call) {
    Begin(Kind::Procedure);
    for (std::size_t i = 0; i < call.parameters.size(); ++i) {
        if (call.parameters[i].output) {
            passed_.push_back({call.parameters[i].name, static_cast<std::uint16_t>(i)});
        }
    }
}

std::uint16_t Response::PlaceOf(const std::string& name, std::size_t ordinal) const {
    // Parameters that are passed by name can be in another order than in the procedure.
    for (const Passed& passed : passed_) {
        if (passed.name == name && !name.empty()) {
            return passed.place;
        }
    }
    return ordinal < passed_.size() ? passed_[ordinal].place : static_cast<std::uint16_t>(ordinal);
}

void Response::End() {
    Guarded([&] {
        if (kind_ == Kind::Procedure) {
            WriteProcedureEnd();
        } else {
            EndFailedStatement();
        }
    });
}

void Response::Write(const std::function<void(TokenWriter&)>& write) {
    Guarded([&] { write(tokens_); });
}

void Response::Finish(bool interrupted) {
    EndMessage([&] {
        // The DONEINPROC of a statement in a procedure cannot be the last token of an answer.
        if (interrupted || !pending_ || pending_->token == DoneToken::DoneInProcedure) {
            Hold(DoneToken::Done, done_status::kFinal, Command::None, 0);
        }
        WritePending(false);
    });
}

void Response::Acknowledge() {
    EndMessage([&] { tokens_.WriteDone(DoneToken::Done, done_status::kAttention, Command::None, 0); });
}

} // namespace devsql::tds

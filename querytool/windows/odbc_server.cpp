// Runs batches over ODBC.
#include "querytool/windows/odbc_server.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "odbc/odbc_rows.h"
#include "text/text.h"

namespace querytool {
namespace {

using odbc::OdbcError;
using odbc::RowReader;
using odbc::Statement;

/// Encloses a value of a connection string in braces, but only if it would otherwise end early or lose its
/// blanks: FreeTDS does not read a doubled "}" as one, so a value that needs braces and contains "}" works
/// with other drivers only.
std::string Quoted(const std::string& value) {
    const bool blanks = !value.empty() && (value.front() == ' ' || value.back() == ' ');
    if (!blanks && value.find(';') == std::string::npos && !value.starts_with("{")) {
        return value;
    }
    std::string quoted = "{";
    for (const char c : value) {
        quoted += c;
        if (c == '}') {
            quoted += c;
        }
    }
    return quoted + "}";
}

/// The number of statements that are prepared in advance, and so the largest number of consecutive batches
/// that can read the outcome of the batch before (see TakeStatement).
constexpr std::size_t kPreparedStatements = 8;

/// True if the batch may read the outcome of the batch before it.
bool ReadsLastOutcome(std::string_view batch) {
    constexpr std::array<std::string_view, 2> kVariables = {"@@ERROR", "@@ROWCOUNT"};
    return std::ranges::any_of(kVariables, [&](std::string_view variable) {
        return text::FindIgnoringCase(batch, variable) != std::string_view::npos;
    });
}

/// The SQLSTATE of a time-out.
constexpr std::string_view kTimeOut = "HYT00";

void Send(std::vector<Diagnostic> diagnostics, ResultSink& sink) {
    for (Diagnostic& diagnostic : diagnostics) {
        diagnostic.message = odbc::WithoutOrigin(diagnostic.message);
        sink.Message(diagnostic);
        if (diagnostic.sql_state == kTimeOut) {
            return; // The records after it only report its consequences: no connection or no result.
        }
    }
}

} // namespace

std::string ConnectionString(const LoginSettings& settings) {
    // The server's name is not quoted: it may have a comma and a port.
    std::string text = "Driver={SQL Server};Server=" + settings.server + ";Uid=" + Quoted(settings.user) +
                       ";Pwd=" + Quoted(settings.password) + ";App=OSQL;";
    if (!settings.database.empty()) {
        text += "Database=" + Quoted(settings.database) + ";";
    }
    if (!settings.workstation.empty()) {
        text += "WSID=" + Quoted(settings.workstation) + ";";
    }
    return text;
}

bool OdbcServer::Connect(const LoginSettings& settings, ResultSink& sink) {
    query_timeout_ = settings.query_timeout;
    try {
        environment_.emplace();
        connection_.emplace(*environment_);
        if (settings.packet_size != 0) {
            connection_->SetPacketSize(settings.packet_size);
        }
        connection_->DriverConnect(ConnectionString(settings), settings.login_timeout);
    } catch (const OdbcError& error) {
        Send(error.Diagnostics(), sink);
        return false;
    }
    Send(connection_->TakeMessages(), sink);
    return true;
}

/// With FreeTDS a statement must be prepared to keep the results after an error, which sets the session's
/// @@ERROR and @@ROWCOUNT to 0. So statements are prepared in advance, before batches that do not read these
/// variables, and a batch that reads them takes one of those. If none is left, one is prepared in spite of
/// that: the results matter more than the variables.
Statement OdbcServer::TakeStatement(const std::string& batch) {
    if (!connection_->DropsResultsAfterError()) {
        return Statement(*connection_);
    }
    while (prepared_.size() < kPreparedStatements && (prepared_.empty() || !ReadsLastOutcome(batch))) {
        prepared_.emplace_back(*connection_).KeepResultsAfterError();
    }
    Statement statement = std::move(prepared_.back());
    prepared_.pop_back();
    return statement;
}

void OdbcServer::SendResult(Statement& statement, ResultSink& sink) {
    Send(statement.TakeMessages(), sink);
    if (statement.ColumnCount() != 0) {
        RowReader rows(statement);
        sink.ResultBegin(rows.Columns());
        std::vector<Value> row;
        while (rows.Next(row)) {
            sink.Row(row);
        }
    }
    sink.ResultEnd(statement.RowCount());
    Send(statement.TakeMessages(), sink);
}

template <class Step>
bool OdbcServer::RunStep(ResultSink& sink, Step&& step) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const OdbcError& error) {
        Send(error.Diagnostics(), sink);
        return !error.ConnectionLost() && !connection_->Dead();
    }
}

bool OdbcServer::Run(const std::string& batch, ResultSink& sink) {
    bool alive = true;
    const bool started = RunStep(sink, [&] { // handles the errors of the calls outside the inner RunStep
        Statement statement = TakeStatement(batch);
        if (query_timeout_ != 0) {
            statement.SetQueryTimeout(query_timeout_);
        }
        alive = RunStep(sink, [&] {
            statement.ExecDirect(batch);
            SendResult(statement, sink);
        });
        bool more = true;
        while (alive && more && !sink.Ended()) {
            alive = RunStep(sink, [&] {
                more = statement.MoreResults();
                if (more) {
                    SendResult(statement, sink);
                }
            });
            Send(statement.TakeMessages(), sink);
        }
    });
    return started && alive;
}

std::unique_ptr<Server> MakeServer() {
    return std::make_unique<OdbcServer>();
}

} // namespace querytool

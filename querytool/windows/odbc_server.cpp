#include "querytool/windows/odbc_server.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "odbc/odbc_rows.h"

namespace querytool {
namespace {

using platform::odbc::OdbcError;
using platform::odbc::RowReader;
using platform::odbc::Statement;

/// Braces only where a value would otherwise end early or lose its blanks: FreeTDS does not take a doubled
/// "}" back to one, so that a value with both needs is left to the drivers that do.
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

/// Statements that are kept ready: as many batches may ask for the last one's outcome in a row.
constexpr std::size_t kStock = 8;

/// True if the batch asks the session for the outcome of the statement before.
bool AsksForLastBatch(std::string_view batch) {
    constexpr std::array<std::string_view, 2> kVariables = {"@@ERROR", "@@ROWCOUNT"};
    const auto same_letter = [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; };
    return std::ranges::any_of(kVariables, [&](std::string_view variable) {
        return std::search(batch.begin(), batch.end(), variable.begin(), variable.end(), same_letter) !=
               batch.end();
    });
}

/// The SQLSTATE of a time-out.
constexpr std::string_view kTimeOut = "HYT00";

void Tell(std::vector<Diagnostic> diagnostics, ResultSink& sink) {
    for (Diagnostic& diagnostic : diagnostics) {
        diagnostic.message = platform::odbc::WithoutOrigin(diagnostic.message);
        sink.Message(diagnostic);
        if (diagnostic.sql_state == kTimeOut) {
            return; // The records after it only say that there is no connection or no result, therefore.
        }
    }
}

} // namespace

std::string ConnectionString(const LoginSettings& settings) {
    // A comma parts the server's name from its port, so that value stands as it is.
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
        Tell(error.Diagnostics(), sink);
        return false;
    }
    Tell(connection_->TakeMessages(), sink);
    return true;
}

/// A statement to run the batch with, made ready to keep what stands behind an error. That resets @@ERROR and
/// @@ROWCOUNT, which a batch may ask for what the one before it left: such a batch takes a statement from the
/// stock, which is filled up before others.
Statement OdbcServer::NextStatement(const std::string& batch) {
    if (!connection_->DropsResultsBehindError()) {
        return Statement(*connection_);
    }
    while (stock_.size() < kStock && (stock_.empty() || !AsksForLastBatch(batch))) {
        stock_.emplace_back(*connection_).KeepResultsBehindError();
    }
    Statement statement = std::move(stock_.back());
    stock_.pop_back();
    return statement;
}

void OdbcServer::TakeResult(Statement& statement, ResultSink& sink) {
    Tell(statement.TakeMessages(), sink);
    if (statement.ColumnCount() != 0) {
        RowReader rows(statement);
        sink.ResultBegin(rows.Columns());
        std::vector<Value> row;
        while (rows.Next(row)) {
            sink.Row(row);
        }
    }
    sink.ResultEnd(statement.RowCount());
    Tell(statement.TakeMessages(), sink);
}

/// Takes a step of a batch; what fails goes to the sink. False: the connection is lost.
template <class Step>
bool OdbcServer::Try(ResultSink& sink, Step&& step) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const OdbcError& error) {
        Tell(error.Diagnostics(), sink);
        return !error.ConnectionLost() && !connection_->Dead();
    }
}

bool OdbcServer::Run(const std::string& batch, ResultSink& sink) {
    bool alive = true;
    const bool started = Try(sink, [&] {
        Statement statement = NextStatement(batch);
        if (query_timeout_ != 0) {
            statement.SetQueryTimeout(query_timeout_);
        }
        alive = Try(sink, [&] {
            statement.ExecDirect(batch);
            TakeResult(statement, sink);
        });
        bool more = true;
        while (alive && more && !sink.Ended()) {
            alive = Try(sink, [&] {
                more = statement.MoreResults();
                if (more) {
                    TakeResult(statement, sink);
                }
            });
            Tell(statement.TakeMessages(), sink);
        }
    });
    return started && alive;
}

std::unique_ptr<Server> MakeServer() {
    return std::make_unique<OdbcServer>();
}

} // namespace querytool

// Runs batches at another server through ODBC and passes its results and messages on. See odbc_remote.h.
#include "devserver/linked/odbc_remote.h"

#include <algorithm>
#include <mutex>

#include "devserver/linked/odbc_values.h"
#include "devserver/tsql/scalar/text.h"
#include "odbc/odbc.h"
#include "odbc/odbc_rows.h"

namespace devsql {
namespace {

constexpr std::uint8_t kErrorSeverity = 16;
constexpr std::string_view kTimedOut = "HYT00";
constexpr std::string_view kCancelled = "HY008";

/// A message of the server has a severity and a line; a message of the driver or the driver manager does not.
/// The severity of an informational message is 0.
bool IsServers(const odbc::Diagnostic& diagnostic) {
    return diagnostic.severity.has_value() || diagnostic.line.has_value();
}

/// True for an error of the server that refuses the login. FreeTDS reports neither severity nor line then, so
/// the SQLSTATE decides.
bool IsRefusal(const odbc::Diagnostic& diagnostic) {
    return IsServers(diagnostic) || diagnostic.sql_state.starts_with("28") ||
           diagnostic.sql_state.starts_with("42");
}

Message MessageOf(const odbc::Diagnostic& diagnostic) {
    Message message;
    message.number = diagnostic.native_error;
    message.severity = static_cast<std::uint8_t>(
        diagnostic.severity.value_or(diagnostic.error ? kErrorSeverity : std::uint8_t{0}));
    message.state = static_cast<std::uint8_t>(diagnostic.state.value_or(1));
    message.text = FromCodePage1252(std::string(odbc::WithoutOrigin(diagnostic.message)));
    message.procedure = FromCodePage1252(diagnostic.procedure);
    message.line = diagnostic.line.value_or(1);
    return message;
}

/// The value as a connection string needs it. Braces are put around it only if they are needed, because
/// drivers differ in what they accept between them.
std::string Quoted(const std::string& value) {
    const bool plain = value.find(';') == std::string::npos && !value.starts_with('{') &&
                       !value.starts_with(' ') && !value.ends_with(' ');
    if (plain) {
        return value;
    }
    std::string quoted = "{";
    for (const char c : value) {
        quoted += c == '}' ? "}}" : std::string(1, c);
    }
    return quoted + "}";
}

std::string ConnectionString(const RemoteSource& source) {
    std::string text = "Driver={SQL Server};";
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty()) {
            text += std::string(name) + "=" + Quoted(value) + ";";
        }
    };
    add("Server", source.address);
    add("Database", source.catalog);
    add("Uid", source.user);
    text += "Pwd=" + Quoted(source.password) + ";";
    add("App", source.application);
    return ToCodePage1252(text + source.provider_string);
}

class OdbcRemote : public RemoteConnection {
  public:
    explicit OdbcRemote(const RemoteSource& source)
        : connection_(environment_), query_seconds_(source.query_seconds) {
        try {
            connection_.DriverConnect(ConnectionString(source), source.connect_seconds);
        } catch (const odbc::OdbcError& error) {
            throw ConnectFailure(error);
        }
    }

    void Run(const std::string& sql, RemoteSink& sink) override {
        odbc::Statement statement(connection_);
        statement.SetQueryTimeout(query_seconds_);
        const Running running(*this, statement);
        if (connection_.DropsResultsAfterError()) {
            Step(statement, sink, [&] { return statement.KeepResultsAfterError(), true; });
        }
        bool more = Step(statement, sink, [&] {
            statement.ExecDirect(ToCodePage1252(sql));
            TakeResult(statement, sink);
            return true;
        });
        while (more) {
            more = Step(statement, sink, [&] {
                const bool found = statement.MoreResults();
                if (found) {
                    TakeResult(statement, sink);
                }
                return found;
            });
        }
    }

    void Cancel() override {
        const std::lock_guard lock(mutex_);
        if (running_ != nullptr) {
            running_->Cancel();
        }
    }

  private:
    /// As long as it exists, Cancel cancels this statement.
    class Running {
      public:
        Running(OdbcRemote& remote, odbc::Statement& statement) : remote_(remote) {
            const std::lock_guard lock(remote_.mutex_);
            remote_.running_ = &statement;
        }
        ~Running() {
            const std::lock_guard lock(remote_.mutex_);
            remote_.running_ = nullptr;
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

      private:
        OdbcRemote& remote_;
    };

    static RemoteFailure ConnectFailure(const odbc::OdbcError& error) {
        const std::vector<odbc::Diagnostic>& records = error.Diagnostics();
        const auto server = std::ranges::find_if(records, IsRefusal);
        if (server != records.end()) {
            return {RemoteFailure::Kind::Refused, MessageOf(*server)};
        }
        const bool no_driver = std::ranges::any_of(records, [](const odbc::Diagnostic& record) {
            // IM002, IM003: the driver manager finds no driver of this name; 01000: it cannot load the
            // driver's file. A driver itself reports 01000 if the connection is cut while it logs in.
            return record.sql_state.starts_with("IM") ||
                   (record.sql_state == "01000" &&
                    record.message.find("[Driver Manager]") != std::string::npos);
        });
        return {no_driver ? RemoteFailure::Kind::NoDriver : RemoteFailure::Kind::Unreachable,
                MessageOf(records.front())};
    }

    /// Makes one call and passes on the messages of the server. Returns false after the last result.
    template <class Call>
    bool Step(odbc::Statement& statement, RemoteSink& sink, Call call) {
        bool more = false;
        try {
            more = call();
        } catch (const odbc::OdbcError& error) {
            more = PassOn(error, sink);
        }
        for (const odbc::Diagnostic& message : statement.TakeMessages()) {
            if (IsServers(message)) {
                sink.Said(MessageOf(message));
            }
        }
        return more;
    }

    /// Passes the server's errors on. Throws RemoteFailure if the connection is lost or the driver itself has
    /// failed. Returns true, because further results may follow.
    static bool PassOn(const odbc::OdbcError& error, RemoteSink& sink) {
        const std::vector<odbc::Diagnostic>& records = error.Diagnostics();
        for (const odbc::Diagnostic& record : records) {
            if (IsServers(record)) {
                sink.Said(MessageOf(record));
            }
        }
        // An error of the server may have the class "08", as 911 has; it does not end the connection.
        const bool lost = std::ranges::any_of(records, [](const odbc::Diagnostic& record) {
            return record.sql_state.starts_with("08") && !IsServers(record);
        });
        if (lost || std::ranges::none_of(records, IsServers)) {
            const std::string& state = records.front().sql_state;
            throw RemoteFailure(state == kTimedOut || state == kCancelled ? RemoteFailure::Kind::TimedOut
                                                                          : RemoteFailure::Kind::Lost,
                                MessageOf(records.front()));
        }
        return true;
    }

    static void TakeResult(odbc::Statement& statement, RemoteSink& sink) {
        if (statement.ColumnCount() == 0) {
            const std::int64_t count = statement.RowCount();
            if (count >= 0) {
                sink.Count(count);
            }
            return;
        }
        odbc::RowReader reader(statement);
        std::vector<Column> columns;
        for (const odbc::Column& column : reader.Columns()) {
            columns.push_back(ColumnOfOdbc(column));
        }
        sink.Columns(columns);
        std::vector<odbc::Value> from;
        std::vector<Value> row(columns.size());
        while (reader.Next(from)) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                row[i] = ValueOfOdbc(from[i], columns[i].type);
            }
            sink.Row(row);
        }
    }

    // One environment for each connection: driver managers may hold the environment's lock while a driver
    // waits for its server, and that server may be this program itself.
    odbc::Environment environment_;
    odbc::Connection connection_;
    unsigned query_seconds_;
    std::mutex mutex_;
    odbc::Statement* running_ = nullptr; ///< the running statement; guarded by `mutex_`
};

} // namespace

std::unique_ptr<RemoteConnection> ConnectByOdbc(const RemoteSource& source) {
    return std::make_unique<OdbcRemote>(source);
}

} // namespace devsql

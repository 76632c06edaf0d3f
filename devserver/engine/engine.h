// The interface between the protocol and the language: an engine that logs clients in, sessions that run the
// statements of clients, and a sink that takes the results in order. Knows nothing of TDS.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/value.h"

namespace devsql {

/// An error (severity 11 and above) or an information message (severity 0 to 10).
struct Message {
    std::int32_t number = 0;
    std::uint8_t severity = 0;
    std::uint8_t state = 1;
    std::string text;      ///< UTF-8
    std::string procedure; ///< empty outside procedures
    std::int32_t line = 1;

    friend bool operator==(const Message&, const Message&) = default;
};

/// One column of a result set.
struct Column {
    std::string name; ///< UTF-8; empty for an expression without alias
    Type type;
    bool nullable = true;
    bool identity = false;
};

/// Which command a DONE token ends (the CurCmd of the protocol's documentation).
enum class Command : std::uint16_t {
    None = 0,
    Select = 0xC1,
    Insert = 0xC3,
    Delete = 0xC4,
    Update = 0xC5,
};

/// Takes the results of a batch or a procedure call, in order. If one of its functions throws, the batch
/// ends.
class ResultSink {
  public:
    virtual ~ResultSink() = default;

    /// Begins a result set; its rows and one StatementDone follow.
    virtual void Columns(const std::vector<Column>& columns) = 0;
    /// One row of the result set, a value for each column.
    virtual void Row(const std::vector<Value>& values) = 0;
    /// Ends a statement: `rows` is the number of rows that it touched or returned, empty under NOCOUNT and
    /// for statements that count nothing. `in_procedure` is true for the statements inside a stored
    /// procedure.
    virtual void StatementDone(Command command, std::optional<std::int64_t> rows, bool in_procedure) = 0;
    /// An error or an information message.
    virtual void Send(const Message& message) = 0;
    /// The session's database changed.
    virtual void DatabaseChanged(const std::string& from, const std::string& to) = 0;
    /// A parameter declared OUTPUT of a procedure called by RPC, after all its results. `name` with its "@".
    virtual void OutputParameter(const std::string& name, const Type& type, const Value& value) = 0;
    /// The return status of a procedure.
    virtual void ReturnStatus(std::int32_t status) = 0;
    /// Sends to the client the results that have been kept back so far (RAISERROR … WITH NOWAIT). A sink that
    /// keeps nothing back does nothing.
    virtual void Flush() {}
};

/// One parameter of a procedure call.
struct RpcParameter {
    std::string name; ///< with its "@"; empty when passed by position
    Type type;
    Value value;
    bool output = false;      ///< the client wants the value back: ResultSink::OutputParameter
    bool use_default = false; ///< the parameter gets its default; `value` is ignored
};

/// A call of a procedure that a client sends by itself and not as T-SQL (RPC).
struct RpcCall {
    std::string procedure; ///< as sent: one to four parts, brackets allowed; a ";1" may follow
    std::vector<RpcParameter> parameters;
};

/// The rows of a bulk load, as they come from the client.
class BulkRows {
  public:
    enum class Step : std::uint8_t {
        Row,
        Waiting, ///< the row has not arrived completely; the caller checks for a cancel and calls Next again
        End,
        Gone, ///< the client has cancelled the load, or has sent something malformed: no row is kept
    };
    virtual ~BulkRows() = default;

    /// The next row, a value for each of Types().
    virtual Step Next(std::vector<Value>& row) = 0;
    /// The types of the rows' columns; known after the first row or the end has come.
    virtual const std::vector<Type>& Types() const = 0;
};

/// One client: its database, options, temporary tables and transaction. Used by one thread at a time, except
/// Cancel.
class Session {
  public:
    virtual ~Session() = default;

    /// Runs a batch of T-SQL (UTF-8, without GO). Errors of the language go to the sink and are never thrown.
    virtual void ExecuteBatch(std::string_view sql, ResultSink& sink) = 0;
    /// Calls a stored procedure, or one of the system such as sp_executesql.
    virtual void ExecuteProcedure(const RpcCall& call, ResultSink& sink) = 0;
    /// Takes the rows for the INSERT BULK of the last batch.
    virtual void LoadRows(BulkRows& rows, ResultSink& sink) = 0;
    /// Asks the running call to end soon (attention); may be called from any thread, at any time.
    virtual void Cancel() = 0;
    /// The current database.
    virtual std::string Database() const = 0;
    /// The number of the session: @@SPID.
    virtual std::int32_t Id() const = 0;
    /// True after the session has been ended, by another client (SET SINGLE_USER WITH ROLLBACK IMMEDIATE,
    /// KILL) or by a fatal error: the connection must be closed after the running call.
    virtual bool Ended() const = 0;
    /// @@TRANCOUNT: how many nested transactions are open. The protocol asks between calls, because drivers
    /// must be told when a batch has begun or ended a transaction.
    virtual std::int32_t TransactionCount() const = 0;
};

struct LoginRequest {
    std::string user;
    std::string password;
    std::string database;    ///< empty: the login's default database, or master if it has none
    std::string host_name;   ///< HOST_NAME()
    std::string application; ///< APP_NAME()
};

class RemoteConnection;
struct RemoteSource;

/// How a server is started.
struct EngineOptions {
    std::filesystem::path root; ///< holds the system databases; made if absent
    /// Names and passwords that are known at the start; names compare without case. CREATE LOGIN adds others.
    std::map<std::string, std::string> logins;
    /// Maps an upper-case drive letter ("D") to the folder that is its root.
    std::map<std::string, std::filesystem::path> drives;
    std::string server_name = "DEVSQLSERVER"; ///< @@SERVERNAME
    /// Connects to linked servers (linked/remote.h); empty if they can't be reached.
    std::function<std::unique_ptr<RemoteConnection>(const RemoteSource&)> connect_remote{};
};

/// A running server. It must outlive its sessions.
class Engine {
  public:
    virtual ~Engine() = default;

    /// Logs a client in. On success sends the messages 5701 and 5703 and DatabaseChanged. Otherwise sends the
    /// error (18456 wrong login, 4060 no such database) and returns null.
    virtual std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) = 0;
    /// The server's own name: @@SERVERNAME.
    virtual const std::string& ServerName() const = 0;
};

/// Opens the server's databases below `options.root`, making master, model, msdb and tempdb at the first
/// start. Throws std::runtime_error with the reason and the folder if it cannot.
std::unique_ptr<Engine> OpenEngine(EngineOptions options);

} // namespace devsql

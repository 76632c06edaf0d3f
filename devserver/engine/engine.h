// What the protocol sees of the language: an engine that logs clients in, sessions that run what they send,
// and a sink that takes what comes of it, in order. Knows nothing of TDS.
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

/// Takes what a batch or a procedure call gives, in order. A call that throws ends the batch.
class ResultSink {
  public:
    virtual ~ResultSink() = default;

    /// Begins a result set; its rows and one StatementDone follow.
    virtual void Columns(const std::vector<Column>& columns) = 0;
    /// One row of the result set, a value for each column.
    virtual void Row(const std::vector<Value>& values) = 0;
    /// Ends a statement: `rows` is what it touched or returned, none under NOCOUNT or where nothing is
    /// counted. `in_procedure` is true for the statements inside a stored procedure.
    virtual void StatementDone(Command command, std::optional<std::int64_t> rows, bool in_procedure) = 0;
    /// An error or an information message.
    virtual void Send(const Message& message) = 0;
    /// The session's database changed.
    virtual void DatabaseChanged(const std::string& from, const std::string& to) = 0;
    /// A parameter declared OUTPUT of a procedure called by RPC, after all its results. `name` with its "@".
    virtual void OutputParameter(const std::string& name, const Type& type, const Value& value) = 0;
    /// The return status of a procedure.
    virtual void ReturnStatus(std::int32_t status) = 0;
    /// What was given so far is to reach the client now (RAISERROR … WITH NOWAIT). For a sink that holds
    /// nothing back there is nothing to do.
    virtual void Flush() {}
};

/// One parameter of a procedure call.
struct RpcParameter {
    std::string name; ///< with its "@"; empty when passed by position
    Type type;
    Value value;
    bool output = false;
    bool use_default = false;
};

struct RpcCall {
    std::string procedure; ///< as sent: one to four parts, brackets allowed; a ";1" may follow
    std::vector<RpcParameter> parameters;
};

/// The rows of a bulk load, as they come from the client.
class BulkRows {
  public:
    enum class Step : std::uint8_t {
        Row,
        Waiting, ///< nothing came for a moment: the caller can look whether it is to end
        End,
        Gone, ///< the client has taken the load back, or what it sent makes no sense: nothing is to be kept
    };
    virtual ~BulkRows() = default;

    /// The next row, a value for each of Types().
    virtual Step Next(std::vector<Value>& row) = 0;
    /// Of the rows' columns; known once a row or the end has come.
    virtual const std::vector<Type>& Types() const = 0;
};

/// One client: its database, options, temporary tables and transaction. Used by one thread at a time, except
/// Cancel.
class Session {
  public:
    virtual ~Session() = default;

    /// Runs a batch of T-SQL (UTF-8, without GO). Errors of the language go to the sink and never out.
    virtual void ExecuteBatch(std::string_view sql, ResultSink& sink) = 0;
    /// Calls a procedure: stored, of the system, or sp_executesql and its kin.
    virtual void ExecuteProcedure(const RpcCall& call, ResultSink& sink) = 0;
    /// Takes the rows that the INSERT BULK of the last batch has announced.
    virtual void LoadRows(BulkRows& rows, ResultSink& sink) = 0;
    /// Asks the running call to end soon (attention); may be called from any thread, at any time.
    virtual void Cancel() = 0;
    /// The current database.
    virtual std::string Database() const = 0;
    /// The id of the session, as @@SPID has it.
    virtual std::int32_t Id() const = 0;
    /// True once the session has been thrown out (SET SINGLE_USER WITH ROLLBACK IMMEDIATE by another client,
    /// a fatal error): the connection is to be closed after the running call.
    virtual bool Ended() const = 0;
    /// @@TRANCOUNT: how many transactions are open, one in the other. Asked between calls: drivers keep track
    /// of it and must be told when a batch has begun or ended one.
    virtual std::int32_t TransactionCount() const = 0;
};

struct LoginRequest {
    std::string user;
    std::string password;
    std::string database; ///< empty: the login's default, master
    std::string host_name;
    std::string application;
};

class RemoteConnection;
struct RemoteSource;

struct EngineOptions {
    std::filesystem::path root;                ///< holds the system databases; made if absent
    std::map<std::string, std::string> logins; ///< name, password; names compare without case
    /// Upper-case drive letter ("D") to the folder that stands for its root.
    std::map<std::string, std::filesystem::path> drives;
    std::string server_name = "DEVSQLSERVER"; ///< @@SERVERNAME
    /// Connects to linked servers (linked/remote.h); none: they can't be reached.
    std::function<std::unique_ptr<RemoteConnection>(const RemoteSource&)> connect_remote{};
};

class Engine {
  public:
    virtual ~Engine() = default;

    /// Logs a client in. A refusal (18456 wrong login, 4060 no such database) is sent to the sink, and null
    /// comes back. A login that works sends the messages 5701 and 5703 and DatabaseChanged.
    virtual std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) = 0;
    /// The name that the server gives itself.
    virtual const std::string& ServerName() const = 0;
};

/// Opens the server's databases below `options.root`, making master, model, msdb and tempdb at the first
/// start. Throws std::runtime_error, saying what and where, when that can't be done.
std::unique_ptr<Engine> OpenEngine(EngineOptions options);

} // namespace devsql

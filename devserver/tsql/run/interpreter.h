// Runs the tree: control flow, variables, procedures. Decides whether an error ends the statement, the
// procedure or the batch.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

struct Firing;
struct SystemProcedure;
class SystemCall;
/// Finds a system procedure, which lives until the program ends. Returns null for an unknown name.
using SystemProcedureFinder = const SystemProcedure* (*)(std::string_view name);

/// An argument of a call, as the caller passes it.
struct ActualArgument {
    std::string name; ///< with "@"; empty: by position
    Value value;
    Type type;
    bool output = false;
    bool use_default = false; ///< the parameter gets its default; `value` is ignored
};

struct CallResult {
    std::int32_t status = 0; ///< of RETURN
    /// For each argument that was passed as OUTPUT, the value that came back; empty for the others.
    std::vector<std::optional<Variable>> outputs;
};

/// Thrown to a CATCH block: an error with its complete message.
struct Failure {
    Message message;
    /// The nesting level at which TRY does not catch it; 0 for none. An error that SQL Server finds when it
    /// compiles a statement is not caught in the same procedure, only in a caller.
    int uncaught_at = 0;
};

/// The message of a RAISERROR, before its severity and state are limited.
struct RaisedMessage {
    std::int32_t number = 50000;
    std::int64_t severity = 16;
    std::int64_t state = 1;
    std::string text;
};

/// Runs one request of a client, or one call of a user's function. The session must outlive it.
class Interpreter {
  public:
    Interpreter(SessionCore& session, SystemProcedureFinder find_system_procedure)
        : session_(session), find_system_procedure_(find_system_procedure) {}

    /// A batch from the client. Errors go to the sink.
    void RunBatch(std::string_view sql);
    /// A procedure call from the client.
    void RunCall(const RpcCall& call);
    /// The rows for the INSERT BULK that the session has run last.
    void RunBulk(const ast::InsertBulkStatement& bulk, BulkRows& rows);

    // ---- for the system procedures
    /// EXEC of a string, in a frame with the given variables, which may be changed.
    void RunText(std::string_view sql, Frame& frame);
    /// EXEC('…'): in a frame of its own.
    void RunDynamic(const std::string& text);
    /// The procedure's results go to the sink. Raises 2812 and the errors of the arguments.
    CallResult Call(const ast::Name& name, std::vector<ActualArgument> arguments);
    /// The value of a user's function. An error in it is one of the statement that calls it.
    Value CallFunction(const ObjectDef& object, const std::string& database,
                       const std::vector<ActualArgument>& arguments);
    SessionCore& session() { return session_; }

  private:
    /// Where the batch or procedure continues after a statement. For Goto, at the label in `goto_label_`.
    enum class Flow : std::uint8_t { Next, Break, Continue, Return, Goto };

    // interpreter.cpp
    std::int32_t RunSystem(const SystemProcedure& procedure, SystemCall& call);
    /// Runs `work` and sends the client an error that it throws.
    void RunGuarded(const std::function<void()>& work);
    void EndCancelled();
    /// Runs a batch or a procedure. Reports 133 for a GOTO to an unknown label.
    void RunWhole(const ast::StatementList& list);
    Flow RunList(const ast::StatementList& list);
    /// Runs a procedure's body. An error that ends a procedure ends it here.
    void RunScope(const ast::StatementList& list);
    Flow RunStatement(const ast::Statement& statement);
    Flow Execute(const ast::Statement& statement);
    /// Tells the sink that a failed statement has ended, even if it has already sent an end.
    void EndFailed() { session_.results().Done(Command::None, std::nullopt); }
    Flow ExecuteSimple(const ast::Statement& statement);
    /// False for a definition.
    bool ExecuteAction(const ast::Statement& statement);
    Flow ExecuteDefinition(const ast::Statement& statement);
    Flow RunTry(const ast::TryStatement& statement);
    Flow RunWhile(const ast::WhileStatement& loop);
    bool FindLabel(const ast::StatementList& list, std::size_t& position) const;
    /// Sends the error to the client, or throws it to the CATCH block around the statement.
    void Report(const SqlError& error);
    void Report(const StorageError& error);
    [[noreturn]] void AbortBatch();

    // interpreter_statements.cpp
    void Declare(const ast::DeclareStatement& declare);
    void SetVariable(const ast::SetVariableStatement& set);
    void SetOption(const ast::SetOptionStatement& set);
    void SetIdentityInsert(const ast::SetOptionStatement& set);
    void Print(const ast::PrintStatement& print);
    void Raiserror(const ast::RaiserrorStatement& raise);
    /// The message that a RAISERROR raises, its severity and state as written.
    RaisedMessage RaisedBy(const ast::RaiserrorStatement& raise);
    void Throw(const ast::ThrowStatement& statement);
    void Wait(const ast::WaitforStatement& wait);
    void Transaction(const ast::TransactionStatement& statement);
    void Return(const ast::ReturnStatement& statement);
    void DeclareCursor(const ast::CursorDeclareStatement& declare);
    void OpenCursor(const std::string& name);
    void RunCursor(const ast::CursorStatement& statement);
    void Fetch(const ast::FetchStatement& fetch);
    std::int64_t FetchPosition(const ast::FetchStatement& fetch, const Cursor& cursor);

    // calls.cpp
    void ExecuteCall(const ast::ExecuteStatement& call);
    void ExecuteString(const ast::ExecuteStringStatement& statement);
    /// Runs the EXEC of INSERT … EXEC and returns its rows.
    RowSet Capture(const ast::Statement& statement);
    // remote_calls.cpp
    /// Calls a procedure of a linked server.
    CallResult CallRemote(const ast::Name& name, const std::vector<ActualArgument>& arguments);
    // calls.cpp
    std::vector<ActualArgument> Arguments(const ast::ExecuteStatement& call);
    CallResult CallStored(const ObjectDef& object, Catalogue& catalogue, const std::string& database,
                          std::vector<ActualArgument>& arguments);
    CallResult CallSystem(const SystemProcedure& procedure, const std::string& database,
                          const std::vector<ActualArgument>& arguments);
    void RunBody(const ObjectDef& object, Frame& frame, const ast::CreateModuleStatement& module);
    // trigger_calls.cpp
    /// Raises 3609 and 3616 where a trigger has ended the transaction or made it unfit.
    void Fire(const std::vector<Firing>& firings);
    void RunTrigger(const Firing& firing, std::int64_t id);

    SessionCore& session_;
    SystemProcedureFinder find_system_procedure_;
    std::string goto_label_;
    std::int32_t return_value_ = 0;
    Variable* function_result_ = nullptr; ///< the result of the running function; null outside functions
    bool changes_rows_ = false;           ///< the running statement is INSERT, UPDATE or DELETE
    int tries_ = 0;                       ///< TRY blocks that are open, in all frames
    std::map<int, int> tries_at_;         ///< the same for each nesting level of calls
};

/// Makes the variables of a call from its arguments. Returns the position of the parameter for each argument.
/// Raises 201, 8143, 8144, 8145, 8146.
std::vector<std::size_t> BindArguments(SessionCore& session, std::string_view procedure,
                                       const std::vector<ParameterDef>& formal,
                                       const std::vector<ActualArgument>& actual, Frame& frame);

} // namespace devsql

// Runs the tree: control flow, variables, procedures, errors and what they end.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

struct SystemProcedure;
class SystemCall;
/// Null for a name that is no system procedure.
using SystemProcedureFinder = const SystemProcedure* (*)(std::string_view name);

/// What a caller hands to a parameter.
struct ActualArgument {
    std::string name; ///< with "@"; empty: by position
    Value value;
    Type type;
    bool output = false;
    bool use_default = false;
};

struct CallResult {
    std::int32_t status = 0;
    /// For each actual argument that was handed over OUTPUT: what came back.
    std::vector<std::optional<Variable>> outputs;
};

/// An error on its way to a CATCH block, its message complete.
struct Failure {
    Message message;
    /// An error that was found when the statement was compiled is not caught in the frame that it stands in,
    /// only in a caller's: the nesting at which no TRY takes it; 0 for any other error.
    int uncaught_at = 0;
};

/// What RAISERROR says, before it is held to the limits.
struct RaisedMessage {
    std::int32_t number = 50000;
    std::int64_t severity = 16;
    std::int64_t state = 1;
    std::string text;
};

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
    /// EXEC of a string, in a frame with the given variables; those may come back changed.
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
    enum class Flow : std::uint8_t { Next, Break, Continue, Return, Goto };

    // interpreter.cpp
    std::int32_t RunSystem(const SystemProcedure& procedure, SystemCall& call);
    void RunGuarded(const std::function<void()>& work);
    void EndCancelled();
    /// A batch or a procedure: reports 133 for a GOTO whose label stands nowhere in it.
    void RunWhole(const ast::StatementList& list);
    Flow RunList(const ast::StatementList& list);
    /// A procedure's body: errors that end a scope end here.
    void RunScope(const ast::StatementList& list);
    Flow RunStatement(const ast::Statement& statement);
    Flow Execute(const ast::Statement& statement);
    /// Tells the sink that a failed statement has ended, whatever it has told before.
    void EndFailed() { session_.results().Done(Command::None, std::nullopt); }
    Flow ExecuteSimple(const ast::Statement& statement);
    /// False for a definition.
    bool ExecuteAction(const ast::Statement& statement);
    Flow ExecuteDefinition(const ast::Statement& statement);
    Flow RunTry(const ast::TryStatement& statement);
    Flow RunWhile(const ast::WhileStatement& loop);
    bool FindLabel(const ast::StatementList& list, std::size_t& position) const;
    /// Sends the error, or hands it to the CATCH block that waits for it.
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
    RowSet Capture(const ast::Statement& statement);
    // remote_calls.cpp
    CallResult CallRemote(const ast::Name& name, const std::vector<ActualArgument>& arguments);
    // calls.cpp
    std::vector<ActualArgument> Arguments(const ast::ExecuteStatement& call);
    CallResult CallStored(const ObjectDef& object, Catalogue& catalogue, const std::string& database,
                          std::vector<ActualArgument>& arguments);
    CallResult CallSystem(const SystemProcedure& procedure, const std::string& database,
                          const std::vector<ActualArgument>& arguments);
    void RunBody(const ObjectDef& object, Frame& frame, const ast::CreateModuleStatement& module);

    SessionCore& session_;
    SystemProcedureFinder find_system_procedure_;
    std::string goto_label_;
    std::int32_t return_value_ = 0;
    Variable* function_result_ = nullptr; ///< of the function that runs; null for anything else
    bool changes_rows_ = false;           ///< the running statement is INSERT, UPDATE or DELETE
    int tries_ = 0;                       ///< TRY blocks that are open, in all frames
    std::map<int, int> tries_at_;         ///< the same by nesting
};

/// The variables of a call: `actual` put into `formal`. Raises 201, 8144, 8145, 8146, 8143. For each actual
/// argument the position of its parameter comes back.
std::vector<std::size_t> BindArguments(SessionCore& session, std::string_view procedure,
                                       const std::vector<ParameterDef>& formal,
                                       const std::vector<ActualArgument>& actual, Frame& frame);

} // namespace devsql

// Control flow, and errors: whether one ends the statement, the procedure or the batch.
#include "devserver/tsql/run/interpreter.h"

#include <algorithm>
#include <array>

#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/parse/located_error.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/run/bulk_insert.h"
#include "devserver/tsql/run/statements.h"
#include "devserver/tsql/run/system_call.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

/// Thrown to end the batch, after the error has been sent.
struct BatchAborted {};
/// Thrown to end the procedure, or the batch if no procedure runs, after the error has been sent.
struct ScopeAborted {};

constexpr std::uint8_t kFirstError = 11;

/// Errors that end the batch and roll its transaction back: failed conversions, deadlocks and lost locks.
constexpr std::array<std::int32_t, 16> kBatchErrors = {241,  242,  244,  245,  248, 295,  8169, 8170,
                                                       1205, 3930, 3609, 3616, 217, 8624, 235,  296};

/// Errors that SQL Server finds when it compiles the statement: they end the procedure or the batch.
constexpr std::array<std::int32_t, 53> kScopeErrors = {
    102, 104, 107,  108,  109,  110,  116, 120,  121,  128,  130,  137,  141,  145,  147,  156,  164, 174,
    189, 195, 205,  206,  207,  208,  209, 213,  257,  259,  263,  264,  271,  272,  273,  306,  402, 420,
    421, 529, 1011, 1013, 1046, 1087, 911, 4104, 8101, 8116, 8117, 8118, 8120, 8121, 8127, 8133, 8155};

/// Errors after which the message 3621 is sent: "The statement has been terminated".
constexpr std::array<std::int32_t, 10> kRowErrors = {515, 547, 2601, 2627, 8152, 8115, 8134, 220, 232, 512};

template <class Type, class... Others>
constexpr bool IsOneOf = (std::is_same_v<Type, Others> || ...);

template <std::size_t Count>
bool Contains(const std::array<std::int32_t, Count>& numbers, std::int32_t number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

/// The statements that open a transaction under SET IMPLICIT_TRANSACTIONS ON.
bool BeginsImplicitly(const ast::Statement& statement) {
    return std::holds_alternative<ast::QueryPtr>(statement.node) ||
           std::holds_alternative<ast::InsertStatement>(statement.node) ||
           std::holds_alternative<ast::UpdateStatement>(statement.node) ||
           std::holds_alternative<ast::DeleteStatement>(statement.node) ||
           std::holds_alternative<ast::TruncateStatement>(statement.node) ||
           std::holds_alternative<ast::CreateTableStatement>(statement.node) ||
           std::holds_alternative<ast::AlterTableStatement>(statement.node) ||
           std::holds_alternative<ast::DropStatement>(statement.node) ||
           std::holds_alternative<ast::GrantStatement>(statement.node) ||
           std::holds_alternative<ast::FetchStatement>(statement.node);
}

/// True for statements that leave @@ERROR unchanged or set it themselves.
bool KeepsError(const ast::Statement& statement) {
    return std::holds_alternative<ast::DeclareStatement>(statement.node) ||
           std::holds_alternative<ast::RaiserrorStatement>(statement.node) ||
           std::holds_alternative<ast::ExecuteStatement>(statement.node) ||
           std::holds_alternative<ast::ExecuteStringStatement>(statement.node);
}

/// True for statements whose end is reported to the client by itself: all but declarations, control flow, and
/// calls, which end with their status.
bool HasEnd(const ast::Statement& statement) {
    return std::visit(
        [](const auto& node) {
            using Node = std::remove_cvref_t<decltype(node)>;
            return !IsOneOf<Node, ast::DeclareStatement, ast::IfStatement, ast::WhileStatement,
                            ast::BlockStatement, ast::TryStatement, ast::BreakStatement,
                            ast::ContinueStatement, ast::GotoStatement, ast::LabelStatement,
                            ast::ReturnStatement, ast::ExecuteStatement>;
        },
        statement.node);
}

Message MessageOf(const SessionCore& session, const SqlError& error) {
    if (const auto* call = dynamic_cast<const CallError*>(&error)) {
        return {error.number(), error.severity(), error.state(), error.text(), call->procedure(), 0};
    }
    return {error.number(),
            error.severity(),
            error.state(),
            error.text(),
            session.calls().frame().procedure,
            session.status().line};
}

/// Parts of SQLite's messages about statements that exceed its limits.
constexpr std::array<std::string_view, 4> kTooLarge = {"oo many", "oo large", "at most", "stack overflow"};

SqlError ErrorOfStorage(const SessionCore& session, const StorageError& error) {
    switch (error.primary_code()) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return session.transactions().LockError();
    case SQLITE_TOOBIG:
    case SQLITE_ERROR: // A statement too large for SQLite: depth, columns, terms of a compound.
        return std::ranges::any_of(kTooLarge,
                                   [&](std::string_view words) {
                                       return std::string_view(error.what()).find(words) !=
                                              std::string_view::npos;
                                   })
                   ? ErrorOf(8623)
                   : ErrorOf(8624, {error.what()});
    case SQLITE_FULL:
        return ErrorOf(1105, {"", session.databases().CurrentName(), "PRIMARY"}, 2);
    default:
        return ErrorOf(8624, {error.what()});
    }
}

} // namespace

// ------------------------------------------------------------------ entries

void Interpreter::RunGuarded(const std::function<void()>& work) {
    const DateSettingsScope dates(session_.options().dates);
    const TriggerRunner::Use triggers(session_.triggers(),
                                      [this](const std::vector<Firing>& firings) { Fire(firings); });
    try {
        work();
    } catch (const BatchAborted&) {
    } catch (const ScopeAborted&) {
    } catch (const LocatedError& error) {
        session_.status().last_error = error.number();
        session_.results().Print({error.number(), error.severity(), error.state(), error.text(),
                                  session_.calls().frame().procedure, error.line()});
    } catch (const SqlError& error) {
        session_.status().last_error = error.number();
        session_.results().Print(MessageOf(session_, error));
    } catch (const Failure& failure) {
        session_.status().last_error = failure.message.number;
        session_.results().Print(failure.message);
    } catch (const Cancelled&) {
        EndCancelled();
    } catch (const StorageError& error) {
        if (session_.interruption().requested()) {
            EndCancelled();
            return;
        }
        const SqlError translated = ErrorOfStorage(session_, error);
        session_.status().last_error = translated.number();
        session_.transactions().Abandon();
        session_.results().Print(MessageOf(session_, translated));
    } catch (const std::exception& error) {
        session_.transactions().Abandon();
        session_.results().Print(MessageOf(session_, ErrorOf(8624, {error.what()})));
    }
}

/// A client that has cancelled gets no error. A client whose session was ended by another session gets 596,
/// so that it does not take the batch for finished.
void Interpreter::EndCancelled() {
    session_.transactions().Abandon();
    if (session_.interruption().session_ended()) {
        session_.status().last_error = 596;
        session_.results().Info(596);
    }
}

void Interpreter::RunBatch(std::string_view sql) {
    RunGuarded([&] {
        session_.status().line = 1;
        const Batch batch = ParseBatch(sql, {session_.options().quoted_identifier, {}});
        if (session_.options().parseonly) {
            const bool ends =
                std::any_of(batch.statements.begin(), batch.statements.end(), [](const ast::StatementPtr& s) {
                    return std::holds_alternative<ast::SetOptionStatement>(s->node);
                });
            if (!ends) {
                return;
            }
        }
        Frame frame;
        session_.calls().Push(frame);
        try {
            RunWhole(batch.statements);
        } catch (...) {
            session_.calls().Pop();
            throw;
        }
        session_.calls().Pop();
    });
}

void Interpreter::RunBulk(const ast::InsertBulkStatement& bulk, BulkRows& rows) {
    RunGuarded([&] {
        session_.status().line = 1;
        changes_rows_ = true;
        try {
            RunBulkInsert(session_, bulk, rows);
        } catch (const SqlError& error) {
            Report(error);
        } catch (const StorageError& error) {
            Report(error);
        }
    });
}

void Interpreter::RunText(std::string_view sql, Frame& frame) {
    std::vector<std::string> variables;
    for (const auto& [name, variable] : frame.variables) {
        variables.push_back(name);
    }
    const std::int32_t line = session_.status().line;
    Batch batch;
    try {
        batch = ParseBatch(sql, {session_.options().quoted_identifier, variables});
    } catch (const LocatedError& error) {
        session_.status().line = error.line();
        throw;
    }
    const Options saved = session_.options();
    session_.calls().Push(frame);
    const auto leave = [&] {
        session_.calls().Pop();
        session_.SetOptions(saved);
        session_.status().line = line;
    };
    try {
        RunScope(batch.statements); // The caller of the string goes on after an error in it.
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

// ------------------------------------------------------------------ flow

bool Interpreter::FindLabel(const ast::StatementList& list, std::size_t& position) const {
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto* label = std::get_if<ast::LabelStatement>(&list[i]->node);
        if (label != nullptr && SameText(label->label, goto_label_)) {
            position = i;
            return true;
        }
    }
    return false;
}

void Interpreter::RunWhole(const ast::StatementList& list) {
    if (RunList(list) == Flow::Goto) {
        Report(ErrorOf(133, {goto_label_}));
    }
}

void Interpreter::RunScope(const ast::StatementList& list) {
    try {
        RunWhole(list);
    } catch (const ScopeAborted&) {
        return_value_ = -6;
        EndFailed();
    }
}

/// An error in a system procedure is reported in its name, and the call returns 1.
std::int32_t Interpreter::RunSystem(const SystemProcedure& procedure, SystemCall& call) {
    constexpr std::int32_t kFailed = 1;
    try {
        try {
            return procedure.run(call);
        } catch (const SqlError& error) {
            Report(error);
        } catch (const StorageError& error) {
            Report(error);
        }
    } catch (const ScopeAborted&) {
        return kFailed;
    }
    return kFailed;
}

Interpreter::Flow Interpreter::RunList(const ast::StatementList& list) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Flow flow = RunStatement(*list[i]);
        if (flow == Flow::Goto && FindLabel(list, i)) {
            continue;
        }
        if (flow != Flow::Next) {
            return flow;
        }
    }
    return Flow::Next;
}

Interpreter::Flow Interpreter::RunStatement(const ast::Statement& statement) {
    session_.CheckCancelled();
    session_.status().line = statement.line;
    changes_rows_ = std::holds_alternative<ast::InsertStatement>(statement.node) ||
                    std::holds_alternative<ast::UpdateStatement>(statement.node) ||
                    std::holds_alternative<ast::DeleteStatement>(statement.node);
    if (session_.options().noexec && !std::holds_alternative<ast::SetOptionStatement>(statement.node)) {
        return Flow::Next;
    }
    session_.results().BeginStatement();
    try {
        const Flow flow = Execute(statement);
        if (HasEnd(statement)) {
            session_.results().EndStatement();
        }
        return flow;
    } catch (const SqlError& error) {
        Report(error);
    } catch (const StorageError& error) {
        Report(error);
    }
    EndFailed();
    return Flow::Next;
}

void Interpreter::Report(const StorageError& error) {
    // A cancelled wait for a lock too, which SQLite reports as a locked database.
    if (error.primary_code() == SQLITE_INTERRUPT || session_.interruption().requested()) {
        throw Cancelled{};
    }
    Report(ErrorOfStorage(session_, error));
}

void Interpreter::Report(const SqlError& error) {
    if (function_result_ != nullptr) {
        throw error;
    }
    const Message message = MessageOf(session_, error);
    session_.status().last_error = message.number;
    session_.status().row_count = 0;
    if (message.severity < kFirstError) {
        session_.results().Print(message);
        return;
    }
    const bool ends_batch = Contains(kBatchErrors, message.number) || session_.options().xact_abort ||
                            session_.transactions().lost();
    const bool compiled = Contains(kScopeErrors, message.number);
    if (tries_ > (compiled ? tries_at_[session_.calls().nesting()] : 0)) {
        if (ends_batch) {
            session_.transactions().Doom();
        }
        throw Failure{message, compiled ? session_.calls().nesting() : 0};
    }
    session_.results().Print(message);
    if (changes_rows_ && !ends_batch && Contains(kRowErrors, message.number)) {
        session_.results().Info(3621, {}, 0);
    }
    if (ends_batch) {
        AbortBatch();
    }
    if (compiled) {
        throw ScopeAborted{};
    }
}

void Interpreter::AbortBatch() {
    if (session_.transactions().count() > 0) {
        session_.transactions().Abandon();
    }
    throw BatchAborted{};
}

Interpreter::Flow Interpreter::RunTry(const ast::TryStatement& statement) {
    const int nesting = session_.calls().nesting();
    const std::size_t caught = session_.status().caught.size();
    const auto leave = [&] {
        --tries_;
        --tries_at_[nesting];
    };
    ++tries_;
    ++tries_at_[nesting];
    try {
        const Flow flow = RunList(statement.body);
        leave();
        return flow;
    } catch (const Failure& failure) {
        leave();
        if (failure.uncaught_at == nesting) {
            throw;
        }
        session_.status().caught.push_back(failure.message);
        EndFailed(); // The failed statement may have begun a result set.
    } catch (...) {
        leave();
        throw;
    }
    Flow flow = Flow::Next;
    try {
        flow = RunList(statement.handler);
    } catch (...) {
        session_.status().caught.resize(caught);
        throw;
    }
    session_.status().caught.resize(caught);
    return flow;
}

Interpreter::Flow Interpreter::RunWhile(const ast::WhileStatement& loop) {
    const std::int32_t line = session_.status().line;
    while (true) {
        session_.status().line = line;
        session_.CheckCancelled();
        if (!TestExpression(session_, *loop.condition)) {
            return Flow::Next;
        }
        const Flow flow = RunStatement(*loop.body);
        if (flow == Flow::Break) {
            return Flow::Next;
        }
        if (flow == Flow::Return || flow == Flow::Goto) {
            return flow;
        }
    }
}

Interpreter::Flow Interpreter::Execute(const ast::Statement& statement) {
    const Flow flow = std::visit(Overloaded{
                                     [&](const ast::IfStatement& s) {
                                         if (TestExpression(session_, *s.condition)) {
                                             return RunStatement(*s.then);
                                         }
                                         return s.otherwise ? RunStatement(*s.otherwise) : Flow::Next;
                                     },
                                     [&](const ast::WhileStatement& s) { return RunWhile(s); },
                                     [&](const ast::BlockStatement& s) { return RunList(s.statements); },
                                     [&](const ast::TryStatement& s) { return RunTry(s); },
                                     [&](const ast::BreakStatement&) { return Flow::Break; },
                                     [&](const ast::ContinueStatement&) { return Flow::Continue; },
                                     [&](const ast::GotoStatement& s) {
                                         goto_label_ = s.label;
                                         return Flow::Goto;
                                     },
                                     [&](const ast::LabelStatement&) { return Flow::Next; },
                                     [&](const ast::ReturnStatement& s) {
                                         Return(s);
                                         return Flow::Return;
                                     },
                                     [&](const auto&) { return ExecuteSimple(statement); },
                                 },
                                 statement.node);
    return flow;
}

Interpreter::Flow Interpreter::ExecuteSimple(const ast::Statement& statement) {
    if (session_.transactions().doomed() && changes_rows_) {
        RaiseError(3930);
    }
    if (session_.options().implicit_transactions && session_.transactions().count() == 0 &&
        BeginsImplicitly(statement)) {
        session_.transactions().Begin("");
    }
    if (!ExecuteAction(statement)) {
        ExecuteDefinition(statement);
    }
    if (!KeepsError(statement)) {
        session_.status().last_error = 0;
    }
    return Flow::Next;
}

bool Interpreter::ExecuteAction(const ast::Statement& statement) {
    const auto nested = [this](const ast::Statement& inner) { return Capture(inner); };
    std::int64_t& row_count = session_.status().row_count;
    return std::visit(
        Overloaded{
            [&](const ast::DeclareStatement& s) { return Declare(s), true; },
            [&](const ast::SetVariableStatement& s) { return SetVariable(s), row_count = 1, true; },
            [&](const ast::SetOptionStatement& s) { return SetOption(s), row_count = 0, true; },
            [&](const ast::PrintStatement& s) { return Print(s), row_count = 0, true; },
            [&](const ast::RaiserrorStatement& s) { return Raiserror(s), true; },
            [&](const ast::ThrowStatement& s) { return Throw(s), true; },
            [&](const ast::WaitforStatement& s) { return Wait(s), true; },
            [&](const ast::ExecuteStatement& s) { return ExecuteCall(s), true; },
            [&](const ast::ExecuteStringStatement& s) { return ExecuteString(s), true; },
            [&](const ast::TransactionStatement& s) { return Transaction(s), row_count = 0, true; },
            [&](const ast::UseStatement& s) {
                return session_.databases().Use(s.database), row_count = 0, true;
            },
            [&](const ast::QueryPtr& s) { return RunSelect(session_, *s), true; },
            [&](const ast::InsertStatement& s) { return RunInsert(session_, s, nested), true; },
            [&](const ast::InsertBulkStatement& s) { return BeginBulkInsert(session_, s), true; },
            [&](const ast::UpdateStatement& s) { return RunUpdate(session_, s), true; },
            [&](const ast::DeleteStatement& s) { return RunDelete(session_, s), true; },
            [&](const ast::TruncateStatement& s) { return RunTruncate(session_, s), true; },
            [&](const ast::CursorDeclareStatement& s) { return DeclareCursor(s), true; },
            [&](const ast::CursorStatement& s) { return RunCursor(s), true; },
            [&](const ast::FetchStatement& s) { return Fetch(s), true; },
            [&](const auto&) { return false; },
        },
        statement.node);
}

Interpreter::Flow Interpreter::ExecuteDefinition(const ast::Statement& statement) {
    std::visit(Overloaded{
                   [&](const ast::CreateTableStatement& s) { RunCreateTable(session_, s); },
                   [&](const ast::AlterTableStatement& s) { RunAlterTable(session_, s); },
                   [&](const ast::DropStatement& s) { RunDrop(session_, s); },
                   [&](const ast::CreateIndexStatement& s) { RunCreateIndex(session_, s); },
                   [&](const ast::DropIndexStatement& s) { RunDropIndex(session_, s); },
                   [&](const ast::CreateModuleStatement& s) { RunCreateModule(session_, s); },
                   [&](const ast::SwitchTriggersStatement& s) { RunSwitchTriggers(session_, s); },
                   [&](const ast::CreateDatabaseStatement& s) { RunCreateDatabase(session_, s); },
                   [&](const ast::AlterDatabaseStatement& s) { RunAlterDatabase(session_, s); },
                   [&](const ast::GrantStatement& s) { RunGrant(session_, s); },
                   [&](const ast::CreatePrincipalStatement& s) { RunCreatePrincipal(session_, s); },
                   [&](const ast::CreateTypeStatement& s) { RunCreateType(session_, s); },
                   [&](const ast::AlterRoleStatement& s) { RunAlterRole(session_, s); },
                   [&](const ast::MaintenanceStatement& s) {
                       if (s.tells) {
                           session_.results().Info(2528);
                       }
                       session_.results().Done(Command::None, std::nullopt);
                   },
                   [&](const ast::CheckIdentityStatement& s) { RunCheckIdentity(session_, s); },
                   [&](const ast::KillStatement& s) {
                       session_.server().users().Kill(static_cast<std::int32_t>(s.session), session_);
                       session_.results().Done(Command::None, std::nullopt);
                   },
                   [&](const auto&) { throw std::logic_error("a statement without execution"); },
               },
               statement.node);
    session_.status().row_count = 0;
    return Flow::Next;
}

} // namespace devsql

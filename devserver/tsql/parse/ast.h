// The tree of T-SQL as the parser builds it: names are not resolved, and only types that are written down are
// known. This header has the statements; ast_query.h has names, expressions and queries, ast_definitions.h
// the statements that define objects. Knows nothing of catalogue and execution.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "devserver/tsql/parse/ast_definitions.h"
#include "devserver/tsql/parse/ast_query.h"

namespace devsql::ast {

// ------------------------------------------------------------------ control

struct Declaration {
    std::string name;
    TypeSpec type;
    ExprPtr value;                        ///< may be null
    std::optional<TableDefinition> table; ///< of a table variable; `type` is then not used
    bool cursor = false;                  ///< a cursor variable
};
struct DeclareStatement {
    std::vector<Declaration> declarations;
};
struct SetVariableStatement {
    std::string name;
    std::optional<BinaryOperator> op; ///< SET @i += 1
    ExprPtr value;
};
/// SET option … ON|OFF or a value.
struct SetOptionStatement {
    std::vector<std::string> options; ///< upper case
    std::string value;                ///< "ON", "OFF", a word or a number
    ExprPtr expr;                     ///< SET ROWCOUNT @n and the like
    Name table;                       ///< SET IDENTITY_INSERT
};
struct IfStatement {
    ExprPtr condition;
    StatementPtr then;
    StatementPtr otherwise; ///< may be null
};
struct WhileStatement {
    ExprPtr condition;
    StatementPtr body;
};
struct BlockStatement {
    StatementList statements;
};
struct BreakStatement {};
struct ContinueStatement {};
struct ReturnStatement {
    ExprPtr value; ///< may be null
};
struct GotoStatement {
    std::string label;
};
struct LabelStatement {
    std::string label;
};
struct PrintStatement {
    ExprPtr value;
};
struct RaiserrorStatement {
    ExprPtr message;
    ExprPtr severity;
    ExprPtr state;
    std::vector<ExprPtr> arguments;
    bool set_error = false; ///< WITH SETERROR: @@ERROR gets the number whatever the severity
    bool log = false;       ///< WITH LOG: required for a severity above 18
    bool no_wait = false;   ///< WITH NOWAIT: goes to the client at once
};
struct ThrowStatement {
    ExprPtr number; ///< null for THROW without arguments
    ExprPtr message;
    ExprPtr state;
};
struct WaitforStatement {
    bool until = false; ///< WAITFOR TIME: until that time of day; otherwise WAITFOR DELAY
    ExprPtr time;
};
struct TryStatement {
    StatementList body;
    StatementList handler;
};

struct Argument {
    std::string name; ///< with "@"; empty: by position
    ExprPtr value;    ///< null: DEFAULT
    bool output = false;
};
struct ExecuteStatement {
    std::string return_variable; ///< EXEC @status = name; empty: none
    Name procedure;
    std::string procedure_variable; ///< EXEC @name
    std::vector<Argument> arguments;
};
/// EXEC ('text').
struct ExecuteStringStatement {
    ExprPtr text;
};

enum class TransactionAction : std::uint8_t { Begin, Commit, Rollback, Save };
struct TransactionStatement {
    TransactionAction action;
    std::string name; ///< of the transaction or savepoint; may be empty
};
struct UseStatement {
    std::string database;
};

/// OUTPUT items [INTO table (columns)]: over the rows "inserted" and "deleted".
struct OutputClause {
    std::vector<SelectItem> items;
    Name into; ///< empty: to the client
    std::vector<std::string> columns;
};
struct InsertStatement {
    Name table;
    std::vector<std::string> columns;
    std::vector<std::vector<ExprPtr>> rows; ///< VALUES; a null item is DEFAULT
    QueryPtr query;                         ///< INSERT … SELECT; may be null
    StatementPtr execute;                   ///< INSERT … EXEC; may be null
    bool default_values = false;            ///< DEFAULT VALUES
    std::optional<Top> top;
    std::vector<OutputClause> outputs;
};
/// INSERT BULK: a client sends it before the rows of a bulk load. The rows bring their own types.
struct InsertBulkStatement {
    Name table;
    std::vector<std::string> columns;
    bool check_constraints = false;
    bool keep_nulls = false;
    bool fire_triggers = false;
};
struct Assignment {
    std::string column;
    std::string variable; ///< SET @v = expr, SET @v = column = expr
    std::optional<BinaryOperator> op;
    ExprPtr value; ///< null: DEFAULT
};
struct UpdateStatement {
    Name table;
    std::vector<Assignment> assignments;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    std::string cursor; ///< WHERE CURRENT OF; `where` is then null
    std::optional<Top> top;
    std::vector<CommonTable> with;
    std::vector<OutputClause> outputs;
};
struct DeleteStatement {
    Name table;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    std::string cursor; ///< as in UpdateStatement
    std::optional<Top> top;
    std::vector<CommonTable> with;
    std::vector<OutputClause> outputs;
};
struct TruncateStatement {
    Name table;
};

// ------------------------------------------------------------------ cursors

struct CursorDeclareStatement {
    std::string name;             ///< a cursor variable has its "@"
    std::shared_ptr<Query> query; ///< shared, because a global cursor outlives its batch
    bool scroll = false;
    bool local = false;
    bool read_only = false;
};
enum class CursorAction : std::uint8_t { Open, Close, Deallocate };
struct CursorStatement {
    CursorAction action;
    std::string name;
};
enum class FetchDirection : std::uint8_t { Next, Prior, First, Last, Absolute, Relative };
struct FetchStatement {
    FetchDirection direction = FetchDirection::Next;
    ExprPtr offset; ///< of ABSOLUTE and RELATIVE; null for the others
    std::string name;
    std::vector<std::string> into; ///< variables; empty: the row goes to the client
};

// ------------------------------------------------------------------ the server

/// A statement that succeeds without any effect on this server: CHECKPOINT, UPDATE STATISTICS, the kinds of
/// DBCC that devserver/docs lists.
struct MaintenanceStatement {
    std::string name;
    bool tells = false; ///< sends the message 2528 at its end
};
/// DBCC CHECKIDENT ('table' [, RESEED [, value] | NORESEED])
struct CheckIdentityStatement {
    std::string table;
    bool reseed = true;
    bool silent = false; ///< WITH NO_INFOMSGS
    ExprPtr value;       ///< may be null
};
struct KillStatement {
    std::int64_t session = 0; ///< @@SPID of the session that ends
};

// ------------------------------------------------------------------ any of them

struct Statement {
    Statement();
    Statement(Statement&&) noexcept;
    Statement& operator=(Statement&&) noexcept;
    ~Statement();
    template <typename Node>
    explicit Statement(Node&& from, std::int32_t at)
        : node(std::in_place_type<std::remove_cvref_t<Node>>, std::forward<Node>(from)), line(at) {}

    std::variant<DeclareStatement, SetVariableStatement, SetOptionStatement, IfStatement, WhileStatement,
                 BlockStatement, BreakStatement, ContinueStatement, ReturnStatement, GotoStatement,
                 LabelStatement, PrintStatement, RaiserrorStatement, ThrowStatement, WaitforStatement,
                 TryStatement, ExecuteStatement, ExecuteStringStatement, TransactionStatement, UseStatement,
                 QueryPtr, InsertStatement, InsertBulkStatement, UpdateStatement, DeleteStatement,
                 TruncateStatement, CreateTableStatement, AlterTableStatement, DropStatement,
                 CreateIndexStatement, DropIndexStatement, SwitchTriggersStatement, CreateModuleStatement,
                 CreateDatabaseStatement, AlterDatabaseStatement, GrantStatement, CreatePrincipalStatement,
                 CreateTypeStatement, AlterRoleStatement, CursorDeclareStatement, CursorStatement,
                 FetchStatement, MaintenanceStatement, CheckIdentityStatement, KillStatement>
        node;
    std::int32_t line = 1; ///< on which the statement begins, from 1
};

} // namespace devsql::ast

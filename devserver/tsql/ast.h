// The tree of T-SQL as the parser builds it: names unresolved, no types but those written down.
// Knows nothing of catalogue and execution.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "devserver/tsql/scalar/type_rules.h"
#include "devserver/tsql/value.h"

namespace devsql::ast {

/// One to four parts, the last one the object's; parts between may be empty ("db..t").
struct Name {
    std::vector<std::string> parts;

    bool empty() const { return parts.empty(); }
    const std::string& last() const { return parts.back(); }
    /// As written, joined with points.
    std::string text() const;
};

/// A type as written: "varchar(20)", "decimal(18, 2)", "nvarchar(max)", "dbo.telephone".
struct TypeSpec {
    Name name;
    std::optional<std::int64_t> first;
    std::optional<std::int64_t> second;
    bool max = false;
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;
struct Query;
using QueryPtr = std::unique_ptr<Query>;

// ------------------------------------------------------------------ expressions

enum class CompareOp : std::uint8_t { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };

struct LiteralExpr {
    Type type;
    Value value;
};
struct VariableExpr {
    std::string name; ///< with "@" or "@@"
};
struct ColumnExpr {
    Name name;
};
struct UnaryExpr {
    UnaryOperator op;
    ExprPtr operand;
};
struct BinaryExpr {
    BinaryOperator op;
    ExprPtr left;
    ExprPtr right;
};
struct CompareExpr {
    CompareOp op;
    ExprPtr left;
    ExprPtr right;
};
/// x > ALL (SELECT …), x = ANY (SELECT …)
struct QuantifiedExpr {
    CompareOp op;
    bool all;
    ExprPtr operand;
    QueryPtr query;
};
struct LogicExpr {
    bool conjunction;
    ExprPtr left;
    ExprPtr right;
};
struct NotExpr {
    ExprPtr operand;
};
struct IsNullExpr {
    ExprPtr operand;
    bool negated;
};
struct BetweenExpr {
    ExprPtr operand;
    ExprPtr low;
    ExprPtr high;
    bool negated;
};
struct InListExpr {
    ExprPtr operand;
    std::vector<ExprPtr> items;
    bool negated;
};
struct InQueryExpr {
    ExprPtr operand;
    QueryPtr query;
    bool negated;
};
struct LikeExpr {
    ExprPtr operand;
    ExprPtr pattern;
    ExprPtr escape; ///< may be null
    bool negated;
};
struct ExistsExpr {
    QueryPtr query;
};
struct SubqueryExpr {
    QueryPtr query;
};
struct CaseExpr {
    ExprPtr operand; ///< null: a searched CASE
    std::vector<std::pair<ExprPtr, ExprPtr>> branches;
    ExprPtr otherwise; ///< may be null
};
struct CastExpr {
    ExprPtr operand;
    TypeSpec type;
    ExprPtr style; ///< may be null
    bool attempt;  ///< TRY_CAST, TRY_CONVERT
};
struct OrderItem {
    ExprPtr expr;
    bool descending = false;
};
struct Over {
    std::vector<ExprPtr> partition_by;
    std::vector<OrderItem> order_by;
};
struct CallExpr {
    std::string name; ///< as written
    std::vector<ExprPtr> arguments;
    bool distinct = false;
    bool star = false;
    std::optional<Over> over;
};

struct Expr {
    Expr();
    Expr(Expr&&) noexcept;
    Expr& operator=(Expr&&) noexcept;
    ~Expr();
    template <typename Node>
    explicit Expr(Node&& from, std::int32_t at)
        : node(std::in_place_type<std::remove_cvref_t<Node>>, std::forward<Node>(from)), line(at) {}

    std::variant<LiteralExpr, VariableExpr, ColumnExpr, UnaryExpr, BinaryExpr, CompareExpr, QuantifiedExpr,
                 LogicExpr, NotExpr, IsNullExpr, BetweenExpr, InListExpr, InQueryExpr, LikeExpr, ExistsExpr,
                 SubqueryExpr, CaseExpr, CastExpr, CallExpr>
        node;
    std::int32_t line = 1;
};

// ------------------------------------------------------------------ queries

struct SelectItem {
    ExprPtr expr; ///< null for a star
    std::string alias;
    std::string variable; ///< SELECT @v = expr
    bool star = false;
    Name star_of; ///< t.*
};

struct TableSource;
using TableSourcePtr = std::unique_ptr<TableSource>;

struct NamedSource {
    Name name; ///< a table variable has its "@"
    std::string alias;
};
struct DerivedSource {
    QueryPtr query;
    std::string alias;
    std::vector<std::string> columns;
};
enum class JoinKind : std::uint8_t { Inner, Left, Right, Full, Cross };
struct JoinSource {
    JoinKind kind;
    TableSourcePtr left;
    TableSourcePtr right;
    ExprPtr on; ///< null for CROSS
};
struct TableSource {
    TableSource();
    TableSource(TableSource&&) noexcept;
    TableSource& operator=(TableSource&&) noexcept;
    ~TableSource();

    std::variant<NamedSource, DerivedSource, JoinSource> node;
};

struct Top {
    ExprPtr count;
    bool percent = false;
};

/// GROUP BY … WITH ROLLUP: also each shorter list of the keys from the left; WITH CUBE: each choice of keys.
enum class GroupingSets : std::uint8_t { One, Rollup, Cube };

struct SelectCore {
    bool distinct = false;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    Name into;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    std::vector<ExprPtr> group_by;
    GroupingSets grouping = GroupingSets::One;
    ExprPtr having;
};

enum class SetOp : std::uint8_t { Union, UnionAll, Except, Intersect };
struct QueryTerm;
using QueryTermPtr = std::unique_ptr<QueryTerm>;
struct SetOperation {
    SetOp op;
    QueryTermPtr left;
    QueryTermPtr right;
};
struct QueryTerm {
    QueryTerm();
    QueryTerm(QueryTerm&&) noexcept;
    QueryTerm& operator=(QueryTerm&&) noexcept;
    ~QueryTerm();

    std::variant<SelectCore, SetOperation> node;
};

struct CommonTable {
    std::string name;
    std::vector<std::string> columns;
    QueryPtr query;
};

struct Query {
    Query();
    Query(Query&&) noexcept;
    Query& operator=(Query&&) noexcept;
    ~Query();

    std::vector<CommonTable> with;
    QueryTermPtr body;
    std::vector<OrderItem> order_by;
    ExprPtr offset; ///< OFFSET … ROWS; may be null
    ExprPtr fetch;  ///< FETCH NEXT … ROWS ONLY; may be null
    std::int32_t line = 1;
};

// ------------------------------------------------------------------ statements

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;
using StatementList = std::vector<StatementPtr>;

enum class ReferentialAction : std::uint8_t { NoAction, Cascade, SetNull, SetDefault };

struct IndexColumn {
    std::string name;
    bool descending = false;
};

enum class ConstraintKind : std::uint8_t { PrimaryKey, Unique, ForeignKey, Check, Default };
struct Constraint {
    ConstraintKind kind = ConstraintKind::Check;
    std::string name; ///< empty: the server makes one
    std::vector<IndexColumn> columns;
    bool clustered = false;
    bool clustering_given = false;
    Name references;
    std::vector<std::string> referenced_columns;
    ReferentialAction on_delete = ReferentialAction::NoAction;
    ReferentialAction on_update = ReferentialAction::NoAction;
    std::string text; ///< CHECK and DEFAULT: the expression as written, in parentheses
    bool with_check = true;
};

struct Identity {
    std::int64_t seed = 1;
    std::int64_t increment = 1;
};

struct ColumnDefinition {
    std::string name;
    TypeSpec type;
    std::optional<bool> nullable;
    std::optional<Identity> identity;
    bool row_guid = false;
    std::string collation;
    std::string computed; ///< the text of a computed column's expression
    std::vector<Constraint> constraints;
};

struct TableDefinition {
    std::vector<ColumnDefinition> columns;
    std::vector<Constraint> constraints;
};

struct Declaration {
    std::string name;
    TypeSpec type;
    ExprPtr value;                        ///< may be null
    std::optional<TableDefinition> table; ///< a table variable
    bool cursor = false;
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
    bool set_error = false;
    bool log = false;     ///< WITH LOG: what a severity above 18 wants
    bool no_wait = false; ///< WITH NOWAIT: goes to the client at once
};
struct ThrowStatement {
    ExprPtr number; ///< null: THROW alone
    ExprPtr message;
    ExprPtr state;
};
struct WaitforStatement {
    bool until = false;
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
    std::string return_variable;
    Name procedure;
    std::string procedure_variable; ///< EXEC @name
    std::vector<Argument> arguments;
};
struct ExecuteStringStatement {
    ExprPtr text;
};

enum class TransactionAction : std::uint8_t { Begin, Commit, Rollback, Save };
struct TransactionStatement {
    TransactionAction action;
    std::string name;
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
    QueryPtr query;
    StatementPtr execute;
    bool default_values = false;
    std::optional<Top> top;
    std::vector<OutputClause> outputs;
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
    std::string cursor; ///< WHERE CURRENT OF
    std::optional<Top> top;
    std::vector<CommonTable> with;
    std::vector<OutputClause> outputs;
};
struct DeleteStatement {
    Name table;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    std::string cursor;
    std::optional<Top> top;
    std::vector<CommonTable> with;
    std::vector<OutputClause> outputs;
};
struct TruncateStatement {
    Name table;
};

struct CreateTableStatement {
    Name table;
    TableDefinition definition;
};
enum class AlterTableAction : std::uint8_t {
    Add,
    AlterColumn,
    DropColumn,
    DropConstraint,
    EnableConstraint,
    DisableConstraint,
    Triggers,
};
struct AlterTableStatement {
    Name table;
    AlterTableAction action = AlterTableAction::Add;
    TableDefinition definition; ///< ADD, ALTER COLUMN
    bool with_values = false;
    std::vector<std::string> names; ///< DROP, CHECK CONSTRAINT; "ALL"
};
enum class ObjectKind : std::uint8_t {
    Table,
    View,
    Procedure,
    Function,
    Trigger,
    Database,
    User,
    Role,
    Login,
    Schema,
    Type,
    Default,
    Rule,
};
struct DropStatement {
    ObjectKind kind;
    std::vector<Name> names;
    bool if_exists = false;
};
struct CreateIndexStatement {
    std::string name;
    Name table;
    bool unique = false;
    bool clustered = false;
    bool drop_existing = false;
    std::vector<IndexColumn> columns;
    std::vector<std::string> included;
};
struct DropIndexStatement {
    std::vector<std::pair<Name, std::string>> indexes; ///< table, index
    bool if_exists = false;
};

struct Parameter {
    std::string name;
    TypeSpec type;
    ExprPtr default_value; ///< may be null
    std::string default_text;
    bool output = false;
};
/// CREATE and ALTER of views and procedures: the text is kept, names are resolved when it runs.
struct CreateModuleStatement {
    ObjectKind kind;
    bool alter = false;
    bool or_alter = false;
    Name name;
    std::vector<Parameter> parameters;
    std::vector<std::string> columns; ///< of a view
    bool encrypted = false;
    bool recompile = false;
    bool check_option = false;
    QueryPtr query;     ///< of a view
    StatementList body; ///< of a procedure
    std::string text;   ///< the whole batch
};

struct FileSpec {
    std::string name;
    std::string path;
    std::string size; ///< as written, "5MB"; empty: not given
    std::string max_size;
    std::string growth;
    std::string file_group;
};
struct CreateDatabaseStatement {
    std::string name;
    std::vector<FileSpec> files;
    std::vector<FileSpec> logs;
    bool attach = false;
};
enum class AlterDatabaseAction : std::uint8_t { ModifyName, ModifyFile, AddFile, AddFileGroup, Set, Owner };
struct AlterDatabaseStatement {
    std::string database;
    AlterDatabaseAction action = AlterDatabaseAction::Set;
    std::string name;     ///< MODIFY NAME, MODIFY FILE (NAME = …), ADD FILEGROUP
    std::string new_name; ///< MODIFY FILE (NEWNAME = …); the login that becomes the owner
    std::vector<FileSpec> files;
    bool log_file = false;
    std::vector<std::pair<std::string, std::string>> options; ///< upper case; SINGLE_USER has the value ""
    bool rollback_immediate = false;
};

enum class GrantAction : std::uint8_t { Grant, Deny, Revoke };
struct GrantStatement {
    GrantAction action;
    std::vector<std::string> permissions; ///< upper case
    Name object;                          ///< empty: of the database
    std::vector<std::string> grantees;
    bool grant_option = false;
};
struct CreatePrincipalStatement {
    ObjectKind kind; ///< User, Role, Login, Schema
    std::string name;
    std::string login; ///< CREATE USER … FOR LOGIN; CREATE SCHEMA … AUTHORIZATION
    std::string password;
};
struct CreateTypeStatement {
    Name name;
    TypeSpec base;
    std::optional<bool> nullable;
};
struct AlterRoleStatement {
    std::string role;
    std::string member;
    bool add = true;
};

struct CursorDeclareStatement {
    std::string name;             ///< a cursor variable has its "@"
    std::shared_ptr<Query> query; ///< outlives its batch with a global cursor
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
    ExprPtr offset;
    std::string name;
    std::vector<std::string> into;
};
/// A statement that succeeds and changes nothing here: CHECKPOINT, UPDATE STATISTICS, DBCC of a kind listed
/// in the documentation.
struct MaintenanceStatement {
    std::string name;
};
/// DBCC CHECKIDENT ('table' [, RESEED [, value] | NORESEED])
struct CheckIdentityStatement {
    std::string table;
    bool reseed = true;
    bool silent = false; ///< WITH NO_INFOMSGS
    ExprPtr value;       ///< may be null
};
struct KillStatement {
    std::int64_t session = 0;
};

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
                 QueryPtr, InsertStatement, UpdateStatement, DeleteStatement, TruncateStatement,
                 CreateTableStatement, AlterTableStatement, DropStatement, CreateIndexStatement,
                 DropIndexStatement, CreateModuleStatement, CreateDatabaseStatement, AlterDatabaseStatement,
                 GrantStatement, CreatePrincipalStatement, CreateTypeStatement, AlterRoleStatement,
                 CursorDeclareStatement, CursorStatement, FetchStatement, MaintenanceStatement,
                 CheckIdentityStatement, KillStatement>
        node;
    std::int32_t line = 1;
};

} // namespace devsql::ast

// The tree of T-SQL: its smallest parts, which are names, types, expressions and queries as they are written.
// Knows nothing of statements, of the catalogue and of execution.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "devserver/engine/value.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql::ast {

/// A name of one to four parts: server, database, schema, object. The last part is the object's; those before
/// it may be empty ("db..t").
struct Name {
    std::vector<std::string> parts;

    bool empty() const { return parts.empty(); }
    const std::string& last() const { return parts.back(); }
    /// As written, with points between the parts.
    std::string text() const;
};

/// A type as written: "varchar(20)", "decimal(18, 2)", "nvarchar(max)", "dbo.telephone".
struct TypeSpec {
    Name name;
    std::optional<std::int64_t> first;  ///< the length or precision
    std::optional<std::int64_t> second; ///< the scale
    bool max = false;                   ///< "(max)" instead of a length
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
struct LogicExpr {
    bool conjunction; ///< AND; otherwise OR
    ExprPtr left;
    ExprPtr right;
};
struct NotExpr {
    ExprPtr operand;
};
struct IsNullExpr {
    ExprPtr operand;
    bool negated; ///< IS NOT NULL; here and below the NOT of the predicate itself
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
    ExprPtr operand;                                   ///< null: a searched CASE
    std::vector<std::pair<ExprPtr, ExprPtr>> branches; ///< WHEN, THEN
    ExprPtr otherwise;                                 ///< ELSE; may be null
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
    bool star = false; ///< COUNT(*); `arguments` is then empty
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

    std::variant<LiteralExpr, VariableExpr, ColumnExpr, UnaryExpr, BinaryExpr, CompareExpr, LogicExpr,
                 NotExpr, IsNullExpr, BetweenExpr, InListExpr, InQueryExpr, LikeExpr, ExistsExpr,
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

struct SelectCore {
    bool distinct = false;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    Name into; ///< SELECT … INTO; empty: none
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    std::vector<ExprPtr> group_by;
    bool rollup = false; ///< WITH ROLLUP: also by each shorter list of the keys from the left
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
    ExprPtr offset;                   ///< OFFSET … ROWS; may be null
    ExprPtr fetch;                    ///< FETCH NEXT … ROWS ONLY; may be null
    std::int64_t max_recursion = 100; ///< OPTION (MAXRECURSION n), of the tables in `with`; 0: no limit
    std::int32_t line = 1;
};

/// The first SELECT of a query, which gives the columns their names and may hold an INTO.
const SelectCore& FirstCore(const Query& query);
/// SELECT @v = ...
bool IsAssignment(const Query& query);

} // namespace devsql::ast

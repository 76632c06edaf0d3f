// Expressions after binding: names are resolved, every node has its static type, conversions are explicit.
// Columns, subqueries and aggregates, which only SQLite can compute, are leaves with SQL text.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devserver/engine/value.h"
#include "devserver/tsql/parse/ast_query.h"
#include "devserver/tsql/scalar/functions.h"

namespace devsql {

struct Bound;
using BoundPtr = std::shared_ptr<const Bound>;
struct SessionFunction;

enum class BoundKind : std::uint8_t {
    Constant,
    Variable, ///< of the running frame: read when it is evaluated
    Sql,      ///< SQLite text
    Slot,     ///< a value of the current row, by position
    Unary,
    Binary,
    Convert,
    Function,
    Session, ///< a function that asks the session
    Case,    ///< children: condition, value, …, and the ELSE value when their number is odd
    // Conditions: true, false or unknown.
    Compare,
    And,
    Or,
    Not,
    IsNull,
    InList, ///< children: operand, items
    Like,   ///< children: operand, pattern and perhaps the escape character
};

/// A node of an expression. If a field's comment begins with a kind, only nodes of that kind use it.
struct Bound {
    BoundKind kind = BoundKind::Constant;
    Type type;
    bool nullable = true;
    bool condition = false; ///< its result is true, false or unknown, not a value
    std::vector<BoundPtr> children;

    Value constant;           ///< Constant
    std::string text;         ///< Sql: the text; Variable: the name
    std::string source;       ///< Sql: of a column reference, the table's name or alias in the query
    std::string column;       ///< Sql: of a column reference
    int depth = 0;            ///< Sql: of a column reference, the query it belongs to
    bool aggregate = false;   ///< Sql: the call of an aggregate
    bool identity = false;    ///< Sql: an identity column
    std::size_t slot = 0;     ///< Slot
    BinaryOperator binary{};  ///< Binary
    UnaryOperator unary{};    ///< Unary
    ast::CompareOp compare{}; ///< Compare
    bool attempt = false;     ///< Convert: TRY_CAST, which returns NULL instead of an error
    bool assignment = false;  ///< Convert: an implicit conversion, such as that of a comparison
    const ScalarFunction* function = nullptr; ///< Function
    const SessionFunction* session = nullptr; ///< Session
};

// These make nodes. The caller of one that returns a node that is not const sets the remaining fields of its
// kind, before the node becomes a part of an expression; after that no node changes.

std::shared_ptr<Bound> MakeConstant(Value value, const Type& type);
std::shared_ptr<Bound> MakeSql(std::string text, const Type& type, bool nullable = true);
std::shared_ptr<Bound> MakeSqlCondition(std::string text);
/// The value at position `slot` of the current row.
std::shared_ptr<Bound> MakeSlot(std::size_t slot, const Type& type);
/// `operand` as `type`; the operand itself where nothing changes.
BoundPtr MakeConvert(BoundPtr operand, const Type& type);
std::shared_ptr<Bound> MakeNode(BoundKind kind, const Type& type, std::vector<BoundPtr> children);
std::shared_ptr<Bound> MakeCondition(BoundKind kind, std::vector<BoundPtr> children);

/// True for expressions of the same structure, as GROUP BY compares them.
bool SameExpression(const Bound& a, const Bound& b);

} // namespace devsql

// Binds expressions: finds their types and makes implicit conversions explicit.
#include "devserver/tsql/bind/expression_binder.h"

#include <array>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr std::string_view kCompareNames[] = {"equal to",     "not equal to",
                                              "less than",    "less than or equal to",
                                              "greater than", "greater than or equal to"};

/// The type in which two values are compared: the stronger one. Types of fixed length become those of
/// variable length, so that no blanks are added.
Type ComparisonType(const Type& a, const Type& b) {
    Type type = CommonType(a, b);
    if (type.id == TypeId::Char) {
        type = FittedLength(TypeId::VarChar, type.length);
    } else if (type.id == TypeId::NChar) {
        type = FittedLength(TypeId::NVarChar, type.length);
    } else if (type.id == TypeId::Binary) {
        type.id = TypeId::VarBinary;
    }
    return type;
}

/// Converts the operand for a comparison. Texts, whatever their types, and binaries are compared without
/// conversion.
BoundPtr ForComparison(const BoundPtr& operand, const Type& type) {
    if ((IsCharacter(operand->type.id) && IsCharacter(type.id)) ||
        (IsBinary(operand->type.id) && IsBinary(type.id))) {
        return operand;
    }
    return MakeConvert(operand, type);
}

/// SET CONCAT_NULL_YIELDS_NULL OFF: NULL becomes an empty text where texts are concatenated.
BoundPtr EmptyForNull(const BoundPtr& operand) {
    BoundPtr empty = MakeConstant(std::string(), Sized(TypeId::VarChar, 1));
    const ScalarFunction* function = FindFunction("ISNULL");
    const std::array types = {operand->type, empty->type};
    auto node = MakeNode(BoundKind::Function, function->result_type(types), {operand, std::move(empty)});
    node->function = function;
    return node;
}

/// True for operands that may equal NULL under SET ANSI_NULLS OFF: variables and NULL itself, but not columns
/// and what is computed from them.
bool IsLooseNull(const Bound& operand) {
    return operand.kind == BoundKind::Variable ||
           (operand.kind == BoundKind::Constant && devsql::IsNull(operand.constant));
}

/// The cases in which a comparison is also true under SET ANSI_NULLS OFF: two NULLs are equal, and NULL
/// differs from anything else.
BoundPtr LooseNulls(ast::CompareOp op, const BoundPtr& left, const BoundPtr& right) {
    const BoundPtr left_null = MakeCondition(BoundKind::IsNull, {left});
    const BoundPtr right_null = MakeCondition(BoundKind::IsNull, {right});
    if (op == ast::CompareOp::Equal) {
        return MakeCondition(BoundKind::And, {left_null, right_null});
    }
    std::vector<BoundPtr> cases;
    if (IsLooseNull(*left)) {
        cases.push_back(
            MakeCondition(BoundKind::And, {left_null, MakeCondition(BoundKind::Not, {right_null})}));
    }
    if (IsLooseNull(*right)) {
        cases.push_back(
            MakeCondition(BoundKind::And, {right_null, MakeCondition(BoundKind::Not, {left_null})}));
    }
    return MakeCondition(BoundKind::Or, std::move(cases));
}

} // namespace

BoundPtr ExpressionBinder::Value(const ast::Expr& expr, const Scope* scope) {
    BoundPtr bound = Node(expr, scope);
    RaiseIf(bound->condition, 102, {"="});
    return bound;
}

BoundPtr ExpressionBinder::Node(const ast::Expr& expr, const Scope* scope) {
    return std::visit<BoundPtr>(
        Overloaded{
            [&](const ast::LiteralExpr& e) { return MakeConstant(e.value, e.type); },
            [&](const ast::VariableExpr& e) { return Variable(e); },
            [&](const ast::ColumnExpr& e) { return binder_.names().Column(e, scope); },
            [&](const ast::UnaryExpr& e) { return Unary(e, scope); },
            [&](const ast::BinaryExpr& e) { return Binary(e, scope); },
            [&](const ast::CompareExpr& e) {
                BoundPtr left = Value(*e.left, scope);
                return Compare(e.op, left, Value(*e.right, scope));
            },
            [&](const ast::LogicExpr& e) { return Logic(e, scope); },
            [&](const ast::NotExpr& e) {
                return MakeCondition(BoundKind::Not, {Condition(*e.operand, scope)});
            },
            [&](const ast::IsNullExpr& e) { return IsNull(e, scope); },
            [&](const ast::BetweenExpr& e) { return Between(e, scope); },
            [&](const ast::InListExpr& e) { return InList(e, scope); },
            [&](const ast::InQueryExpr& e) { return InQuery(e, scope); },
            [&](const ast::LikeExpr& e) { return Like(e, scope); },
            [&](const ast::ExistsExpr& e) {
                return MakeSqlCondition("EXISTS (" + binder_.BindQuery(*e.query, scope).sql + ")");
            },
            [&](const ast::SubqueryExpr& e) { return Subquery(*e.query, scope); },
            [&](const ast::CaseExpr& e) { return Case(e, scope); },
            [&](const ast::CastExpr& e) { return Cast(e, scope); },
            [&](const ast::CallExpr& e) { return binder_.calls().Call(e, scope); },
        },
        expr.node);
}

BoundPtr ExpressionBinder::Variable(const ast::VariableExpr& expr) {
    if (expr.name.starts_with("@@")) {
        devsql::Variable global = GlobalVariable(session_, expr.name);
        return MakeConstant(std::move(global.value), global.type);
    }
    auto node = std::make_shared<Bound>();
    node->kind = BoundKind::Variable;
    node->type = session_.calls().FindVariable(expr.name).type;
    node->text = expr.name;
    return node;
}

BoundPtr ExpressionBinder::Unary(const ast::UnaryExpr& expr, const Scope* scope) {
    BoundPtr operand = Value(*expr.operand, scope);
    auto node = MakeNode(BoundKind::Unary, OperatorType(expr.op, operand->type), {operand});
    node->unary = expr.op;
    return node;
}

BoundPtr ExpressionBinder::Binary(const ast::BinaryExpr& expr, const Scope* scope) {
    BoundPtr left = Value(*expr.left, scope);
    BoundPtr right = Value(*expr.right, scope);
    if (expr.op == BinaryOperator::Add && !session_.options().concat_null_yields_null &&
        IsCharacter(OperatorType(expr.op, left->type, right->type).id)) {
        left = EmptyForNull(left);
        right = EmptyForNull(right);
    }
    const Type type = OperatorType(expr.op, left->type, right->type);
    auto node = MakeNode(BoundKind::Binary, type, {left, right});
    node->binary = expr.op;
    return node;
}

BoundPtr ExpressionBinder::IsNull(const ast::IsNullExpr& expr, const Scope* scope) {
    BoundPtr test = MakeCondition(BoundKind::IsNull, {Value(*expr.operand, scope)});
    return expr.negated ? MakeCondition(BoundKind::Not, {test}) : test;
}

/// "a AND b AND c" as one condition of three: otherwise the tree of a long chain would be too deep.
BoundPtr ExpressionBinder::Logic(const ast::LogicExpr& logic, const Scope* scope) {
    std::vector<const ast::Expr*> operands = {logic.right.get()};
    const ast::Expr* left = logic.left.get();
    for (const auto* inner = std::get_if<ast::LogicExpr>(&left->node);
         inner != nullptr && inner->conjunction == logic.conjunction;
         inner = std::get_if<ast::LogicExpr>(&left->node)) {
        operands.push_back(inner->right.get());
        left = inner->left.get();
    }
    operands.push_back(left);
    std::vector<BoundPtr> children;
    for (auto operand = operands.rbegin(); operand != operands.rend(); ++operand) {
        children.push_back(Condition(**operand, scope));
    }
    return MakeCondition(logic.conjunction ? BoundKind::And : BoundKind::Or, std::move(children));
}

BoundPtr ExpressionBinder::Compare(ast::CompareOp op, const BoundPtr& left, const BoundPtr& right) const {
    const std::string_view name = kCompareNames[static_cast<std::size_t>(op)];
    RequireComparable(left->type, right->type, name);
    const Type type = ComparisonType(left->type, right->type);
    auto node = MakeCondition(BoundKind::Compare, {ForComparison(left, type), ForComparison(right, type)});
    node->compare = op;
    const bool equality = op == ast::CompareOp::Equal || op == ast::CompareOp::NotEqual;
    if (!session_.options().ansi_nulls && equality && (IsLooseNull(*left) || IsLooseNull(*right))) {
        return MakeCondition(BoundKind::Or, {node, LooseNulls(op, left, right)});
    }
    return node;
}

BoundPtr ExpressionBinder::Between(const ast::BetweenExpr& between, const Scope* scope) {
    BoundPtr operand = Value(*between.operand, scope);
    BoundPtr low = Compare(ast::CompareOp::GreaterEqual, operand, Value(*between.low, scope));
    BoundPtr high = Compare(ast::CompareOp::LessEqual, operand, Value(*between.high, scope));
    BoundPtr both = MakeCondition(BoundKind::And, {std::move(low), std::move(high)});
    return between.negated ? MakeCondition(BoundKind::Not, {both}) : both;
}

BoundPtr ExpressionBinder::InList(const ast::InListExpr& in, const Scope* scope) {
    BoundPtr operand = Value(*in.operand, scope);
    std::vector<BoundPtr> items;
    Type type = operand->type;
    for (const ast::ExprPtr& item : in.items) {
        items.push_back(Value(*item, scope));
        RequireComparable(operand->type, items.back()->type, kCompareNames[0]);
        type = ComparisonType(type, items.back()->type);
    }
    std::vector<BoundPtr> children = {ForComparison(operand, type)};
    for (const BoundPtr& item : items) {
        children.push_back(ForComparison(item, type));
    }
    BoundPtr test = MakeCondition(BoundKind::InList, std::move(children));
    return in.negated ? MakeCondition(BoundKind::Not, {test}) : test;
}

BoundPtr ExpressionBinder::InQuery(const ast::InQueryExpr& in, const Scope* scope) {
    BoundPtr operand = Value(*in.operand, scope);
    BoundQuery query = binder_.BindQuery(*in.query, scope);
    RaiseIf(query.columns.size() != 1, 116);
    const Type& item = query.columns[0].type;
    RequireComparable(operand->type, item, kCompareNames[0]);
    const Type type = ComparisonType(operand->type, item);
    std::string list = query.sql;
    const BoundPtr column = MakeSql("c1", item);
    if (const std::string converted = emission_.Emit(ForComparison(column, type)); converted != "c1") {
        list = "SELECT " + converted + " FROM (" + list + ")";
    }
    return MakeSqlCondition("(" + emission_.EmitCollated(ForComparison(operand, type)) +
                            (in.negated ? " NOT IN (" : " IN (") + list + "))");
}

BoundPtr ExpressionBinder::Like(const ast::LikeExpr& like, const Scope* scope) {
    const auto as_text = [&](const ast::Expr& expr, std::string_view position) {
        BoundPtr operand = Value(expr, scope);
        if (!IsCharacter(operand->type.id)) {
            if (IsBinary(operand->type.id)) {
                RaiseError(8116, {TypeName(operand->type.id), position, "like"});
            }
            operand = MakeConvert(operand, Sized(TypeId::VarChar, 8000));
        }
        return operand;
    };
    std::vector<BoundPtr> children = {as_text(*like.operand, "1"), as_text(*like.pattern, "2")};
    if (like.escape) {
        children.push_back(as_text(*like.escape, "3"));
    }
    BoundPtr test = MakeCondition(BoundKind::Like, std::move(children));
    return like.negated ? MakeCondition(BoundKind::Not, {test}) : test;
}

BoundPtr ExpressionBinder::Case(const ast::CaseExpr& expr, const Scope* scope) {
    std::vector<std::pair<BoundPtr, BoundPtr>> branches;
    const BoundPtr operand = expr.operand ? Value(*expr.operand, scope) : nullptr;
    for (const auto& [when, then] : expr.branches) {
        BoundPtr condition =
            operand ? Compare(ast::CompareOp::Equal, operand, Value(*when, scope)) : Condition(*when, scope);
        branches.emplace_back(std::move(condition), Value(*then, scope));
    }
    return Choice(branches, expr.otherwise ? Value(*expr.otherwise, scope) : MakeConstant({}, kUntypedNull));
}

BoundPtr ExpressionBinder::Cast(const ast::CastExpr& cast, const Scope* scope) {
    BoundPtr operand = Value(*cast.operand, scope);
    const Type type = binder_.ResolveType(cast.type, 30);
    if (ConversionAllowed(operand->type.id, type.id) == Allowed::Never && !IsUntypedNull(operand->type)) {
        RaiseError(529, {TypeName(operand->type.id), TypeName(type.id)});
    }
    std::vector<BoundPtr> children;
    children.push_back(operand);
    if (cast.style) {
        children.push_back(Value(*cast.style, scope));
    }
    auto node = MakeNode(BoundKind::Convert, type, std::move(children));
    node->attempt = cast.attempt;
    return node;
}

BoundPtr ExpressionBinder::Subquery(const ast::Query& query, const Scope* scope) {
    BoundQuery bound = binder_.BindQuery(query, scope);
    RaiseIf(bound.columns.size() != 1, 116);
    // SQLite takes the first of several rows; T-SQL allows only one. So two rows are fetched, and a second
    // one is an error.
    const std::string alias = binding_.NextAlias();
    return MakeSql("(SELECT tsql_single(" + alias + ".c1, " + alias +
                       ".n) FROM (SELECT c1, count(*) OVER () AS n FROM (" + bound.sql + ") LIMIT 2) AS " +
                       alias + " LIMIT 1)",
                   bound.columns[0].type);
}

BoundPtr ExpressionBinder::Choice(const std::vector<std::pair<BoundPtr, BoundPtr>>& branches,
                                  const BoundPtr& otherwise) {
    std::vector<Type> types;
    bool typed = false;
    bool nullable = otherwise->nullable;
    for (const auto& [condition, value] : branches) {
        types.push_back(value->type);
        typed = typed || !IsUntypedNull(value->type);
        nullable = nullable || value->nullable;
    }
    types.push_back(otherwise->type);
    typed = typed || !IsUntypedNull(otherwise->type);
    if (!typed) {
        RaiseError(8133);
    }
    const Type type = CommonType(types);
    std::vector<BoundPtr> children;
    for (const auto& [condition, value] : branches) {
        children.push_back(condition);
        children.push_back(MakeConvert(value, type));
    }
    children.push_back(MakeConvert(otherwise, type));
    auto node = MakeNode(BoundKind::Case, type, std::move(children));
    node->nullable = nullable;
    return node;
}

} // namespace devsql

// Expressions: their types, implicit conversions, predicates over queries.
#pragma once

#include "devserver/tsql/bind/binding.h"

namespace devsql {

class ExpressionBinder : private BinderPart {
  public:
    explicit ExpressionBinder(Binder& binder) : BinderPart(binder) {}

    /// An expression that has a value. Raises 102 for a condition.
    BoundPtr Value(const ast::Expr& expr, const Scope* scope);
    BoundPtr Condition(const ast::Expr& expr, const Scope* scope) { return Node(expr, scope); }
    BoundPtr Compare(ast::CompareOp op, const BoundPtr& left, const BoundPtr& right) const;
    /// A CASE: conditions with their values, and the value of ELSE. All values are converted to their common
    /// type. Raises 8133 if all of them are the literal NULL.
    static BoundPtr Choice(const std::vector<std::pair<BoundPtr, BoundPtr>>& branches,
                           const BoundPtr& otherwise);

  private:
    BoundPtr Node(const ast::Expr& expr, const Scope* scope);
    BoundPtr Variable(const ast::VariableExpr& expr);
    BoundPtr Unary(const ast::UnaryExpr& expr, const Scope* scope);
    BoundPtr Binary(const ast::BinaryExpr& expr, const Scope* scope);
    BoundPtr Logic(const ast::LogicExpr& logic, const Scope* scope);
    BoundPtr IsNull(const ast::IsNullExpr& expr, const Scope* scope);
    BoundPtr InList(const ast::InListExpr& in, const Scope* scope);
    BoundPtr InQuery(const ast::InQueryExpr& in, const Scope* scope);
    BoundPtr Like(const ast::LikeExpr& like, const Scope* scope);
    BoundPtr Between(const ast::BetweenExpr& between, const Scope* scope);
    BoundPtr Case(const ast::CaseExpr& expr, const Scope* scope);
    BoundPtr Cast(const ast::CastExpr& cast, const Scope* scope);
    BoundPtr Subquery(const ast::Query& query, const Scope* scope);
};

} // namespace devsql

// Calls: aggregates, window functions, the functions that choose between their arguments, and all others.
#pragma once

#include <string>

#include "devserver/tsql/bind/binding.h"

namespace devsql {

class CallBinder : private BinderPart {
  public:
    explicit CallBinder(Binder& binder) : BinderPart(binder) {}

    /// Raises 40517 for a function that this server does not support, 195 for an unknown one, 4121 for an
    /// unknown function of users, and the errors of the arguments.
    BoundPtr Call(const ast::CallExpr& call, const Scope* scope);

  private:
    BoundPtr OrdinaryCall(const ast::CallExpr& call, const Scope* scope);
    BoundPtr ScalarCall(const ScalarFunction& function, std::vector<BoundPtr> arguments);
    BoundPtr SessionCall(const ast::CallExpr& call, std::vector<BoundPtr> arguments);
    /// The functions that leave some arguments uncomputed; null for any other.
    BoundPtr SpecialCall(const ast::CallExpr& call, const Scope* scope);
    BoundPtr DateCall(const ast::CallExpr& call, const Scope* scope, const ScalarFunction& function);
    BoundPtr Aggregate(const ast::CallExpr& call, const Scope* scope);
    BoundPtr AggregateOf(const ast::CallExpr& call, const BoundPtr& operand, int depth);
    BoundPtr Window(const ast::CallExpr& call, const Scope* scope);
    std::string OverClause(const ast::Over& over, const Scope* scope);
};

} // namespace devsql

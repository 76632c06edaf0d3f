// From the tree to SQLite's SQL: finds what names mean, gives every expression its type, makes conversions
// explicit, and writes the relational part as one SQLite statement. The work is done by its parts, one for
// each kind of node.
#pragma once

#include <string>
#include <vector>

#include "devserver/tsql/bind/binding.h"
#include "devserver/tsql/bind/bound_query.h"
#include "devserver/tsql/bind/call_binder.h"
#include "devserver/tsql/bind/emitter.h"
#include "devserver/tsql/bind/expression_binder.h"
#include "devserver/tsql/bind/name_binder.h"
#include "devserver/tsql/bind/order_binder.h"
#include "devserver/tsql/bind/query_binder.h"
#include "devserver/tsql/bind/select_binder.h"
#include "devserver/tsql/bind/source_binder.h"
#include "devserver/tsql/parse/ast_query.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// Binds one statement. It must not outlive `session` and `emission`, which collects the statement's
/// parameters.
class Binder {
  public:
    Binder(SessionCore& session, Emission& emission) : session_(session), emission_(emission) {}
    Binder(const Binder&) = delete;
    Binder& operator=(const Binder&) = delete;

    SessionCore& session() { return session_; }
    Emission& emission() { return emission_; }
    Binding& binding() { return binding_; }

    ExpressionBinder& expressions() { return expressions_; }
    CallBinder& calls() { return calls_; }
    NameBinder& names() { return names_; }
    SourceBinder& sources() { return sources_; }
    SelectBinder& selects() { return selects_; }
    OrderBinder& orders() { return orders_; }
    QueryBinder& queries() { return queries_; }

    // The functions that statements call; each is a part's function. `scope` holds the sources whose columns
    // an expression may name; it is null outside a query.

    BoundPtr BindValue(const ast::Expr& expr, const Scope* scope) { return expressions_.Value(expr, scope); }
    BoundPtr BindCondition(const ast::Expr& expr, const Scope* scope) {
        return expressions_.Condition(expr, scope);
    }
    Type ResolveType(const ast::TypeSpec& spec, std::int32_t default_length, std::string* user_type = nullptr,
                     bool* nullable = nullptr) {
        return names_.ResolveType(spec, default_length, user_type, nullable);
    }
    BoundQuery BindQuery(const ast::Query& query, const Scope* outer = nullptr) {
        return queries_.Query(query, outer);
    }
    BoundQuery BindRows(const ast::Query& query) { return queries_.Rows(query); }
    BoundQuery BindAssignment(const ast::Query& query, std::vector<AssignmentItem>& items) {
        return queries_.Assignment(query, items);
    }
    BoundQuery BindCursor(const ast::Query& query, TablePtr& table) { return queries_.Cursor(query, table); }
    std::string BindFrom(const std::vector<ast::TableSourcePtr>& sources, Scope& scope) {
        return sources_.From(sources, scope);
    }
    void BindWith(const std::vector<ast::CommonTable>& tables) { sources_.With(tables); }
    Target BindTarget(const ast::Name& name) { return names_.WriteTarget(name); }
    ScopeSource SourceOf(const TablePtr& table, const std::string& exposed, const std::string& alias) const {
        return names_.SourceOf(table, exposed, alias);
    }
    std::string NextAlias() { return binding_.NextAlias(); }

  private:
    SessionCore& session_;
    Emission& emission_;
    Binding binding_;
    ExpressionBinder expressions_{*this};
    CallBinder calls_{*this};
    NameBinder names_{*this};
    SourceBinder sources_{*this};
    SelectBinder selects_{*this};
    OrderBinder orders_{*this};
    QueryBinder queries_{*this};
};

/// Raises 311 for a column that may not be read: a text, ntext or image of a trigger's "inserted", "deleted".
void RequireReadable(const ScopeColumn& column);
/// As Binder::BindTarget, with `error` (1088, 4701) instead of 208.
Target BindTargetAs(SessionCore& session, Emission& emission, const ast::Name& name, std::int32_t error);
/// The view's columns, for the catalogue. Raises 4502, 4506, 4511 and the errors of its query.
std::vector<Column> DescribeView(SessionCore& session, const ast::CreateModuleStatement& view);

} // namespace devsql

// Moving and destroying the nodes of the tree that own others. As inline functions, every source file that
// uses a node would compile the destructors of all of them.
#include "devserver/tsql/parse/ast.h"

#include <algorithm>

namespace devsql::ast {

Expr::Expr() = default;
Expr::Expr(Expr&&) noexcept = default;
Expr& Expr::operator=(Expr&&) noexcept = default;
Expr::~Expr() = default;

TableSource::TableSource() = default;
TableSource::TableSource(TableSource&&) noexcept = default;
TableSource& TableSource::operator=(TableSource&&) noexcept = default;
TableSource::~TableSource() = default;

QueryTerm::QueryTerm() = default;
QueryTerm::QueryTerm(QueryTerm&&) noexcept = default;
QueryTerm& QueryTerm::operator=(QueryTerm&&) noexcept = default;
QueryTerm::~QueryTerm() = default;

Query::Query() = default;
Query::Query(Query&&) noexcept = default;
Query& Query::operator=(Query&&) noexcept = default;
Query::~Query() = default;

Statement::Statement() = default;
Statement::Statement(Statement&&) noexcept = default;
Statement& Statement::operator=(Statement&&) noexcept = default;
Statement::~Statement() = default;

const SelectCore& FirstCore(const Query& query) {
    const QueryTerm* term = query.body.get();
    while (const auto* operation = std::get_if<SetOperation>(&term->node)) {
        term = operation->left.get();
    }
    return std::get<SelectCore>(term->node);
}

bool IsAssignment(const Query& query) {
    const auto* core = std::get_if<SelectCore>(&query.body->node);
    return core != nullptr &&
           std::ranges::any_of(core->items, [](const SelectItem& item) { return !item.variable.empty(); });
}

} // namespace devsql::ast

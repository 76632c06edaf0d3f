// What the nodes of the tree that own others need to be moved and destroyed. It stands here once: as inline
// functions, every source file that touches a node would compile the destructors of all of them.
#include "devserver/tsql/parse/ast.h"

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

} // namespace devsql::ast

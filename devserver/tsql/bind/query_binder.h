// Whole queries: WITH, set operations, and the queries that fill variables and cursors.
#pragma once

#include <vector>

#include "devserver/tsql/bind/binding.h"

namespace devsql {

class QueryBinder : private BinderPart {
  public:
    explicit QueryBinder(Binder& binder) : BinderPart(binder) {}

    BoundQuery Query(const ast::Query& query, const Scope* outer);
    /// A query whose rows are delivered: without ORDER BY they come in the order of a clustered key.
    BoundQuery Rows(const ast::Query& query);
    /// SELECT @v = …: the items as expressions over the leaves that the SQL selects.
    BoundQuery Assignment(const ast::Query& query, std::vector<AssignmentItem>& items);
    /// A cursor's query. If its rows are those of one table, sets `table` to that table, and the SQL returns
    /// each row's number after the columns; otherwise sets `table` to null.
    BoundQuery Cursor(const ast::Query& query, TablePtr& table);
    /// One SELECT or set operation. `whole` as in SelectBinder::Select.
    BoundQuery Term(const ast::QueryTerm& term, const Scope* outer, const ast::Query* whole);

  private:
    BoundQuery SetOperation(const ast::SetOperation& operation, const Scope* outer);
    /// The query with its columns converted to `types`.
    BoundQuery Unified(const BoundQuery& query, const std::vector<Type>& types);
};

} // namespace devsql

// The order of rows and how many of them: ORDER BY, TOP, OFFSET and FETCH.
#pragma once

#include <string>
#include <vector>

#include "devserver/tsql/bind/binding.h"
#include "devserver/tsql/bind/select_emitter.h"

namespace devsql {

class OrderBinder : private BinderPart {
  public:
    explicit OrderBinder(Binder& binder) : BinderPart(binder) {}

    /// ORDER BY of a single SELECT, which may name what is not selected.
    std::string OfSelect(const ast::Query& query, const SelectParts& parts, bool distinct);
    /// ORDER BY of a set operation, which can only name columns of the result.
    std::string OfColumns(const ast::Query& query, const std::vector<Column>& columns);
    /// OFFSET and FETCH of a whole query; empty for a query that has no OFFSET.
    std::string Offset(const ast::Query& query);
    /// The number of rows of TOP as SQL. `counted` is the query whose rows TOP … PERCENT counts.
    std::string Top(const ast::SelectCore& core, const std::string& counted);

  private:
    std::string ByColumn(const Column& column, std::size_t position) const;
    std::string ByExpression(const ast::Expr& expr, const SelectParts& parts, bool distinct);
    /// The value of a count of rows. Raises `null_error` if it is NULL.
    std::int64_t RowNumber(const ast::Expr& expr, std::int32_t null_error);
};

} // namespace devsql

// What binding makes of one SELECT before it is written as SQLite's. For the binder's files alone.
#pragma once

#include <string>
#include <vector>

#include "devserver/tsql/bind/binder.h"

namespace devsql {

struct Binder::SelectParts {
    Scope scope;
    std::string from;
    BoundPtr where;
    std::vector<BoundPtr> keys;
    BoundPtr having;
    std::vector<Column> columns;
    std::vector<BoundPtr> items; ///< one for each column
    std::vector<std::string> variables;
    std::vector<bool> untyped_nulls;
    ast::GroupingSets grouping = ast::GroupingSets::One;
    std::string order;
    std::string limit;
};

/// GROUPING(key), as BindAggregate leaves it.
bool IsGrouping(const Bound& node);

} // namespace devsql

// A bound SELECT in SQLite's SQL: one query, or under ROLLUP one for each grouping set.
#pragma once

#include <string>
#include <vector>

#include "devserver/tsql/bind/bound_query.h"

namespace devsql {

class Emission;

/// A bound SELECT, clause by clause.
struct SelectParts {
    Scope scope;
    std::string from;
    BoundPtr where;
    std::vector<BoundPtr> keys;
    BoundPtr having;
    std::vector<Column> columns;
    std::vector<BoundPtr> items; ///< one for each column
    std::vector<std::string> variables;
    std::vector<bool> untyped_nulls;
    bool rollup = false;
    std::string order;
    std::string limit;
};

std::string EmitSelect(Emission& emission, const SelectParts& parts, bool distinct);

/// True for GROUPING(key), whose value is not known before EmitSelect.
bool IsGrouping(const Bound& node);

} // namespace devsql

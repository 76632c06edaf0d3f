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
    std::string from;           ///< SQL, without the word FROM; empty for none
    BoundPtr where;             ///< may be null
    std::vector<BoundPtr> keys; ///< of GROUP BY
    BoundPtr having;            ///< may be null
    std::vector<Column> columns;
    std::vector<BoundPtr> items;        ///< one for each column
    std::vector<std::string> variables; ///< for each item, that of SELECT @v = …; empty for other items
    std::vector<bool> untyped_nulls;    ///< as in BoundQuery
    bool rollup = false;
    std::string order; ///< SQL: " ORDER BY …"; empty for none
    std::string limit; ///< SQL: " LIMIT …"; empty for none
};

std::string EmitSelect(Emission& emission, const SelectParts& parts, bool distinct);

/// True for GROUPING(key), whose value is not known before EmitSelect.
bool IsGrouping(const Bound& node);

} // namespace devsql

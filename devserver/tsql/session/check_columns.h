// Finds the columns that an expression of the catalogue (a CHECK constraint) names, by its text.
#pragma once

#include <set>
#include <string_view>

#include "devserver/storage/catalogue.h"

namespace devsql {

/// The ids of the columns that the expression names.
std::set<int> ColumnsNamed(const TableDef& table, std::string_view expression);
/// The one column that a CHECK constraint names; null unless it names exactly one.
const ColumnDef* ColumnOfCheck(const TableDef& table, std::string_view expression);

} // namespace devsql

// The columns that an expression kept in the catalogue names, found in its text.
#pragma once

#include <set>
#include <string_view>

#include "devserver/storage/catalogue.h"

namespace devsql {

/// The columns, by id, that an expression over the table's row names.
std::set<int> ColumnsNamed(const TableDef& table, std::string_view expression);
/// The one column that a CHECK constraint concerns; null where it names several.
const ColumnDef* ColumnOfCheck(const TableDef& table, std::string_view expression);

} // namespace devsql

// A recordset into a table of texts: what the operations that give whole results share.
#pragma once

#include "ado/recordset.h"
#include "inspect/text_table.h"

namespace kv {

/// Sizes the table, fills row 0 with the fields' names and then a row for each record. What it holds when a
/// failure ends it stays. A closed recordset fails where its rows would begin.
void FillTable(TextTable& table, ado::Recordset& rows);

} // namespace kv

// Shows a manager's table of texts in a list view, as both windows of the console do.
#pragma once

#include <functional>
#include <string>

#include "base/int16.h"
#include "inspect/text_table.h"
#include "ui/list_view.h"

namespace kv {

/// Takes columns and rows away and closes the list until the next table is on show.
void EmptyResultList(ui::ListView& list);

/// Adds a column for each of the table's, then its rows, and sizes the columns. `column` gives key and text
/// of a column. Bounds and counters are signed 16-bit: with more than 32,767 rows the columns stand and no
/// row, with exactly that many all rows stand and the columns keep their first width; either raises
/// run_time::kOverflow.
void FillResultList(ui::ListView& list, const TextTable& table,
                    const std::function<ui::ListView::Column(Int16 number, const std::string& name)>& column);

} // namespace kv

// What both windows of the console do with a list view: show a manager's table of texts in it, and the two
// helpers of modListView.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/int16.h"
#include "inspect/text_table.h"
#include "ui/list_view.h"

namespace kv {

/// Adds the bits of `lngStyle` to the extended style. If `blnSet` is false it inverts them instead, so that
/// clearing a style that is not set sets it. Returns true if the style was not zero before.
bool SetExtendedStyle(ui::ListView& objListView, std::int32_t lngStyle, bool blnSet);

/// Makes each column as wide as its header and its cells need.
void AutoSizeColumns(ui::ListView& objListView);

/// Removes columns and rows and disables the list until it is filled again.
void EmptyResultList(ui::ListView& list);

/// Adds the table's columns, then its rows, and sizes the columns. `column` returns key and text of a column.
/// Bounds and counters are signed 16-bit. With more than 32,767 rows the columns are added and no row; with
/// exactly 32,767 all rows are added and the columns keep their first width. Both raise run_time::kOverflow.
void FillResultList(ui::ListView& list, const TextTable& table,
                    const std::function<ui::ListView::Column(Int16 number, const std::string& name)>& column);

} // namespace kv

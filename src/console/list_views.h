// Functions with which both windows of the console show a table of texts in a list view.
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

/// Removes all columns and rows, disables the list, paints it and runs pending events.
void EmptyResultList(ui::ListView& list);

/// Adds the table's columns and rows and sizes the columns. `column` returns the key and the header of a
/// column, given its number, from 1, and its name. Bounds and counters are signed 16-bit integers, so tables
/// with 32,767 rows or more raise run_time::kOverflow: with more than 32,767 rows after the columns were
/// added and before the first row; with exactly 32,767 after all rows were added and before the columns are
/// sized.
void FillResultList(ui::ListView& list, const TextTable& table,
                    const std::function<ui::ListView::Column(Int16 number, const std::string& name)>& column);

} // namespace kv

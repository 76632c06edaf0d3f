// The native list view. It holds no rows and asks the ListView for the cells that it paints, so a table is
// shown at once however many rows it has.
#pragma once

#include "ui/list_view.h"

#include "platform/windows/lean_windows.h"

#include <commctrl.h>

namespace ui {

/// Gives the native control the list's extended style (grid lines, full row selection).
void ShowExtendedStyle(HWND window, const ListView& list);
/// Deletes all columns and adds those of the list, each with the same initial width.
void ShowColumns(HWND window, const ListView& list);
/// Sets the number of rows and has the cells painted again.
void ShowRows(HWND window, const ListView& list);
/// Makes each column of ListView::AutoSized as wide as its header and its cells need, but no wider than the
/// window.
void SizeColumns(HWND window, const ListView& list);
/// Answers LVN_GETDISPINFO: writes the text of the wanted cell into the buffer of `wanted`, cut if it is too
/// long. Writes nothing if the cell does not exist.
void GiveCell(const ListView& list, NMLVDISPINFOA& wanted);

} // namespace ui

// The native list view. It holds no rows and asks the ListView for the cells that it paints, so a table is
// shown at once however many rows it has.
#pragma once

#include "ui/list_view.h"

#include "platform/windows/lean_windows.h"

#include <commctrl.h>

namespace ui {

void ShowExtendedStyle(HWND window, const ListView& list);
/// Makes the columns anew, each of the width of a new one.
void ShowColumns(HWND window, const ListView& list);
void ShowRows(HWND window, const ListView& list);
/// Makes the columns that the list says are sized so as wide as their headers and their cells need.
void SizeColumns(HWND window, const ListView& list);
/// Answers LVN_GETDISPINFO.
void GiveCell(const ListView& list, NMLVDISPINFOA& wanted);

} // namespace ui

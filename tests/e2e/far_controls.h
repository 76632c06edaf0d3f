// What stands in the list views and tab strips of another process. Their messages hand over pointers, which
// mean nothing there: what they point to is put into the other process's memory and fetched from it.
#pragma once

#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace far_controls {

/// Where a tab of the strip is, in the strip's client area. `process` needs the right to its memory, here and
/// below.
RECT TabPlace(HANDLE process, HWND tabs, int tab);

std::vector<std::string> Headers(HANDLE process, HWND list_view);

/// The cells of one row, counted from 0; nothing of a text behind its 259th character.
std::vector<std::string> Row(HANDLE process, HWND list_view, int row, int columns);

} // namespace far_controls

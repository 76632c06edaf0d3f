// Makes a native control the parent of others: a frame, a picture, the page of a tab.
#pragma once

#include "platform/windows/lean_windows.h"

namespace ui {

/// From now on the window hands what its children tell on to its own parent, and paints its own background.
void MakeContainer(HWND window);

} // namespace ui

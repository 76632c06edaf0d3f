// Makes a native control the parent of others: a frame, a picture, the page of a tab.
#pragma once

#include "platform/windows/lean_windows.h"

namespace ui {

/// Lets the window pass its children's notifications on to its parent and paint its own background.
void MakeContainer(HWND window);

} // namespace ui

// Window procedures that add behaviour to native controls (subclassing). Each ends with its window.
#pragma once

#include "platform/windows/lean_windows.h"

namespace ui {

/// Makes a native control able to contain others, as a frame, a picture box and the page of a tab do: it
/// passes its children's notifications on to its parent and paints its own background.
void MakeContainer(HWND window);

/// Paints the tick of a check box or option button paler while the button is disabled. Some themes (Wine's,
/// for one) paint the tick of a disabled button like that of an enabled one. A button without a caption would
/// then look the same in both states.
void DimTickWhileDisabled(HWND button);

} // namespace ui

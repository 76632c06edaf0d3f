// Additions to the window procedures of native controls.
#pragma once

#include "platform/windows/lean_windows.h"

namespace ui {

/// Lets a control be the parent of others, as a frame, a picture or the page of a tab is: it passes its
/// children's notifications on to its parent and paints its own background.
void MakeContainer(HWND window);

/// Paints the tick of a check box or option button paler while the button is disabled. Themes paint it as
/// that of an enabled button (Wine's does), and a button without a caption would look the same in both
/// states.
void DimTickWhileDisabled(HWND button);

} // namespace ui

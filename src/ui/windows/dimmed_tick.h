// Makes the tick of a disabled check box or option button look disabled. Themes paint it as that of an
// enabled one (Wine's does), and a box without a caption would look the same in both states.
#pragma once

#include "platform/windows/lean_windows.h"

namespace ui {

/// From now on the button's tick is paler while the button is disabled.
void DimTickWhileDisabled(HWND button);

} // namespace ui

// Finds out whether a window can be shown at all.
#pragma once

#include "platform/windows/lean_windows.h"

namespace platform {

/// True on an interactive desktop. False for a service's window station and for a system without a display.
bool DesktopIsVisible();

} // namespace platform

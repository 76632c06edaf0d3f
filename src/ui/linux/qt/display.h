// Finds the display on which the program can open its windows. This is done before Qt is used, because Qt
// ends the program if there is no display.
#pragma once

#include <string>

namespace ui {

/// Returns the name of Qt's plugin for the display, "xcb" (X11) or "wayland"; "" if no display answers. The
/// environment variable QT_QPA_PLATFORM takes precedence.
std::string PlatformOfDisplay();

} // namespace ui

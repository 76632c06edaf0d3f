// Which display the program can open its windows on. To be called before Qt is used, which ends the program
// if there is no display.
#pragma once

#include <string>

namespace ui {

/// The name of Qt's plugin for the display; "" if no display answers. QT_QPA_PLATFORM takes precedence.
std::string PlatformOfDisplay();

} // namespace ui

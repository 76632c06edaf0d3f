// Which display the program can open its windows on. Asked before Qt is: it ends the program if there is
// none.
#pragma once

#include <string>

namespace ui {

/// The name of Qt's plugin for the display; "" if no display answers. What QT_QPA_PLATFORM says is taken.
std::string PlatformOfDisplay();

} // namespace ui

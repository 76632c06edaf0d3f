// Turns a caption that is data (a server's name) into the text that a native control shows: every "&" is
// shown, and a caption that is too long is cut in its middle.
#pragma once

#include <string>

#include "ui/controls.h"

#include "platform/windows/lean_windows.h"

namespace ui {

/// Returns as much of the caption as fits on the native button `window`. A caption that is too long has three
/// dots in its middle, so that both ends can be read: the names of the server's computer and of its instance.
std::string FittingCaption(const OptionButton& button, HWND window);

/// Doubles every "&", so that the system sees no mnemonic in the text.
std::string WithoutMnemonic(const std::string& text);

} // namespace ui

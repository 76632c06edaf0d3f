// The text by which a native control shows a caption that is data: with every "&", and cut in its middle if
// it is too long.
#pragma once

#include <string>

#include "ui/controls.h"

#include "platform/windows/lean_windows.h"

namespace ui {

/// The caption as it fits on the native button: if it is too long, with three dots in its middle, so that
/// both of a server's names, the computer's and the instance's, can be read.
std::string FittingCaption(const OptionButton& button, HWND window);

/// A text in which the system will see no mnemonic.
std::string WithoutMnemonic(const std::string& text);

} // namespace ui

// Shows a message box with a text, an icon and an OK button. Text is in code page 1252.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

enum class MessageIcon : std::uint8_t { None, Exclamation, Critical };

/// Shows the box and returns when the operator has closed it. If no window can be shown, the text is written
/// to the terminal's error channel; the call then waits for Enter only if both input and error channel are a
/// terminal.
void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title);

} // namespace platform

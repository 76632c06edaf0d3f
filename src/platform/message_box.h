// The plain message box: a text, an icon, one OK button. It waits for its answer.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

enum class MessageIcon : std::uint8_t { None, Exclamation, Critical };

/// Shows the box and returns when it is answered. Where no window can be shown it is lines on the terminal's
/// error channel, and waits for Enter only where someone can press it: with a terminal at both ends.
void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title);

} // namespace platform

// Writes message boxes as text on a terminal, for runs without windows.
#pragma once

#include <string>

#include "platform/message_box.h"

namespace platform {

/// Returns "title: text" with "\n" after each line. After the title comes " (!)" for an exclamation and "
/// (X)" for a critical message.
std::string MessageAsLines(const std::string& text, MessageIcon icon, const std::string& title);

/// Writes the message to the terminal, and waits for Enter if the terminal is interactive.
void ShowMessageOnTerminal(const std::string& text, MessageIcon icon, const std::string& title);

} // namespace platform

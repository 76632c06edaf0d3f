// The terminal that the program was started from, if there is one.
#pragma once

#include <string>

namespace platform {

/// Writes the text to the error channel and hands it over at once. Does nothing where there is none.
void WriteToTerminal(const std::string& text);
/// True if someone can read what WriteToTerminal writes and answer with the keyboard.
bool TerminalIsInteractive();
/// Waits until Enter is pressed, or until the input ends.
void WaitForEnter();

} // namespace platform

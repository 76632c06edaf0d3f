// The terminal that the program was started from, if there is one.
#pragma once

#include <string>

namespace platform {

/// Writes the text to the error channel without buffering. Does nothing if there is no error channel.
void WriteToTerminal(const std::string& text);
/// True if someone can read the text of WriteToTerminal and answer with the keyboard.
bool TerminalIsInteractive();
/// Waits until Enter is pressed, or until the input ends.
void WaitForEnter();

/// True if the standard input is a terminal, not a file or a pipe.
bool InputIsTerminal();
/// Sets whether the terminal of the standard input shows what is typed. Returns whether it did so before;
/// false if there is no such terminal.
bool SetEcho(bool on);
/// Shows the prompt on the error channel and reads a line that the terminal does not show.
std::string AskPassword(const std::string& prompt);

} // namespace platform

// The terminal from which the program was started, if there is one. Reads from the standard input and writes
// to the standard error channel.
#pragma once

#include <string>

namespace platform {

/// Writes the text, which is in code page 1252, without buffering. Does nothing if there is no error channel.
void WriteToTerminal(const std::string& text);
/// True if input and error channel are both a terminal, so that someone can read the text and answer it.
bool TerminalIsInteractive();
/// Waits until Enter is pressed, or until the input ends.
void WaitForEnter();

/// True if the standard input is a terminal, not a file or a pipe.
bool InputIsTerminal();
/// Sets whether the terminal of the standard input shows the characters that are typed. Returns the setting
/// before; false if the input is not a terminal.
bool SetEcho(bool on);
/// Writes the prompt and reads a line that the terminal does not show. Returns the line in the system's text,
/// without its line end; empty at the end of the input.
std::string AskPassword(const std::string& prompt);

} // namespace platform

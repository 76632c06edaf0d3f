// The keyboard of a program that talks with a person.
#pragma once

#include <string>

namespace platform {

/// True if the standard input is a terminal, not a file or a pipe.
bool InputIsTerminal();
/// Shows the prompt on the error channel and reads a line that the terminal does not show.
std::string AskPassword(const std::string& prompt);

} // namespace platform

// Reads the command line with which the process was started, and splits strings of parameters into arguments.
// Text is in code page 1252.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// Returns the command line after the program's name as it was typed: one string, quotes included. Returns
/// nothing on Linux, which provides only the split arguments.
std::optional<std::string> RawCommandLine();

/// Converts the arguments of main from the system's text and leaves out the first, the program's name.
std::vector<std::string> ProgramArguments(int argc, const char* const* argv);

/// Splits a string of parameters as a Windows program splits its command line. Blanks and tabs separate
/// arguments, except between double quotes. \" stands for a quote, and so does "" between quotes. Backslashes
/// are special only before a quote.
std::vector<std::string> SplitArguments(const std::string& parameters);

} // namespace platform

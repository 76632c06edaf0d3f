// The command line that the process was started with, and how a string of parameters is split into arguments.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// The command line after the program's name as one string, quotes included, as it was typed. Nothing on a
/// system that provides only the split arguments.
std::optional<std::string> RawCommandLine();

/// The arguments of main without the program's name, in the code page.
std::vector<std::string> ProgramArguments(int argc, const char* const* argv);

/// Splits a parameter string as a Windows program splits its command line: blanks and tabs separate, double
/// quotes group, \" is a quote, backslashes are special only before a quote, "" inside quotes is a quote.
std::vector<std::string> SplitArguments(const std::string& parameters);

} // namespace platform

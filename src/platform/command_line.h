// The raw command line, and how a string of parameters falls into arguments.
#pragma once

#include <string>
#include <vector>

namespace platform {

/// The command line behind the program's name as one string, quotes included.
///
/// Windows hands it over as it was typed. Elsewhere it is put together again from the arguments, so that the
/// program's parser meets what it would meet on Windows: an argument that is empty or holds a blank goes
/// between double quotes; in the argument behind one of `path_options` (names without prefix; found with "/"
/// or "-" in front, in any letter case) each "/" becomes "\", since the parser would take "/home" for an
/// option. `arguments` are those of main, the program's name left out.
std::string RawCommandLine(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& path_options);

/// The rule behind RawCommandLine where the system hands over split arguments.
std::string JoinArguments(const std::vector<std::string>& arguments,
                          const std::vector<std::string>& path_options);

/// Splits a parameter string as a Windows program splits its command line: blanks and tabs separate, double
/// quotes group, \" is a quote, backslashes count only in front of a quote, "" inside quotes is a quote.
std::vector<std::string> SplitArguments(const std::string& parameters);

} // namespace platform

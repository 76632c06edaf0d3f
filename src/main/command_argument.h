// The known arguments of the command line, and the routine that looks for one of them in the raw line.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace kv {

struct CommandArgument {
    std::string Name; ///< without prefix, lower case
    bool HasValue = false;
    bool Found = false;
    std::string Value; ///< empty for an argument without value
};

/// The rows of the table of arguments.
enum ArgumentIndex : std::size_t {
    kHelp,
    kScriptFolder,
    kServer,
    kUser,
    kPassword,
    kSqlDataPath,
    kInstallDb,
    kInstallSp,
    kInstallDts,
    kUpgradeDb,
    kArgumentCount,
};

using CommandArguments = std::array<CommandArgument, kArgumentCount>;

/// The table with every row's name, nothing looked up yet.
CommandArguments KnownArguments();

/// Looks for the argument of row `Index` in the line and sets the row's Found and Value; no other row
/// changes.
///
/// Only the first occurrence of the name counts. One with "/" is looked for first, then one with "-". A blank
/// or the line's start must precede it, and a blank or the line's end must follow it. A value in double
/// quotes keeps its blanks. A value without quotes ends at the first blank. A text that begins with "/" is
/// the next argument, not a value.
void ParseCommandArgument(const std::string& CommandLine, std::size_t Index, CommandArguments& Arguments);

} // namespace kv

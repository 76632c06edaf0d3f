// The program's arguments, and the function that looks for one of them in the raw command line.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace kv {

/// One argument and the result of looking for it.
struct CommandArgument {
    std::string Name;      ///< in lower case, without "/"
    bool HasValue = false; ///< the argument takes a value
    bool Found = false;    ///< the command line has the argument
    std::string Value;     ///< without quotes; empty for an argument without a value
};

/// The positions of the arguments in CommandArguments.
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

/// Returns the table with the names of all arguments. Nothing has been looked up yet.
CommandArguments KnownArguments();

/// Looks for the argument at `Index` in the line and sets its Found and Value; the other arguments do not
/// change.
///
/// Only the first occurrence of the name counts. The name with "/" is looked for first, then the name with
/// "-". The argument counts as found only if a blank or the line's start is before it and a blank or the
/// line's end is after it. A value in double quotes keeps its blanks. A value without quotes ends at the
/// first blank. Text that begins with "/" is the next argument, not a value.
void ParseCommandArgument(const std::string& CommandLine, std::size_t Index, CommandArguments& Arguments);

} // namespace kv

// The known arguments of the command line and the routine that looks for one of them in the raw line.
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

/// Looks the row `Index` up in the line and sets its Found and Value; no other row changes.
///
/// Only the first occurrence of the name counts: "/" goes before "-", a blank or the line's start must stand
/// in front and a blank or the line's end behind. A value in double quotes keeps its blanks; one without ends
/// at the first blank; one that begins with "/" is the next argument and no value.
void ParseCommandArgument(const std::string& CommandLine, std::size_t Index, CommandArguments& Arguments);

} // namespace kv

// Reads the command line of devsqlserver and its file of logins.
// Knows nothing of the server that uses them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <istream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"

namespace devsql {

/// A command line or a file of logins that cannot be used; what() is the message for the operator.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class Action : std::uint8_t { Serve, Help, Version };

struct ProgramOptions {
    Action action = Action::Serve;
    std::uint16_t port = 0;
    std::filesystem::path logins_file;
    std::optional<std::uint16_t> browser_port; ///< empty: does not answer as SQL Browser
    EngineOptions engine;                      ///< without the logins
};

/// `arguments` without the program's name. Throws UsageError.
ProgramOptions ParseArguments(const std::vector<std::string>& arguments);

/// A line `name:password` for each login; the password is everything after the first colon. Blank lines and
/// lines that begin with "#" are ignored. Throws UsageError, which names `file_name` and the line.
std::map<std::string, std::string> ParseLogins(std::istream& lines, const std::string& file_name);

/// Reads the same from a file. Throws UsageError if the file cannot be read or if anybody but its owner may
/// read it, because it holds passwords.
std::map<std::string, std::string> ReadLogins(const std::filesystem::path& file);

std::string HelpText();
std::string VersionText();

} // namespace devsql

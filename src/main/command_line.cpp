// Joins split arguments, and puts values in quotes.
#include "main/command_line.h"

#include <algorithm>
#include <optional>

#include "main/command_argument.h"
#include "text/text.h"

namespace kv {
namespace {

bool HasPrefix(const std::string& argument) {
    return !argument.empty() && (argument.front() == '/' || argument.front() == '-');
}

/// Returns the index of the known argument that `argument` is, such as kUser for "/USER"; nothing for a
/// value.
std::optional<std::size_t> KnownArgument(const std::string& argument) {
    static const CommandArguments known = KnownArguments();
    if (!HasPrefix(argument)) {
        return std::nullopt;
    }
    const std::string name = text::LowerCase(argument.substr(1));
    const auto* const row = std::find_if(known.begin(), known.end(),
                                         [&](const CommandArgument& word) { return word.Name == name; });
    return row == known.end() ? std::nullopt : std::optional(static_cast<std::size_t>(row - known.begin()));
}

/// True if the value of the argument is a path.
bool TakesPath(std::optional<std::size_t> word) {
    return word == kScriptFolder || word == kSqlDataPath;
}

/// Returns the text as a value of the command line, in quotes if it needs them.
std::string AsValue(std::string text, bool is_path) {
    if (is_path) {
        std::replace(text.begin(), text.end(), '/', '\\');
    }
    const bool quoted = text.empty() || HasPrefix(text) || text.find(' ') != std::string::npos;
    return quoted ? '"' + text + '"' : text;
}

} // namespace

std::string JoinArguments(const std::vector<std::string>& arguments) {
    std::string line;
    std::optional<std::size_t> before;
    for (const std::string& argument : arguments) {
        const auto word = KnownArgument(argument);
        line += line.empty() ? "" : " ";
        line += word ? argument : AsValue(argument, TakesPath(before));
        before = word;
    }
    return line;
}

} // namespace kv

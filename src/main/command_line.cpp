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

/// The row of the known argument that this is, if any.
std::optional<std::size_t> WordOf(const std::string& argument) {
    static const CommandArguments known = KnownArguments();
    if (!HasPrefix(argument)) {
        return std::nullopt;
    }
    const std::string name = text::LowerCase(argument.substr(1));
    const auto* const row = std::find_if(known.begin(), known.end(),
                                         [&](const CommandArgument& word) { return word.Name == name; });
    return row == known.end() ? std::nullopt : std::optional(static_cast<std::size_t>(row - known.begin()));
}

bool TakesPath(std::optional<std::size_t> word) {
    return word == kScriptFolder || word == kSqlDataPath;
}

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
        const auto word = WordOf(argument);
        line += line.empty() ? "" : " ";
        line += word ? argument : AsValue(argument, TakesPath(before));
        before = word;
    }
    return line;
}

} // namespace kv

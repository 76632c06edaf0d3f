#include "platform/command_line.h"

#include <algorithm>
#include <cctype>

namespace platform {
namespace {

bool EqualsIgnoringCase(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool IsOption(const std::string& argument, const std::vector<std::string>& names) {
    if (argument.size() < 2 || (argument.front() != '/' && argument.front() != '-')) {
        return false;
    }
    const std::string name = argument.substr(1);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& option) { return EqualsIgnoringCase(option, name); });
}

/// Takes the backslashes at `at` and tells how many stand in the text and whether a quote behind them is
/// literal.
struct Backslashes {
    std::size_t count = 0;
    bool before_quote = false;
};

Backslashes CountBackslashes(const std::string& text, std::size_t at) {
    Backslashes found;
    while (at + found.count < text.size() && text[at + found.count] == '\\') {
        ++found.count;
    }
    found.before_quote = at + found.count < text.size() && text[at + found.count] == '"';
    return found;
}

} // namespace

std::string JoinArguments(const std::vector<std::string>& arguments,
                          const std::vector<std::string>& path_options) {
    std::string line;
    bool is_path = false;
    for (const std::string& argument : arguments) {
        std::string text = argument;
        if (is_path) {
            std::replace(text.begin(), text.end(), '/', '\\');
        }
        is_path = !is_path && IsOption(argument, path_options);
        if (text.empty() || text.find(' ') != std::string::npos) {
            text = '"' + text + '"';
        }
        line += (line.empty() ? "" : " ") + text;
    }
    return line;
}

std::vector<std::string> SplitArguments(const std::string& parameters) {
    std::vector<std::string> arguments;
    std::size_t at = 0;
    for (;;) {
        at = parameters.find_first_not_of(" \t", at);
        if (at == std::string::npos) {
            return arguments;
        }
        std::string argument;
        bool quoted = false;
        while (at < parameters.size() && (quoted || (parameters[at] != ' ' && parameters[at] != '\t'))) {
            const char c = parameters[at];
            if (c == '\\') {
                const Backslashes found = CountBackslashes(parameters, at);
                at += found.count;
                argument.append(found.before_quote ? found.count / 2 : found.count, '\\');
                if (found.before_quote && found.count % 2 == 1) {
                    argument += '"';
                    ++at;
                }
            } else if (c == '"' && quoted && at + 1 < parameters.size() && parameters[at + 1] == '"') {
                argument += '"';
                at += 2;
            } else if (c == '"') {
                quoted = !quoted;
                ++at;
            } else {
                argument += c;
                ++at;
            }
        }
        arguments.push_back(std::move(argument));
    }
}

} // namespace platform

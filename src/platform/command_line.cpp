// The parts of the command line service that are the same on every system.
#include "platform/command_line.h"

#include "platform/system_text.h"

namespace platform {
namespace {

/// A run of backslashes in a text.
struct Backslashes {
    std::size_t count = 0;
    bool before_quote = false; ///< a double quote follows them
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

std::vector<std::string> ProgramArguments(int argc, const char* const* argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(FromSystemText(argv[i]));
    }
    return arguments;
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

#include "platform/command_line.h"

#include "platform/system_text.h"

namespace platform {

std::string RawCommandLine(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& path_options) {
    std::vector<std::string> texts;
    texts.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        texts.push_back(FromSystemText(argument));
    }
    return JoinArguments(texts, path_options);
}

} // namespace platform

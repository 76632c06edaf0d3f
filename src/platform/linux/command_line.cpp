#include "platform/command_line.h"

namespace platform {

std::string RawCommandLine(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& path_options) {
    return JoinArguments(arguments, path_options);
}

} // namespace platform

// On Linux a program gets split arguments, so there is no raw command line.
#include "platform/command_line.h"

namespace platform {

std::optional<std::string> RawCommandLine() {
    return std::nullopt;
}

} // namespace platform

#include "platform/command_line.h"

namespace platform {

std::optional<std::string> RawCommandLine() {
    return std::nullopt;
}

} // namespace platform

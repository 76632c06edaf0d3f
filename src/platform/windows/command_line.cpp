// Cuts the program's name from the raw command line that Windows provides.
#include "platform/command_line.h"

#include "platform/windows/lean_windows.h"

namespace platform {

std::optional<std::string> RawCommandLine() {
    const std::string line = ::GetCommandLineA();
    // The program's name ends at its closing quote, or, without quotes, at the first blank.
    std::size_t end = 0;
    if (!line.empty() && line.front() == '"') {
        end = line.find('"', 1);
        end = end == std::string::npos ? line.size() : end + 1;
    } else {
        end = line.find_first_of(" \t");
    }
    const std::size_t begin = line.find_first_not_of(" \t", end);
    return begin == std::string::npos ? std::string() : line.substr(begin);
}

} // namespace platform

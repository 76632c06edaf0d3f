#include "platform/command_line.h"

#include "platform/windows/lean_windows.h"

namespace platform {

std::string RawCommandLine(const std::vector<std::string>& /*arguments*/,
                           const std::vector<std::string>& /*path_options*/) {
    const std::string line = ::GetCommandLineA();
    // The program's name ends at its closing quote, or at the first blank where it has none.
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

// Reads the figures from /proc.
#include "soak/own_figures.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace soak {

std::vector<std::pair<std::string, std::uint64_t>> OwnFigures() {
    std::uint64_t pages = 0;
    std::uint64_t resident_pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident_pages;
    const auto page_size = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                                     std::filesystem::directory_iterator());
    return {{"memory in KB", resident_pages * page_size / 1024},
            {"open files", static_cast<std::uint64_t>(files)}};
}

} // namespace soak

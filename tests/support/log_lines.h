// Splits the program's log into lines, for the tests of every suite.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace support {

/// Returns the lines without their beginning, such as "2006-05-12 14:03:22 : Error in ". A line that begins
/// in another way is returned whole, so that a comparison fails.
inline std::vector<std::string> LogLines(std::string_view log) {
    constexpr std::size_t kDateLength = std::string_view("2006-05-12 14:03:22").size();
    constexpr std::string_view kHead = " : Error in ";
    std::vector<std::string> lines;
    while (!log.empty()) {
        const std::size_t end = log.find("\r\n");
        const std::string_view line = log.substr(0, end);
        const bool usual = line.size() > kDateLength && line.substr(kDateLength).starts_with(kHead);
        lines.emplace_back(usual ? line.substr(kDateLength + kHead.size()) : line);
        log.remove_prefix(end == std::string_view::npos ? log.size() : end + 2);
    }
    return lines;
}

} // namespace support

// The clock on Linux.
#include "platform/clock.h"

#include <ctime>

namespace platform {

LocalTime Now() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    constexpr int kTmYear = 1900;
    return {parts.tm_year + kTmYear, parts.tm_mon + 1, parts.tm_mday,
            parts.tm_hour,           parts.tm_min,     parts.tm_sec};
}

} // namespace platform

// The clock on Windows.
#include "platform/clock.h"

#include "platform/windows/lean_windows.h"

namespace platform {

LocalTime Now() {
    SYSTEMTIME time{};
    ::GetLocalTime(&time);
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

} // namespace platform

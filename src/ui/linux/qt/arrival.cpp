#include "ui/linux/qt/arrival.h"

#include <algorithm>

namespace ui {

/// A display on this machine counts by the same clock as this process, in 32 bits on X11. Then the stamp is
/// the time, however late the event comes. Any other display's clock is set by the event that came with the
/// least delay: most come while the program waits.
InputClock::time_point ArrivalClock::ArrivalOf(std::uint64_t stamp, InputClock::time_point now) {
    using std::chrono::milliseconds;
    if (stamp == 0) {
        return now;
    }
    constexpr milliseconds kLongestDelay{60'000};
    const auto now_stamp = std::chrono::floor<milliseconds>(now.time_since_epoch()).count();
    const milliseconds delay(static_cast<std::uint32_t>(now_stamp) - static_cast<std::uint32_t>(stamp));
    if (delay < kLongestDelay) {
        return now - delay;
    }
    const InputClock::time_point by_display{milliseconds(stamp)};
    apart_ = std::min(apart_, now - by_display);
    return by_display + apart_;
}

} // namespace ui

// Compares the display's clock with InputClock.
#include "ui/linux/qt/arrival.h"

#include <algorithm>

namespace ui {

/// A display on this machine uses the same clock as this process (on X11 only its low 32 bits). Its stamp is
/// then the time of arrival, however late the event is delivered. The clock of any other display is compared
/// with ours by the event that was delivered with the least delay: most events come while the program waits.
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

#include "ui/linux/qt/arrival.h"

#include <algorithm>

namespace ui {

InputClock::time_point ArrivalClock::ArrivalOf(const QInputEvent& event) {
    const auto now = InputClock::now();
    if (event.timestamp() == 0) {
        return now; // made by a program and not by the display
    }
    const auto stamp = InputClock::time_point(std::chrono::milliseconds(event.timestamp()));
    apart_ = std::min(apart_, now - stamp);
    return stamp + apart_;
}

} // namespace ui

// Works out when input arrived, on the program's own clock.
#pragma once

#include <cstdint>

#include "ui/control.h"

namespace ui {

/// Converts the display's time stamps to times of InputClock.
class ArrivalClock {
  public:
    /// `stamp` is in milliseconds of the display's clock, and 0 for an event that a program made. `now` is
    /// when the event reaches the program.
    InputClock::time_point ArrivalOf(std::uint64_t stamp, InputClock::time_point now = InputClock::now());

  private:
    /// Used for a display on another machine, whose clock differs from this one: the smallest difference seen
    /// between the time at which an event reached the program and its stamp.
    InputClock::duration apart_ = InputClock::duration::max();
};

} // namespace ui

// When input arrived, by the program's own clock.
#pragma once

#include <cstdint>

#include "ui/control.h"

namespace ui {

/// Turns the display's time stamps into times of this process.
class ArrivalClock {
  public:
    /// `stamp` is in milliseconds of the display's clock, and 0 for an event that a program made. `now` is
    /// when the event reaches the program.
    InputClock::time_point ArrivalOf(std::uint64_t stamp, InputClock::time_point now = InputClock::now());

  private:
    /// For the clock of a display on another machine: the least time that an event was seen to come after its
    /// stamp.
    InputClock::duration apart_ = InputClock::duration::max();
};

} // namespace ui

// When input arrived, by the program's own clock.
#pragma once

#include <QInputEvent>

#include "ui/control.h"

namespace ui {

/// Turns the display's time stamps, in milliseconds of a clock of its own, into times of this process. How
/// far apart the clocks are is the least that an event was seen to come after its stamp: most come while the
/// program waits.
class ArrivalClock {
  public:
    InputClock::time_point ArrivalOf(const QInputEvent& event);

  private:
    InputClock::duration apart_ = InputClock::duration::max();
};

} // namespace ui

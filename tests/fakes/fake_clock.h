// A clock that stands still, linked instead of the system's (platform/clock.h). A test creates one.
#pragma once

#include "platform/clock.h"

namespace fakes {

class FakeClock {
  public:
    /// The time is 2006-05-12 14:03:22 until Set is called.
    FakeClock();
    void Set(const platform::LocalTime& time);
};

} // namespace fakes

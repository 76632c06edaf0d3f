// A clock that stands still, linked in place of the system's. A test creates one.
#pragma once

#include "platform/clock.h"

namespace fakes {

class FakeClock {
  public:
    /// Stands at 2006-05-12 14:03:22.
    FakeClock();
    void Set(const platform::LocalTime& time);
};

} // namespace fakes

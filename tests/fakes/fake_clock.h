// A clock that stands still, in the place of the system's: link fake_clock.cpp into a test.
#pragma once

#include "platform/clock.h"

namespace fakes {

/// 2006-05-12 14:03:22 until it is set.
void SetClock(const platform::LocalTime& time);

} // namespace fakes

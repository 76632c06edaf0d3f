// Implements platform/clock.h.
#include "fakes/fake_clock.h"

namespace {

platform::LocalTime now;

} // namespace

fakes::FakeClock::FakeClock() {
    now = {2006, 5, 12, 14, 3, 22};
}

void fakes::FakeClock::Set(const platform::LocalTime& time) {
    now = time;
}

platform::LocalTime platform::Now() {
    return now;
}

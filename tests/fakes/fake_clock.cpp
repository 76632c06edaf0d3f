#include "fakes/fake_clock.h"

namespace {

platform::LocalTime now{2006, 5, 12, 14, 3, 22};

} // namespace

void fakes::SetClock(const platform::LocalTime& time) {
    now = time;
}

platform::LocalTime platform::Now() {
    return now;
}

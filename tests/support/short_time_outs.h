// Linking short_time_outs.cpp into a test reduces every time-out that the program sets to two seconds. This
// header tells the test which time-outs the program asked for. Linux only.
#pragma once

#include <cstdint>
#include <set>

namespace support {

/// While an object of this class exists, time-outs are neither reduced nor recorded. It is for a test's own
/// statements, which may take longer than two seconds on a busy machine. Only one thread may use it.
class FullTimeOuts {
  public:
    FullTimeOuts();
    FullTimeOuts(const FullTimeOuts&) = delete;
    FullTimeOuts& operator=(const FullTimeOuts&) = delete;
    ~FullTimeOuts();
};

/// Returns the time-outs, in seconds, that were set for statements and for connecting since the last call.
std::set<std::uintptr_t> TakeTimeOuts();

} // namespace support

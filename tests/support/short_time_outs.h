// The time-outs that the program set, before short_time_outs.cpp reduced them to two seconds. Linux only.
#pragma once

#include <cstdint>
#include <set>

namespace support {

/// While one exists, time-outs are neither reduced nor recorded. For a test's own statements, which may take
/// longer than two seconds on a busy machine. To be used by one thread.
class FullTimeOuts {
  public:
    FullTimeOuts();
    FullTimeOuts(const FullTimeOuts&) = delete;
    FullTimeOuts& operator=(const FullTimeOuts&) = delete;
    ~FullTimeOuts();
};

/// The limits in seconds that were set since the last call of this, for statements and for connecting.
std::set<std::uintptr_t> TakeTimeOuts();

} // namespace support

// The time-outs that the program set, before short_time_outs.cpp reduced them to a second. Linux only.
#pragma once

#include <cstdint>
#include <set>

namespace support {

/// The limits in seconds that were set since the last call of this, for statements and for connecting.
std::set<std::uintptr_t> TakeTimeOuts();

} // namespace support

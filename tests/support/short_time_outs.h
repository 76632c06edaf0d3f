// Linking short_time_outs.cpp into a test shortens the time-out of the one message that a test lets hang. All
// other messages keep theirs, so a machine that is busy for some seconds fails no test. This header tells the
// test which time-outs the program asked for. Linux only.
#pragma once

#include <cstdint>
#include <set>

namespace support {

/// The environment variable with the path of the file that exists while the next message hangs (see
/// FaultProxy::AnnounceHangs). The proxy and the program may be different processes.
inline constexpr char kHangAheadVariable[] = "KV_HANG_AHEAD";

/// Returns the time-outs, in seconds, that were set for statements and for connecting since the last call.
std::set<std::uintptr_t> TakeTimeOuts();

} // namespace support

// The event queue of the program's one thread, and the mouse pointer.
#pragma once

#include <cstdint>

namespace platform {

/// Processes all events in the queue and returns. Does nothing if there are no windows.
void RunPendingEvents();

/// The pointer numbers that the program uses.
inline constexpr std::int16_t kDefaultPointer = 0;
inline constexpr std::int16_t kHourglassPointer = 11;

std::int16_t MousePointer();
/// Takes effect at once over every window of the program.
void SetMousePointer(std::int16_t pointer);

} // namespace platform

// The window system's queue of the one thread, and the screen's mouse pointer.
#pragma once

#include <cstdint>

namespace platform {

/// Lets everything that waits in the queue run, and returns. Does nothing where there are no windows.
void RunPendingEvents();

/// The pointer numbers that the program uses.
inline constexpr std::int16_t kDefaultPointer = 0;
inline constexpr std::int16_t kHourglassPointer = 11;

std::int16_t MousePointer();
/// Takes effect at once over every window of the program.
void SetMousePointer(std::int16_t pointer);

} // namespace platform

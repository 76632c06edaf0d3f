// The event queue of the program's one thread, and the mouse pointer.
#pragma once

#include <cstdint>

namespace platform {

/// Processes all events in the queue and returns. Does nothing if there are no windows.
void RunPendingEvents();

/// The numbers of the mouse pointers that the program uses.
inline constexpr std::int16_t kDefaultPointer = 0;
inline constexpr std::int16_t kHourglassPointer = 11;

/// Returns the number that was set last; kDefaultPointer before that.
std::int16_t MousePointer();
/// Sets the pointer at once over every window of the program. The number is one of the two above.
void SetMousePointer(std::int16_t pointer);

} // namespace platform

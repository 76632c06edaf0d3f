// Keeps what this process has in its memory, passwords among it, out of what a crash leaves on the disk.
#pragma once

namespace platform {

/// From here on a crash of this process leaves no picture of its memory; on Linux neither does one of the
/// processes that it starts, and only root can attach to it.
void KeepMemoryOutOfCrashes();

} // namespace platform

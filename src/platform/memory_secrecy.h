// Keeps the memory of this process, which may contain passwords, out of the files that a crash writes to the
// disk.
#pragma once

namespace platform {

/// After this call a crash of this process writes no dump of its memory. On Linux the same holds for the
/// processes that it starts, and only root can attach to it.
void KeepMemoryOutOfCrashes();

} // namespace platform

// Keeps the memory of this process, which may contain passwords, out of the files that a crash writes to the
// disk.
#pragma once

namespace platform {

/// After this call a crash of this process writes no dump of its memory; on Windows the system's error report
/// leaves out the heap. On Linux the same holds for the processes that it starts, and only root can attach a
/// debugger to it. A failure is ignored.
void KeepMemoryOutOfCrashes();

} // namespace platform

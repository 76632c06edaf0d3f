// Prevents core dumps on Linux.
#include "platform/memory_secrecy.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace platform {

void KeepMemoryOutOfCrashes() {
    constexpr rlimit kNoCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &kNoCore);
    // The limit does not apply to a core that is passed to a program, such as systemd's.
    ::prctl(PR_SET_DUMPABLE, 0);
}

} // namespace platform

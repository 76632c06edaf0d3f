#include "platform/memory_secrecy.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace platform {

void KeepMemoryOutOfCrashes() {
    constexpr rlimit kNoCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &kNoCore);
    // A core that goes to a program (systemd's, for one) knows no limit.
    ::prctl(PR_SET_DUMPABLE, 0);
}

} // namespace platform

// Blocks signals, and drops those that came meanwhile.
#include "platform/linux/held_signals.h"

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace platform {

HeldSignals::HeldSignals() {
    sigset_t held{};
    sigset_t pending{};
    ::sigemptyset(&held);
    ::sigemptyset(&to_drop_);
    ::sigpending(&pending);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        ::sigaddset(&held, signal);
        if (::sigismember(&pending, signal) == 0) {
            ::sigaddset(&to_drop_, signal);
        }
    }
    ::pthread_sigmask(SIG_BLOCK, &held, &mask_before_);
}

HeldSignals::~HeldSignals() {
    constexpr timespec kNow{};
    while (::sigtimedwait(&to_drop_, nullptr, &kNow) > 0 || errno == EINTR) {
    }
    ::pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
}

} // namespace platform

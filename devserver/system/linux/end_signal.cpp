// Blocks SIGTERM and SIGINT in every thread, and waits for them in one.
#include "devserver/system/end_signal.h"

#include <csignal>

namespace devsql::system {

namespace {

sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

} // namespace

void TakeEndSignals() {
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void WaitForEndSignal() {
    const sigset_t signals = EndSignals();
    int signal = 0;
    sigwait(&signals, &signal);
}

void TellEnded() {
    // Only Windows needs this call.
}

} // namespace devsql::system

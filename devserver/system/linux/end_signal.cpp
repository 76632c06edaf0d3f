// SIGTERM and SIGINT, blocked in every thread and waited for in one.
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

EndSignal::EndSignal() {
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

EndSignal::~EndSignal() = default;

void EndSignal::Wait() const {
    const sigset_t signals = EndSignals();
    int signal = 0;
    sigwait(&signals, &signal);
}

} // namespace devsql::system

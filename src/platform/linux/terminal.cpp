#include "platform/terminal.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <unistd.h>

#include "platform/system_text.h"

namespace platform {
namespace {

/// A pipe that nobody reads any more, as a closed session leaves it, ends a program that writes to it. As
/// long as this lives the write fails instead. Programs that are started keep the system's way.
class WithoutBrokenPipeSignal {
  public:
    WithoutBrokenPipeSignal() {
        ::sigemptyset(&signal_);
        ::sigaddset(&signal_, SIGPIPE);
        sigset_t pending;
        ::sigpending(&pending);
        was_pending_ = ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
    WithoutBrokenPipeSignal(const WithoutBrokenPipeSignal&) = delete;
    WithoutBrokenPipeSignal& operator=(const WithoutBrokenPipeSignal&) = delete;
    ~WithoutBrokenPipeSignal() {
        constexpr timespec kNow{};
        while (!was_pending_ && ::sigtimedwait(&signal_, nullptr, &kNow) < 0 && errno == EINTR) {
        }
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

  private:
    sigset_t signal_{};
    sigset_t before_{};
    bool was_pending_ = false;
};

} // namespace

void WriteToTerminal(const std::string& message) {
    const std::string text = ToSystemText(message);
    const WithoutBrokenPipeSignal guard;
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return; // a closed error channel is no reason to stop a run
        }
        done += static_cast<std::size_t>(written);
    }
}

bool TerminalIsInteractive() {
    // A job in the background that asks for input is stopped by the system, for good where nobody looks.
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1 &&
           ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

void WaitForEnter() {
    char c = '\0';
    while (::read(STDIN_FILENO, &c, 1) == 1 && c != '\n') {
    }
}

} // namespace platform

// The terminal on Linux, by the descriptors of the standard input and the error channel.
#include "platform/terminal.h"

#include <cerrno>

#include <termios.h>
#include <unistd.h>

#include "platform/linux/held_signals.h"
#include "platform/system_text.h"

namespace platform {

void WriteToTerminal(const std::string& message) {
    const std::string text = ToSystemText(message);
    const HeldSignals held;
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
    // The system stops a background job that reads from the terminal, so only a foreground job may ask.
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1 &&
           ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

void WaitForEnter() {
    char c = '\0';
    while (::read(STDIN_FILENO, &c, 1) == 1 && c != '\n') {
    }
}

bool InputIsTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
}

bool SetEcho(bool on) {
    termios mode{};
    if (::tcgetattr(STDIN_FILENO, &mode) != 0) {
        return false;
    }
    constexpr auto kEcho = static_cast<tcflag_t>(ECHO);
    const bool before = (mode.c_lflag & kEcho) != 0;
    mode.c_lflag = on ? mode.c_lflag | kEcho : mode.c_lflag & ~kEcho;
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &mode);
    return before;
}

} // namespace platform

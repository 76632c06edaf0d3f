// The terminal on Linux: an error channel that nobody reads, and when Enter can be awaited.
#include "platform/terminal.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <optional>
#include <string>

#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

/// Replaces the test's error channel for as long as it lives.
class ErrorChannel {
  public:
    explicit ErrorChannel(int channel) : before_(::dup(STDERR_FILENO)) { ::dup2(channel, STDERR_FILENO); }
    ErrorChannel(const ErrorChannel&) = delete;
    ErrorChannel& operator=(const ErrorChannel&) = delete;
    ~ErrorChannel() {
        ::dup2(before_, STDERR_FILENO);
        ::close(before_);
    }

  private:
    int before_;
};

bool BrokenPipeIsPending() {
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
}

TEST(LinuxTerminal, APipeThatNobodyReadsDoesNotEndTheProgram) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ::close(ends[0]);
    {
        const ErrorChannel channel(ends[1]);
        ::close(ends[1]);
        platform::WriteToTerminal("nobody reads this\n");
    }
    EXPECT_FALSE(BrokenPipeIsPending());
}

TEST(LinuxTerminal, TextArrivesWholeAndInTheSystemsEncoding) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    {
        const ErrorChannel channel(ends[1]);
        platform::WriteToTerminal("Pr\xFC"
                                  "f\n");
    }
    std::array<char, 16> buffer{};
    const ssize_t count = ::read(ends[0], buffer.data(), buffer.size());
    EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0)), "Pr\xC3\xBC"
                                                                                           "f\n");
    ::close(ends[0]);
    ::close(ends[1]);
}

/// Asks in a new process with its own terminal: once as the foreground job and once as a background job.
int AskAtATerminal() {
    constexpr int kForeground = 1;
    constexpr int kBackground = 2;
    const int foreground = platform::TerminalIsInteractive() ? kForeground : 0;
    const pid_t job = ::fork();
    if (job == 0) {
        ::setpgid(0, 0); // as a shell starts a job with "&"
        ::_exit(platform::TerminalIsInteractive() ? kBackground : 0);
    }
    int status = 0;
    ::waitpid(job, &status, 0);
    return foreground | WEXITSTATUS(status);
}

/// Runs `body` in a new process with its own terminal and returns its exit code; nothing on a system without
/// terminals.
std::optional<int> AtATerminal(int (*body)()) {
    int terminal = -1;
    const pid_t session = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (session < 0) {
        return std::nullopt;
    }
    if (session == 0) {
        ::_exit(body());
    }
    int status = 0;
    ::waitpid(session, &status, 0);
    ::close(terminal);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(LinuxTerminal, OnlyAForegroundJobIsInteractive) {
    const std::optional<int> answers = AtATerminal(AskAtATerminal);
    if (!answers) {
        EXPECT_FALSE(platform::TerminalIsInteractive());
        return;
    }
    EXPECT_EQ(answers, 1);
}

bool Echoes() {
    termios mode{};
    return ::tcgetattr(STDIN_FILENO, &mode) == 0 && (mode.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
}

/// The number of the first step that fails; 0 if all succeed.
int SwitchEcho() {
    const bool steps[] = {platform::InputIsTerminal(), Echoes(), platform::SetEcho(false), !Echoes(),
                          !platform::SetEcho(true),    Echoes()};
    const auto* const wrong = std::find(std::begin(steps), std::end(steps), false);
    return wrong == std::end(steps) ? 0 : static_cast<int>(wrong - std::begin(steps)) + 1;
}

TEST(LinuxTerminal, TheEchoIsSwitchedOffAndOn) {
    const std::optional<int> wrong_step = AtATerminal(SwitchEcho);
    if (!wrong_step) {
        EXPECT_FALSE(platform::SetEcho(false));
        return;
    }
    EXPECT_EQ(wrong_step, 0);
}

} // namespace

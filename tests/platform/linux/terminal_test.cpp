// The terminal of this system: an error channel that nobody reads, and who can press Enter.
#include "platform/terminal.h"

#include <array>
#include <csignal>
#include <string>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

/// The error channel, in the place of the test's own for as long as this lives.
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

/// In a process of its own, at a terminal of its own: what a run in front of it is told, and one behind.
int AskAtATerminal() {
    constexpr int kInFront = 1;
    constexpr int kBehind = 2;
    const int in_front = platform::TerminalIsInteractive() ? kInFront : 0;
    const pid_t job = ::fork();
    if (job == 0) {
        ::setpgid(0, 0); // as a shell starts a job with "&"
        ::_exit(platform::TerminalIsInteractive() ? kBehind : 0);
    }
    int status = 0;
    ::waitpid(job, &status, 0);
    return in_front | WEXITSTATUS(status);
}

TEST(LinuxTerminal, OnlyARunInFrontOfItsTerminalCanBeAnswered) {
    int terminal = -1;
    const pid_t session = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (session < 0) { // a system without terminals has nobody who could answer
        EXPECT_FALSE(platform::TerminalIsInteractive());
        return;
    }
    if (session == 0) {
        ::_exit(AskAtATerminal());
    }
    int status = 0;
    ::waitpid(session, &status, 0);
    ::close(terminal);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

} // namespace

// Forks a child for each case and collects the failures.
#include "support/children.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <map>

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {
namespace {

constexpr unsigned kSecondsForACase = 300;

struct Child {
    std::string name;
    int output = -1; ///< the file in memory that receives the child's output
};

/// Runs the case in the child process and ends the process.
[[noreturn]] void BeChild(const Case& one, int output) {
    setpgid(0, 0);           // processes that the case starts can be ended with it
    alarm(kSecondsForACase); // ends a case that hangs
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    try {
        one.run();
    } catch (const std::exception& failure) {
        ADD_FAILURE() << failure.what();
    }
    static_cast<void>(std::fflush(nullptr));
    _exit(::testing::Test::HasFailure() ? 1 : 0);
}

std::string Content(int file) {
    std::string content;
    std::array<char, 4096> buffer{};
    lseek(file, 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(file, buffer.data(), buffer.size())) > 0;) {
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return content;
}

class Children {
  public:
    void Start(const Case& one) {
        const int output = memfd_create("output", MFD_CLOEXEC);
        const pid_t process = fork();
        if (process == 0) {
            BeChild(one, output);
        }
        running_[process] = {one.name, output};
    }

    void WaitForOne() {
        int status = 0;
        // Waits only for the children of this object: the test may have others.
        for (;;) {
            for (const auto& [process, child] : running_) {
                if (waitpid(process, &status, WNOHANG) == process) {
                    Ended(process, status);
                    return;
                }
            }
            usleep(2000);
        }
    }

    std::size_t Running() const { return running_.size(); }
    const std::vector<std::string>& Failures() const { return failures_; }

  private:
    void Ended(pid_t process, int status) {
        const Child child = running_.at(process);
        running_.erase(process);
        kill(-process, SIGKILL);
        if (status != 0) {
            failures_.push_back(child.name + " (status " + std::to_string(status) + ")\n" +
                                Content(child.output));
        }
        close(child.output);
    }

    std::map<pid_t, Child> running_;
    std::vector<std::string> failures_;
};

} // namespace

void RunInChildren(const std::vector<Case>& cases, std::size_t at_once) {
    Children children;
    static_cast<void>(std::fflush(nullptr)); // otherwise a child would print the content of the buffers again
    for (const Case& one : cases) {
        while (children.Running() >= at_once) {
            children.WaitForOne();
        }
        children.Start(one);
    }
    while (children.Running() > 0) {
        children.WaitForOne();
    }
    for (const std::string& failure : children.Failures()) {
        ADD_FAILURE() << failure;
    }
}

} // namespace support

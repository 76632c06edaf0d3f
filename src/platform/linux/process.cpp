// Starts programs by posix_spawn, without a console.
#include "platform/process.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/command_line.h"
#include "platform/system_text.h"

namespace platform {
namespace {

class LinuxProcess : public Process {
  public:
    explicit LinuxProcess(pid_t pid) : pid_(pid) {}

    void Wait(std::uint32_t milliseconds) override {
        if (milliseconds == kInfiniteWait) {
            while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
            }
            return;
        }
        constexpr auto kPoll = std::chrono::milliseconds(5);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (::waitpid(pid_, nullptr, WNOHANG) == 0 && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(kPoll);
        }
    }

  private:
    pid_t pid_;
};

/// The started program has no console: its input is empty and its output is discarded. Its error channel is
/// this program's, so that errors are seen on a terminal.
class HiddenConsole {
  public:
    HiddenConsole() {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    HiddenConsole(const HiddenConsole&) = delete;
    HiddenConsole& operator=(const HiddenConsole&) = delete;
    ~HiddenConsole() { ::posix_spawn_file_actions_destroy(&actions_); }

    void StartIn(const std::string& directory) {
        ::posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str());
    }
    const posix_spawn_file_actions_t* Get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
};

/// Returns the program's path for the system: without double quotes and with "/" between folders.
std::string NativeProgram(std::string file) {
    file.erase(std::remove(file.begin(), file.end(), '"'), file.end());
    std::replace(file.begin(), file.end(), '\\', '/');
    return ToSystemText(file);
}

} // namespace

bool ShellExecuteProgram(const ShellExecuteInfo& info, std::unique_ptr<Process>& process) {
    process.reset();
    const std::string program = NativeProgram(info.file);
    std::vector<std::string> arguments = {program};
    for (const std::string& argument : SplitArguments(info.parameters)) {
        arguments.push_back(ToSystemText(argument));
    }
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);

    HiddenConsole console;
    if (!info.directory.empty()) {
        console.StartIn(info.directory);
    }
    pid_t pid = 0;
    if (::posix_spawn(&pid, program.c_str(), console.Get(), nullptr, pointers.data(), environ) != 0) {
        return false;
    }
    if ((info.mask & kNoCloseProcess) != 0) {
        process = std::make_unique<LinuxProcess>(pid);
    }
    return true;
}

} // namespace platform

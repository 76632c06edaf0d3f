// What this system's processes and files owe beyond what both systems promise.
#include <array>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/process.h"
#include "support/temp_folder.h"

namespace platform {
namespace {

using support::TempFolder;

/// A pipe in the place of one of the test's own channels for as long as this lives.
class PipeAt {
  public:
    /// `end` is the pipe's end that becomes the channel: 0 to be read from, 1 to be written to.
    PipeAt(int channel, std::size_t end) : channel_(channel), before_(::dup(channel)) {
        EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK), 0);
        ::dup2(ends_[end], channel);
    }
    PipeAt(const PipeAt&) = delete;
    PipeAt& operator=(const PipeAt&) = delete;
    ~PipeAt() {
        ::dup2(before_, channel_);
        ::close(before_);
        ::close(ends_[0]);
        ::close(ends_[1]);
    }

    void Put(const std::string& text) const {
        EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// What nobody has taken out.
    std::string Take() const {
        std::array<char, 64> buffer{};
        const ssize_t count = ::read(ends_[0], buffer.data(), buffer.size());
        return {buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
    }

  private:
    int channel_;
    int before_;
    std::array<int, 2> ends_{};
};

TEST(LinuxProcess, AStartedProgramHasNoInputAndItsOutputGoesNowhere) {
    const TempFolder folder;
    const std::string taken = (folder.Path() / "taken").string();
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.file = "/bin/sh";
    info.parameters = "-c \"echo printed; head -c 1 > " + taken + "\"";
    const PipeAt input(STDIN_FILENO, 0);
    const PipeAt output(STDOUT_FILENO, 1);
    input.Put("typed");
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    process->Wait(kInfiniteWait);
    EXPECT_EQ(ReadWholeFile(taken), "");
    EXPECT_EQ(input.Take(), "typed");
    EXPECT_EQ(output.Take(), "");
}

FileFault FaultOfAppending(const std::string& path, const std::string& content) {
    try {
        AppendToFile(path, content);
    } catch (const FileError& error) {
        return error.Fault();
    }
    return FileFault::Other;
}

TEST(LinuxFiles, ARunningProgramsFileIsInUse) {
    EXPECT_EQ(FaultOfAppending(ExecutableFolder() + "\\" + ExecutableName(), ""), FileFault::InUse);
}

TEST(LinuxFiles, AFullDiskIsToldApart) {
    EXPECT_EQ(FaultOfAppending("/dev/full", "x"), FileFault::DiskFull);
}

} // namespace
} // namespace platform

// Behaviour of processes and files on Linux beyond that of both systems.
#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/named_lock.h"
#include "platform/process.h"
#include "support/temp_folder.h"

namespace platform {
namespace {

using support::TempFolder;

/// Replaces one of the test's own channels by a pipe for as long as it lives.
class PipeAt {
  public:
    /// `end` is the end of the pipe that becomes the channel: 0 for reading, 1 for writing.
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
    /// The content of the pipe that nobody has read.
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

TEST(LinuxProcess, AStartedProgramHasNoInputAndItsOutputIsDiscarded) {
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

TEST(LinuxFiles, AFullDiskIsReportedAsSuch) {
    EXPECT_EQ(FaultOfAppending("/dev/full", "x"), FileFault::DiskFull);
}

/// Runs `body` in a process whose files may grow to `bytes`, and returns its result.
int WithLimit(rlim_t bytes, const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit{bytes, bytes};
        ::_exit(::setrlimit(RLIMIT_FSIZE, &limit) == 0 && body() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

template <class Call>
bool FailsAsFull(Call&& call) {
    try {
        call();
    } catch (const FileError& error) {
        return error.Fault() == FileFault::DiskFull;
    }
    return false;
}

std::vector<std::string> NamesIn(const TempFolder& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

constexpr rlim_t kLimit = 4096;
const std::string kTooLong(10000, 'x');

TEST(LinuxFiles, AFileIsNotReplacedByHalfOfTheNewOneAtTheSizeLimit) {
    const TempFolder folder;
    WriteWholeFile(folder / "script", "old");
    EXPECT_EQ(WithLimit(kLimit,
                        [&] { return FailsAsFull([&] { ReplaceWholeFile(folder / "script", kTooLong); }); }),
              1);
    EXPECT_EQ(
        WithLimit(kLimit, [&] { return FailsAsFull([&] { ReplaceWholeFile(folder / "new", kTooLong); }); }),
        1);
    EXPECT_EQ(ReadWholeFile(folder / "script"), "old");
    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"script"});
}

TEST(LinuxFiles, ALogAtTheSizeLimitHasNoHalfLine) {
    const TempFolder folder;
    const std::string log(kLimit - 10, 'l');
    WriteWholeFile(folder / "log", log);
    EXPECT_EQ(WithLimit(kLimit, [&] { return FailsAsFull([&] { AppendToFile(folder / "log", kTooLong); }); }),
              1);
    EXPECT_EQ(ReadWholeFile(folder / "log"), log);
}

TEST(LinuxFiles, ACopyAtTheSizeLimitLeavesTheTarget) {
    const TempFolder folder;
    WriteWholeFile(folder / "from", kTooLong);
    WriteWholeFile(folder / "to", "old");
    EXPECT_EQ(
        WithLimit(kLimit, [&] { return FailsAsFull([&] { CopyFileOver(folder / "from", folder / "to"); }); }),
        1);
    EXPECT_EQ(ReadWholeFile(folder / "to"), "old");
    EXPECT_EQ(NamesIn(folder), (std::vector<std::string>{"from", "to"}));
}

struct stat StatusOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status;
}

constexpr mode_t kPermissions = 07777;

TEST(LinuxFiles, ACopyHasTheRightsOfItsSource) {
    const TempFolder folder;
    for (const mode_t mode : {0600U, 0640U, 0660U, 0644U}) {
        WriteWholeFile(folder / "from", "x");
        ASSERT_EQ(::chmod((folder.Path() / "from").c_str(), mode), 0);
        CopyFileOver(folder / "from", folder / "to");
        EXPECT_EQ(StatusOf(folder.Path() / "to").st_mode & kPermissions, mode);
    }
}

TEST(LinuxFiles, ACopyHasTheOwnerOfItsSourceWhereTheUserMayGiveIt) {
    const TempFolder folder;
    WriteWholeFile(folder / "from", "x");
    constexpr uid_t kOther = 12345;
    const bool given = ::chown((folder.Path() / "from").c_str(), kOther, kOther) == 0;
    CopyFileOver(folder / "from", folder / "to");
    EXPECT_EQ(StatusOf(folder.Path() / "to").st_uid, given ? kOther : ::geteuid());
    EXPECT_EQ(StatusOf(folder.Path() / "to").st_gid, given ? kOther : ::getegid());
}

TEST(LinuxFiles, AReplacedFileKeepsItsRightsAndANewFileCanBeReadByItsOwnerOnly) {
    const TempFolder folder;
    const mode_t mask = ::umask(0);
    ReplaceWholeFile(folder / "script", "1");
    ::umask(mask);
    EXPECT_EQ(StatusOf(folder.Path() / "script").st_mode & kPermissions, 0600U);
    ASSERT_EQ(::chmod((folder.Path() / "script").c_str(), 0640), 0);
    ReplaceWholeFile(folder / "script", "2");
    EXPECT_EQ(StatusOf(folder.Path() / "script").st_mode & kPermissions, 0640U);
}

TEST(LinuxFiles, APrivateFileCanBeReadByItsOwnerOnlyEvenIfAnotherFileWasThere) {
    const TempFolder folder;
    WriteWholeFile(folder / "output", "of an earlier run");
    ASSERT_EQ(::chmod((folder.Path() / "output").c_str(), 0444), 0);
    const mode_t mask = ::umask(0);
    MakePrivateFile(folder / "output");
    ::umask(mask);
    AppendToFile(folder / "output", "text");
    EXPECT_EQ(StatusOf(folder.Path() / "output").st_mode & kPermissions, 0600U);
    EXPECT_EQ(ReadWholeFile(folder / "output"), "text");
}

TEST(LinuxFiles, OfAPrivateFileTheLinkStaysAndSoDoesADevice) {
    const TempFolder folder;
    WriteWholeFile(folder / "real", "1");
    std::filesystem::create_symlink(folder.Path() / "real", folder.Path() / "link");
    MakePrivateFile(folder / "link");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path() / "link"));
    EXPECT_EQ(ReadWholeFile(folder / "real"), "");
    MakePrivateFile("/dev/null");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(LinuxFiles, AFileThatALinkPointsToIsReplacedAndTheLinkStays) {
    const TempFolder folder;
    WriteWholeFile(folder / "real", "1");
    std::filesystem::create_symlink(folder.Path() / "real", folder.Path() / "link");
    ReplaceWholeFile(folder / "link", "2");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path() / "link"));
    EXPECT_EQ(ReadWholeFile(folder / "real"), "2");
}

TEST(LinuxFiles, APipeOrADeviceIsNotReplacedByAFile) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    std::filesystem::create_symlink(pipe, folder.Path() / "link");
    WriteWholeFile(folder / "source", "rows");
    EXPECT_THROW(CopyFileOver(folder / "source", folder / "link"), FileError);
    EXPECT_THROW(ReplaceWholeFile(folder / "link", "text"), FileError);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

/// A process that has the lock until it is killed.
class LockHolder {
  public:
    explicit LockHolder(const std::string& name) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        child_ = ::fork();
        if (child_ == 0) {
            const auto lock = TryLock(name);
            const char got = lock ? 'y' : 'n';
            (void)!::write(ends[1], &got, 1);
            ::pause();
            ::_exit(0);
        }
        char got = '\0';
        EXPECT_EQ(::read(ends[0], &got, 1), 1);
        EXPECT_EQ(got, 'y');
        ::close(ends[0]);
        ::close(ends[1]);
    }
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;
    ~LockHolder() {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }

  private:
    pid_t child_ = -1;
};

TEST(LinuxLock, OfAKilledProcessIsFree) {
    const std::string name = "test " + std::to_string(::getpid());
    {
        const LockHolder holder(name);
        EXPECT_EQ(TryLock(name), nullptr);
    }
    EXPECT_NE(TryLock(name), nullptr);
}

TEST(LinuxLock, IsNotHandedToAStartedProgram) {
    const TempFolder folder;
    WriteWholeFile(folder / "wait", "");
    const std::string name = "test " + std::to_string(::getpid());
    auto lock = TryLock(name);
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.file = "/bin/sh";
    // The program ends when its folder is deleted.
    info.parameters = "-c \"while [ -e '" + (folder / "wait") + "' ]; do sleep 0.02; done\"";
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    lock.reset();
    EXPECT_NE(TryLock(name), nullptr);
    std::filesystem::remove(folder.Path() / "wait");
    process->Wait(kInfiniteWait);
}

} // namespace
} // namespace platform

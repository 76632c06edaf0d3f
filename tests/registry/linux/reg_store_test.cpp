// Where the .reg files are, and that saving loses nothing, tested through the registry's calls.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/system_text.h"
#include "registry/linux/reg_store.h"
#include "registry/registry.h"

namespace {

using namespace registry;
using namespace registry::error;
namespace fs = std::filesystem;

constexpr const char* kKey = R"(SOFTWARE\Orvik\Test)";

/// Runs `body` in a new process, which may give up its rights for ever, and returns its result.
int InChild(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(body());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class RegStore : public testing::Test {
  public:
    RegStore() {
        std::string pattern = (fs::temp_directory_path() / "kv_reg_store_XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        ::setenv("KVLSQLDBMGR_REGISTRY", File().c_str(), 1);
        ::umask(022);
    }
    ~RegStore() override {
        ::unsetenv("KVLSQLDBMGR_REGISTRY");
        ::unsetenv("XDG_CONFIG_HOME");
        fs::remove_all(folder_);
    }

  protected:
    fs::path File() const { return folder_ / "registry.reg"; }

    void Put(const std::string& bytes) const { Put(File(), bytes); }
    static void Put(const fs::path& path, const std::string& bytes) {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string Get(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static mode_t ModeOf(const fs::path& path) {
        struct stat info {};
        EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
        return info.st_mode & 07777U;
    }
    std::vector<std::string> FilesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    static std::int32_t Save(const std::string& name, const std::string& text) {
        const OpenedKey created = CreateKey(kHkeyLocalMachine, kKey, name, kKeyAllAccess);
        if (created.error != kSuccess) {
            return created.error.number;
        }
        const RegistryError error = SetValue(created.key, name, kRegSz, text);
        CloseKey(created.key);
        return error.number;
    }
    /// The text, or the error number.
    static std::string Read(const std::string& name, RegistryHandle root = kHkeyLocalMachine) {
        const OpenedKey opened = OpenKey(root, kKey, kKeyQueryValue);
        if (opened.error != kSuccess) {
            return "open " + std::to_string(opened.error.number);
        }
        std::string buffer(400, ' ');
        const RegistryError error = QueryValue(opened.key, name, buffer);
        CloseKey(opened.key);
        return error == kSuccess ? buffer.substr(0, buffer.find('\0'))
                                 : "query " + std::to_string(error.number);
    }
    /// The system's text for the error of opening the key.
    static std::string Message() {
        return SystemMessage(OpenKey(kHkeyLocalMachine, kKey, kKeyQueryValue).error, 200);
    }
    static std::string Sample(const std::string& text) {
        return std::string("REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\") + kKey + "]\n\"v\"=\"" + text + "\"\n";
    }

    fs::path folder_;
};

TEST_F(RegStore, IsAnEmptyRegistryWithoutItsFile) {
    EXPECT_EQ(Read("v"), "open 2");
    EXPECT_EQ(OpenKey(kHkeyLocalMachine, "", kKeyQueryValue).error, kSuccess);
    EXPECT_TRUE(FilesInFolder().empty());
}

TEST_F(RegStore, IsAtThePathInTheEnvironment) {
    Put(folder_ / "other/my.reg", Sample("there"));
    ::setenv("KVLSQLDBMGR_REGISTRY", (folder_ / "other/my.reg").c_str(), 1);
    EXPECT_EQ(Read("v"), "there");
}

TEST_F(RegStore, IsInTheUsersConfigurationOtherwise) {
    Put(folder_ / "KVLSQLDbMgr/registry.reg", Sample("configured"));
    ::setenv("KVLSQLDBMGR_REGISTRY", "", 1);
    ::setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    EXPECT_EQ(Read("v"), "configured");
}

TEST_F(RegStore, IsBelowTheHomeFolderWithoutAConfigurationFolder) {
    Put(folder_ / ".config/KVLSQLDbMgr/registry.reg", Sample("at home"));
    const char* home = std::getenv("HOME");
    const std::string kept = home == nullptr ? "" : home;
    ::unsetenv("KVLSQLDBMGR_REGISTRY");
    ::setenv("XDG_CONFIG_HOME", "relative", 1); // is ignored
    ::setenv("HOME", folder_.c_str(), 1);
    const std::string text = Read("v");
    ::setenv("HOME", kept.c_str(), 1);
    EXPECT_EQ(text, "at home");
}

TEST_F(RegStore, CreatesFoldersAndFileForTheUserOnlyAtTheFirstSave) {
    const fs::path file = folder_ / "a/b/registry.reg";
    ::setenv("KVLSQLDBMGR_REGISTRY", file.c_str(), 1);
    EXPECT_EQ(Save("v", "x"), kSuccess);
    EXPECT_EQ(ModeOf(folder_ / "a"), 0700U);
    EXPECT_EQ(ModeOf(folder_ / "a/b"), 0700U);
    EXPECT_EQ(ModeOf(file), 0600U);
    EXPECT_EQ(Read("v"), "x");
}

TEST_F(RegStore, KeepsTheModeOfItsFile) {
    Put(Sample("old"));
    fs::permissions(File(), fs::perms{0640});
    EXPECT_EQ(Save("v", "new"), kSuccess);
    EXPECT_EQ(ModeOf(File()), 0640U);
}

TEST_F(RegStore, SavesToTheFileThatASymbolicLinkPointsTo) {
    Put(folder_ / "real/site.reg", Sample("old"));
    fs::create_symlink(folder_ / "real/site.reg", File());
    EXPECT_EQ(Save("v", "new"), kSuccess);
    EXPECT_TRUE(fs::is_symlink(File()));
    EXPECT_EQ(Get(folder_ / "real/site.reg"), Sample("new"));
}

TEST_F(RegStore, LeavesOnlyTheFileAndItsLock) {
    Put(Sample("old"));
    EXPECT_EQ(Save("v", "new"), kSuccess);
    EXPECT_EQ(FilesInFolder(), (std::vector<std::string>{"registry.reg", "registry.reg.lock"}));
}

TEST_F(RegStore, IsNotHarmedByFilesThatACrashHasLeft) {
    Put(Sample("old"));
    Put(folder_ / "registry.reg.new", "half a fi");
    EXPECT_EQ(Read("v"), "old");
    EXPECT_EQ(Save("v", "new"), kSuccess);
    EXPECT_EQ(Get(File()), Sample("new"));
}

TEST_F(RegStore, FailsOnADamagedFileAndNeverWritesIt) {
    const std::string damaged = Sample("old") + "\"PWD\"=\"unterminated\n";
    Put(damaged);
    EXPECT_EQ(Read("v"), "open 1009");
    EXPECT_EQ(OpenKey(kHkeyLocalMachine, "", kKeyQueryValue).error, kBadDb);
    EXPECT_EQ(Save("v", "new"), kBadDb);
    EXPECT_EQ(Get(File()), damaged);
    EXPECT_EQ(FilesInFolder(), (std::vector<std::string>{"registry.reg", "registry.reg.lock"}));
}

TEST_F(RegStore, FailsOnAFileThatIsDamagedWhileAKeyIsOpen) {
    Put(Sample("old"));
    const OpenedKey opened = OpenKey(kHkeyLocalMachine, kKey, kKeyAllAccess);
    Put("");
    std::string buffer(10, ' ');
    EXPECT_EQ(QueryValue(opened.key, "v", buffer), kBadDb);
    EXPECT_EQ(SetValue(opened.key, "v", kRegSz, "x"), kBadDb);
    EXPECT_EQ(Get(File()), "");
    CloseKey(opened.key);
}

TEST_F(RegStore, NamesAMissingFileInTheSystemsTextAndNotAMissingKey) {
    EXPECT_EQ(Message(), "The system cannot find the file specified: " + File().string() + "\r\n");
    Put("REGEDIT4\n");
    EXPECT_EQ(Message(), "The system cannot find the file specified.\r\n");
}

TEST_F(RegStore, ReportsAFileThatCannotBeUsedOnTheTerminalOnce) {
    const std::string begin = "reg_store_test: registry file " + File().string();
    testing::internal::CaptureStderr();
    Read("v");
    Read("w");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), begin + ": it does not exist\n");
    testing::internal::CaptureStderr();
    Put("REGEDIT4\n\nrubbish\n");
    Read("v");
    Read("v");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              begin + ", line 3: neither a key nor a value nor a comment\n");
    testing::internal::CaptureStderr();
    fs::remove(File());
    fs::create_directory(File());
    Read("v");
    Read("v");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), begin + ": it is not a plain file\n");
}

TEST_F(RegStore, DoesNotEndTheProgramIfNobodyReadsTheTerminal) {
    Put("rubbish");
    EXPECT_EQ(InChild([] {
                  std::array<int, 2> ends{};
                  if (::pipe(ends.data()) != 0) {
                      return 0;
                  }
                  ::close(ends[0]);
                  ::dup2(ends[1], STDERR_FILENO);
                  return Read("v") == "open 1009" ? 1 : 0;
              }),
              1);
}

/// The same object is returned as long as the file has not changed.
TEST_F(RegStore, IsReadOnceWhileItsFileStaysAsItIs) {
    Put(Sample("old"));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    auto first = LoadRegistry(File()).file;
    auto second = LoadRegistry(File()).file;
    while (first != second && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        first = LoadRegistry(File()).file;
        second = LoadRegistry(File()).file;
    }
    ASSERT_EQ(first, second);
    EXPECT_EQ(Read("v"), "old");
    EXPECT_EQ(LoadRegistry(File()).file, first);
    Put(Sample("new"));
    EXPECT_EQ(Read("v"), "new");
    EXPECT_EQ(Save("v", "mine"), kSuccess);
    EXPECT_EQ(Read("v"), "mine");
}

TEST_F(RegStore, EscapesCharactersThatTheCodePageLacksAndSavesThemUnchanged) {
    const std::string path = "/home/\xC5\x81ukasz";
    Put("Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\" + std::string(kKey) + "]\n\"v\"=\"" +
        path + "\"\n");
    const std::string text = Read("v");
    EXPECT_EQ(platform::ToSystemText(text), path);
    EXPECT_EQ(Save("w", text), kSuccess);
    EXPECT_EQ(Read("w"), text);
    EXPECT_NE(Get(File()).find("\"w\"=\"" + path + "\""), std::string::npos);
}

TEST_F(RegStore, RefusesATextThatTheFilesEncodingLacks) {
    Put(Sample("old"));
    EXPECT_EQ(Save("v", platform::FromSystemText("\xC5\x81")), kInvalidParameter);
    EXPECT_EQ(Get(File()), Sample("old"));
}

TEST_F(RegStore, NamesFileAndLineOfADamageInTheSystemsText) {
    Put("REGEDIT4\n\nrubbish\n");
    const std::string text = Message();
    EXPECT_TRUE(text.starts_with("The configuration registry database is corrupt: ")) << text;
    EXPECT_TRUE(text.ends_with("registry.reg, line 3: neither a key nor a value nor a comment\r\n")) << text;
}

TEST_F(RegStore, KeepsTheEndOfATextThatIsTooLongForTheBuffer) {
    const fs::path file = folder_ / std::string(150, 'x') / "registry.reg";
    Put(file, "REGEDIT4\nrubbish\n");
    ::setenv("KVLSQLDBMGR_REGISTRY", file.c_str(), 1);
    const std::string text = Message();
    EXPECT_EQ(text.size(), 199U);
    EXPECT_NE(text.find(": ...x"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("line 2: neither a key nor a value nor a comment\r\n")) << text;
}

TEST_F(RegStore, ReadsAFileAgainAfterItsDamageIsRepaired) {
    Put("rubbish");
    EXPECT_EQ(Read("v"), "open 1009");
    Put(Sample("mended"));
    EXPECT_EQ(Read("v"), "mended");
}

TEST_F(RegStore, FailsOnAFolderInThePlaceOfTheFile) {
    fs::create_directory(File());
    EXPECT_EQ(Read("v"), "open 1011");
    EXPECT_EQ(Save("v", "x"), kCantOpen);
    EXPECT_TRUE(fs::is_directory(File()));
}

TEST_F(RegStore, FailsOnAFileInThePlaceOfTheFolder) {
    Put(folder_ / "plain", "text");
    ::setenv("KVLSQLDBMGR_REGISTRY", (folder_ / "plain/registry.reg").c_str(), 1);
    EXPECT_EQ(Read("v"), "open 1011");
    EXPECT_EQ(Save("v", "x"), kCantWrite);
    EXPECT_EQ(Get(folder_ / "plain"), "text");
}

TEST_F(RegStore, DoesNotWaitForAPipeInThePlaceOfTheFile) {
    ASSERT_EQ(::mkfifo(File().c_str(), 0600), 0);
    EXPECT_EQ(Read("v"), "open 1011");
}

constexpr uid_t kNobody = 65534;

/// Root may read everything.
bool DropRights() {
    return ::geteuid() != 0 || (::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0);
}

TEST_F(RegStore, FailsWithoutTheRightToRead) {
    Put(Sample("secret"));
    fs::permissions(folder_, fs::perms{0755});
    fs::permissions(File(), fs::perms{0000});
    EXPECT_EQ(InChild([] { return DropRights() && Read("v") == "open 5" ? 1 : 0; }), 1);
}

TEST_F(RegStore, FailsWithoutTheRightToWriteAndKeepsTheFile) {
    Put(Sample("old"));
    fs::permissions(File(), fs::perms{0444});
    fs::permissions(folder_, fs::perms{0777});
    EXPECT_EQ(InChild([] { return DropRights() ? Save("v", "new") : 0; }), kAccessDenied);
    fs::permissions(folder_, fs::perms{0555});
    EXPECT_EQ(InChild([] { return DropRights() ? Save("v", "new") : 0; }), kAccessDenied);
    fs::permissions(folder_, fs::perms{0755});
    EXPECT_EQ(Get(File()), Sample("old"));
}

TEST_F(RegStore, FailsOnAFullDiskAndKeepsTheFile) {
    const std::string before = Sample("old") + std::string(2000, '\n');
    Put(before);
    const int error = InChild([] {
        const rlimit limit{1000, 1000};
        ::signal(SIGXFSZ, SIG_IGN);
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? Save("v", "new") : 0;
    });
    EXPECT_EQ(error, kDiskFull);
    EXPECT_EQ(Get(File()), before);
    EXPECT_EQ(FilesInFolder(), (std::vector<std::string>{"registry.reg", "registry.reg.lock"}));
}

TEST_F(RegStore, LosesNoValueOfProcessesThatSaveAtOnce) {
    constexpr int kProcesses = 4;
    constexpr int kValues = 25;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        const pid_t child = ::fork();
        if (child == 0) {
            int failures = 0;
            for (int i = 0; i < kValues; ++i) {
                failures += Save("v" + std::to_string(p) + "-" + std::to_string(i), "x") == kSuccess ? 0 : 1;
            }
            ::_exit(failures);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int p = 0; p < kProcesses; ++p) {
        for (int i = 0; i < kValues; ++i) {
            EXPECT_EQ(Read("v" + std::to_string(p) + "-" + std::to_string(i)), "x") << p << " " << i;
        }
    }
}

TEST_F(RegStore, WaitsForAnotherProcessThatSaves) {
    Put(Sample("old"));
    const int lock = ::open((File().string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Put(Sample("of the other"));
        ::close(lock);
    });
    EXPECT_EQ(Save("w", "mine"), kSuccess);
    other.join();
    EXPECT_EQ(Read("v"), "of the other");
    EXPECT_EQ(Read("w"), "mine");
}

TEST_F(RegStore, FindsTheFilesOfOtherComputersBesideItsOwn) {
    Put(folder_ / "computers/ServerB.reg", Sample("of B"));
    for (const std::string name : {"ServerB", "\\\\SERVERB", "serverb"}) {
        const OpenedKey root = ConnectRegistry(name, kHkeyLocalMachine);
        ASSERT_EQ(root.error, kSuccess) << name;
        EXPECT_EQ(Read("v", root.key), "of B");
    }
}

TEST_F(RegStore, SavesOnAnotherComputerThroughItsRoot) {
    Put(Sample("of A"));
    Put(folder_ / "computers/serverb.reg", Sample("of B"));
    const OpenedKey root = ConnectRegistry("\\\\SERVERB", kHkeyLocalMachine);
    const OpenedKey key = CreateKey(root.key, kKey, "", kKeyAllAccess);
    EXPECT_EQ(SetValue(key.key, "v", kRegSz, "new"), kSuccess);
    EXPECT_EQ(Get(folder_ / "computers/serverb.reg"), Sample("new"));
    EXPECT_EQ(Get(File()), Sample("of A"));
}

TEST_F(RegStore, FindsNoComputerOutsideItsFolder) {
    Put(folder_ / "computers/ServerB.reg", Sample("of B"));
    Put(folder_ / "outside.reg", Sample("outside"));
    for (const std::string name : {"../outside", "..\\outside", "ServerC", "ServerB.reg", "."}) {
        EXPECT_EQ(ConnectRegistry(name, kHkeyLocalMachine).error, kBadNetPath) << name;
    }
}

TEST_F(RegStore, FailsOnADamagedFileOfAnotherComputer) {
    Put(folder_ / "computers/ServerB.reg", "rubbish");
    const OpenedKey root = ConnectRegistry("ServerB", kHkeyLocalMachine);
    EXPECT_EQ(root.error, kSuccess);
    EXPECT_EQ(Read("v", root.key), "open 1009");
}

TEST_F(RegStore, AcceptsTheNameOfThisComputer) {
    Put(Sample("mine"));
    std::array<char, 256> name{};
    ASSERT_EQ(::gethostname(name.data(), name.size() - 1), 0);
    const OpenedKey root = ConnectRegistry(std::string("\\\\") + name.data(), kHkeyLocalMachine);
    ASSERT_EQ(root.error, kSuccess);
    EXPECT_EQ(Read("v", root.key), "mine");
}

TEST_F(RegStore, RefusesANameThatAFileCannotHold) {
    EXPECT_EQ(CreateKey(kHkeyLocalMachine, "A\nB", "", kKeyAllAccess).error, kInvalidParameter);
    EXPECT_FALSE(fs::exists(File()));
}

} // namespace

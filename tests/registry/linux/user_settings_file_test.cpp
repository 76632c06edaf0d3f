// The settings file on Linux: its rights, and what happens to it when it cannot be read or written.
#include "registry/user_settings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class UserSettingsFile : public ::testing::Test {
  protected:
    UserSettingsFile() { ::setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1); }
    ~UserSettingsFile() override { ::unsetenv("XDG_CONFIG_HOME"); }

    fs::path File() const { return folder_.Path() / "App" / "settings.ini"; }
    static fs::perms ModeOf(const fs::path& path) { return fs::status(path).permissions(); }

    support::TempFolder folder_;
};

TEST_F(UserSettingsFile, FileAndFolderCanBeReadByTheUserOnly) {
    ASSERT_TRUE(registry::WriteUserSetting("App", "Settings", "edtPassword0", "secret"));
    EXPECT_EQ(ModeOf(File()), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ModeOf(File().parent_path()), fs::perms::owner_all);
}

TEST_F(UserSettingsFile, AFileThatWasOpenToAllIsClosedByTheNextWrite) {
    ASSERT_TRUE(registry::WriteUserSetting("App", "Settings", "key", "1"));
    fs::permissions(File(), fs::perms::others_read, fs::perm_options::add);
    ASSERT_TRUE(registry::WriteUserSetting("App", "Settings", "key", "2"));
    EXPECT_EQ(ModeOf(File()) & fs::perms::others_read, fs::perms::none);
}

TEST_F(UserSettingsFile, LinesThatAPersonHasAddedStay) {
    fs::create_directories(File().parent_path());
    std::ofstream(File()) << "; mine\n[Other]\nkey=1\n\n[Settings]\nkey=2\nmore=3\n";
    ASSERT_TRUE(registry::WriteUserSetting("App", "Settings", "key", "4"));
    std::ifstream stream(File());
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(text, "; mine\n[Other]\nkey=1\n\n[Settings]\nkey=4\nmore=3\n");
}

TEST_F(UserSettingsFile, AFileThatCannotBeReadIsNotReplaced) {
    ASSERT_TRUE(registry::WriteUserSetting("App", "Settings", "key", "1"));
    fs::permissions(folder_.Path(), fs::perms{0777});
    fs::permissions(File().parent_path(), fs::perms{0777});
    const pid_t child = ::fork();
    if (child == 0) {
        // Without the rights of root. Only its user can read the file; everybody can write to the folder.
        constexpr uid_t kNobody = 65534;
        const bool dropped = ::geteuid() != 0 ? ::chmod(File().c_str(), 0) == 0
                                              : ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0;
        const bool kept = !registry::WriteUserSetting("App", "Settings", "other", "2") &&
                          registry::ReadUserSetting("App", "Settings", "key", "none") == "none";
        ::_exit(dropped && kept ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    fs::permissions(File(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(registry::ReadUserSetting("App", "Settings", "key", "none"), "1");
}

TEST_F(UserSettingsFile, AFolderThatCannotBeMadeIsAFailureWithoutAnException) {
    std::ofstream(folder_.Path() / "App") << "a file where the folder should be";
    EXPECT_FALSE(registry::WriteUserSetting("App", "Settings", "key", "1"));
    EXPECT_EQ(registry::ReadUserSetting("App", "Settings", "key", "none"), "none");
}

} // namespace

// RenameDatabase on a full disk and without the right to a file, at each of its four file operations, on a
// real server with real files. The database stays detached, and one complete set of its files remains.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "admin/faults/fault_fixture.h"
#include "admin/upgrade_db_mgr.h"
#include "platform/files.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

void MakeReadOnly(const fs::path& path) {
    constexpr mode_t kReadOnly = 0555;
    chmod(path.c_str(), kReadOnly);
}

void MakeWritable(const fs::path& path) {
    constexpr mode_t kEverybody = 0777;
    chmod(path.c_str(), kEverybody);
}

/// File rights do not restrict root. As long as this object lives, the operation runs without the privileges
/// that override file rights, as the owner of the executable's folder: in a checkout in a private home folder
/// nobody else may enter it.
class WithoutPrivileges {
  public:
    WithoutPrivileges() {
        if (getuid() == 0) {
            struct stat folder {};
            EXPECT_EQ(stat(platform::ExecutableFolder().c_str(), &folder), 0);
            EXPECT_EQ(seteuid(folder.st_uid), 0);
            KeepPrivileges(false);
        }
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    ~WithoutPrivileges() {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
            KeepPrivileges(true);
        }
    }

  private:
    /// Switches all privileges that the calling thread is permitted to have on or off.
    static void KeepPrivileges(bool all) {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
        EXPECT_EQ(syscall(SYS_capget, &header, sets.data()), 0);
        for (__user_cap_data_struct& set : sets) {
            set.effective = all ? set.permitted : 0;
        }
        EXPECT_EQ(syscall(SYS_capset, &header, sets.data()), 0);
    }
};

struct FileFaultCase {
    const char* name;
    /// Causes the fault; without it everything can be written.
    void (*cause)(const FaultFixture& fixture);
    /// The state of four files afterwards: old data, old log, new data, new log; a character each, see
    /// FileState.
    const char* remains;
    /// The server, which this process has started, needs the right that the program must not have: only root
    /// can arrange that.
    bool only_as_root = false;
};

fs::path OldData(const FaultFixture& fixture) {
    return fixture.OldFolder() / "Batch.mdf";
}
fs::path OldLog(const FaultFixture& fixture) {
    return fixture.OldFolder() / "log" / "Batch.ldf";
}
fs::path NewData(const FaultFixture& fixture) {
    return fixture.DataFolder() / "Tmp_data.mdf";
}
fs::path NewLog(const FaultFixture& fixture) {
    return fixture.DataFolder() / "Tmp_log.ldf";
}

/// From now on every file that this process writes must stay smaller than `path`: a copy of it fails as on a
/// full disk.
void LimitFilesToLessThan(const fs::path& path) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = fs::file_size(path) - 1;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

/// Makes the log the larger file, so that the data file can still be copied.
void LimitFilesToLessThanTheLog(const FaultFixture& fixture) {
    fs::resize_file(OldLog(fixture), 2 * fs::file_size(OldData(fixture)));
    LimitFilesToLessThan(OldLog(fixture));
}

void MakeReadOnlyFile(const fs::path& path) {
    std::fclose(std::fopen(path.c_str(), "w"));
    MakeReadOnly(path);
}

const FileFaultCase kCases[] = {
    {"full disk, copying the data",
     [](const FaultFixture& fixture) { LimitFilesToLessThan(OldData(fixture)); }, "xx--"},
    {"full disk, copying the log", LimitFilesToLessThanTheLog, "xxx-"},
    {"no right to create the new data",
     [](const FaultFixture& fixture) { MakeReadOnly(fixture.DataFolder()); }, "xx--"},
    {"no right to write the new data",
     [](const FaultFixture& fixture) { MakeReadOnlyFile(NewData(fixture)); }, "xx+-"},
    {"no right to write the new log", [](const FaultFixture& fixture) { MakeReadOnlyFile(NewLog(fixture)); },
     "xxx+"},
    {"a folder with the name of the new data",
     [](const FaultFixture& fixture) { fs::create_directory(NewData(fixture)); }, "xx+-"},
    {"a folder with the name of the new log",
     [](const FaultFixture& fixture) { fs::create_directory(NewLog(fixture)); }, "xxx+"},
    {"no right to read the old data", [](const FaultFixture& fixture) { chmod(OldData(fixture).c_str(), 0); },
     "xx--", true},
    {"no right to read the old log", [](const FaultFixture& fixture) { chmod(OldLog(fixture).c_str(), 0); },
     "xxx-"},
    {"no right to delete the old data",
     [](const FaultFixture& fixture) { MakeReadOnly(fixture.OldFolder()); }, "xxxx"},
    {"no right to delete the old log",
     [](const FaultFixture& fixture) { MakeReadOnly(OldLog(fixture).parent_path()); }, "-xxx"},
    {"no data folder", [](const FaultFixture& fixture) { fs::remove(fixture.DataFolder()); }, "xx--"},
};

/// "x" for a file with this content, "+" for anything else at the path, "-" for nothing.
char FileState(const fs::path& path, const std::string& content) {
    if (!fs::exists(path)) {
        return '-';
    }
    return fs::is_regular_file(path) && platform::ReadWholeFile(path.string()) == content ? 'x' : '+';
}

/// Attaches the database from its old files, or from the new ones if the old data file is gone, and counts
/// its rows.
std::string RescuedRows(const FaultFixture& fixture) {
    const fs::path data = fs::exists(OldData(fixture)) ? OldData(fixture) : NewData(fixture);
    const fs::path log = fs::exists(OldData(fixture)) ? OldLog(fixture) : NewLog(fixture);
    fixture.Ask("master", "sp_attach_db N'Rescue', N'" + data.string() + "', N'" + log.string() + "'");
    return fixture.AskOne("Rescue", "SELECT COUNT(*) FROM Things");
}

void Prepare(const FaultFixture& fixture) {
    // The log creates this folder; without privileges the operation could not.
    fs::create_directory(fs::path(platform::ExecutableFolder()) / "Data");
    fs::create_directory(OldLog(fixture).parent_path());
    fixture.Ask("master", "CREATE DATABASE Batch ON (NAME=Batch_dat, FILENAME='" + OldData(fixture).string() +
                              "') LOG ON (NAME=Batch_lg, FILENAME='" + OldLog(fixture).string() + "')");
    fixture.Ask("Batch", "CREATE TABLE Things (a int) INSERT Things VALUES (1) INSERT Things VALUES (2)");
    for (const fs::path& folder : {fixture.Folder(), fixture.DataFolder(), fixture.OldFolder(),
                                   OldLog(fixture).parent_path(), fixture.Folder() / "Log"}) {
        MakeWritable(folder);
    }
}

void Try(const FileFaultCase& one) {
    FaultFixture fixture;
    Prepare(fixture);
    one.cause(fixture);
    CUpgradeDbMgr manager;
    fixture.Fill(manager);
    {
        const WithoutPrivileges restricted;
        EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    }
    EXPECT_EQ(fixture.LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_EQ(fixture.Proxy().Events().back(), "sp_detach_db N'Tmp', N'true'"); // not attached again
    EXPECT_FALSE(fixture.HasDatabase("Batch") || fixture.HasDatabase("Tmp"));
    for (const fs::path& path :
         {OldData(fixture), OldLog(fixture), OldLog(fixture).parent_path(), fixture.OldFolder(),
          fixture.DataFolder(), NewData(fixture), NewLog(fixture)}) {
        if (fs::exists(path) && !fs::is_other(path)) {
            MakeWritable(path);
        }
    }
    std::string remains;
    // An old file is deleted only after it was copied, so its content is then that of the copy.
    const std::string data = platform::ReadWholeFile(
        (fs::exists(OldData(fixture)) ? OldData(fixture) : NewData(fixture)).string());
    const std::string log =
        platform::ReadWholeFile((fs::exists(OldLog(fixture)) ? OldLog(fixture) : NewLog(fixture)).string());
    remains += FileState(OldData(fixture), data);
    remains += FileState(OldLog(fixture), log);
    remains += FileState(NewData(fixture), data);
    remains += FileState(NewLog(fixture), log);
    EXPECT_EQ(remains, one.remains);
    EXPECT_EQ(RescuedRows(fixture), "2");
}

TEST(RenameDatabaseFileFaults, LeaveTheDatabaseDetachedWithOneCompleteSetOfFiles) {
    std::vector<support::Case> cases;
    for (const FileFaultCase& one : kCases) {
        if (one.only_as_root && getuid() != 0) {
            std::printf("RenameDatabase: not tried, since only root can: %s\n", one.name);
            continue;
        }
        cases.push_back({one.name, [&one] { Try(one); }});
    }
    support::RunInChildren(cases, std::size(kCases));
    std::printf("RenameDatabase: %zu faults tried at its four file operations\n", cases.size());
}

/// Copying a file to itself fails and leaves the file unchanged.
void TryOwnPath(bool data) {
    FaultFixture fixture;
    const fs::path data_path = data ? NewData(fixture) : OldData(fixture);
    const fs::path log_path = data ? fixture.OldFolder() / "Batch.ldf" : NewLog(fixture);
    fixture.Ask("master", "CREATE DATABASE Batch ON (NAME=Batch_dat, FILENAME='" + data_path.string() +
                              "') LOG ON (NAME=Batch_lg, FILENAME='" + log_path.string() + "')");
    fixture.Ask("Batch", "CREATE TABLE Things (a int) INSERT Things VALUES (1)");
    CUpgradeDbMgr manager;
    fixture.Fill(manager);
    EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(fixture.LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_FALSE(fixture.HasDatabase("Batch") || fixture.HasDatabase("Tmp"));
    fixture.Ask("master",
                "sp_attach_db N'Rescue', N'" + data_path.string() + "', N'" + log_path.string() + "'");
    EXPECT_EQ(fixture.AskOne("Rescue", "SELECT COUNT(*) FROM Things"), "1");
}

TEST(RenameDatabaseFileFaults, AFileThatAlreadyHasItsNewPathIsNotEmptied) {
    support::RunInChildren({{"data", [] { TryOwnPath(true); }}, {"log", [] { TryOwnPath(false); }}}, 2);
}

} // namespace
} // namespace kv

// RenameDatabase on a disk that is full and without the right to a file, at each of its four file operations:
// real files, a real server. The database stays detached, and one whole set of its files stands.
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

/// What nobody may change.
void Close(const fs::path& path) {
    constexpr mode_t kReadOnly = 0555;
    chmod(path.c_str(), kReadOnly);
}

void Open(const fs::path& path) {
    constexpr mode_t kEverybody = 0777;
    chmod(path.c_str(), kEverybody);
}

/// For root no right is missing. While this lives, the operation runs as the owner of the folder of the
/// executable, who alone may be let into it (a checkout in a closed home folder), and without the privileges
/// that set file rights aside.
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
    /// Of the calling thread: all that are permitted take effect, or none does.
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
    /// Lays the trap; everything may be written unless it says otherwise.
    void (*lay)(const FaultRoom& room);
    /// Which of the four files stand afterwards: old data, old log, new data, new log.
    const char* remains;
};

fs::path OldData(const FaultRoom& room) {
    return room.OldFolder() / "Batch.mdf";
}
fs::path OldLog(const FaultRoom& room) {
    return room.OldFolder() / "log" / "Batch.ldf";
}
fs::path NewData(const FaultRoom& room) {
    return room.DataFolder() / "Tmp_data.mdf";
}
fs::path NewLog(const FaultRoom& room) {
    return room.DataFolder() / "Tmp_log.ldf";
}

/// From here on no file of this process grows to the size of `path`: a copy of it fails as on a full disk.
void LeaveNoRoomFor(const fs::path& path) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = fs::file_size(path) - 1;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

/// The log must be the larger file, so that there is room for the data alone.
void LeaveNoRoomForTheLog(const FaultRoom& room) {
    fs::resize_file(OldLog(room), 2 * fs::file_size(OldData(room)));
    LeaveNoRoomFor(OldLog(room));
}

void MakeReadOnlyFile(const fs::path& path) {
    std::fclose(std::fopen(path.c_str(), "w"));
    Close(path);
}

const FileFaultCase kCases[] = {
    {"full disk, copying the data", [](const FaultRoom& room) { LeaveNoRoomFor(OldData(room)); }, "xx--"},
    {"full disk, copying the log", LeaveNoRoomForTheLog, "xxx-"},
    {"no right to make the new data", [](const FaultRoom& room) { Close(room.DataFolder()); }, "xx--"},
    {"no right to write the new data", [](const FaultRoom& room) { MakeReadOnlyFile(NewData(room)); },
     "xx+-"},
    {"no right to write the new log", [](const FaultRoom& room) { MakeReadOnlyFile(NewLog(room)); }, "xxx+"},
    {"a folder in the place of the new data",
     [](const FaultRoom& room) { fs::create_directory(NewData(room)); }, "xx+-"},
    {"a folder in the place of the new log",
     [](const FaultRoom& room) { fs::create_directory(NewLog(room)); }, "xxx+"},
    {"no right to read the old data", [](const FaultRoom& room) { chmod(OldData(room).c_str(), 0); }, "xx--"},
    {"no right to read the old log", [](const FaultRoom& room) { chmod(OldLog(room).c_str(), 0); }, "xxx-"},
    {"no right to delete the old data", [](const FaultRoom& room) { Close(room.OldFolder()); }, "xxxx"},
    {"no right to delete the old log", [](const FaultRoom& room) { Close(OldLog(room).parent_path()); },
     "-xxx"},
    {"no data folder", [](const FaultRoom& room) { fs::remove(room.DataFolder()); }, "xx--"},
};

/// "x" for a file with the old one's content, "+" for what else stands in its place, "-" for nothing.
char Stands(const fs::path& path, const std::string& content) {
    if (!fs::exists(path)) {
        return '-';
    }
    return fs::is_regular_file(path) && platform::ReadWholeFile(path.string()) == content ? 'x' : '+';
}

/// Puts the database back by hand, from its old data file where it stands, and counts its rows.
std::string RescuedRows(const FaultRoom& room) {
    const fs::path data = fs::exists(OldData(room)) ? OldData(room) : NewData(room);
    const fs::path log = fs::exists(OldData(room)) ? OldLog(room) : NewLog(room);
    room.Ask("master", "sp_attach_db N'Rescue', N'" + data.string() + "', N'" + log.string() + "'");
    return room.AskOne("Rescue", "SELECT COUNT(*) FROM Things");
}

void Prepare(const FaultRoom& room) {
    // The log makes this folder; without privileges the operation may not.
    fs::create_directory(fs::path(platform::ExecutableFolder()) / "Data");
    fs::create_directory(OldLog(room).parent_path());
    room.Ask("master", "CREATE DATABASE Batch ON (NAME=Batch_dat, FILENAME='" + OldData(room).string() +
                           "') LOG ON (NAME=Batch_lg, FILENAME='" + OldLog(room).string() + "')");
    room.Ask("Batch", "CREATE TABLE Things (a int) INSERT Things VALUES (1) INSERT Things VALUES (2)");
    for (const fs::path& folder : {room.Folder(), room.DataFolder(), room.OldFolder(),
                                   OldLog(room).parent_path(), room.Folder() / "Log"}) {
        Open(folder);
    }
}

void Try(const FileFaultCase& one) {
    FaultRoom room;
    Prepare(room);
    one.lay(room);
    CUpgradeDbMgr manager;
    room.Fill(manager);
    {
        const WithoutPrivileges as_nobody;
        EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    }
    EXPECT_EQ(room.LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_EQ(room.Proxy().Events().back(), "sp_detach_db N'Tmp', N'true'"); // nothing attaches it again
    EXPECT_FALSE(room.HasDatabase("Batch") || room.HasDatabase("Tmp"));
    for (const fs::path& path : {OldData(room), OldLog(room), OldLog(room).parent_path(), room.OldFolder(),
                                 room.DataFolder(), NewData(room), NewLog(room)}) {
        if (fs::exists(path) && !fs::is_other(path)) {
            Open(path);
        }
    }
    std::string remains;
    // The old files that are gone were copied before: their copies hold what they held.
    const std::string data =
        platform::ReadWholeFile((fs::exists(OldData(room)) ? OldData(room) : NewData(room)).string());
    const std::string log =
        platform::ReadWholeFile((fs::exists(OldLog(room)) ? OldLog(room) : NewLog(room)).string());
    remains += Stands(OldData(room), data);
    remains += Stands(OldLog(room), log);
    remains += Stands(NewData(room), data);
    remains += Stands(NewLog(room), log);
    EXPECT_EQ(remains, one.remains);
    EXPECT_EQ(RescuedRows(room), "2");
}

TEST(RenameDatabaseFileFaults, LeaveTheDatabaseDetachedWithOneWholeSetOfFiles) {
    std::vector<support::Case> cases;
    for (const FileFaultCase& one : kCases) {
        cases.push_back({one.name, [&one] { Try(one); }});
    }
    support::RunInChildren(cases, std::size(kCases));
    std::printf("RenameDatabase: %zu faults tried at its four file operations\n", cases.size());
}

/// The copy of a file to itself fails, and the file stays what it was.
void TryOwnPath(bool data) {
    FaultRoom room;
    const fs::path data_path = data ? NewData(room) : OldData(room);
    const fs::path log_path = data ? room.OldFolder() / "Batch.ldf" : NewLog(room);
    room.Ask("master", "CREATE DATABASE Batch ON (NAME=Batch_dat, FILENAME='" + data_path.string() +
                           "') LOG ON (NAME=Batch_lg, FILENAME='" + log_path.string() + "')");
    room.Ask("Batch", "CREATE TABLE Things (a int) INSERT Things VALUES (1)");
    CUpgradeDbMgr manager;
    room.Fill(manager);
    EXPECT_FALSE(manager.RenameDatabase("Batch", "Tmp"));
    EXPECT_EQ(room.LogLines(), Lines{"CUpgradeDbMgr::RenameDatabase('Batch', 'Tmp')"});
    EXPECT_FALSE(room.HasDatabase("Batch") || room.HasDatabase("Tmp"));
    room.Ask("master", "sp_attach_db N'Rescue', N'" + data_path.string() + "', N'" + log_path.string() + "'");
    EXPECT_EQ(room.AskOne("Rescue", "SELECT COUNT(*) FROM Things"), "1");
}

TEST(RenameDatabaseFileFaults, AFileThatHasItsNewPathAlreadyIsNotCutToNothing) {
    support::RunInChildren({{"data", [] { TryOwnPath(true); }}, {"log", [] { TryOwnPath(false); }}}, 2);
}

} // namespace
} // namespace kv

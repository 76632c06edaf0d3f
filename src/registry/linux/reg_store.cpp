// Finds, reads, caches, locks and replaces .reg files.
#include "registry/linux/reg_store.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/file_replacement.h"
#include "platform/system_text.h"
#include "platform/terminal.h"
#include "registry/linux/config_folder.h"
#include "text/text.h"

namespace registry {
namespace {

constexpr mode_t kFolderMode = 0700; // the registry contains passwords in clear text
constexpr mode_t kFileMode = 0600;

/// Returns the registry's number for an errno; `otherwise` for an errno without a number of its own.
std::int32_t NumberOf(int system_error, std::int32_t otherwise) {
    switch (system_error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return error::kAccessDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return error::kDiskFull;
    default:
        return otherwise;
    }
}

/// A step failed: the registry's error number and the reason as text.
struct StepFailure {
    std::int32_t number;
    std::string reason;
};

/// Runs a step. A SystemFault in it becomes a StepFailure with the number that NumberOf gives.
template <class Step>
auto InStep(std::int32_t otherwise, Step&& step) {
    try {
        return step();
    } catch (const platform::SystemFault& fault) {
        throw StepFailure{NumberOf(fault.error, otherwise), std::strerror(fault.error)};
    }
}

std::string FolderOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

void MakeFolders(const std::string& folder) {
    struct stat info {};
    if (::stat(folder.c_str(), &info) == 0) {
        return;
    }
    const std::string parent = FolderOf(folder);
    if (parent != folder) {
        MakeFolders(parent);
    }
    if (::mkdir(folder.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        platform::ThrowSystemFault();
    }
}

/// Opens the file for reading. Returns nothing if there is no such file. Refuses everything but a plain file,
/// and does not wait for a pipe.
std::optional<platform::Descriptor> OpenIfThere(const std::string& path) {
    try {
        platform::Descriptor file(path, O_RDONLY | O_NONBLOCK);
        if (!S_ISREG(file.Status().st_mode)) {
            throw StepFailure{error::kCantOpen, "it is not a plain file"};
        }
        return file;
    } catch (const platform::SystemFault& fault) {
        if (fault.error == ENOENT) {
            return std::nullopt;
        }
        throw;
    }
}

std::optional<platform::Descriptor> OpenRegistry(const std::string& path) {
    return InStep(error::kCantOpen, [&] { return OpenIfThere(path); });
}

std::string ReadRegistry(const platform::Descriptor& file) {
    return InStep(error::kCantRead, [&] { return file.ReadAll(); });
}

/// Identifies the state of a file: a file whose stamp differs has changed.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::chrono::nanoseconds written{};
    std::chrono::nanoseconds changed{};

    friend bool operator==(const Stamp&, const Stamp&) = default;
};

std::chrono::nanoseconds SinceEpoch(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Stamp StampOf(const struct stat& info) {
    return {info.st_dev, info.st_ino, info.st_size, SinceEpoch(info.st_mtim), SinceEpoch(info.st_ctim)};
}

/// True if the file's last change is so old that a further change would change its stamp. File systems count
/// time in steps, so a file that has just been changed may change again without a new time.
bool IsSettled(const Stamp& stamp) {
    constexpr std::chrono::seconds kLongestStep(2);
    return std::chrono::system_clock::now().time_since_epoch() - stamp.changed > kLongestStep;
}

/// The files that this process has read, by path.
class LoadedRegistries {
  public:
    LoadedRegistry Load(const std::string& path) {
        try {
            const auto file = OpenRegistry(path);
            return file ? LoadFrom(path, *file) : Missing(path);
        } catch (const StepFailure& failure) {
            return {Report(path, failure.number, failure.reason, {}), nullptr, {}};
        }
    }
    /// Makes the next Load of this file read it again.
    void Forget(const std::string& path) { loaded_.erase(path); }

    /// Writes to the terminal that a file cannot be used, once for each file and reason. The log is not used,
    /// since its folder is a setting of the registry. `place` is the position of the error in the file, such
    /// as ", line 3"; it may be empty. Returns the error for the caller.
    RegistryError Report(const std::string& path, std::int32_t number, const std::string& reason,
                         const std::string& place) {
        const std::string shown = platform::FromSystemText(path);
        const std::string line = "registry file " + shown + place + ": " + reason + "\n";
        if (reported_.insert(line).second) {
            platform::WriteToTerminal(platform::ExecutableName() + ": " + line);
        }
        return {number, place.empty() ? shown : shown + place + ": " + reason};
    }
    RegistryError Report(const std::string& path, const RegDamage& damage) {
        return Report(path, error::kBadDb, damage.what(), ", line " + std::to_string(damage.Line()));
    }

  private:
    struct Entry {
        Stamp stamp;
        bool settled = false; ///< IsSettled was true when the file was read
        LoadedRegistry registry;
    };

    LoadedRegistry LoadFrom(const std::string& path, const platform::Descriptor& file) {
        const Stamp stamp = StampOf(InStep(error::kCantRead, [&] { return file.Status(); }));
        const auto known = loaded_.find(path);
        if (known != loaded_.end() && known->second.settled && known->second.stamp == stamp) {
            return known->second.registry;
        }
        Entry entry{stamp, IsSettled(stamp), {}};
        try {
            entry.registry.file = std::make_shared<const RegFile>(ReadRegistry(file));
            entry.registry.missing_key = error::kFileNotFound;
        } catch (const RegDamage& damage) {
            entry.registry.error = Report(path, damage);
        }
        return loaded_.insert_or_assign(path, std::move(entry)).first->second.registry;
    }

    LoadedRegistry Missing(const std::string& path) {
        const char* const reason = path.empty() ? "the user has no home folder" : "it does not exist";
        return {{}, std::make_shared<const RegFile>(), Report(path, error::kFileNotFound, reason, {})};
    }

    std::map<std::string, Entry> loaded_;
    std::set<std::string> reported_;
};

LoadedRegistries& TheRegistries() {
    static LoadedRegistries registries;
    return registries;
}

/// Waits until no other process has the file's lock, and takes the lock until the result is destroyed.
platform::Descriptor TakeLock(const std::string& path) {
    platform::Descriptor lock(path + ".lock", O_RDWR | O_CREAT, kFileMode);
    while (::flock(lock.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            platform::ThrowSystemFault();
        }
    }
    return lock;
}

void Replace(const std::string& path, const std::string& bytes) {
    platform::FileReplacement replacement(path, kFileMode);
    replacement.CopyOldRights();
    replacement.File().Write(bytes);
    replacement.Commit(platform::FileReplacement::Durability::Synced);
}

/// Returns the file's content after the change; nothing if the change changes nothing. Throws RegDamage for a
/// damaged file and StepFailure for a change that the file's format or encoding cannot represent.
std::optional<std::string> Changed(const std::string& path, const std::function<void(RegFile&)>& change) {
    const auto open = OpenRegistry(path);
    RegFile file = open ? RegFile(ReadRegistry(*open)) : RegFile();
    const std::string before = file.Bytes();
    try {
        change(file);
        std::string after = file.Bytes();
        return after == before ? std::nullopt : std::optional(std::move(after));
    } catch (const RegDamage& damage) {
        throw StepFailure{error::kInvalidParameter, damage.what()};
    }
}

void Change(const std::string& named, const std::function<void(RegFile&)>& change) {
    const auto write = [](auto&& step) { return InStep(error::kCantWrite, step); };
    write([&] { MakeFolders(FolderOf(named)); });
    const std::string path = platform::ResolveLinks(named); // so that two names of one file have one lock
    const platform::Descriptor lock = write([&] { return TakeLock(path); });
    if (const auto bytes = Changed(path, change)) {
        write([&] { Replace(path, *bytes); });
    }
}

} // namespace

std::string LocalRegistryPath() {
    const char* named = std::getenv("KVLSQLDBMGR_REGISTRY");
    if (named != nullptr && named[0] != '\0') {
        return named;
    }
    const std::string folder = ConfigFolder();
    return folder.empty() ? folder : folder + "/KVLSQLDbMgr/registry.reg";
}

std::optional<std::string> RemoteRegistryPath(const std::string& computer) {
    const auto begin = computer.find_first_not_of('\\');
    if (begin == std::string::npos) {
        return std::nullopt;
    }
    const std::string wanted = computer.substr(begin) + ".reg";
    const std::string folder = FolderOf(LocalRegistryPath()) + "/computers";
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    if (!stream) {
        return std::nullopt;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        if (text::SameIgnoringCase(platform::FromSystemText(entry->d_name), wanted)) {
            return folder + "/" + entry->d_name;
        }
    }
    return std::nullopt;
}

LoadedRegistry LoadRegistry(const std::string& path) {
    return TheRegistries().Load(path);
}

RegistryError ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change) {
    TheRegistries().Forget(path);
    try {
        Change(path, change);
        return error::kSuccess;
    } catch (const RegDamage& damage) {
        return TheRegistries().Report(path, damage);
    } catch (const StepFailure& failure) {
        return {failure.number, platform::FromSystemText(path)};
    }
}

} // namespace registry

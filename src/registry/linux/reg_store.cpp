#include "registry/linux/reg_store.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system_text.h"
#include "registry/linux/config_folder.h"
#include "registry/registry.h"

namespace platform {
namespace {

constexpr mode_t kFolderMode = 0700; // passwords lie in the registry in the clear
constexpr mode_t kFileMode = 0600;

/// A system call on a file failed.
struct SystemFault {
    std::int32_t error; ///< the registry's
    int system_error = 0;
};

struct Trouble {
    std::int32_t error = registry_error::kSuccess;
    std::string text;
};

Trouble trouble;

std::int32_t Report(std::int32_t error, std::string text) {
    trouble = {error, std::move(text)};
    return error;
}

/// A damaged file takes the log's own folder with it, so it is told where someone may see it, once for each
/// file and fault.
std::int32_t ReportDamage(const std::string& path, const RegDamage& damage) {
    static std::set<std::string> told;
    const std::string text = path + ", line " + std::to_string(damage.Line()) + ": " + damage.what();
    if (told.insert(text).second) {
        std::fprintf(stderr, "Damaged registry file %s\n", text.c_str());
    }
    return Report(registry_error::kBadDb, FromSystemText(text));
}

std::int32_t ErrorOf(int system_error, std::int32_t otherwise) {
    switch (system_error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return registry_error::kAccessDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return registry_error::kDiskFull;
    default:
        return otherwise;
    }
}

[[noreturn]] void Fail(std::int32_t otherwise) {
    throw SystemFault{ErrorOf(errno, otherwise), errno};
}

class Descriptor {
  public:
    Descriptor(const std::string& path, int flags, std::int32_t otherwise)
        : fd_(::open(path.c_str(), flags | O_CLOEXEC, kFileMode)) {
        if (fd_ < 0) {
            Fail(otherwise);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }

    int Get() const { return fd_; }

    /// A full disk may show only here.
    void Close() {
        if (::close(std::exchange(fd_, -1)) != 0) {
            Fail(registry_error::kCantWrite);
        }
    }

  private:
    int fd_;
};

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
        Fail(registry_error::kCantWrite);
    }
}

std::string ReadAll(const Descriptor& file) {
    constexpr std::size_t kPiece = std::size_t{1} << 16U;
    std::string content;
    for (;;) {
        const std::size_t filled = content.size();
        content.resize(filled + kPiece);
        const ssize_t count = ::read(file.Get(), content.data() + filled, kPiece);
        if (count < 0 && errno != EINTR) {
            Fail(registry_error::kCantRead);
        }
        content.resize(filled + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0) {
            return content;
        }
    }
}

/// Nothing if there is no such file. What is no plain file is not waited for.
std::optional<std::string> ReadIfThere(const std::string& path) {
    try {
        const Descriptor file(path, O_RDONLY | O_NONBLOCK, registry_error::kCantOpen);
        struct stat info {};
        if (::fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode)) {
            throw SystemFault{registry_error::kCantOpen};
        }
        return ReadAll(file);
    } catch (const SystemFault& fault) {
        if (fault.system_error == ENOENT) {
            return std::nullopt;
        }
        throw;
    }
}

/// Throws SystemFault and RegDamage.
RegFile Load(const std::string& path) {
    const auto bytes = ReadIfThere(path);
    return bytes ? RegFile(*bytes) : RegFile();
}

void WriteAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.Get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            Fail(registry_error::kCantWrite);
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

/// The new file that is written beside the old one; gone again unless it was put in its place.
class NewFile {
  public:
    explicit NewFile(const std::string& target)
        : target_(target),
          path_(target + ".new"),
          file_(path_, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, registry_error::kCantWrite) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!placed_) {
            ::unlink(path_.c_str());
        }
    }

    void Write(std::string_view bytes) {
        TakeOwnerAndMode();
        WriteAll(file_, bytes);
        if (::fsync(file_.Get()) != 0) {
            Fail(registry_error::kCantWrite);
        }
        file_.Close();
    }

    void Place() {
        if (::rename(path_.c_str(), target_.c_str()) != 0) {
            Fail(registry_error::kCantWrite);
        }
        placed_ = true;
        // The new file is in place whether or not this makes it last through a power cut.
        const Descriptor folder(FolderOf(target_), O_RDONLY | O_DIRECTORY, registry_error::kCantWrite);
        ::fsync(folder.Get());
    }

  private:
    void TakeOwnerAndMode() {
        struct stat old {};
        if (::stat(target_.c_str(), &old) != 0) {
            return;
        }
        constexpr mode_t kPermissions = 07777;
        const bool owned = ::fchown(file_.Get(), old.st_uid, old.st_gid) == 0;
        // Another's group must not get what was meant for the old one.
        const mode_t mode = owned ? old.st_mode & kPermissions : old.st_mode & S_IRWXU;
        if (::fchmod(file_.Get(), mode) != 0) {
            Fail(registry_error::kCantWrite);
        }
    }

    std::string target_;
    std::string path_;
    Descriptor file_;
    bool placed_ = false;
};

/// Renaming over a symbolic link would leave the file that it points to as it was.
std::string Resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

void Change(const std::string& named, const std::function<void(RegFile&)>& change) {
    MakeFolders(FolderOf(named));
    const std::string path = Resolved(named);
    const Descriptor lock(path + ".lock", O_RDWR | O_CREAT, registry_error::kCantWrite);
    while (::flock(lock.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            Fail(registry_error::kCantWrite);
        }
    }
    RegFile file = Load(path);
    // A rename asks for rights on the folder only, and the file may be closed to the user.
    if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT) {
        Fail(registry_error::kCantWrite);
    }
    const std::string before = file.Bytes();
    try {
        change(file);
    } catch (const RegDamage&) {
        throw SystemFault{registry_error::kInvalidParameter};
    }
    const std::string after = file.Bytes();
    if (after == before) {
        return;
    }
    NewFile replacement(path);
    replacement.Write(after);
    replacement.Place();
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
    const std::u16string wanted = FoldCase(FromCodePage1252(computer.substr(begin) + ".reg"));
    const std::string folder = FolderOf(LocalRegistryPath()) + "/computers";
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    if (!stream) {
        return std::nullopt;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        if (FoldCase(FromCodePage1252(FromSystemText(entry->d_name))) == wanted) {
            return folder + "/" + entry->d_name;
        }
    }
    return std::nullopt;
}

std::int32_t LoadRegistry(const std::string& path, RegFile& file) {
    ForgetRegistryTrouble();
    try {
        file = Load(path);
        return registry_error::kSuccess;
    } catch (const RegDamage& damage) {
        return ReportDamage(path, damage);
    } catch (const SystemFault& fault) {
        return Report(fault.error, FromSystemText(path));
    }
}

std::int32_t ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change) {
    ForgetRegistryTrouble();
    try {
        Change(path, change);
        return registry_error::kSuccess;
    } catch (const RegDamage& damage) {
        return ReportDamage(path, damage);
    } catch (const SystemFault& fault) {
        return Report(fault.error, FromSystemText(path));
    }
}

std::string RegistryTrouble(std::int32_t error) {
    return trouble.error == error ? trouble.text : std::string{};
}

void ForgetRegistryTrouble() {
    trouble = {};
}

} // namespace platform

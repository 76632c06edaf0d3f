// The file services on Linux. A backslash in a path separates folders, as the program writes paths.
#include "platform/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/descriptor.h"
#include "platform/linux/file_replacement.h"
#include "platform/system_text.h"

namespace platform {
namespace {

constexpr mode_t kOwnerOnly = 0600;

std::string NativePath(const std::string& path) {
    std::string native = ToSystemText(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

/// ENOENT is reported for a missing file and for a missing folder of its path; callers distinguish the two.
bool ParentExists(const std::string& native) {
    const auto slash = native.find_last_of('/');
    if (slash == std::string::npos || slash == 0) {
        return true;
    }
    struct stat info {};
    return ::stat(native.substr(0, slash).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

FileFault FaultOf(int error, const std::string& native) {
    switch (error) {
    case ENOENT:
        return ParentExists(native) ? FileFault::NotFound : FileFault::PathNotFound;
    case ENOTDIR:
        return FileFault::PathNotFound;
    case EACCES:
    case EPERM:
    case EISDIR:
    case EROFS:
        return FileFault::AccessDenied;
    case ETXTBSY:
    case EBUSY:
        return FileFault::InUse;
    case EEXIST:
        return FileFault::AlreadyExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return FileFault::DiskFull;
    default:
        return FileFault::Other;
    }
}

[[noreturn]] void Fail(const std::string& path, int error) {
    throw FileError(FaultOf(error, NativePath(path)), path, error);
}

/// Runs `steps`. A SystemFault in them becomes a FileError about `path`.
template <class Steps>
auto WithErrorsAbout(const std::string& path, Steps&& steps) {
    try {
        return steps();
    } catch (const SystemFault& fault) {
        Fail(path, fault.error);
    }
}

std::string ExecutablePath() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) {
        Fail("/proc/self/exe", errno);
    }
    return {buffer.data(), static_cast<std::size_t>(length)};
}

/// Locks the file, for as long as the descriptor is open, against other processes that append in the same
/// way. If the file system cannot lock, the file is appended to without a lock.
void LockWhileOpen(const Descriptor& file) {
    while (::flock(file.Get(), LOCK_EX) != 0 && errno == EINTR) {
    }
}

bool IsKind(const std::string& native, mode_t kind) {
    struct stat info {};
    return ::stat(native.c_str(), &info) == 0 && (info.st_mode & S_IFMT) == kind;
}

} // namespace

std::string ExecutableFolder() {
    const std::string path = ExecutablePath();
    return FromSystemText(path.substr(0, path.find_last_of('/')));
}

std::string ExecutableName() {
    const std::string path = ExecutablePath();
    const std::string name = FromSystemText(path.substr(path.find_last_of('/') + 1));
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

bool FileExists(const std::string& path) {
    return IsKind(NativePath(path), S_IFREG);
}

bool FolderExists(const std::string& path) {
    return IsKind(NativePath(path), S_IFDIR);
}

bool FolderHoldsFile(const std::string& folder) {
    const std::string native = NativePath(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(native.c_str()), &::closedir);
    if (!stream) {
        return false;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        if (IsKind(native + "/" + entry->d_name, S_IFREG)) {
            return true;
        }
    }
    return false;
}

void CreateFolder(const std::string& path) {
    constexpr mode_t kMode = 0777;
    if (::mkdir(NativePath(path).c_str(), kMode) != 0) {
        // Here ENOENT can only mean a missing parent folder.
        if (errno == ENOENT) {
            throw FileError(FileFault::PathNotFound, path, ENOENT);
        }
        Fail(path, errno);
    }
}

void CopyFileOver(const std::string& from, const std::string& to) {
    const Descriptor source = WithErrorsAbout(from, [&] { return Descriptor(NativePath(from), O_RDONLY); });
    const struct stat rights = WithErrorsAbout(from, [&] { return source.Status(); });
    struct stat old {};
    if (::stat(NativePath(to).c_str(), &old) == 0 && rights.st_dev == old.st_dev &&
        rights.st_ino == old.st_ino) {
        throw FileError(FileFault::InUse, to, EBUSY); // copying a file to itself is an error of the caller
    }
    WithErrorsAbout(to, [&] {
        FileReplacement copy(NativePath(to), kOwnerOnly); // SetRights below gives it the source's rights
        std::string buffer(std::size_t{1} << 20U, '\0');
        while (const std::size_t count =
                   WithErrorsAbout(from, [&] { return source.Read(buffer.data(), buffer.size()); })) {
            copy.File().Write({buffer.data(), count});
        }
        copy.SetRights(rights);
        copy.Commit(FileReplacement::Durability::Synced); // the caller may delete the source next
    });
}

void DeleteFileAt(const std::string& path) {
    if (::unlink(NativePath(path).c_str()) != 0) {
        Fail(path, errno);
    }
}

std::string ReadWholeFile(const std::string& path) {
    return WithErrorsAbout(path, [&] { return Descriptor(NativePath(path), O_RDONLY).ReadAll(); });
}

void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    WithErrorsAbout(path, [&] {
        Descriptor file(NativePath(path), O_WRONLY | O_CREAT | O_TRUNC);
        file.Write(content);
        file.Write(tail);
        file.Close();
    });
}

void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    WithErrorsAbout(path, [&] {
        FileReplacement file(NativePath(path), kOwnerOnly);
        file.File().Write(content);
        file.File().Write(tail);
        file.CopyOldRights();
        file.Commit(FileReplacement::Durability::Unsynced);
    });
}

void MakePrivateFile(const std::string& path) {
    const std::string native = NativePath(path);
    // A link, a device or a pipe is kept.
    struct stat old {};
    if (::lstat(native.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
        ::unlink(native.c_str()); // if this fails, the user may still be allowed to write the file
    }
    WithErrorsAbout(path, [&] { Descriptor(native, O_WRONLY | O_CREAT | O_TRUNC, kOwnerOnly).Close(); });
}

void AppendToFile(const std::string& path, std::string_view content) {
    WithErrorsAbout(path, [&] {
        const Descriptor file(NativePath(path), O_WRONLY | O_CREAT | O_APPEND);
        LockWhileOpen(file);
        const struct stat before = file.Status();
        try {
            file.Write(content);
        } catch (const SystemFault&) {
            // The part that was written is removed; otherwise the next line would be joined to it.
            if (S_ISREG(before.st_mode) && ::ftruncate(file.Get(), before.st_size) != 0) {
                ThrowSystemFault();
            }
            throw;
        }
    });
}

} // namespace platform

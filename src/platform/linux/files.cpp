// The file services on Linux. A backslash in a path separates folders, as the program writes it.
#include "platform/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system_text.h"

namespace platform {
namespace {

std::string NativePath(const std::string& path) {
    std::string native = ToSystemText(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

/// ENOENT does not tell a missing file from a missing folder on the way to it; callers do.
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

class Descriptor {
  public:
    Descriptor(const std::string& path, int flags) : path_(path) {
        constexpr mode_t kMode = 0666; // the user's mask decides, as for any file of the user's
        do {
            fd_ = ::open(NativePath(path).c_str(), flags | O_CLOEXEC, kMode);
        } while (fd_ < 0 && errno == EINTR);
        if (fd_ < 0) {
            Fail(path, errno);
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

    void Write(std::string_view content) const {
        while (!content.empty()) {
            const ssize_t written = ::write(fd_, content.data(), content.size());
            if (written < 0) {
                if (errno == EINTR) {
                    continue;
                }
                Fail(path_, errno);
            }
            content.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    /// A full disk may show only here.
    void Close() {
        if (::close(std::exchange(fd_, -1)) != 0) {
            Fail(path_, errno);
        }
    }

  private:
    std::string path_;
    int fd_ = -1;
};

std::string ExecutablePath() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) {
        Fail("/proc/self/exe", errno);
    }
    return {buffer.data(), static_cast<std::size_t>(length)};
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
        // A missing parent and not a missing file: there is nothing else that could be missing here.
        if (errno == ENOENT) {
            throw FileError(FileFault::PathNotFound, path, ENOENT);
        }
        Fail(path, errno);
    }
}

void CopyFileOver(const std::string& from, const std::string& to) {
    const Descriptor source(from, O_RDONLY);
    struct stat source_info {};
    struct stat target_info {};
    if (::fstat(source.Get(), &source_info) == 0 && ::stat(NativePath(to).c_str(), &target_info) == 0 &&
        source_info.st_dev == target_info.st_dev && source_info.st_ino == target_info.st_ino) {
        throw FileError(FileFault::InUse, to, EBUSY); // a copy to itself would cut the file to nothing
    }
    Descriptor target(to, O_WRONLY | O_CREAT | O_TRUNC);
    std::string buffer(std::size_t{1} << 20U, '\0');
    for (;;) {
        const ssize_t count = ::read(source.Get(), buffer.data(), buffer.size());
        if (count == 0) {
            break;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            Fail(from, errno);
        }
        target.Write({buffer.data(), static_cast<std::size_t>(count)});
    }
    target.Close();
}

void DeleteFileAt(const std::string& path) {
    if (::unlink(NativePath(path).c_str()) != 0) {
        Fail(path, errno);
    }
}

std::string ReadWholeFile(const std::string& path) {
    const Descriptor file(path, O_RDONLY);
    struct stat info {};
    if (::fstat(file.Get(), &info) != 0) {
        Fail(path, errno);
    }
    // The size is a hint: a file that grows, or one without a size, is read to its end all the same. One byte
    // more than the size lets the end be seen without growing, which would hold a large file twice.
    std::string content(static_cast<std::size_t>(std::max<off_t>(info.st_size, 0)) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        if (filled == content.size()) {
            content.resize(content.size() * 2);
        }
        const ssize_t count = ::read(file.Get(), content.data() + filled, content.size() - filled);
        if (count == 0) {
            break;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            Fail(path, errno);
        }
        filled += static_cast<std::size_t>(count);
    }
    content.resize(filled);
    return content;
}

void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC);
    file.Write(content);
    file.Write(tail);
    file.Close();
}

void AppendToFile(const std::string& path, std::string_view content) {
    Descriptor file(path, O_WRONLY | O_CREAT | O_APPEND);
    file.Write(content);
    file.Close();
}

} // namespace platform

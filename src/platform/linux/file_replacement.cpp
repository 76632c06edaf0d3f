// Writes the new file, copies rights to it and renames it.
#include "platform/linux/file_replacement.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr mode_t kPermissions = 07777;

/// Returns `path`. Throws unless it names a writable plain file or nothing. A rename needs rights on the
/// folder only, so the file's own rights are checked here.
const std::string& CheckReplaceable(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return path;
    }
    if (S_ISDIR(status.st_mode)) {
        throw SystemFault{EISDIR};
    }
    // A rename would replace a device by a file, for all users of the computer.
    if (!S_ISREG(status.st_mode)) {
        throw SystemFault{EINVAL};
    }
    if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        ThrowSystemFault();
    }
    return path;
}

/// Returns a path beside `target` that no other process uses. Deletes a file that an earlier process has left
/// there.
std::string PathBeside(const std::string& target) {
    std::string path = target + "." + std::to_string(::getpid()) + ".new";
    ::unlink(path.c_str());
    return path;
}

} // namespace

std::string ResolveLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

// Renaming over a symbolic link would leave the file that it points to as it was: the link is followed first.
FileReplacement::FileReplacement(const std::string& path, mode_t mode)
    : target_(ResolveLinks(path)),
      path_(PathBeside(CheckReplaceable(target_))),
      file_(path_, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode) {}

FileReplacement::~FileReplacement() {
    if (!committed_) {
        ::unlink(path_.c_str());
    }
}

void FileReplacement::SetRights(const struct stat& rights) const {
    mode_t mode = rights.st_mode & kPermissions;
    const bool owned = ::fchown(file_.Get(), rights.st_uid, rights.st_gid) == 0;
    if (!owned && ::fchown(file_.Get(), static_cast<uid_t>(-1), rights.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    if (::fchmod(file_.Get(), mode) != 0) {
        ThrowSystemFault();
    }
}

void FileReplacement::CopyOldRights() const {
    struct stat rights {};
    if (::stat(target_.c_str(), &rights) == 0) {
        SetRights(rights);
    }
}

void FileReplacement::Commit(Durability durability) {
    if (durability == Durability::Synced && ::fsync(file_.Get()) != 0) {
        ThrowSystemFault();
    }
    file_.Close();
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
        ThrowSystemFault();
    }
    committed_ = true;
    if (durability == Durability::Synced) {
        // Errors are ignored here: the new file has replaced the old one already.
        const auto slash = target_.find_last_of('/');
        const std::string folder = slash == std::string::npos ? "." : target_.substr(0, slash + 1);
        const Descriptor open_folder(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ::fsync(open_folder.Get());
    }
}

} // namespace platform

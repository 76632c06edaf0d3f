// Replaces a file in one step: the new file is written beside it and renamed when it is complete. At any time
// the path holds the old content or the new, even if the program is killed.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/linux/descriptor.h"

namespace platform {

/// The path of the file itself, symbolic links followed; `path` as it is if there is no such file.
std::string Resolved(const std::string& path);

class FileReplacement {
  public:
    /// `mode` is that of the new file, limited by the user's mask. A symbolic link stays; the file that it
    /// points to is replaced. Throws EISDIR for a folder, EINVAL for a device or a pipe, and EACCES for a
    /// file that the user may not write.
    FileReplacement(const std::string& path, mode_t mode);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Deletes the new file unless Place has succeeded.
    ~FileReplacement();

    const Descriptor& File() const { return file_; }

    /// Gives the new file this owner, group and mode as far as the user is allowed to. If the group cannot be
    /// set, the group gets no rights.
    void TakeRights(const struct stat& rights) const;
    /// The same with the owner, group and mode of the file that is replaced, if there is one.
    void KeepRights() const;

    enum class Durability : bool { AsTheSystemLikes, OnTheDisk };
    /// Renames the new file to the path. With OnTheDisk it is there even after a power failure.
    void Place(Durability durability);

  private:
    std::string target_;
    std::string path_;
    Descriptor file_;
    bool placed_ = false;
};

} // namespace platform

// Replaces a file in one step: a new file is written beside the old one and renamed to its path when it is
// complete. At any time the path has the old content or the new, even if the program is killed. Failures are
// thrown as SystemFault.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/linux/descriptor.h"

namespace platform {

/// Follows symbolic links and returns the path of the file itself; `path` as it is if there is no such file.
std::string ResolveLinks(const std::string& path);

/// A new file that is to replace the file at a path.
class FileReplacement {
  public:
    /// Makes the new file, with `mode` limited by the user's mask. If `path` is a symbolic link, the link
    /// stays and the file that it points to is replaced. Throws EISDIR for a folder, EINVAL for a device or a
    /// pipe, and EACCES for a file that the user may not write.
    FileReplacement(const std::string& path, mode_t mode);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Deletes the new file unless Commit has succeeded.
    ~FileReplacement();

    /// The new file, open for writing. It is open until Commit is called.
    const Descriptor& File() const { return file_; }

    /// Gives the new file this owner, group and mode as far as the user is allowed to. If the group cannot be
    /// set, the group gets no rights.
    void SetRights(const struct stat& rights) const;
    /// Does the same with the owner, group and mode of the file that is replaced, if there is one.
    void CopyOldRights() const;

    enum class Durability : bool {
        Unsynced, ///< the system writes the file to the disk when it likes
        Synced,   ///< the file is on the disk when Commit returns, even if the power fails after that
    };
    /// Closes the new file and renames it to the path.
    void Commit(Durability durability);

  private:
    std::string target_; ///< the file that is replaced
    std::string path_;   ///< the new file until it is renamed
    Descriptor file_;
    bool committed_ = false;
};

} // namespace platform

// Replacing a file in one step: the new one is written beside it and takes its place when it is whole.
// Whoever opens the path finds the old content or the new, whatever ends the program in between.
#pragma once

#include <string>

#include <sys/stat.h>

#include "platform/linux/descriptor.h"

namespace platform {

class FileReplacement {
  public:
    /// `mode` is that of the new file, limited by the user's mask. A symbolic link stays, and what it points
    /// to is replaced. Throws EISDIR for a folder, EINVAL for a device or a pipe, and EACCES for a file that
    /// the user may not write.
    FileReplacement(const std::string& path, mode_t mode);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// The new file goes away unless it was put in its place.
    ~FileReplacement();

    const Descriptor& File() const { return file_; }

    /// Gives the new file this owner, group and mode as far as the user may. Bits that would open it to a
    /// group that was not meant are left out.
    void TakeRights(const struct stat& rights) const;
    /// The same, from the file that is replaced, if there is one.
    void KeepRights() const;

    enum class Durability : bool { AsTheSystemLikes, OnTheDisk };
    /// Puts the new file in its place. With OnTheDisk it is there after a power cut too.
    void Place(Durability durability);

  private:
    std::string target_;
    std::string path_;
    Descriptor file_;
    bool placed_ = false;
};

} // namespace platform

// Owns a file descriptor and makes the system's calls with it. Paths are in the system's encoding. Failures
// are thrown as SystemFault.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <sys/stat.h>

namespace platform {

/// A system call failed.
struct SystemFault {
    int error; ///< errno
};

/// Throws SystemFault with the current errno.
[[noreturn]] void ThrowSystemFault();

/// An open file. The destructor closes it.
class Descriptor {
  public:
    /// Opens the file. `flags` are those of open(); O_CLOEXEC is added. A new file gets `mode`, limited by
    /// the user's mask.
    Descriptor(const std::string& path, int flags, mode_t mode = 0666);
    /// Takes ownership of the descriptor; a negative number means that there is none.
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    int Get() const { return descriptor_; }

    /// Returns the result of fstat().
    struct stat Status() const;
    /// Reads up to `size` bytes. Returns their number, which is 0 at the end of the file.
    std::size_t Read(char* to, std::size_t size) const;
    /// Reads up to the end of the file, even if the file grows meanwhile or reports no size.
    std::string ReadAll() const;
    /// Writes the whole content or throws. A full disk or a limit of the user does not end the program by a
    /// signal.
    void Write(std::string_view content) const;
    /// Closes the file. Some systems report a failed write only here; the destructor would ignore that.
    void Close();

  private:
    int descriptor_ = -1;
};

} // namespace platform

// The owner of a file descriptor. Paths are in the system's encoding; failures are thrown as SystemFault.
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

[[noreturn]] void ThrowSystemFault();

class Descriptor {
  public:
    /// Opens the file. `flags` are those of open(); `mode` is that of a new file, limited by the user's mask.
    Descriptor(const std::string& path, int flags, mode_t mode = 0666);
    /// Takes ownership of the descriptor.
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

    struct stat Status() const;
    /// Up to `size` bytes; 0 at the end.
    std::size_t Read(char* to, std::size_t size) const;
    /// The content up to the end of the file, even if the file grows meanwhile or reports no size.
    std::string ReadAll() const;
    /// Writes the whole content or throws: a full disk or a limit of the user does not end the program by a
    /// signal.
    void Write(std::string_view content) const;
    /// Closes and throws an error that the system reports only now; the destructor cannot report it.
    void Close();

  private:
    int descriptor_ = -1;
};

} // namespace platform

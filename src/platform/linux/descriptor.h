// The owner of a file descriptor. Paths are the system's own; what fails throws the system's error number.
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
    /// Open flags and the mode of a new file, which the user's mask limits.
    Descriptor(const std::string& path, int flags, mode_t mode = 0666);
    /// Takes the descriptor over.
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
    /// Everything up to the end. A file that grows meanwhile, or reports no size, is read to its end all the
    /// same.
    std::string ReadAll() const;
    /// The whole content or a fault: a full disk or a limit of the user's does not end the program.
    void Write(std::string_view content) const;
    /// Reports a full disk that shows only here, as the destructor cannot.
    void Close();

  private:
    int descriptor_ = -1;
};

} // namespace platform

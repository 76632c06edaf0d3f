// TCP on loopback: owned descriptors, whole reads and writes, a listener, a way to wake a waiting thread.
// Knows nothing of TDS.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace devsql::tds {

/// The peer is gone, or the network failed.
class ConnectionLost : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Owns a file descriptor, or nothing (-1).
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    int get() const { return descriptor_; }
    bool valid() const { return descriptor_ >= 0; }

  private:
    int descriptor_ = -1;
};

/// A connected stream. Reading and writing may be done by two threads at a time, one each; Shutdown by any.
class Socket {
  public:
    explicit Socket(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

    /// True when bytes (or the end) can be read within `timeout`.
    bool WaitReadable(std::chrono::milliseconds timeout) const;
    /// Fills `buffer`. False when the peer closed before the first byte; ConnectionLost when it closed
    /// within, when the network failed, or when `deadline` passed.
    bool ReadExactly(char* buffer, std::size_t size,
                     std::optional<std::chrono::steady_clock::time_point> deadline) const;
    /// Writes all, waiting as long as the peer takes to read. Throws ConnectionLost.
    void Write(std::string_view bytes) const;
    /// Ends both directions: whoever waits in a read or a write comes back.
    void Shutdown() const;
    /// Ends writing and drops what the peer still sends, for at most a second: a close with unread bytes
    /// would reset the connection, and the peer would lose the error that was sent last.
    void FinishWriting() const;

  private:
    FileDescriptor descriptor_;
};

/// Listens on 127.0.0.1 alone.
class Listener {
  public:
    /// `port` 0 takes a free one. Throws std::runtime_error, naming the port, when it can't be had.
    explicit Listener(std::uint16_t port);

    std::uint16_t port() const { return port_; }
    /// The next client; none after Wake. Failures that pass (no descriptors left) are waited out.
    std::optional<Socket> Accept() const;
    /// Makes Accept return none, now and from then on. May be called from any thread.
    void Wake() const;

  private:
    FileDescriptor descriptor_;
    FileDescriptor wake_;
    std::uint16_t port_ = 0;
};

} // namespace devsql::tds

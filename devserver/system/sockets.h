// The sockets of the operating system, on loopback alone. Each system has a folder with its implementation.
// Knows nothing of the protocols.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace devsql::system {

/// A call of the system failed; what() names the call and says why.
class SocketError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Owns one of the system's sockets, or nothing (-1).
class SocketHandle {
  public:
    using Native = std::intptr_t;

    SocketHandle() = default;
    explicit SocketHandle(Native native) : native_(native) {}
    SocketHandle(SocketHandle&& other) noexcept : native_(std::exchange(other.native_, -1)) {}
    SocketHandle& operator=(SocketHandle&& other) noexcept {
        std::swap(native_, other.native_);
        return *this;
    }
    SocketHandle(const SocketHandle&) = delete;
    SocketHandle& operator=(const SocketHandle&) = delete;
    ~SocketHandle();

    Native get() const { return native_; }
    bool valid() const { return native_ != -1; }

  private:
    Native native_ = -1;
};

/// One packet of UDP and where an answer goes.
struct Datagram {
    std::string bytes;
    std::uint16_t sender_port = 0;
};

enum class Readable : std::uint8_t { Nothing, First, Second };

/// Listens on 127.0.0.1; port 0 takes a free one. Throws SocketError.
SocketHandle ListenOnLoopback(std::uint16_t port);
/// A socket of UDP on 127.0.0.1; port 0 takes a free one. Throws SocketError.
SocketHandle DatagramsOnLoopback(std::uint16_t port);
/// A socket that nobody but this process can send to: it is its own peer. Throws SocketError.
SocketHandle SelfConnected();
/// The port that the system gave. Throws SocketError.
std::uint16_t PortOf(const SocketHandle& socket);

/// The next client; nothing when it has gone already or when the system has no socket left.
std::optional<SocketHandle> AcceptClient(const SocketHandle& listener);

/// Waits until bytes (or an end, or a client) can be taken, at most `timeout`; without one for ever. `second`
/// may be null. Throws SocketError.
Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout);
/// 0 at the end of the stream. With `keep` the bytes stay to be received again. Throws SocketError.
std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size, bool keep = false);
/// How much the system took, at least one byte. Throws SocketError.
std::size_t Send(const SocketHandle& socket, std::string_view bytes);
/// Ends sending, or both directions; a thread that waits in a call returns. Throws nothing.
void EndSending(const SocketHandle& socket) noexcept;
void EndBoth(const SocketHandle& socket) noexcept;

/// Returns nothing if no packet was there. Longer packets are cut to `longest` bytes.
std::optional<Datagram> ReceiveDatagram(const SocketHandle& socket, std::size_t longest);
/// To a port of 127.0.0.1. An answer that can't be sent is lost, as any datagram may be.
void SendDatagram(const SocketHandle& socket, std::string_view bytes, std::uint16_t port) noexcept;

} // namespace devsql::system

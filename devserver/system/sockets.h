// The sockets of the operating system, on loopback only. Each system has a folder with its implementation.
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

/// A call of the system has failed; what() has the call's name and the reason.
class SocketError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Owns one of the system's sockets, and closes it. A handle without a socket has the value -1.
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

/// One packet of UDP, and the port to which an answer must be sent.
struct Datagram {
    std::string bytes;
    std::uint16_t sender_port = 0;
};

/// Which of the two sockets that WaitReadable was given can be read; Nothing after the timeout.
enum class Readable : std::uint8_t { Nothing, First, Second };

/// Listens on 127.0.0.1; port 0 takes a free one. Throws SocketError.
SocketHandle ListenOnLoopback(std::uint16_t port);
/// Returns a UDP socket on 127.0.0.1; port 0 takes a free one. Throws SocketError.
SocketHandle DatagramsOnLoopback(std::uint16_t port);
/// Returns a UDP socket that is connected to itself, so that only this process can send to it. Throws
/// SocketError.
SocketHandle SelfConnected();
/// The local port of the socket. Throws SocketError.
std::uint16_t PortOf(const SocketHandle& socket);

/// Returns the next client; nothing if it has gone already or if the system has no socket left.
std::optional<SocketHandle> AcceptClient(const SocketHandle& listener);

/// Waits until a socket has bytes to read (or its end, or a client to accept), at most for `timeout`; without
/// it, for ever. `second` may be null. Throws SocketError.
Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout);
/// Waits for bytes and returns how many were received; 0 at the end of the stream. With `keep` the bytes stay
/// to be received again. Throws SocketError.
std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size, bool keep = false);
/// Returns how many bytes the system has accepted, at least one. Waits for room. Throws SocketError.
std::size_t Send(const SocketHandle& socket, std::string_view bytes);
/// Ends sending, or both directions. A thread that waits in a call of that direction returns.
void EndSending(const SocketHandle& socket) noexcept;
void EndBoth(const SocketHandle& socket) noexcept;

/// Returns nothing if no packet was there. Longer packets are cut to `longest` bytes.
std::optional<Datagram> ReceiveDatagram(const SocketHandle& socket, std::size_t longest);
/// Sends a packet to a port of 127.0.0.1. If it cannot be sent it is lost, as any datagram may be.
void SendDatagram(const SocketHandle& socket, std::string_view bytes, std::uint16_t port) noexcept;

} // namespace devsql::system

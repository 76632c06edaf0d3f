// TCP on loopback: whole reads and writes, a listener, a way to wake a waiting thread. Knows nothing of TDS.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "devserver/system/sockets.h"

namespace devsql::tds {

/// The peer is gone, or the network failed.
class ConnectionLost : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Socket;

/// Called before each part that is read: returns true when something has come, and false to give the peer up.
/// May throw ConnectionLost.
using ReadWait = std::function<bool(const Socket&)>;

/// Throws ConnectionLost when `deadline` passes.
ReadWait Until(std::chrono::steady_clock::time_point deadline);

/// A connected stream. Reading and writing may be done by two threads at a time, one each; Shutdown by any.
/// While nobody reads, any thread may peek.
class Socket {
  public:
    explicit Socket(system::SocketHandle handle) : handle_(std::move(handle)) {}

    /// True when bytes (or the end) can be read within `timeout`.
    bool WaitReadable(std::chrono::milliseconds timeout) const;
    /// Fills `buffer`. Returns false when the peer closed, or was given up, before the first byte; throws
    /// ConnectionLost when that happened within, or when the network failed. Without `wait` it waits for
    /// ever.
    bool ReadExactly(char* buffer, std::size_t size, const ReadWait& wait = {}) const;
    /// The next byte that has come, which stays to be read; nothing if none has. Does not wait. Throws
    /// ConnectionLost, also when the peer has closed.
    std::optional<char> Peek() const;
    /// Writes all, waiting as long as the peer takes to read. Throws ConnectionLost.
    void Write(std::string_view bytes) const;
    /// Ends both directions: a thread that waits in a read or a write returns.
    void Shutdown() const;
    /// Ends writing and drops what the peer still sends, for at most a second: a close with unread bytes
    /// would reset the connection, and the peer would lose the error that was sent last.
    void FinishWriting() const;

  private:
    system::SocketHandle handle_;
};

/// Wakes a thread that waits for a socket.
class WakeUp {
  public:
    WakeUp() : handle_(system::SelfConnected()) {}

    /// Stays in effect. May be called from any thread; throws nothing, since a socket that is its own
    /// peer takes every datagram or drops it.
    void Wake() const { system::Send(handle_, "w"); }
    const system::SocketHandle& handle() const { return handle_; }

  private:
    system::SocketHandle handle_;
};

/// Listens on 127.0.0.1 alone.
class Listener {
  public:
    /// `port` 0 takes a free one. Throws std::runtime_error, naming the port, when the port is taken.
    explicit Listener(std::uint16_t port);

    std::uint16_t port() const { return port_; }
    /// The next client; nothing after Wake, when none comes within `patience` (without one it waits for
    /// ever), or when the client could not be taken: it has gone already, or no descriptor is left.
    std::optional<Socket> Accept(std::optional<std::chrono::milliseconds> patience) const;
    /// Makes Accept return at once, also later. May be called from any thread.
    void Wake() const { wake_.Wake(); }

  private:
    system::SocketHandle handle_;
    WakeUp wake_;
    std::uint16_t port_ = 0;
};

} // namespace devsql::tds

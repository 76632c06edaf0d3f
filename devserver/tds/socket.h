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

/// The peer has gone, or the network has failed.
class ConnectionLost : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Socket;

/// Called before each read of a socket. Returns true when bytes or the end can be read, and false to stop
/// reading. May throw ConnectionLost.
using ReadWait = std::function<bool(const Socket&)>;

/// A wait that throws ConnectionLost when `deadline` has passed.
ReadWait Until(std::chrono::steady_clock::time_point deadline);

/// A connected stream, which it closes. One thread may read while another one writes; any thread may call
/// Shutdown. While no thread reads, any thread may call Peek.
class Socket {
  public:
    explicit Socket(system::SocketHandle handle) : handle_(std::move(handle)) {}

    /// Returns true as soon as bytes (or the end) can be read, and false after `timeout`.
    bool WaitReadable(std::chrono::milliseconds timeout) const;
    /// Fills `buffer`. Returns false if the peer has closed the connection, or `wait` has returned false,
    /// before the first byte. Throws ConnectionLost if that happens later, or if the network fails. Without
    /// `wait` it waits for ever.
    bool ReadExactly(char* buffer, std::size_t size, const ReadWait& wait = {}) const;
    /// The next byte, which stays to be read; nothing if no byte has come. Does not wait. Throws
    /// ConnectionLost, also if the peer has closed the connection.
    std::optional<char> Peek() const;
    /// Writes all bytes. Waits for as long as the peer does not read. Throws ConnectionLost.
    void Write(std::string_view bytes) const;
    /// Ends both directions. A thread that waits in a read or a write returns.
    void Shutdown() const;
    /// Ends writing, then reads and drops the peer's bytes until its end, for at most a second. A close with
    /// unread bytes would reset the connection, and the peer would lose the error that was sent last.
    void FinishWriting() const;

  private:
    system::SocketHandle handle_;
};

/// Wakes a thread that waits for a socket.
class WakeUp {
  public:
    WakeUp() : handle_(system::SelfConnected()) {}

    /// Wakes the thread, and every later wait too. May be called from any thread. Throws nothing, because a
    /// socket that is its own peer accepts every datagram or drops it.
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
    /// Returns the next client. Returns nothing after Wake, if no client comes within `patience` (without it,
    /// waits for ever), or if the client could not be accepted: it has gone already, or no descriptor is
    /// left.
    std::optional<Socket> Accept(std::optional<std::chrono::milliseconds> patience) const;
    /// Makes Accept return at once, and every later Accept too. May be called from any thread.
    void Wake() const { wake_.Wake(); }

  private:
    system::SocketHandle handle_;
    WakeUp wake_;
    std::uint16_t port_ = 0;
};

} // namespace devsql::tds

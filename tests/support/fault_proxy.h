// A proxy between the program and a development server, which splits the connection into the protocol's
// messages and injects a fault at a chosen message.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support {

/// The fault of a message. "Before": the server never receives it. "After": the server executes it, and its
/// answer does not arrive.
enum class Fault : std::uint8_t {
    None,
    Slow,      ///< passed on after a delay
    CutBefore, ///< both connections are closed
    CutAfter,
    HangBefore, ///< nothing happens until the client gives up: it cancels or closes the connection
    HangAfter,
    KillBefore, ///< the server is killed
    KillAfter,
    ResetBefore, ///< both connections are reset
    ResetAfter,
    KillProgramBefore, ///< the process that sent the message is killed
    KillProgramAfter,
    KillStarter, ///< the process that started the sender is killed; the message is passed on
    RefuseRight, ///< answered in the server's place: the login lacks the right
    RefuseRoom,  ///< the same: the server's disk is full
};

const char* NameOf(Fault fault);

/// Accepts connections on a free port of loopback and passes their data on. Each login and each batch is an
/// event; events are counted over all connections.
class FaultProxy {
  public:
    /// `kill_server` ends the server's process at once; it is called from a thread of the proxy.
    FaultProxy(int server_port, std::function<void()> kill_server);
    FaultProxy(const FaultProxy&) = delete;
    FaultProxy& operator=(const FaultProxy&) = delete;
    /// Ends all connections.
    ~FaultProxy();

    int Port() const { return port_; }
    /// `kill_program` ends a process of the program at once, for the faults that kill one; it is called from
    /// a thread of the proxy. To be set before the program connects.
    void KillProgramBy(std::function<void()> kill_program) { kill_program_ = std::move(kill_program); }
    /// Injects the fault at the event with this number, counted from 0. To be called before that event.
    void Arm(std::size_t event, Fault fault) { Arm(event, event, fault); }
    /// Injects the fault at all events of a range.
    void Arm(std::size_t first, std::size_t last, Fault fault);
    /// Batches with this text are not events from now on.
    void Ignore(std::string text);
    /// "login", "call", or the text of the batch; in the order in which they came.
    std::vector<std::string> Events() const;
    /// True if the fault has happened.
    bool Struck() const { return struck_; }

  private:
    class Link;

    void Accept();
    /// Counts an event and returns its fault.
    Fault Note(std::string event);

    std::function<void()> kill_server_;
    std::function<void()> kill_program_;
    int server_port_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> ending_ = false;
    std::atomic<bool> struck_ = false;
    mutable std::mutex mutex_; ///< guards the next six
    std::string ignored_;
    std::vector<std::string> events_;
    std::size_t first_armed_ = 0;
    std::size_t last_armed_ = 0;
    Fault armed_fault_ = Fault::None;
    std::vector<std::thread> links_;
    std::thread acceptor_;
};

} // namespace support

// A proxy between the program and a development server, which sees where the protocol's messages begin and
// end and does damage at a chosen one. Knows neither the program nor the statements' meaning.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// What happens to a message. "Before": the server never gets it. "After": the server does what it says, and
/// its answer does not arrive.
enum class Fault : std::uint8_t {
    None,
    Slow,      ///< handed on a while later
    CutBefore, ///< both connections end
    CutAfter,
    HangBefore, ///< nothing happens until the client gives up: cancels, or goes
    HangAfter,
    KillBefore, ///< the server is killed
    KillAfter,
};

const char* NameOf(Fault fault);

/// Takes connections on a free port of loopback and hands them on. A login and every batch is an event;
/// events are counted over all connections.
class FaultProxy {
  public:
    /// `kill_server` ends the server's process at once; it is called from a thread of the proxy.
    FaultProxy(int server_port, std::function<void()> kill_server);
    FaultProxy(const FaultProxy&) = delete;
    FaultProxy& operator=(const FaultProxy&) = delete;
    /// Ends all connections.
    ~FaultProxy();

    int Port() const { return port_; }
    /// The event with this number, counted from 0, suffers the fault. To be called before it comes.
    void Arm(std::size_t event, Fault fault) { Arm(event, event, fault); }
    /// All events from one to another suffer it.
    void Arm(std::size_t first, std::size_t last, Fault fault);
    /// Batches of this text are no events from now on.
    void Ignore(std::string text);
    /// "login", "call", or the text of the batch; in the order in which they came.
    std::vector<std::string> Events() const;
    /// True if the fault has happened.
    bool Struck() const { return struck_; }

  private:
    class Link;

    void Accept();
    /// Counts an event; gives the fault that it suffers.
    Fault Note(std::string event);

    std::function<void()> kill_server_;
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

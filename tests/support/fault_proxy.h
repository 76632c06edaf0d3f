// A TCP proxy between the program and a development server. It splits the data into the messages of TDS, the
// protocol between client and server, and injects a fault at a chosen message. Linux only.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support {

/// The fault that is injected at a message. "Before": the server never receives the message. "After": the
/// server executes it, but its answer does not reach the client.
enum class Fault : std::uint8_t {
    None,
    Slow,      ///< passed on after a delay
    CutBefore, ///< both connections are closed
    CutAfter,
    HangBefore, ///< no answer comes until the client cancels the message or closes the connection
    HangAfter,
    KillBefore, ///< the server's process is killed
    KillAfter,
    ResetBefore, ///< both connections are reset
    ResetAfter,
    KillProgramBefore, ///< the process that sent the message is killed
    KillProgramAfter,
    KillStarter, ///< the process that started the sender is killed; the message is passed on
    RefuseRight, ///< the proxy answers: the login lacks the right
    RefuseRoom,  ///< the proxy answers: the server's disk is full
};

const char* NameOf(Fault fault);

/// Accepts connections on a free port of loopback and passes their data on. Each login, each batch and each
/// call of a procedure is an event. Events are counted over all connections.
class FaultProxy {
  public:
    /// `kill_server` must kill the server's process; it is called from a thread of the proxy. Throws
    /// std::runtime_error if no port is free.
    FaultProxy(int server_port, std::function<void()> kill_server);
    FaultProxy(const FaultProxy&) = delete;
    FaultProxy& operator=(const FaultProxy&) = delete;
    /// Ends all connections.
    ~FaultProxy();

    int Port() const { return port_; }
    /// For the faults that kill a process of the program: `kill_program` must kill it. It is called from a
    /// thread of the proxy. Must be set before the program connects.
    void KillProgramBy(std::function<void()> kill_program) { kill_program_ = std::move(kill_program); }
    /// Injects the fault at the event with this number, counted from 0. Must be called before that event.
    void Arm(std::size_t event, Fault fault) { Arm(event, event, fault); }
    /// Injects the fault at all events from `first` to `last`.
    void Arm(std::size_t first, std::size_t last, Fault fault);
    /// After this call batches with this text are not counted as events. Must be called before Arm.
    void Ignore(std::string text);
    /// The proxy creates this file when the next event is one that hangs, and removes it when that event has
    /// arrived. The file contains the text that Ignore has set. Must be called before Arm.
    void AnnounceHangs(std::filesystem::path file);
    /// All events in the order in which they arrived: "login", "call", or the text of the batch.
    std::vector<std::string> Events() const;
    /// True if an event with the fault has arrived.
    bool Struck() const { return struck_; }

  private:
    class Link;

    void Accept();
    /// Counts an event and returns the fault to inject at it.
    Fault Note(std::string event);
    void AnnounceHang() const;

    std::function<void()> kill_server_;
    std::function<void()> kill_program_;
    int server_port_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> ending_ = false;
    std::atomic<bool> struck_ = false;
    mutable std::mutex mutex_; ///< guards the next seven
    std::string ignored_;
    std::filesystem::path announcement_;
    std::vector<std::string> events_;
    std::size_t first_armed_ = 0;
    std::size_t last_armed_ = 0;
    Fault armed_fault_ = Fault::None;
    std::vector<std::thread> links_;
    std::thread acceptor_;
};

} // namespace support

// Carries the packets of one long message from the reading thread to the working thread, so that a bulk load
// of any length needs little memory. Knows nothing of their contents.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace devsql::tds {

class PacketChannel {
  public:
    enum class State : std::uint8_t {
        Open,
        Whole,     ///< the message has ended
        TakenBack, ///< the client has taken it back
        Lost,      ///< the connection has ended within it
    };

    /// Waits while the channel holds much that was not taken. After Close the bytes are dropped.
    void Put(const std::string& bytes);
    /// The writing side is finished.
    void End(State state);
    /// Adds to `bytes` what has come, waiting for a moment where nothing has. Open when more may follow; else
    /// how the message ended, once all its bytes have been taken.
    State Take(std::string& bytes);
    /// Drops what has come and what still comes, and waits for a moment for the message's end. Open where it
    /// has not come, else how the message ended.
    State Drain();
    /// The reading side is finished: Put does not wait.
    void Close();

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string bytes_;
    State state_ = State::Open;
    bool closed_ = false;
};

} // namespace devsql::tds

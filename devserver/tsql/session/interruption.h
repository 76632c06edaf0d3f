// How a session is made to stop: by its client, or by another session that ends it.
#pragma once

#include <atomic>
#include <mutex>

#include "devserver/engine/cancelled.h"

namespace devsql {

class SqliteConnection;

class Interruption {
  public:
    explicit Interruption(SqliteConnection& connection) : connection_(connection) {}

    /// Makes the running call stop soon. From any thread.
    void Request();
    /// A new call begins: what was asked of the one before does not concern it.
    void Reset() { requested_ = false; }
    bool requested() const { return requested_; }
    /// Throws Cancelled once a stop has been requested.
    void Check() const;

    /// The session is not to be used any more. From any thread.
    void EndSession() { session_ended_ = true; }
    bool session_ended() const { return session_ended_; }

    /// While one lives, a request does not interrupt SQLite: a rollback or the release of a database runs to
    /// its end.
    class Block {
      public:
        explicit Block(Interruption& interruption);
        ~Block();
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

      private:
        Interruption& interruption_;
    };

    /// Held while a call runs. Whoever ends the session takes it to close what the session holds.
    std::mutex& running() { return running_; }

  private:
    SqliteConnection& connection_;
    std::atomic<bool> requested_ = false;
    std::atomic<bool> session_ended_ = false;
    std::mutex running_;
    std::mutex mutex_;
    int blocks_ = 0; ///< under `mutex_`
};

} // namespace devsql

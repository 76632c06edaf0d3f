// Stops the running call of a session, for its client or for another session that ends it.
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
    /// To be called when a call begins: a request that was meant for the previous call does not stop it.
    void Reset() { requested_ = false; }
    bool requested() const { return requested_; }
    /// Throws Cancelled once a stop has been requested.
    void Check() const;

    /// Marks the session as ended: it refuses every further call. From any thread.
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

    /// Held while a call runs. A session that ends this one takes it before it rolls back this one's
    /// transaction and releases its databases.
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

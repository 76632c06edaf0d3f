// A session's transaction: SQLite's begins with the first write of T-SQL's, so that one that only reads sees
// every commit of others, as READ COMMITTED does, and holds no lock.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/session/temporary_tables.h"

namespace devsql {

class SessionCore;

class Transactions {
  public:
    explicit Transactions(SessionCore& session);

    void Begin(const std::string& name);
    void Commit();
    void Rollback(const std::string& name);
    void Save(const std::string& name);
    /// @@TRANCOUNT
    int count() const { return count_; }
    /// Another number whenever a transaction has ended.
    std::int64_t ended() const { return ended_; }
    /// Ends what was begun around the triggers of a statement outside transactions: the statement itself is
    /// then committed or undone by Write.
    void EndForTriggers() { Clear(); }
    bool has_savepoints() const { return !savepoints_.empty(); }
    /// Rolls back whatever is open; for the end of a session and for errors that end the batch.
    void Abandon();

    /// Runs one statement that writes to `alias`, whole or not at all; commits it outside a transaction.
    void Write(const std::string& alias, const std::function<void()>& work);

    /// An error has made the transaction unfit for anything but a rollback (XACT_STATE() = -1). Without a
    /// transaction there is nothing to doom.
    void Doom() { doomed_ = doomed_ || count_ > 0; }
    bool doomed() const { return doomed_; }
    /// True after SQLite has rolled the transaction back by itself: the batch must not go on as if it were
    /// open.
    bool lost() const { return lost_; }

    /// How long the session waits for a lock.
    std::chrono::milliseconds LockTime() const;
    /// The error after that time: 1222, or 1205 where LOCK_TIMEOUT is not set.
    SqlError LockError() const;

  private:
    using Temporaries = TemporaryTables::List;
    struct Savepoint {
        std::string name; ///< folded
        Temporaries temporary;
    };

    void BeginStorage();
    void CommitStorage();
    void LockForWriting(const std::string& alias);
    bool WaitForLock(int waited) const;
    /// Rolls back by SQLite's `text`. Table variables keep their rows, unless it is their own statement that
    /// has failed.
    void RollbackAround(const std::string& text, const Temporaries& temporary, bool keep_variables);
    void UndoWrite(const std::string& savepoint, bool own, bool saved, const Temporaries& before);
    void EmptyTransitionTables();
    void Clear();
    void Lose(const Temporaries& temporary);
    void Reset();

    SessionCore& session_;
    int count_ = 0;
    std::string name_; ///< folded
    std::vector<Savepoint> savepoints_;
    Temporaries temporary_before_; ///< as they were when the transaction began
    bool doomed_ = false;
    bool lost_ = false;
    std::int64_t ended_ = 0;
    int writes_ = 0; ///< calls of Write that are open, one inside the other
    static constexpr std::size_t kNoSavepoint = static_cast<std::size_t>(-1);
    /// The lowest savepoint that was rolled back to since the innermost open Write began.
    std::size_t lowest_savepoint_ = kNoSavepoint;
};

} // namespace devsql

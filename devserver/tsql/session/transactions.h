// A session's transaction. SQLite's transaction begins with the first write in it: a transaction that has
// only read sees every commit of others, as under READ COMMITTED, and holds no lock.
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
    /// Raises 3902 without a transaction, 3930 for a doomed one, and the errors of linked servers and of the
    /// disk.
    void Commit();
    /// Rolls back the transaction, or to the savepoint of that name. Raises 3903 without a transaction, 6401
    /// for an unknown name.
    void Rollback(const std::string& name);
    /// Sets a savepoint. Raises 628 without a transaction, 627 if a linked server takes part in it.
    void Save(const std::string& name);
    /// @@TRANCOUNT
    int count() const { return count_; }
    /// Changes whenever a transaction ends, so that a caller can notice an end.
    std::int64_t ended() const { return ended_; }
    /// Ends the transaction that was begun for the triggers of a statement outside transactions. It commits
    /// nothing: Write commits or undoes the statement.
    void EndForTriggers() { Clear(); }
    bool has_savepoints() const { return !savepoints_.empty(); }
    /// Rolls back whatever is open; for the end of a session and for errors that end the batch.
    void Abandon();

    /// Runs `work`, one statement that writes to the database of that alias in SQLite, whole or not at all.
    /// Outside a transaction it is committed. An error of `work` is thrown on after its writes are undone.
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

    // …Storage: SQLite's own transaction.
    void BeginStorage();
    void CommitStorage();
    void LockForWriting(const std::string& alias);
    bool WaitForLock(int waited) const;
    /// Runs `text`, a rollback in SQLite's SQL, and restores the temporary tables. Table variables keep their
    /// rows if `keep_variables`; they do not if their own statement has failed.
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

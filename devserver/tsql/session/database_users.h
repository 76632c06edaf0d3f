// The list of sessions, the databases that each of them uses, and the lock on the list of databases. A
// session finds a database and enters it in one step, so that the database can't be moved or removed until
// the session leaves it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "devserver/storage/databases.h"

namespace devsql {

class SessionCore;

class DatabaseUsers {
  public:
    /// `master` is the file that holds the list of databases.
    explicit DatabaseUsers(const std::filesystem::path& master) : list_(master) {}

    /// A number that no session has, from 51 to 32767.
    std::int32_t NewSessionId();
    void Register(SessionCore& session);
    /// The session is ending by itself: no other session ends it from now on. It is still counted as a user
    /// of its databases.
    void Withdraw(SessionCore& session);

    /// Finds the database and counts the session among its users. Waits while the database is closed, as for
    /// a lock. Raises 911 for an unknown name, 942 for one that is offline, 924 where another session uses it
    /// exclusively, 952 where it stays closed for too long.
    DatabaseInfo Enter(const std::string& name, SessionCore& session);
    void Leave(int database, SessionCore& session);

    /// Keeps all but this session out until Reopen. False if another session uses the database and does not
    /// leave within half a second, which a client that has just closed its connection may need.
    bool Close(int database, const SessionCore& session);
    /// The same, but ends the sessions that use it: their transactions are rolled back.
    void CloseAndEndOthers(int database, const SessionCore& session);
    void Reopen(int database);

    /// Ends another session. Raises 6106 for an unknown number, 6104 for this session's number.
    void Kill(std::int32_t id, const SessionCore& by);

    /// One row of sp_who.
    struct SessionInfo {
        std::int32_t id;
        std::string login;
        std::string host;
        std::string application;
        std::string database; ///< folded
        std::int16_t isolation_level;
    };
    std::vector<SessionInfo> Sessions();

    /// Held by a statement that makes, renames, moves or removes databases or changes their options. One
    /// session at a time holds it, so that the list doesn't change under the statement. A session may hold
    /// several, nested.
    class ListTurn {
      public:
        /// Waits, as for a lock: raises 1222 or 1205.
        explicit ListTurn(const SessionCore& session);
        ~ListTurn();
        ListTurn(const ListTurn&) = delete;
        ListTurn& operator=(const ListTurn&) = delete;

      private:
        DatabaseUsers& users_;
    };

  private:
    static constexpr std::int32_t kFirstSession = 51;

    struct Usage {
        std::string name; ///< folded
        std::set<const SessionCore*> sessions;
        const SessionCore* closed_by = nullptr; ///< keeps all others out; null while the database is open

        bool OthersThan(const SessionCore& session) const {
            return sessions.size() > (sessions.contains(&session) ? 1U : 0U);
        }
    };

    /// Waits for `done`; false if it is not true after `limit`, or if the session must end.
    template <class Done>
    bool WaitFor(std::unique_lock<std::mutex>& lock, const SessionCore& session,
                 std::chrono::milliseconds limit, Done done);
    /// The other users of the database that can be ended, marked so that none of them is destroyed meanwhile.
    std::vector<SessionCore*> TakeOthers(int database, const SessionCore& session);
    /// Ends a session: interrupts its call, rolls back its transaction and releases its databases.
    void End(SessionCore& session, const SessionCore& by);

    std::mutex mutex_;
    std::condition_variable changed_;
    SqliteConnection list_;
    std::map<int, Usage> usage_; ///< by the database's id
    std::map<std::int32_t, SessionCore*> sessions_;
    std::int32_t next_session_ = kFirstSession;
    std::multiset<const SessionCore*>
        ending_;                        ///< being ended by another session; must not be destroyed meanwhile
    const SessionCore* turn_ = nullptr; ///< the session that holds a ListTurn; null for none
    int turns_ = 0;                     ///< how many turns the session holds
};

} // namespace devsql

// The engine: what all sessions share. Which session uses which database, who is thrown out, where files lie.
#pragma once

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "devserver/engine/engine.h"
#include "devserver/storage/databases.h"

namespace devsql {

class SessionCore;

class Server : public Engine {
  public:
    /// Throws std::runtime_error.
    explicit Server(EngineOptions options);
    ~Server() override;

    std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) override;
    const std::string& ServerName() const override { return options_.server_name; }

    const EngineOptions& options() const { return options_; }
    std::filesystem::path MasterFile() const { return options_.root / "master.mdf"; }
    /// What seals the passwords of linked logins.
    std::filesystem::path LinkedKeyFile() const { return options_.root / "linked_logins.key"; }

    void Register(SessionCore& session);
    void Unregister(SessionCore& session);
    /// Counts the session among the database's users. Raises 924 where another one holds it for itself alone,
    /// 952 while it is being dropped or detached.
    void Enter(const DatabaseInfo& database, SessionCore& session);
    void Leave(const std::string& folded_name, SessionCore& session);
    /// Keeps everybody out until Reopen. False if another session uses the database.
    bool CloseTo(const std::string& folded_name, const SessionCore& session);
    void Reopen(const std::string& folded_name);
    /// Ends all other sessions that use the database: their transactions are rolled back.
    void ThrowOut(const std::string& folded_name, const SessionCore& by);
    void Kill(std::int32_t id, const SessionCore& by);
    /// The next value of a timestamp column of a temporary table, which lies in no database's file.
    std::int64_t NextTemporaryTimestamp() { return ++temporary_timestamp_; }
    /// One row of sp_who.
    struct SessionInfo {
        std::int32_t id;
        std::string login;
        std::string host;
        std::string application;
        std::string database;
    };
    std::vector<SessionInfo> Sessions();

  private:
    struct Usage {
        std::set<SessionCore*> sessions;
        bool closed = false;
    };

    void CreateSystemDatabases();
    void RunBootstrap();
    bool PasswordFits(SqliteConnection& connection, const LoginRequest& request) const;
    void End(SessionCore& session, const SessionCore& by);

    EngineOptions options_;
    std::mutex mutex_;
    std::map<std::string, Usage> usage_;
    std::map<std::int32_t, SessionCore*> sessions_;
    std::set<SessionCore*> ending_; ///< being ended by another session, and not to be destroyed meanwhile
    std::condition_variable ended_;
    std::int32_t next_session_ = 51;
    std::atomic<std::int64_t> temporary_timestamp_ = 2000;
};

} // namespace devsql

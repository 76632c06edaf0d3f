// The engine: what all sessions share: logins, the system databases, where files lie.
#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>

#include "devserver/engine/engine.h"
#include "devserver/storage/databases.h"
#include "devserver/tsql/session/database_users.h"

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

    DatabaseUsers& users() { return *users_; }
    /// The next value of a timestamp column of a temporary table, which lies in no database's file.
    std::int64_t NextTemporaryTimestamp() { return ++temporary_timestamp_; }

  private:
    void CreateSystemDatabases();
    void RunBootstrap();
    bool PasswordFits(SqliteConnection& connection, const LoginRequest& request) const;
    /// Brings every write-ahead log back into its file: two sessions that close a file at once both leave it.
    void SettleFiles();

    EngineOptions options_;
    std::unique_ptr<DatabaseUsers> users_;
    std::atomic<std::int64_t> temporary_timestamp_ = 2000;
};

} // namespace devsql

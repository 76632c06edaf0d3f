// The state that all sessions share: the server's options, the sessions and the databases that they use, and
// the places of files.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>

#include "devserver/engine/engine.h"
#include "devserver/tsql/session/database_users.h"

namespace devsql {

class UserFunctions;

class Server {
  public:
    /// The file of master must exist. `functions` must outlive the server.
    Server(EngineOptions options, const UserFunctions& functions)
        : options_(std::move(options)), functions_(functions), users_(MasterFile()) {}

    const std::string& name() const { return options_.server_name; }
    const EngineOptions& options() const { return options_; }
    std::filesystem::path MasterFile() const { return options_.root / "master.mdf"; }
    /// Holds the key that seals the passwords of linked logins.
    std::filesystem::path LinkedKeyFile() const { return options_.root / "linked_logins.key"; }

    DatabaseUsers& users() { return users_; }
    const UserFunctions& functions() const { return functions_; }
    /// The next value of a timestamp column of a temporary table, which is in no database's file.
    std::int64_t NextTemporaryTimestamp() { return ++temporary_timestamp_; }

  private:
    const EngineOptions options_;
    const UserFunctions& functions_;
    DatabaseUsers users_;
    std::atomic<std::int64_t> temporary_timestamp_ = 2000;
};

} // namespace devsql

// Gives the connections to linked servers access to the session that they belong to.
#pragma once

#include "devserver/tsql/linked/remote_servers.h"

namespace devsql {

class SessionCore;

class RemoteOwner : public RemoteServersOwner {
  public:
    explicit RemoteOwner(SessionCore& session) : session_(session) {}

    SqliteConnection& connection() override;
    const std::string& server_name() const override;
    const std::string& login() const override;
    const std::string& password() const override;
    const RemoteConnector& connector() const override;
    LinkedLogins Logins() override;
    bool HasSession(const std::string& application) override;
    std::int64_t NextTableId() override;
    void CheckCancelled() const override;
    void Inform(std::int32_t number, std::initializer_list<std::string_view> arguments) override;
    bool InTransaction() const override;
    bool HasSavepoints() const override;
    void DoomTransaction() override;

  private:
    SessionCore& session_;
};

} // namespace devsql

// Passes each question of the connections to linked servers on to the part of the session that answers it.
#include "devserver/tsql/session/remote_owner.h"

#include <algorithm>

#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

SqliteConnection& RemoteOwner::connection() {
    return session_.connection();
}

const std::string& RemoteOwner::server_name() const {
    return session_.server().name();
}

const std::string& RemoteOwner::login() const {
    return session_.client().login;
}

const std::string& RemoteOwner::password() const {
    return session_.client().password;
}

const RemoteConnector& RemoteOwner::connector() const {
    return session_.server().options().connect_remote;
}

LinkedLogins RemoteOwner::Logins() {
    return {session_.connection(), session_.server().LinkedKeyFile()};
}

bool RemoteOwner::HasSession(const std::string& application) {
    return std::ranges::any_of(session_.server().users().Sessions(),
                               [&](const auto& other) { return other.application == application; });
}

std::int64_t RemoteOwner::NextTableId() {
    return session_.temporaries().NextId();
}

void RemoteOwner::CheckCancelled() const {
    session_.CheckCancelled();
}

void RemoteOwner::Inform(std::int32_t number, std::initializer_list<std::string_view> arguments) {
    session_.results().Info(number, arguments);
}

bool RemoteOwner::InTransaction() const {
    return session_.transactions().count() > 0;
}

bool RemoteOwner::HasSavepoints() const {
    return session_.transactions().has_savepoints();
}

void RemoteOwner::DoomTransaction() {
    session_.transactions().Doom();
}

} // namespace devsql

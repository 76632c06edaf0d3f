// The rules by which tabs and servers are enabled.
#include "console/availability.h"

namespace kv {
namespace {

bool LoginComplete(const ServerFields& server) {
    return !server.name.empty() && !server.user.empty() && !server.password.empty();
}

bool PathsComplete(const ServerFields& server) {
    return !server.data_path.empty() && !server.replication_path.empty();
}

} // namespace

Availability WorkOutAvailability(const std::array<ServerFields, 2>& servers,
                                 const std::function<bool()>& sql_server_installed) {
    const std::array<bool, 2> login = {LoginComplete(servers[0]), LoginComplete(servers[1])};
    const std::array<bool, 2> complete = {login[0] && PathsComplete(servers[0]),
                                          login[1] && PathsComplete(servers[1])};
    const bool any_login = login[0] || login[1];
    const bool both_complete = complete[0] && complete[1];

    Availability result;
    result.tabs[kScriptTab] = {complete[0] || complete[1], complete};
    result.tabs[kSynchronizeTab] = {login[0] && login[1], login};
    result.tabs[kUpgradeTab] = {any_login, login};
    result.tabs[kReplicationTab] = {both_complete && sql_server_installed(), login};
    result.tabs[kViewDataTab] = {any_login, login};
    result.tabs[kStoredProcTab] = {any_login, login};
    result.replication_scripts_enabled = both_complete;
    result.replication_scripts_cleared = !complete[1];
    return result;
}

} // namespace kv

// Works out which tabs and servers can be used, from the General tab's fields alone. Knows no control.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "console/form_designs.h"

namespace kv {

/// The General tab's fields of one server.
struct ServerFields {
    std::string name;
    std::string user;
    std::string password;
    std::string data_path;
    std::string replication_path;
};

struct TabAvailability {
    bool enabled = false;
    /// Whether Server A (index 0) and Server B (index 1) can be used on the tab.
    std::array<bool, 2> servers{};
};

struct Availability {
    /// The entry of the General tab is unused: that tab can always be used.
    std::array<TabAvailability, kMainTabs> tabs{};
    bool replication_scripts_enabled = false;
    /// True only if Server B is incomplete. If only Server A is, the disabled check box keeps its tick.
    bool replication_scripts_cleared = false;
};

/// `sql_server_installed` is called only if both servers are complete.
Availability WorkOutAvailability(const std::array<ServerFields, 2>& servers,
                                 const std::function<bool()>& sql_server_installed);

} // namespace kv

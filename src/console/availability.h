// Works out which tabs of the console can be used, and with which of the two servers, from the fields of the
// General tab. Knows no control.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "console/form_designs.h"

namespace kv {

/// The General tab's fields of one server. The server's login is complete if the first three are not empty;
/// the server is complete if none is empty.
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
    /// One entry for each MainTab. That of the General tab is unused: the tab can always be used.
    std::array<TabAvailability, kMainTabs> tabs{};
    /// Whether the check box for the replication scripts (Script tab) is enabled.
    bool replication_scripts_enabled = false;
    /// Whether that check box is cleared: true only if Server B is incomplete. If only Server A is
    /// incomplete, the disabled check box keeps its tick.
    bool replication_scripts_cleared = false;
};

/// `servers` holds Server A and Server B. `sql_server_installed` is called only if both are complete; it says
/// whether the Replication tab is enabled.
Availability WorkOutAvailability(const std::array<ServerFields, 2>& servers,
                                 const std::function<bool()>& sql_server_installed);

} // namespace kv

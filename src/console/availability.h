// Which tabs and servers can be used: one function of the General tab's fields. Knows no control.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "console/main_form_design.h"

namespace kv {

/// What the General tab holds for one server.
struct ServerFields {
    std::string name;
    std::string user;
    std::string password;
    std::string data_path;
    std::string replication_path;
};

struct TabAvailability {
    bool enabled = false;
    /// Whether Server A, and Server B, can be used on the tab.
    std::array<bool, 2> servers{};
};

struct Availability {
    /// The entry of the General tab means nothing: it can always be used.
    std::array<TabAvailability, kMainTabs> tabs{};
    bool replication_scripts_enabled = false;
    /// Only a missing Server B takes the tick away. With Server A missing alone it stays under the disabled
    /// box.
    bool replication_scripts_cleared = false;
};

/// `sql_server_installed` is asked only where both servers are complete.
Availability WorkOutAvailability(const std::array<ServerFields, 2>& servers,
                                 const std::function<bool()>& sql_server_installed);

} // namespace kv

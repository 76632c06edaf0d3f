// Tests which tabs and servers can be used, depending on the General tab's fields.
#include "console/availability.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

using Fields = std::array<ServerFields, 2>;

/// A server with only its login filled in.
ServerFields Login() {
    return {"N", "u", "p", "", ""};
}

ServerFields Complete() {
    return {"N", "u", "p", "D", "R"};
}

Availability Decide(const Fields& fields, bool installed = true) {
    return WorkOutAvailability(fields, [installed] { return installed; });
}

std::array<bool, kMainTabs> EnabledTabs(const Availability& availability) {
    std::array<bool, kMainTabs> enabled{};
    for (int tab = 0; tab < kMainTabs; ++tab) {
        const auto place = static_cast<std::size_t>(tab);
        enabled.at(place) = availability.tabs.at(place).enabled;
    }
    return enabled;
}

// The columns are the tabs: General (always false here), Script, Synchronize, Upgrade, Replication, View
// Data, Stored Proc.
using Tabs = std::array<bool, kMainTabs>;

TEST(AvailabilityTable, FromNothingToTwoCompleteServers) {
    const ServerFields none;
    EXPECT_EQ(EnabledTabs(Decide({none, none})), (Tabs{}));
    EXPECT_EQ(EnabledTabs(Decide({Login(), none})), (Tabs{false, false, false, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({none, Login()})), (Tabs{false, false, false, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({Login(), Login()})), (Tabs{false, false, true, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({Complete(), none})), (Tabs{false, true, false, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({none, Complete()})), (Tabs{false, true, false, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({Complete(), Login()})), (Tabs{false, true, true, true, false, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({Complete(), Complete()})),
              (Tabs{false, true, true, true, true, true, true}));
    EXPECT_EQ(EnabledTabs(Decide({Complete(), Complete()}, false)),
              (Tabs{false, true, true, true, false, true, true}));
}

TEST(AvailabilityTable, EachFieldCounts) {
    std::string ServerFields::*const login_fields[] = {&ServerFields::name, &ServerFields::user,
                                                       &ServerFields::password};
    for (const auto field : login_fields) {
        ServerFields server = Complete();
        (server.*field).clear();
        EXPECT_EQ(EnabledTabs(Decide({server, ServerFields{}})), (Tabs{}));
    }
    std::string ServerFields::*const path_fields[] = {&ServerFields::data_path,
                                                      &ServerFields::replication_path};
    for (const auto field : path_fields) {
        ServerFields server = Complete();
        (server.*field).clear();
        EXPECT_EQ(EnabledTabs(Decide({server, ServerFields{}})),
                  (Tabs{false, false, false, true, false, true, true}));
    }
}

TEST(AvailabilityTable, TheScriptTabNeedsCompleteServersAndTheOthersLogins) {
    const Availability availability = Decide({Login(), Complete()});
    EXPECT_EQ(availability.tabs[kScriptTab].servers, (std::array<bool, 2>{false, true}));
    for (const MainTab tab : {kSynchronizeTab, kUpgradeTab, kReplicationTab, kViewDataTab, kStoredProcTab}) {
        EXPECT_EQ(availability.tabs[tab].servers, (std::array<bool, 2>{true, true})) << tab;
    }
}

TEST(AvailabilityTable, TheRegistryIsAskedOnlyIfBothServersAreComplete) {
    int asked = 0;
    const auto ask = [&asked] {
        ++asked;
        return true;
    };
    WorkOutAvailability({Complete(), Login()}, ask);
    EXPECT_EQ(asked, 0);
    WorkOutAvailability({Complete(), Complete()}, ask);
    EXPECT_EQ(asked, 1);
}

TEST(AvailabilityTable, OnlyAMissingServerBClearsTheReplicationScripts) {
    EXPECT_TRUE(Decide({Complete(), Complete()}).replication_scripts_enabled);
    EXPECT_FALSE(Decide({Complete(), Complete()}).replication_scripts_cleared);
    EXPECT_FALSE(Decide({Login(), Complete()}).replication_scripts_enabled);
    EXPECT_FALSE(Decide({Login(), Complete()}).replication_scripts_cleared);
    EXPECT_FALSE(Decide({Complete(), Login()}).replication_scripts_enabled);
    EXPECT_TRUE(Decide({Complete(), Login()}).replication_scripts_cleared);
}

} // namespace
} // namespace kv

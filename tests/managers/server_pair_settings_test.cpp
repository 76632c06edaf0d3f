// Tests the settings of the pair of servers, which are the same in every manager class.
#include <gtest/gtest.h>

#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "inspect/view_data_mgr.h"
#include "scripts/sql_script_mgr.h"

namespace kv {
namespace {

template <class Manager>
class ServerPairSettingsTest : public ::testing::Test {
  protected:
    using Reader = const std::string& (ServerPairSettings::*)() const;
    using Writer = void (ServerPairSettings::*)(const std::string&);
    /// A setting's two accessors.
    struct Member {
        Reader reader;
        Writer writer;
    };

    /// Sets the value and reads it again.
    std::string Written(const Member& member, const std::string& value) {
        (manager_.*member.writer)(value);
        return (manager_.*member.reader)();
    }

    // The constructor of one of the classes looks for the query tool.
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
    Manager manager_;
    const std::vector<Member> plain_ = {
        {&ServerPairSettings::ServerA, &ServerPairSettings::ServerA},
        {&ServerPairSettings::ServerB, &ServerPairSettings::ServerB},
        {&ServerPairSettings::UserA, &ServerPairSettings::UserA},
        {&ServerPairSettings::UserB, &ServerPairSettings::UserB},
        {&ServerPairSettings::PasswordA, &ServerPairSettings::PasswordA},
        {&ServerPairSettings::PasswordB, &ServerPairSettings::PasswordB},
    };
    const std::vector<Member> paths_ = {
        {&ServerPairSettings::SQLDataPathA, &ServerPairSettings::SQLDataPathA},
        {&ServerPairSettings::SQLDataPathB, &ServerPairSettings::SQLDataPathB},
        {&ServerPairSettings::SQLUNCReplDataPathA, &ServerPairSettings::SQLUNCReplDataPathA},
        {&ServerPairSettings::SQLUNCReplDataPathB, &ServerPairSettings::SQLUNCReplDataPathB},
    };
};

using Managers =
    ::testing::Types<CUpgradeDbMgr, CSQLReplicationMgr, CSynchronizeDbMgr, CViewDataMgr, CSQLScriptMgr>;
TYPED_TEST_SUITE(ServerPairSettingsTest, Managers);

TYPED_TEST(ServerPairSettingsTest, IsEmptyAndOnServerBAtFirst) {
    EXPECT_FALSE(this->manager_.UseServerA());
    for (const auto& members : {this->plain_, this->paths_}) {
        for (const auto& member : members) {
            EXPECT_EQ((this->manager_.*member.reader)(), "");
        }
    }
}

TYPED_TEST(ServerPairSettingsTest, KeepsEachMemberAsItWasSet) {
    int number = 0;
    for (const auto& members : {this->plain_, this->paths_}) {
        for (const auto& member : members) {
            const std::string value = " v" + std::to_string(number++) + "\\ ;#";
            EXPECT_EQ(this->Written(member, value), value);
        }
    }
    number = 0;
    for (const auto& members : {this->plain_, this->paths_}) {
        for (const auto& member : members) {
            EXPECT_EQ((this->manager_.*member.reader)(), " v" + std::to_string(number++) + "\\ ;#");
        }
    }
    this->manager_.UseServerA(true);
    EXPECT_TRUE(this->manager_.UseServerA());
    this->manager_.UseServerA(false);
    EXPECT_FALSE(this->manager_.UseServerA());
}

TYPED_TEST(ServerPairSettingsTest, CutsOneBackslashFromTheEndOfAPath) {
    for (const auto& member : this->paths_) {
        EXPECT_EQ(this->Written(member, "D:\\Data\\"), "D:\\Data");
        EXPECT_EQ(this->Written(member, "D:\\Data"), "D:\\Data");
        EXPECT_EQ(this->Written(member, "C:\\"), "C:");
        EXPECT_EQ(this->Written(member, "\\"), "");
        EXPECT_EQ(this->Written(member, "\\\\"), "\\");
        EXPECT_EQ(this->Written(member, ""), "");
        EXPECT_EQ(this->Written(member, "D:/Data/ "), "D:/Data/ ");
        EXPECT_EQ(this->Written(member, "D:\\Data\\ "), "D:\\Data\\ "); // a blank after the backslash
    }
}

} // namespace
} // namespace kv

// The managers with a driver manager that counts handles: whichever ODBC call fails, during an operation or
// on its failure path, no handle and no connection is leaked.
#include <gtest/gtest.h>

#include <functional>

#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/odbc_counting.h"

namespace kv {
namespace {

using fakes::Counting;

class HandlesOfManagers : public ::testing::Test {
  protected:
    HandlesOfManagers() {
        registry_.AddText(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey, "", "L:\\Log");
        files_.AddFolder("L:\\Log");
    }
    ~HandlesOfManagers() override { fakes::ResetCounting(); }

    /// Runs the operation of a new manager with each of its ODBC calls failing in turn.
    template <class Manager>
    static void FailEveryCall(const std::function<bool(Manager&)>& operation) {
        const auto run = [&](std::size_t failing_call) {
            fakes::ResetCounting();
            Counting().results = {{.rows = 3}};
            Counting().failing_call = failing_call;
            Manager manager;
            manager.UseServerA(true);
            manager.ServerA("x");
            manager.UserA("sa");
            return operation(manager);
        };
        ASSERT_TRUE(run(0));
        const std::size_t calls = Counting().calls;
        ASSERT_GT(calls, 10U);
        std::size_t failed = 0;
        for (std::size_t call = 1; call <= calls; ++call) {
            failed += run(call) ? 0 : 1;
            EXPECT_EQ(Counting().open_handles, 0U) << Counting().failed_function;
            EXPECT_EQ(Counting().open_connections, 0U) << Counting().failed_function;
            EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
        }
        EXPECT_GT(failed,
                  calls / 4); // a call that fails while cleaning up or after the rows fails no operation
    }

    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
};

TEST_F(HandlesOfManagers, AreFreedWhicheverCallOfACatalogueFails) {
    FailEveryCall<CUpgradeDbMgr>([](CUpgradeDbMgr& manager) {
        std::vector<std::string> names;
        return manager.GetDatabases(names);
    });
}

TEST_F(HandlesOfManagers, AreFreedWhicheverCallOfARemovalFails) {
    FailEveryCall<CUpgradeDbMgr>([](CUpgradeDbMgr& manager) { return manager.RemoveDatabase("Batch"); });
}

TEST_F(HandlesOfManagers, AreFreedWhicheverCallOfASynchronisationFails) {
    FailEveryCall<CSynchronizeDbMgr>(
        [](CSynchronizeDbMgr& manager) { return manager.Synchronize("One", "Two"); });
}

TEST_F(HandlesOfManagers, AreFreedWhicheverCallOfTheReplicationFails) {
    FailEveryCall<CSQLReplicationMgr>([](CSQLReplicationMgr& manager) {
        bool installed = false;
        return manager.IsReplicationInstalled("One", installed);
    });
}

} // namespace
} // namespace kv

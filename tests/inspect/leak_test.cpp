// Ten thousand operations with a driver manager that counts handles and lets any call fail: no handle is
// leaked.
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "fakes/odbc_counting.h"
#include "inspect/view_data_mgr.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

using fakes::Counting;
using fakes::LaidOut;

class Leaks : public ::testing::Test {
  protected:
    Leaks() {
        registry_.AddText(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey, "", "L:\\Log");
        files_.AddFolder("L:\\Log");
        manager_.ServerB("server");
        manager_.UserB("sa");
    }

    void RunOne(int number) {
        switch (number % 6) {
        case 0:
            manager_.GetTables("Batch", texts_);
            break;
        case 1:
            manager_.GetData("Batch", "Lots", texts_, table_);
            break;
        case 2:
            manager_.GetStoredProcedures("Batch", texts_);
            break;
        case 3:
            manager_.GetStoredProcedure("Batch", "sp");
            break;
        case 4:
            manager_.GetStoredProcedureParameters("Batch", "sp", parameters_);
            break;
        default:
            manager_.ExecuteStoredProcedure("Batch", "sp", parameters_, table_);
            break;
        }
    }

    std::vector<std::string> texts_;
    TextTable table_;
    ParameterArray parameters_;
    CViewDataMgr manager_;
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
};

TEST_F(Leaks, TenThousandOperationsLeaveNoHandleWhetherTheySucceedOrFail) {
    constexpr int kOperations = 10000;
    int failed = 0;
    for (int i = 0; i < kOperations; ++i) {
        fakes::ResetCounting();
        Counting().results = {LaidOut("tnt", {{"one", "1", std::nullopt}, {"two", "2", ""}})};
        Counting().catalogue = {LaidOut("tttntntnnnnn", {{"Batch", "dbo", "sp;1", "4", "1", "4", "int", "10",
                                                          std::nullopt, "0", std::nullopt, "1"}})};
        // Every other operation fails, each time at another call.
        Counting().failing_call = i % 2 == 0 ? 0 : static_cast<std::size_t>(1 + i / 12 % 60);
        RunOne(i / 2);
        failed += files_.HasFile(R"(L:\Log\KVLSQLDbMgr.log)") ? 1 : 0;
        files_.files.erase(fakes::FakeFiles::Plain(R"(L:\Log\KVLSQLDbMgr.log)"));
        ASSERT_EQ(Counting().open_handles, 0U) << i << " " << Counting().failed_function;
        ASSERT_EQ(Counting().open_connections, 0U) << i << " " << Counting().failed_function;
        ASSERT_TRUE(Counting().violations.empty()) << Counting().violations.front();
    }
    EXPECT_GT(failed, 1000);
    EXPECT_LT(failed, kOperations / 2 + 1);
    fakes::ResetCounting();
}

} // namespace
} // namespace kv

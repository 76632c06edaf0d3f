// The fixture of CViewDataMgr's tests, with a database in memory that answers as the test says.
#pragma once

#include "admin/manager_fixture.h"
#include "inspect/view_data_mgr.h"

namespace kv {

/// All rows of a table from row 0 on, each with its cells from column 1 on.
inline std::vector<Lines> Cells(const TextTable& table) {
    std::vector<Lines> rows;
    for (std::int32_t row = 0; row <= table.RowUpperBound(); ++row) {
        EXPECT_EQ(table(0, row), "");
        Lines& cells = rows.emplace_back();
        for (std::int32_t column = 1; column <= table.ColumnUpperBound(); ++column) {
            cells.push_back(table(column, row));
        }
    }
    return rows;
}

/// The number of the failure that the call raises; 0 if it raises none.
template <class Call>
std::int32_t FailureNumber(Call&& call) {
    try {
        call();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return 0;
}

class InspectTest : public ManagerTest {
  protected:
    InspectTest() { FillPair(manager_); }
    ~InspectTest() override { EXPECT_EQ(ado_.commands, 0U); }

    /// The ADO calls of an operation on the database "Batch" with these time-outs, `between` opening and
    /// closing.
    static Lines Calls(int seconds, const Lines& between) {
        const std::string time = std::to_string(seconds);
        Lines calls = {"CursorLocation 3", "ConnectionString " + ConnectionStringA("Batch"),
                       "CommandTimeout " + time, "ConnectionTimeout " + time, "Open '' '' '' -1"};
        calls.insert(calls.end(), between.begin(), between.end());
        calls.emplace_back("Close");
        return calls;
    }

    CViewDataMgr manager_;
};

} // namespace kv

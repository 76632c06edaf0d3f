// The bounds and cells of a TextTable.
#include "inspect/text_table.h"

#include "inspect/inspect_fixture.h"

namespace kv {
namespace {

constexpr std::int32_t kSubscript = run_time::kSubscriptOutOfRange;

class TextTableTest : public ::testing::Test {
  private:
    fakes::FakeFiles files_; // a failure's source is the executable's name
};

TEST_F(TextTableTest, HasNoBoundsBeforeItIsSized) {
    TextTable table;
    EXPECT_EQ(FailureNumber([&] { table.ColumnUpperBound(); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.RowUpperBound(); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(0, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.SetName(0, "name"); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.SetRows({}); }), kSubscript);
}

TEST_F(TextTableTest, IsSizedToOneEmptyRow) {
    TextTable table;
    table.ReDim(2);
    EXPECT_EQ(table.ColumnUpperBound(), 2);
    EXPECT_EQ(table.RowUpperBound(), 0);
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{"", ""}}));
    table.ReDim(0);
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{}}));
}

TEST_F(TextTableTest, HasNamesInRowZeroAndNothingInColumnZero) {
    TextTable table;
    table.ReDim(2);
    table.SetName(1, "number");
    table.SetName(2, "text");
    ado::RowStore rows;
    rows.Append({1, ado::Null()});
    rows.Append({2.5, ""});
    table.SetRows(std::move(rows));
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{"number", "text"}, {"1", "(Null)"}, {"2.5", ""}}));
    EXPECT_EQ(table.RowUpperBound(), 2);
    EXPECT_EQ(table(0, 2), "");
}

TEST_F(TextTableTest, FailsOutsideItsBounds) {
    TextTable table;
    table.ReDim(1);
    EXPECT_EQ(FailureNumber([&] { table(2, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(-1, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(1, 1); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(1, -1); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.SetName(2, "name"); }), kSubscript);
}

TEST_F(TextTableTest, SizingItAgainClearsIt) {
    TextTable table;
    table.ReDim(1);
    table.SetName(1, "old");
    ado::RowStore rows;
    rows.Append({"old"});
    table.SetRows(std::move(rows));
    table.ReDim(1);
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{""}}));
}

} // namespace
} // namespace kv

#include "inspect/text_table.h"

#include "inspect/inspect_fixture.h"

namespace kv {
namespace {

constexpr std::int32_t kSubscript = run_time::kSubscriptOutOfRange;

class TextTableTest : public ::testing::Test {
  private:
    fakes::FakeFiles files_; // failures of the run time name the executable
};

TEST_F(TextTableTest, HasNoBoundsBeforeItIsSized) {
    TextTable table;
    EXPECT_EQ(FailureNumber([&] { table.ColumnUpperBound(); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.RowUpperBound(); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(0, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table.GrowRow(); }), kSubscript);
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

TEST_F(TextTableTest, CellsNotFilledAreEmpty) {
    TextTable table;
    table.ReDim(3);
    table.Append("a");
    table.GrowRow();
    table.Append("");
    table.Append("b");
    table.GrowRow();
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{"a", "", ""}, {"", "b", ""}, {"", "", ""}}));
}

TEST_F(TextTableTest, OutsideItsBoundsItFails) {
    TextTable table;
    table.ReDim(1);
    EXPECT_EQ(FailureNumber([&] { table(2, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(-1, 0); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(1, 1); }), kSubscript);
    EXPECT_EQ(FailureNumber([&] { table(1, -1); }), kSubscript);
}

TEST_F(TextTableTest, SizingItAnewDropsWhatItHeld) {
    TextTable table;
    table.ReDim(1);
    table.Append("old");
    table.GrowRow();
    table.ReDim(1);
    EXPECT_EQ(Cells(table), (std::vector<Lines>{{""}}));
}

TEST_F(TextTableTest, CellsOfEveryLengthComeBackFromEveryPlace) {
    TextTable table;
    table.ReDim(2);
    table.Append("number");
    table.Append("text");
    constexpr std::int32_t kRows = 30000;
    const auto text = [](std::int32_t row) {
        return std::string(static_cast<std::size_t>(row % 300), static_cast<char>('a' + row % 26)) +
               std::string(1, '\0');
    };
    for (std::int32_t row = 1; row <= kRows; ++row) {
        table.GrowRow();
        table.Append(std::to_string(row));
        table.Append(text(row));
    }
    const std::string large(3'000'000, 'x'); // more than the table holds in one piece
    table.GrowRow();
    table.Append(large);
    table.GrowRow();
    table.Append("last");
    ASSERT_EQ(table.RowUpperBound(), kRows + 2);
    for (std::int32_t row = kRows; row >= 1; row -= 7) {
        ASSERT_EQ(table(1, row), std::to_string(row));
        ASSERT_EQ(table(2, row), text(row));
    }
    EXPECT_EQ(table(1, kRows + 1), large);
    EXPECT_EQ(table(1, kRows + 2), "last");
    EXPECT_EQ(table(1, 0), "number");
}

TEST_F(TextTableTest, AMillionRowsOfShortCellsCostLessThanTwiceTheirText) {
    TextTable table;
    table.ReDim(8);
    std::size_t text = 0;
    for (int row = 1; row <= 1'000'000; ++row) {
        table.GrowRow();
        for (int column = 1; column <= 8; ++column) {
            constexpr std::string_view kDigits = "1234567";
            const std::string_view cell = kDigits.substr(0, static_cast<std::size_t>(1 + (row + column) % 7));
            table.Append(cell);
            text += cell.size();
        }
    }
    EXPECT_LT(table.Bytes(), 2 * text);
    EXPECT_GT(table.Bytes(), text);
}

} // namespace
} // namespace kv

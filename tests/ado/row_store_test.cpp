// Tests the store that packs the values of a recordset into chunks of memory.
#include "ado/row_store.h"

#include <gtest/gtest.h>

namespace ado {
namespace {

/// Values of every kind, and of every size at which the packing changes.
std::vector<Variant> EveryKind() {
    return {Variant(),
            Null(),
            true,
            false,
            0,
            7,
            -8,
            8,
            std::int64_t{9223372036854775807},
            std::int64_t{-9223372036854775807 - 1},
            0.25F,
            -1e300,
            Decimal{"-12.34"},
            Decimal{"123456789012345678901234567890"},
            Date{2006, 5, 12, 14, 3, 22, 500},
            "",
            std::string(14, 'x'),
            std::string(15, 'y'),
            std::string(16, 'z'),
            std::string(200, 'w'),
            ByteArray{std::string("\0\xFF", 2)}};
}

TEST(RowStore, EveryValueIsFoundByItsPosition) {
    const std::vector<Variant> first = EveryKind();
    const std::vector<Variant> second(first.rbegin(), first.rend());
    RowStore store;
    store.Append(first);
    store.Append(second);
    for (std::size_t column = 0; column < first.size(); ++column) {
        EXPECT_EQ(store.Value(0, column), first[column]) << column;
        EXPECT_EQ(store.Value(1, column), second[column]) << column;
    }
}

TEST(RowStore, WideTextIsConvertedToTheCodePage) {
    RowStore store;
    store.BeginRow();
    store.PutWideText(u"a\u20AC\u00FC");
    store.PutWideText(u"\u4E00\U0001F600x"); // neither is in the code page; the second has two UTF-16 units
    store.PutWideText(u"");
    store.PutWideDecimal(u"-1.50");
    EXPECT_EQ(store.Value(0, 0), Variant("a\x80\xFC"));
    EXPECT_EQ(store.Value(0, 1), Variant("?"
                                         "?x"));
    EXPECT_EQ(store.Value(0, 2), Variant(""));
    EXPECT_EQ(store.Value(0, 3), Variant(Decimal{"-1.50"}));
}

TEST(RowStore, WideTextThatBecomesShorterIsKeptAtEverySize) {
    // The number of its UTF-16 units takes more bytes than the number of its characters.
    for (const std::size_t characters : {8U, 14U, 15U, 64U, 127U, 128U, 20000U}) {
        std::u16string wide;
        for (std::size_t i = 0; i < characters; ++i) {
            wide += u"\U0001F600";
        }
        RowStore store;
        store.BeginRow();
        store.PutWideText(wide + u"end");
        store.PutWhole(7);
        EXPECT_EQ(store.Value(0, 0), Variant(std::string(characters, '?') + "end")) << characters;
        EXPECT_EQ(store.Value(0, 1), Variant(7)) << characters;
    }
}

TEST(RowStore, PositionsReachAllChunks) {
    RowStore store;
    const std::string big(3000000, 'x');
    constexpr int kRows = 100000;
    const auto text = [&](int row) { return row % 25000 == 7 ? big : "row " + std::to_string(row); };
    for (int row = 0; row < kRows; ++row) {
        store.Append({row, text(row)});
    }
    for (int row = kRows - 1; row >= 0; row -= 3) {
        const auto place = static_cast<std::size_t>(row);
        ASSERT_EQ(store.Value(place, 0), Variant(row));
        ASSERT_EQ(store.Value(place, 1), Variant(text(row)));
    }
}

TEST(RowStore, ManyRowsOfShortValuesTakeLessThanTwiceTheirText) {
    RowStore store;
    std::size_t text = 0;
    for (int row = 0; row < 100'000; ++row) {
        store.BeginRow();
        for (int column = 0; column < 8; ++column) {
            constexpr std::string_view kDigits = "1234567";
            const std::string_view cell = kDigits.substr(0, static_cast<std::size_t>(1 + (row + column) % 7));
            store.PutText(cell);
            text += cell.size();
        }
    }
    EXPECT_LT(store.Bytes(), 2 * text);
    EXPECT_GT(store.Bytes(), text);
}

} // namespace
} // namespace ado

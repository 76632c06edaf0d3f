// Tests the conversions of a Variant to text and to 16-bit integers, and that the row store keeps every kind
// of value.
#include "ado/variant.h"

#include <gtest/gtest.h>

#include "ado/row_store.h"

namespace ado {
namespace {

std::int32_t RunTimeNumberOf(const std::function<void()>& convert) {
    try {
        convert();
    } catch (const ConversionError& error) {
        return error.Number();
    }
    ADD_FAILURE() << "converted";
    return {};
}

TEST(VariantAsText, IsTheTextOfTheProgramsLanguage) {
    EXPECT_EQ(Variant().ToString(), "");
    EXPECT_EQ(Variant("  a b ").ToString(), "  a b ");
    EXPECT_EQ(Variant(true).ToString(), "True");
    EXPECT_EQ(Variant(false).ToString(), "False");
    EXPECT_EQ(Variant(std::int64_t{-9223372036854775807 - 1}).ToString(), "-9223372036854775808");
    EXPECT_EQ(Variant(ByteArray{std::string("\x01\0\xFF", 3)}).ToString(), "0x0100FF");
}

TEST(VariantAsText, FloatingNumbersHaveTheDigitsOfTheirType) {
    EXPECT_EQ(Variant(0.1).ToString(), "0.1");
    EXPECT_EQ(Variant(1.0 / 3).ToString(), "0.333333333333333");
    EXPECT_EQ(Variant(1.0F / 3).ToString(), "0.3333333");
    EXPECT_EQ(Variant(123456789012345.0).ToString(), "123456789012345");
    EXPECT_EQ(Variant(1e15).ToString(), "1E+15");
    EXPECT_EQ(Variant(-1.5e-7).ToString(), "-1.5E-07");
    EXPECT_EQ(Variant(-0.0).ToString(), "0");
}

TEST(VariantAsText, ExactNumbersLoseTheZerosOfTheirScale) {
    EXPECT_EQ(Variant(Decimal{"1.5000"}).ToString(), "1.5");
    EXPECT_EQ(Variant(Decimal{"-12.00"}).ToString(), "-12");
    EXPECT_EQ(Variant(Decimal{".50"}).ToString(), "0.5");
    EXPECT_EQ(Variant(Decimal{"-.05"}).ToString(), "-0.05");
    EXPECT_EQ(Variant(Decimal{"-0.00"}).ToString(), "0");
    EXPECT_EQ(Variant(Decimal{"1000"}).ToString(), "1000");
    EXPECT_EQ(Variant(Decimal{"12345678901234567890123456789012345678"}).ToString(),
              "12345678901234567890123456789012345678");
}

TEST(VariantAsText, DatesLeaveOutMidnightAndDayZero) {
    EXPECT_EQ(Variant(Date{2006, 5, 12, 14, 3, 22, 0}).ToString(), "5/12/2006 2:03:22 PM");
    EXPECT_EQ(Variant(Date{2006, 5, 12, 0, 3, 5, 0}).ToString(), "5/12/2006 12:03:05 AM");
    EXPECT_EQ(Variant(Date{2006, 5, 12, 12, 0, 0, 0}).ToString(), "5/12/2006 12:00:00 PM");
    EXPECT_EQ(Variant(Date{2006, 5, 12, 0, 0, 0, 0}).ToString(), "5/12/2006");
    EXPECT_EQ(Variant(Date{1899, 12, 30, 9, 5, 0, 0}).ToString(), "9:05:00 AM");
    EXPECT_EQ(Variant(Date{1899, 12, 30, 0, 0, 0, 0}).ToString(), "12:00:00 AM");
    EXPECT_EQ(Variant(Date{9999, 12, 31, 23, 59, 59, 0}).ToString(), "12/31/9999 11:59:59 PM");
    EXPECT_EQ(Variant(Date{1753, 1, 1, 0, 0, 0, 0}).ToString(), "1/1/1753");
}

TEST(VariantAsText, PartsOfASecondAreRounded) {
    EXPECT_EQ(Variant(Date{2006, 12, 31, 23, 59, 59, 499999999}).ToString(), "12/31/2006 11:59:59 PM");
    EXPECT_EQ(Variant(Date{2006, 12, 31, 23, 59, 59, 997000000}).ToString(), "1/1/2007");
}

TEST(VariantAsText, NullIsRefused) {
    EXPECT_EQ(RunTimeNumberOf([] { Variant(Null()).ToString(); }), kv::run_time::kInvalidUseOfNull);
}

TEST(VariantAsInt16, RoundsAHalfToTheEvenNeighbour) {
    EXPECT_EQ(Variant(0.5).ToInt16(), 0);
    EXPECT_EQ(Variant(1.5).ToInt16(), 2);
    EXPECT_EQ(Variant(2.5).ToInt16(), 2);
    EXPECT_EQ(Variant(-0.5).ToInt16(), 0);
    EXPECT_EQ(Variant(-1.5).ToInt16(), -2);
    EXPECT_EQ(Variant(-2.5).ToInt16(), -2);
    EXPECT_EQ(Variant(2.51F).ToInt16(), 3);
    EXPECT_EQ(Variant(Decimal{"3.5000"}).ToInt16(), 4);
}

TEST(VariantAsInt16, AcceptsEveryKindOfNumber) {
    EXPECT_EQ(Variant().ToInt16(), 0);
    EXPECT_EQ(Variant(true).ToInt16(), -1);
    EXPECT_EQ(Variant(32767).ToInt16(), 32767);
    EXPECT_EQ(Variant(-32768).ToInt16(), -32768);
    EXPECT_EQ(Variant(Decimal{".5"}).ToInt16(), 0);
    EXPECT_EQ(Variant(Date{1900, 1, 1, 12, 0, 0, 0}).ToInt16(), 2); // day 2.5
}

TEST(VariantAsInt16, ReadsTextAsANumber) {
    EXPECT_EQ(Variant("2").ToInt16(), 2);
    EXPECT_EQ(Variant("  +2.5 ").ToInt16(), 2);
    EXPECT_EQ(Variant("-3.5").ToInt16(), -4);
    EXPECT_EQ(Variant("1e3").ToInt16(), 1000);
    EXPECT_EQ(Variant(".5").ToInt16(), 0);
    EXPECT_EQ(Variant("007").ToInt16(), 7);
    EXPECT_EQ(Variant("32767.49").ToInt16(), 32767);
}

TEST(VariantAsInt16, RefusesAValueThatIsNotANumber) {
    for (const char* text :
         {"", "  ", "two", "2x", "1 2", "--2", "+-2", "-", ".", "inf", "nan", "-inf", "0x10",
          "2."
          "0.1"}) {
        EXPECT_EQ(RunTimeNumberOf([&] { Variant(text).ToInt16(); }), kv::run_time::kTypeMismatch) << text;
    }
    EXPECT_EQ(RunTimeNumberOf([] { Variant(ByteArray{"1"}).ToInt16(); }), kv::run_time::kTypeMismatch);
}

TEST(VariantAsInt16, RefusesANumberThatDoesNotFit) {
    for (const char* text : {"32767.5", "32768", "-32768.51", "1e30", "1e999"}) {
        EXPECT_EQ(RunTimeNumberOf([&] { Variant(text).ToInt16(); }), kv::run_time::kOverflow) << text;
    }
    EXPECT_EQ(RunTimeNumberOf([] { Variant(std::int64_t{9223372036854775807}).ToInt16(); }),
              kv::run_time::kOverflow);
    EXPECT_EQ(RunTimeNumberOf([] { Variant(Null()).ToInt16(); }), kv::run_time::kInvalidUseOfNull);
}

TEST(RowStore, ReturnsEveryKindOfValueUnchanged) {
    const std::vector<Variant> first = {Variant(),
                                        Null(),
                                        true,
                                        false,
                                        0,
                                        -1,
                                        std::int64_t{9223372036854775807},
                                        std::int64_t{-9223372036854775807 - 1},
                                        0.25F,
                                        -1e300,
                                        Decimal{"-12.34"},
                                        Date{2006, 5, 12, 14, 3, 22, 500},
                                        "",
                                        std::string("a\0b", 3),
                                        ByteArray{std::string("\0\xFF", 2)}};
    std::vector<Variant> second = first;
    std::reverse(second.begin(), second.end());
    RowStore store;
    store.Append(first);
    store.Append(second);
    ASSERT_EQ(store.RowCount(), 2U);
    std::vector<Variant> row(first.size());
    RowStore::Place place;
    store.Read(place, row);
    EXPECT_EQ(row, first);
    store.Read(place, row);
    EXPECT_EQ(row, second);
}

TEST(RowStore, HoldsRowsBeyondItsChunksAndRowsBiggerThanOne) {
    RowStore store;
    const std::string big(3000000, 'x');
    for (int i = 0; i < 200000; ++i) {
        store.Append({i, i % 50000 == 7 ? big : "row " + std::to_string(i)});
    }
    RowStore::Place place;
    std::vector<Variant> row(2);
    for (int i = 0; i < 200000; ++i) {
        store.Read(place, row);
        ASSERT_EQ(row[0], Variant(i));
        ASSERT_EQ(row[1], Variant(i % 50000 == 7 ? big : "row " + std::to_string(i)));
    }
}

} // namespace
} // namespace ado

// Exact arithmetic on 38 digits.
#include <gtest/gtest.h>

#include "devserver/tsql/scalar/decimal.h"

namespace devsql {
namespace {

Decimal D(std::string_view text) {
    return *ParseDecimal(text).value;
}

std::string Written(const std::optional<Decimal>& value) {
    return value ? DecimalText(*value) : "too large";
}

constexpr std::string_view kNines = "99999999999999999999999999999999999999";

TEST(Decimals, AreReadAndWritten) {
    for (const std::string_view text : std::initializer_list<std::string_view>{
             "0", "1.50", "-0.05", "123456789012345678901234567890.12345678", kNines}) {
        EXPECT_EQ(DecimalText(D(text)), text);
    }
    EXPECT_EQ(DecimalText(D("+.5")), "0.5");
    EXPECT_EQ(DecimalText(D("5.")), "5");
    EXPECT_EQ(DecimalText(D("007")), "7");
}

TEST(Decimals, RefuseTextThatIsNotANumber) {
    for (const std::string_view text : {"", ".", "-", "1.2.3", "1e5", "a", "1 2", "--1"}) {
        EXPECT_FALSE(ParseDecimal(text).valid) << text;
    }
    const ParsedDecimal large = ParseDecimal("100000000000000000000000000000000000000");
    EXPECT_TRUE(large.valid);
    EXPECT_FALSE(large.value);
}

TEST(Decimals, RoundExcessDigitsWhenRead) {
    EXPECT_EQ(DecimalText(*ParseDecimal("1.2345", 2).value), "1.23");
    EXPECT_EQ(DecimalText(*ParseDecimal("1.235", 2).value), "1.24");
    EXPECT_EQ(DecimalText(*ParseDecimal("-1.2351", 2).value), "-1.24");
    EXPECT_EQ(DecimalText(*ParseDecimal("0.3333333333333333333333333333333333333333333333").value),
              "0.33333333333333333333333333333333333333");
}

TEST(Decimals, ChangeTheirScaleWithRounding) {
    EXPECT_EQ(Written(Rescale(D("1.235"), 2)), "1.24");
    EXPECT_EQ(Written(Rescale(D("-1.235"), 2)), "-1.24");
    EXPECT_EQ(Written(Rescale(D("1.239"), 2, Rounding::TowardZero)), "1.23");
    EXPECT_EQ(Written(Rescale(D("1.5"), 4)), "1.5000");
    EXPECT_EQ(Written(Rescale(D(kNines), 1)), "too large");
}

TEST(Decimals, AddSubtractAndOverflow) {
    EXPECT_EQ(Written(AddDecimals(D("1.5"), D("2.25"), 2)), "3.75");
    EXPECT_EQ(Written(AddDecimals(D("1.5"), D("-2.25"), 2)), "-0.75");
    EXPECT_EQ(Written(AddDecimals(D(kNines), D("1"), 0)), "too large");
    EXPECT_EQ(Written(AddDecimals(D(kNines), D(kNines), 0)), "too large");
    EXPECT_EQ(Written(AddDecimals(D(kNines), D("-1"), 0)), "99999999999999999999999999999999999998");
}

TEST(Decimals, MultiplyWith256Bits) {
    EXPECT_EQ(Written(MultiplyDecimals(D("1.5"), D("-2.5"), 2)), "-3.75");
    EXPECT_EQ(Written(MultiplyDecimals(D("9999999999999999999"), D("9999999999999999999"), 0)),
              "99999999999999999980000000000000000001");
    EXPECT_EQ(Written(MultiplyDecimals(D("0.99999999999999999999999999999999999999"),
                                       D("0.99999999999999999999999999999999999999"), 37)),
              "1.0000000000000000000000000000000000000");
    EXPECT_EQ(Written(MultiplyDecimals(D(kNines), D("10"), 0)), "too large");
    EXPECT_EQ(Written(MultiplyDecimals(D(kNines), D(kNines), 0)), "too large");
}

TEST(Decimals, CutTheQuotientsLastDigit) {
    EXPECT_EQ(Written(DivideDecimals(D("2"), D("3"), 6)), "0.666666");
    EXPECT_EQ(Written(DivideDecimals(D("-2"), D("3"), 6)), "-0.666666");
    EXPECT_EQ(Written(DivideDecimals(D("1"), D("0.00000000000000000001"), 0)), "100000000000000000000");
    EXPECT_EQ(Written(DivideDecimals(D("1"), D(kNines), 37)), "0.0000000000000000000000000000000000000");
    EXPECT_EQ(Written(DivideDecimals(D(kNines), D("0.1"), 0)), "too large");
    EXPECT_EQ(Written(DivideDecimals(D("12.3456"), D("2"), 1)), "6.1");
}

TEST(Decimals, HaveRemaindersWithTheSignOfTheDividend) {
    EXPECT_EQ(Written(DecimalRemainder(D("7.5"), D("2"), 1)), "1.5");
    EXPECT_EQ(Written(DecimalRemainder(D("-7.5"), D("2"), 1)), "-1.5");
    EXPECT_EQ(Written(DecimalRemainder(D("7.5"), D("-2.25"), 2)), "0.75");
}

TEST(Decimals, CompareAcrossScales) {
    EXPECT_EQ(CompareDecimals(D("1.50"), D("1.5")), 0);
    EXPECT_EQ(CompareDecimals(D("-2"), D("1")), -1);
    EXPECT_EQ(CompareDecimals(D("-2"), D("-3")), 1);
    EXPECT_EQ(CompareDecimals(D(kNines), D("0.00000000000000000000000000000000000001")), 1);
}

TEST(Decimals, HaveSeventeenDigitsOfADouble) {
    EXPECT_EQ(Written(FromDouble(0.1, 1)), "0.1");
    EXPECT_EQ(Written(FromDouble(1.005, 2)), "1.00");
    EXPECT_EQ(Written(FromDouble(-2.5, 0)), "-3");
    EXPECT_EQ(Written(FromDouble(1e20, 2)), "100000000000000000000.00");
    EXPECT_EQ(Written(FromDouble(1e-30, 5)), "0.00000");
    EXPECT_EQ(Written(FromDouble(1e-300, 5)), "0.00000");
    EXPECT_EQ(Written(FromDouble(1.1e38, 0)), "too large");
    EXPECT_EQ(Written(FromDouble(1e300, 0)), "too large");
    EXPECT_EQ(Written(FromDouble(0, 3)), "0.000");
}

TEST(Decimals, ConvertToDoublesAndIntegers) {
    EXPECT_EQ(ToDouble(D("-1.25")), -1.25);
    EXPECT_EQ(ToInt64(D("1.9"), Rounding::TowardZero), 1);
    EXPECT_EQ(ToInt64(D("-1.5"), Rounding::HalfUp), -2);
    EXPECT_EQ(ToInt64(D("9223372036854775807"), Rounding::HalfUp), INT64_MAX);
    EXPECT_EQ(ToInt64(D("9223372036854775808"), Rounding::HalfUp), std::nullopt);
}

} // namespace
} // namespace devsql

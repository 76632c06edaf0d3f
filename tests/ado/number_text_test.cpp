// Tests how numbers are shown as text and read from text, in the forms of different locales.
#include "ado/number_text.h"

#include <gtest/gtest.h>

#include "fakes/fake_locale.h"

namespace ado {
namespace {

using fakes::American;
using fakes::German;
using fakes::Swedish;

/// Reads the text as a number and returns it in plain digits; "-" if the text is not a number.
std::string Read(const std::string& text, const platform::LocaleForms& forms = American()) {
    const auto number = ReadNumber(text, forms);
    return number ? number->Plain() : "-";
}

TEST(NumberText, IsShownWithTheLocalesDecimalPointAndWithoutGroups) {
    EXPECT_EQ(ShowFloating(1234567.25, 15, American()), "1234567.25");
    EXPECT_EQ(ShowFloating(1234567.25, 15, German()), "1234567,25");
    EXPECT_EQ(ShowFloating(-1.5e-7, 15, Swedish()), "-1,5E-07");
    EXPECT_EQ(ShowExact("-12345.6700", German()), "-12345,67");
    EXPECT_EQ(ShowExact("-.0500", Swedish()), "-0,05");
    EXPECT_EQ(ShowExact("0.000", German()), "0");
    EXPECT_EQ(ShowExact("-0.00", German()), "0");
    EXPECT_EQ(ShowExact("12.", German()), "12");
}

TEST(NumberText, ReadsSignCurrencyGroupsPointAndExponent) {
    EXPECT_EQ(Read("12"), "12");
    EXPECT_EQ(Read(" +12.50\t"), "12.5");
    EXPECT_EQ(Read("-.5"), "-0.5");
    EXPECT_EQ(Read("5."), "5");
    EXPECT_EQ(Read("1,000.50"), "1000.5");
    EXPECT_EQ(Read("1,234,567"), "1234567");
    EXPECT_EQ(Read("1E3"), "1000");
    EXPECT_EQ(Read("12.5e-3"), "0.0125");
    EXPECT_EQ(Read("$5"), "5");
    EXPECT_EQ(Read("-$5"), "-5");
    EXPECT_EQ(Read("$ -5.25"), "-5.25");
    EXPECT_EQ(Read("5$"), "5");
    EXPECT_EQ(Read("0"), "0");
    EXPECT_EQ(Read("-0.000"), "0");
    EXPECT_EQ(Read("12345678901234567890123456789012345678"), "12345678901234567890123456789012345678");
}

TEST(NumberText, ReadsTheLocalesForms) {
    EXPECT_EQ(Read("1.000,50", German()), "1000.5");
    EXPECT_EQ(Read("5,25 \x80", German()), "5.25");
    EXPECT_EQ(Read("1\xA0"
                   "000,50",
                   Swedish()),
              "1000.5");
    EXPECT_EQ(Read("1 000,50 kr", Swedish()), "1000.5");
    EXPECT_EQ(Read("1000 kr", Swedish()), "1000");
    EXPECT_EQ(Read("kr 7", Swedish()), "7");
}

TEST(NumberText, ReadsGroupsOfDifferentSizes) {
    platform::LocaleForms indian;
    indian.group_sizes = {3, 2};
    EXPECT_EQ(Read("1,23,45,678", indian), "12345678");
    EXPECT_EQ(Read("12,345,678", indian), "-");
}

TEST(NumberText, RefusesTheDecimalPointOfAnotherLocale) {
    EXPECT_EQ(Read("1,5"), "-") << "it would become 15";
    EXPECT_EQ(Read("1,5000"), "-");
    EXPECT_EQ(Read("1.5", German()), "-");
    EXPECT_EQ(Read("1.5", Swedish()), "-");
    EXPECT_EQ(Read("1.000.50", German()), "-");
}

TEST(NumberText, RefusesTextThatIsNotANumber) {
    for (const char* const text :
         {"",   "  ",   "two",    "2x",     "1 2",      "--2",   "+-2",     "-",    ".",   ",",
          "$",  "-$",   "$$5",    "5 5",    "1e",       "1e+",   "1e1.5",   "0x10", "inf", "nan",
          "1,", ",000", "1,,000", "1,0000", "1000,000", "1.2.3", "1.5,000", "5-",   "(5)", "5 \x80"}) {
        EXPECT_EQ(Read(text), "-") << text;
    }
}

TEST(NumberText, HasTheSizeAndScaleOfAnExactNumber) {
    const auto number = ReadNumber("00120.0500", American());
    ASSERT_TRUE(number);
    EXPECT_EQ(number->digits, "12005");
    EXPECT_EQ(number->scale, 2);
    EXPECT_EQ(number->WholeDigits(), 3);
    EXPECT_EQ(number->Scientific(), "12005E-2");
    EXPECT_EQ(ReadNumber("1e99999999999999999999", American())->WholeDigits(), 1'000'001);
    EXPECT_EQ(ReadNumber("-1e-99999999999999999999", American())->scale, 1'000'000);
    EXPECT_FALSE(ReadNumber("5.00", American())->HasFraction());
    EXPECT_FALSE(ReadNumber("500e-2", American())->HasFraction());
}

} // namespace
} // namespace ado

// Tests the conversion of values to the types of parameters: the texts and limits of each type, and that a
// value which is shown can be read again.
#include "ado/parameter_value.h"

#include <gtest/gtest.h>

#include <limits>

#include "ado/ado_types.h"
#include "ado/date_text.h"
#include "ado/odbc_values.h"
#include "fakes/fake_locale.h"

namespace ado {
namespace {

using fakes::American;
using fakes::German;
using fakes::Swedish;

Parameter Of(std::int32_t type, std::int32_t size = 0, int precision = 0, int scale = 0) {
    Parameter parameter;
    parameter.Name("@p");
    parameter.Type(type);
    parameter.Size(size);
    parameter.Precision(static_cast<std::uint8_t>(precision));
    parameter.NumericScale(static_cast<std::uint8_t>(scale));
    return parameter;
}

Parameter Bit() {
    return Of(adBoolean);
}
Parameter Int() {
    return Of(adInteger, 0, 10);
}
Parameter Exact(int precision, int scale) {
    return Of(adNumeric, 0, precision, scale);
}
Parameter Money() {
    return Of(adCurrency, 0, 19, 4);
}
Parameter SmallMoney() {
    return Of(adCurrency, 0, 10, 4);
}
Parameter DateTime() {
    return Of(adDBTimeStamp, 0, 23, 3);
}
Parameter SmallDateTime() {
    return Of(adDBTimeStamp, 0, 16, 0);
}

odbc::Value Typed(Parameter parameter, const Variant& value,
                  const platform::LocaleForms& forms = American()) {
    parameter.Value(value);
    return TypedValue(parameter, forms);
}

/// Converts the value and returns the SQLSTATE with which it is refused; empty if it is accepted.
std::string Refused(Parameter parameter, const Variant& value,
                    const platform::LocaleForms& forms = American()) {
    try {
        Typed(std::move(parameter), value, forms);
    } catch (const ValueRefused& refused) {
        return refused.SqlState();
    }
    return {};
}

TEST(ParameterValue, EmptyAndNullHaveNoValue) {
    EXPECT_EQ(Typed(Int(), Variant()), odbc::Value());
    EXPECT_EQ(Typed(Int(), Null()), odbc::Value());
}

TEST(ParameterValue, ARefusalNamesParameterTypeAndValue) {
    const auto text_of = [](Parameter parameter, const Variant& value) -> std::string {
        try {
            Typed(std::move(parameter), value);
        } catch (const ValueRefused& refused) {
            return refused.what();
        }
        return {};
    };
    EXPECT_EQ(text_of(Int(), "5.7"),
              "The value '5.7' cannot be given to the parameter @p of the type int: it has a fraction.");
    EXPECT_EQ(text_of(Of(adVarChar, 5), "abcdef"),
              "The value 'abcdef' cannot be given to the parameter @p of the "
              "type varchar(5): it is too long.");
    EXPECT_EQ(text_of(Of(adVarChar, 5), std::string(200, 'x')),
              "The value '" + std::string(100, 'x') +
                  "...' cannot be given to the parameter @p of the type varchar(5): it is too long.");
}

TEST(ParameterValue, EmptyTextIsAValueForTextTypesOnly) {
    EXPECT_EQ(Typed(Of(adVarChar, 5), ""), odbc::Value(""));
    EXPECT_EQ(Typed(Of(adLongVarWChar, 1073741823), ""), odbc::Value(""));
    for (const std::int32_t type :
         {adBoolean, adUnsignedTinyInt, adSmallInt, adInteger, adBigInt, adSingle, adDouble, adNumeric,
          adCurrency, adGUID, adBinary, adVarBinary, adLongVarBinary}) {
        EXPECT_EQ(Refused(Of(type), ""), "22018") << type;
        EXPECT_EQ(Refused(Of(type), "  "), "22018") << type;
    }
    for (const std::int32_t type : {adDBTimeStamp, adDBDate, adDBTime}) {
        EXPECT_EQ(Refused(Of(type), ""), "22007") << type;
    }
}

TEST(ParameterValue, TruthValues) {
    for (const char* const text : {"True", "true", " TRUE ", "1", "1.0"}) {
        EXPECT_EQ(Typed(Bit(), text), odbc::Value(true)) << text;
    }
    for (const char* const text : {"False", "fALSE", "0", "0.00"}) {
        EXPECT_EQ(Typed(Bit(), text), odbc::Value(false)) << text;
    }
    EXPECT_EQ(Typed(Bit(), "wahr", German()), odbc::Value(true));
    EXPECT_EQ(Typed(Bit(), "Falskt", Swedish()), odbc::Value(false));
    EXPECT_EQ(Typed(Bit(), "True", German()), odbc::Value(true));
    EXPECT_EQ(Typed(Bit(), true), odbc::Value(true));
    EXPECT_EQ(Typed(Bit(), 1), odbc::Value(true));
    EXPECT_EQ(Refused(Bit(), "0.5"), "22003");
    EXPECT_EQ(Refused(Bit(), "2"), "22003");
    EXPECT_EQ(Refused(Bit(), "-1"), "22003");
    EXPECT_EQ(Refused(Bit(), "Wahr"), "22018");
    EXPECT_EQ(Refused(Bit(), "yes"), "22018");
}

TEST(ParameterValue, WholeNumbersAreAcceptedUpToTheLimitsOfTheirType) {
    struct Range {
        std::int32_t type;
        const char* least;
        const char* below;
        const char* most;
        const char* above;
    };
    for (const Range& range : {Range{adUnsignedTinyInt, "0", "-1", "255", "256"},
                               Range{adSmallInt, "-32768", "-32769", "32767", "32768"},
                               Range{adInteger, "-2147483648", "-2147483649", "2147483647", "2147483648"},
                               Range{adBigInt, "-9223372036854775808", "-9223372036854775809",
                                     "9223372036854775807", "9223372036854775808"}}) {
        EXPECT_EQ(Typed(Of(range.type), range.least), odbc::Value(std::int64_t{std::stoll(range.least)}));
        EXPECT_EQ(Typed(Of(range.type), range.most), odbc::Value(std::int64_t{std::stoll(range.most)}));
        EXPECT_EQ(Refused(Of(range.type), range.below), "22003");
        EXPECT_EQ(Refused(Of(range.type), range.above), "22003");
        EXPECT_EQ(Refused(Of(range.type), "5.7"), "22003");
        EXPECT_EQ(Refused(Of(range.type), "five"), "22018");
        EXPECT_EQ(Refused(Of(range.type), "1E400"), "22003");
    }
}

TEST(ParameterValue, WholeNumbersInOtherForms) {
    const odbc::Value thousand = std::int64_t{1000};
    EXPECT_EQ(Typed(Int(), "1E3"), thousand);
    EXPECT_EQ(Typed(Int(), "1,000.00"), thousand);
    EXPECT_EQ(Typed(Int(), "$1,000"), thousand);
    EXPECT_EQ(Typed(Int(), "1.000", German()), thousand);
    EXPECT_EQ(Typed(Int(), "1 000", Swedish()), thousand);
    EXPECT_EQ(Typed(Int(), 1000.0), thousand);
    EXPECT_EQ(Typed(Int(), Decimal{"1000.00"}, German()), thousand);
    EXPECT_EQ(Refused(Int(), 5.7), "22003");
    EXPECT_EQ(Refused(Int(), "True"), "22018");
    EXPECT_EQ(Refused(Int(), kDayZero), "22018");
}

TEST(ParameterValue, FloatingNumbersNeitherOverflowNorBecomeZero) {
    EXPECT_EQ(Typed(Of(adDouble), "0.1"), odbc::Value(0.1));
    EXPECT_EQ(Typed(Of(adDouble), "-1,5E+100", German()), odbc::Value(-1.5E+100));
    EXPECT_EQ(Typed(Of(adSingle), "0.1"), odbc::Value(double{0.1F}));
    EXPECT_EQ(Typed(Of(adSingle), 0.1F), odbc::Value(double{0.1F}));
    EXPECT_EQ(Typed(Of(adDouble), "0"), odbc::Value(0.0));
    EXPECT_EQ(Refused(Of(adDouble), "1E400"), "22003");
    EXPECT_EQ(Refused(Of(adDouble), "1E-400"), "22003");
    EXPECT_EQ(Refused(Of(adSingle), "1E39"), "22003");
    EXPECT_EQ(Refused(Of(adSingle), "1E-60"), "22003");
    EXPECT_EQ(Refused(Of(adSingle), "1.5", German()), "22018");
}

TEST(ParameterValue, DecimalsKeepEveryDigit) {
    EXPECT_EQ(Typed(Exact(5, 2), "123.45"), odbc::Value("123.45"));
    EXPECT_EQ(Typed(Exact(5, 2), "123.4500"), odbc::Value("123.45"));
    EXPECT_EQ(Typed(Exact(5, 2), "-999,99", German()), odbc::Value("-999.99"));
    EXPECT_EQ(Typed(Exact(12, 4), "1,000.50"), odbc::Value("1000.5"));
    EXPECT_EQ(Typed(Exact(38, 0), "12345678901234567890123456789012345678"),
              odbc::Value("12345678901234567890123456789012345678"));
    EXPECT_EQ(Typed(Exact(2, 2), ".05"), odbc::Value("0.05"));
    EXPECT_EQ(Typed(Exact(5, 2), Decimal{"1.50"}, German()), odbc::Value("1.5"));
    EXPECT_EQ(Refused(Exact(5, 2), "1.234"), "22003");
    EXPECT_EQ(Refused(Exact(5, 2), "1000"), "22003");
    EXPECT_EQ(Refused(Exact(5, 2), "1E99999"), "22003");
    EXPECT_EQ(Refused(Exact(2, 2), "1"), "22003");
    EXPECT_EQ(Refused(Exact(5, 2), "1,5"), "22018");
}

TEST(ParameterValue, MoneyIsAcceptedUpToItsLimits) {
    EXPECT_EQ(Typed(Money(), "922337203685477.5807"), odbc::Value("922337203685477.5807"));
    EXPECT_EQ(Typed(Money(), "-922337203685477.5808"), odbc::Value("-922337203685477.5808"));
    EXPECT_EQ(Refused(Money(), "922337203685477.5808"), "22003");
    EXPECT_EQ(Refused(Money(), "1E15"), "22003");
    EXPECT_EQ(Refused(Money(), "0.00001"), "22003");
    EXPECT_EQ(Typed(Money(), "$5"), odbc::Value("5"));
    EXPECT_EQ(Typed(Money(), "5,25 \x80", German()), odbc::Value("5.25"));
    EXPECT_EQ(Typed(SmallMoney(), "214748.3647"), odbc::Value("214748.3647"));
    EXPECT_EQ(Refused(SmallMoney(), "214748.3648"), "22003");
    EXPECT_EQ(Typed(SmallMoney(), "-214748.3648"), odbc::Value("-214748.3648"));
    EXPECT_EQ(Refused(SmallMoney(), "-214748.3649"), "22003");
}

TEST(ParameterValue, DatesAreReadInTheLocalesFormsAndInIso) {
    const odbc::Value whole = Date{2024, 2, 29, 12, 34, 57, 0};
    EXPECT_EQ(Typed(DateTime(), "2/29/2024 12:34:57 PM"), whole);
    EXPECT_EQ(Typed(DateTime(), "2024-02-29T12:34:57"), whole);
    EXPECT_EQ(Typed(DateTime(), "29.02.2024 12:34:57", German()), whole);
    EXPECT_EQ(Typed(DateTime(), "2:03:22 PM"), odbc::Value(Date{1899, 12, 30, 14, 3, 22, 0}));
    for (const char* const text : {"31.12.2024", "2024-13-01", "2024-02-30", "2/30/2024", "soon", "5.7"}) {
        EXPECT_EQ(Refused(DateTime(), text), "22007") << text;
    }
    EXPECT_EQ(Refused(DateTime(), "12/31/2024", German()), "22007");
}

TEST(ParameterValue, DatesThatTheTypeCannotHoldAreRefused) {
    EXPECT_EQ(Typed(DateTime(), "1/1/1753"), odbc::Value(Date{1753, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(Refused(DateTime(), "12/31/1752"), "22008");
    EXPECT_EQ(Typed(DateTime(), "9999-12-31 23:59:59.997"),
              odbc::Value(Date{9999, 12, 31, 23, 59, 59, 997000000}));
    EXPECT_EQ(Refused(DateTime(), "9999-12-31 23:59:59.999"), "22008");
    EXPECT_EQ(Refused(DateTime(), "2024-02-29 12:34:57.1234"), "22008");
    EXPECT_EQ(Typed(SmallDateTime(), "6/6/2079 11:59 PM"), odbc::Value(Date{2079, 6, 6, 23, 59, 0, 0}));
    EXPECT_EQ(Refused(SmallDateTime(), "6/7/2079"), "22008");
    EXPECT_EQ(Refused(SmallDateTime(), "12/31/1899"), "22008");
    EXPECT_EQ(Refused(SmallDateTime(), "2/29/2024 12:34:57 PM"), "22008")
        << "the type would round it to 12:35";
    const Parameter precise = Of(adDBTimeStamp, 0, 27, 7);
    EXPECT_EQ(Typed(precise, "0001-01-01 00:00:00.1234567"), odbc::Value(Date{1, 1, 1, 0, 0, 0, 123456700}));
    EXPECT_EQ(Refused(precise, "0001-01-01 00:00:00.12345678"), "22008");
    EXPECT_EQ(Refused(Of(adDBTimeStamp, 0, 19, 0), "2024-02-29 12:34:57.5"), "22008");
}

TEST(ParameterValue, ADatetime2OfThreeDecimalsHoldsMoreThanADatetimeOfTheSamePrecision) {
    Parameter three = Of(adDBTimeStamp, 0, 23, 3);
    three.ServerType("datetime2");
    EXPECT_EQ(Typed(three, "0001-01-01"), odbc::Value(Date{1, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(Typed(three, "12/31/1752"), odbc::Value(Date{1752, 12, 31, 0, 0, 0, 0}));
    EXPECT_EQ(Typed(three, "9999-12-31 23:59:59.999"),
              odbc::Value(Date{9999, 12, 31, 23, 59, 59, 999000000}));
    EXPECT_EQ(Refused(three, "2024-02-29 12:34:57.1234"), "22008");
    EXPECT_EQ(DeclarationOf(three), "datetime2(3)");
    Parameter named = DateTime();
    named.ServerType("datetime");
    EXPECT_EQ(Refused(named, "12/31/1752"), "22008");
    EXPECT_EQ(DeclarationOf(named), "datetime");
}

TEST(ParameterValue, ADateFromTheServerIsPassedBackWithItsFraction) {
    EXPECT_EQ(Typed(DateTime(), Date{2024, 2, 29, 12, 34, 57, 996666600}),
              odbc::Value(Date{2024, 2, 29, 12, 34, 57, 997000000}));
}

TEST(ParameterValue, DatesAndTimesOfDay) {
    EXPECT_EQ(Typed(Of(adDBDate), "2/9/2024"), odbc::Value("2024-02-09"));
    EXPECT_EQ(Refused(Of(adDBDate), "2/9/2024 1:00 PM"), "22008");
    EXPECT_EQ(Refused(Of(adDBDate), "1:00 PM"), "22007");
    EXPECT_EQ(Typed(Of(adDBTime), "1:02:03 PM"), odbc::Value("13:02:03"));
    EXPECT_EQ(Typed(Of(adDBTime), "13:02:03.1250"), odbc::Value("13:02:03.125"));
    EXPECT_EQ(Typed(Of(adDBTime), "00:00:00"), odbc::Value("00:00:00"));
    EXPECT_EQ(Refused(Of(adDBTime), "13:02:03.12345678"), "22008");
    EXPECT_EQ(Refused(Of(adDBTime), "2/9/2024"), "22007");
    EXPECT_EQ(Refused(Of(adDBTime), "2/9/2024 1:00 PM"), "22008");
}

TEST(ParameterValue, TextIsNotCut) {
    for (const std::int32_t type : {adChar, adVarChar, adWChar, adVarWChar, adLongVarChar, adLongVarWChar}) {
        EXPECT_EQ(Typed(Of(type, 5), "abcd "), odbc::Value("abcd "));
        EXPECT_EQ(Refused(Of(type, 5), "abcdef"), "22001");
        EXPECT_EQ(Refused(Of(type, 5), "abcde "), "22001");
    }
    EXPECT_EQ(Typed(Of(adVarChar, 2147483647), std::string(10000, 'x')),
              odbc::Value(std::string(10000, 'x')));
    EXPECT_EQ(Typed(Of(adVarChar, 50), kDayZero, German()), odbc::Value("00:00:00"));
    EXPECT_EQ(Typed(Of(adVarChar, 50), 1.5, German()), odbc::Value("1,5"));
}

TEST(ParameterValue, BytesAreHexadecimalDigits) {
    EXPECT_EQ(Typed(Of(adVarBinary, 4), "0x01fF"), odbc::Value(odbc::Bytes{"\x01\xFF"}));
    EXPECT_EQ(Typed(Of(adVarBinary, 4), "01FF"), odbc::Value(odbc::Bytes{"\x01\xFF"}));
    EXPECT_EQ(Typed(Of(adVarBinary, 4), "0x"), odbc::Value(odbc::Bytes{""}));
    EXPECT_EQ(Typed(Of(adBinary, 4), ByteArray{"abcd"}), odbc::Value(odbc::Bytes{"abcd"}));
    EXPECT_EQ(Refused(Of(adVarBinary, 4), "0102030405"), "22001");
    EXPECT_EQ(Refused(Of(adBinary, 4), ByteArray{"abcde"}), "22001");
    for (const char* const text : {"0x1", "1", "0xGG", "x01", "01 02"}) {
        EXPECT_EQ(Refused(Of(adVarBinary, 4), text), "22018") << text;
    }
}

TEST(ParameterValue, GuidsAreAcceptedWithAndWithoutBraces) {
    const odbc::Value guid =
        odbc::Guid{0x6F9619FF, 0x8B86, 0xD011, {0xB4, 0x2D, 0x00, 0xC0, 0x4F, 0xC9, 0x64, 0xFF}};
    EXPECT_EQ(Typed(Of(adGUID), "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"), guid);
    EXPECT_EQ(Typed(Of(adGUID), "6f9619ff-8b86-d011-b42d-00c04fc964ff"), guid);
    for (const char* const text :
         {"6F9619FF-8B86-D011-B42D-00C04FC964F", "6F9619FF-8B86-D011-B42D-00C04FC964FFA",
          "{6F9619FF-8B86-D011-B42D-00C04FC964FF", "6F9619FF8B86D011B42D00C04FC964FF",
          "6F9619FG-8B86-D011-B42D-00C04FC964FF", "{}", "6F9619FF-8B86-D011-B42D00C0-4FC964FF"}) {
        EXPECT_EQ(Refused(Of(adGUID), text), "22018") << text;
    }
}

TEST(ParameterValue, AnUnknownTypeIsText) {
    EXPECT_EQ(Typed(Of(9999, 3), "abc"), odbc::Value("abc"));
    EXPECT_EQ(Refused(Of(9999, 3), "abcd"), "22001");
    EXPECT_EQ(Typed(Of(adVariant), "abc"), odbc::Value("abc"));
    EXPECT_EQ(Typed(Of(adVariant), 5), odbc::Value(std::int64_t{5}));
}

TEST(ParameterValue, AShownValueIsReadAsTheSameValueInEveryLocale) {
    struct Sample {
        Parameter parameter;
        odbc::SqlType type;
        odbc::Value value;
    };
    const std::vector<Sample> samples = {
        {Bit(), odbc::SqlType::Bit, true},
        {Bit(), odbc::SqlType::Bit, false},
        {Of(adUnsignedTinyInt), odbc::SqlType::TinyInt, std::int64_t{255}},
        {Of(adSmallInt), odbc::SqlType::SmallInt, std::int64_t{-32768}},
        {Int(), odbc::SqlType::Integer, std::int64_t{1234567}},
        {Of(adBigInt), odbc::SqlType::BigInt, std::numeric_limits<std::int64_t>::min()},
        {Of(adSingle), odbc::SqlType::Real, double{-0.25F}},
        {Of(adDouble), odbc::SqlType::Float, 1.5E+100},
        {Of(adDouble), odbc::SqlType::Float, -0.333333333333333},
        {Exact(20, 5), odbc::SqlType::Numeric, std::string("-123456789012345.54321")},
        {Money(), odbc::SqlType::Decimal, std::string("922337203685477.5807")},
        {SmallMoney(), odbc::SqlType::Decimal, std::string("-0.0001")},
        {DateTime(), odbc::SqlType::Timestamp, Date{2024, 2, 29, 14, 3, 22, 0}},
        {DateTime(), odbc::SqlType::Timestamp, Date{2024, 12, 1, 0, 0, 0, 0}},
        {DateTime(), odbc::SqlType::Timestamp, Date{1899, 12, 30, 0, 0, 0, 0}},
        {SmallDateTime(), odbc::SqlType::Timestamp, Date{2024, 2, 29, 14, 3, 0, 0}},
        {Of(adVarChar, 20), odbc::SqlType::VarChar, std::string(" 1,5 \x80 ")},
        {Of(adWChar, 3), odbc::SqlType::WChar, std::string("ab ")},
        {Of(adVarBinary, 3), odbc::SqlType::VarBinary, odbc::Bytes{std::string("\0\x7F\xFF", 3)}},
        {Of(adGUID), odbc::SqlType::Guid, odbc::Guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 255}}},
    };
    for (const platform::LocaleForms& forms : {American(), German(), Swedish()}) {
        for (const Sample& sample : samples) {
            odbc::Value value = sample.value;
            const std::string shown = VariantOf(sample.type, value).ToString(forms);
            EXPECT_EQ(Typed(sample.parameter, shown, forms), sample.value) << shown;
        }
    }
}

TEST(ParameterValue, TypesAreDeclaredInTSql) {
    EXPECT_EQ(DeclarationOf(Int()), "int");
    EXPECT_EQ(DeclarationOf(Exact(12, 4)), "numeric(12,4)");
    EXPECT_EQ(DeclarationOf(Money()), "money");
    EXPECT_EQ(DeclarationOf(SmallMoney()), "smallmoney");
    EXPECT_EQ(DeclarationOf(DateTime()), "datetime");
    EXPECT_EQ(DeclarationOf(SmallDateTime()), "smalldatetime");
    EXPECT_EQ(DeclarationOf(Of(adVarChar, 30)), "varchar(30)");
    EXPECT_EQ(DeclarationOf(Of(adVarChar, 2147483647)), "varchar(max)");
    EXPECT_EQ(DeclarationOf(Of(adVarWChar, 4000)), "nvarchar(4000)");
    EXPECT_EQ(DeclarationOf(Of(adVarWChar, 4001)), "nvarchar(max)");
    EXPECT_EQ(DeclarationOf(Of(adBinary, 8)), "binary(8)");
    EXPECT_EQ(DeclarationOf(Of(adLongVarChar, 2147483647)), "text");
    EXPECT_EQ(DeclarationOf(Of(adVariant, 8000)), "sql_variant");
}

} // namespace
} // namespace ado

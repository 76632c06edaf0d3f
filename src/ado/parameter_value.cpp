// One conversion for each type. A value that does not fit its type is refused; only floating-point types
// round.
#include "ado/parameter_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <compare>
#include <cstdio>
#include <limits>
#include <optional>
#include <tuple>

#include "ado/ado_types.h"
#include "ado/date_text.h"
#include "ado/number_text.h"
#include "ado/odbc_values.h"
#include "text/text.h"

namespace ado {
namespace {

/// The reason why a value does not fit its type. The conversions throw it; TypedValue catches it and adds the
/// value and the parameter to the text.
struct Reason {
    const char* sql_state;
    const char* text;
};
constexpr Reason kNotANumber{"22018", "it is not a number"};
constexpr Reason kNotATruthValue{"22018", "it is neither true nor false"};
constexpr Reason kNotAGuid{"22018", "it is not a GUID"};
constexpr Reason kNotHexDigits{"22018", "it is not a row of bytes in hexadecimal digits"};
constexpr Reason kNotADate{"22007", "it is not a date or time"};
constexpr Reason kOutOfRange{"22003", "it is out of the range of the type"};
constexpr Reason kFraction{"22003", "it has a fraction"};
constexpr Reason kDecimals{"22003", "it has more decimals than the type"};
constexpr Reason kDateOutOfRange{"22008", "it is out of the range of the type"};
constexpr Reason kPartOfTime{"22008", "it has a part that the type cannot hold"};
constexpr Reason kTooLong{"22001", "it is too long"};

/// A parameter's value that is to be converted.
struct Given {
    const Parameter& parameter;
    const platform::LocaleForms& forms;
    std::string text; ///< the value as Variant::ToString shows it

    /// The value if it is stored as this alternative of Variant, otherwise null.
    template <class Kind>
    const Kind* As() const {
        return std::get_if<Kind>(&parameter.Value().Get());
    }
};

// ------------------------------------------------------------------ numbers

/// Returns the value as a number. Throws kNotANumber.
ExactNumber NumberOf(const Given& given) {
    const platform::LocaleForms neutral;
    std::optional<ExactNumber> number;
    if (const auto* const whole = given.As<std::int64_t>()) {
        number = ReadNumber(std::to_string(*whole), neutral);
    } else if (const auto* const exact = given.As<Decimal>()) {
        number = ReadNumber(exact->digits, neutral);
    } else {
        number = ReadNumber(given.text, given.forms);
    }
    if (!number) {
        throw kNotANumber;
    }
    return *number;
}

/// Returns the number times 10 to the power of `decimals`. Throws a Reason if that is not a whole number of
/// 64 bits.
std::int64_t ToWhole(const ExactNumber& number, std::int64_t decimals) {
    ExactNumber scaled = number;
    scaled.scale -= decimals;
    if (scaled.HasFraction()) {
        throw decimals == 0 ? kFraction : kDecimals;
    }
    constexpr std::int64_t kMostDigits = std::numeric_limits<std::int64_t>::digits10 + 1;
    std::int64_t whole = 0;
    // Checked before Plain, which would write all the zeros of a number like 1E1000000000.
    if (scaled.WholeDigits() > kMostDigits) {
        throw kOutOfRange;
    }
    const std::string text = scaled.Plain();
    if (std::from_chars(text.data(), text.data() + text.size(), whole).ec != std::errc()) {
        throw kOutOfRange;
    }
    return whole;
}

template <class Integer>
std::int64_t InRange(std::int64_t whole) {
    if (whole < std::numeric_limits<Integer>::min() || whole > std::numeric_limits<Integer>::max()) {
        throw kOutOfRange;
    }
    return whole;
}

template <class Integer>
odbc::Value ToInteger(const Given& given) {
    return InRange<Integer>(ToWhole(NumberOf(given), 0));
}

odbc::Value ToBit(const Given& given) {
    if (const auto* const value = given.As<bool>()) {
        return *value;
    }
    const std::string word = text::LowerCase(WithoutBlanks(given.text));
    for (const auto& [name, value] : {std::pair{given.forms.true_word, true},
                                      {given.forms.false_word, false},
                                      {std::string("true"), true},
                                      {std::string("false"), false}}) {
        if (word == text::LowerCase(name)) {
            return value;
        }
    }
    const auto number = ReadNumber(given.text, given.forms);
    if (!number) {
        throw kNotATruthValue;
    }
    const std::int64_t whole = ToWhole(*number, 0);
    if (whole != 0 && whole != 1) {
        throw kOutOfRange;
    }
    return whole == 1;
}

/// Rounds to the precision of the type. Refuses a number that is too large for the type, and one that is so
/// small that it would be rounded to 0.
template <class Number>
odbc::Value ToFloating(const Given& given) {
    if (const auto* const same = given.As<Number>()) {
        return double{*same};
    }
    const std::string text = NumberOf(given).Scientific();
    Number number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) {
        throw kOutOfRange;
    }
    return double{number};
}

/// Returns the number as text with all its digits and "." as the decimal point, which the driver accepts in
/// every locale.
odbc::Value ToDecimal(const Given& given) {
    const ExactNumber number = NumberOf(given);
    constexpr std::int64_t kMostDigits = 38;
    const std::int64_t precision =
        given.parameter.Precision() != 0 ? std::int64_t{given.parameter.Precision()} : kMostDigits;
    if (number.scale > given.parameter.NumericScale()) {
        throw kDecimals;
    }
    if (number.WholeDigits() > precision - given.parameter.NumericScale()) {
        throw kOutOfRange;
    }
    return number.Plain();
}

constexpr std::uint8_t kSmallMoneyPrecision = 10;

odbc::Value ToMoney(const Given& given) {
    constexpr std::int64_t kDecimalsOfMoney = 4; // money is a whole number of ten thousandths
    const ExactNumber number = NumberOf(given);
    const std::int64_t whole = ToWhole(number, kDecimalsOfMoney);
    if (given.parameter.Precision() == kSmallMoneyPrecision) {
        InRange<std::int32_t>(whole);
    }
    return number.Plain();
}

// ------------------------------------------------------------------ dates

constexpr std::uint8_t kSmallDateTimePrecision = 16;
constexpr std::uint8_t kDateTimePrecision = 23;
constexpr std::uint32_t kMillisecond = 1'000'000; // nanoseconds

/// The range of one of the server's types with a date and a time. ADO has one number for all these types, so
/// the parameter's precision says which of them it is.
struct DateRange {
    std::uint8_t precision;
    std::tuple<int, int, int> first;
    std::tuple<int, int, int> last;
    bool (*holds_time)(const Date& date); ///< true if the type can hold the time of day exactly
};

constexpr DateRange kDateRanges[] = {
    // Seconds would be rounded to minutes.
    {kSmallDateTimePrecision,
     {1900, 1, 1},
     {2079, 6, 6},
     [](const Date& date) { return date.second == 0 && date.nanosecond == 0; }},
    // The type counts in 300ths of a second, which it shows as milliseconds that end in 0, 3 and 7.
    {kDateTimePrecision,
     {1753, 1, 1},
     {9999, 12, 31},
     [](const Date& date) {
         const std::uint32_t last_digit = date.nanosecond / kMillisecond % 10;
         return date.nanosecond % kMillisecond == 0 &&
                (last_digit == 0 || last_digit == 3 || last_digit == 7);
     }},
};

/// True for a datetime2. The name is needed because datetime2(3) has the precision of datetime.
bool IsDateTime2(const Parameter& parameter) {
    return text::SameIgnoringCase(parameter.ServerType(), "datetime2");
}

/// Throws a Reason if the type cannot hold the date. A type that is not in the table (datetime2) holds every
/// date, and the parameter's NumericScale is the number of digits of a second's fraction.
void CheckRange(const Date& date, const Parameter& parameter) {
    for (const DateRange& range : kDateRanges) {
        if (range.precision == parameter.Precision() && !IsDateTime2(parameter)) {
            const std::tuple<int, int, int> day = {date.year, date.month, date.day};
            if (day < range.first || day > range.last) {
                throw kDateOutOfRange;
            }
            if (!range.holds_time(date)) {
                throw kPartOfTime;
            }
            return;
        }
    }
    std::uint32_t unit = 1'000'000'000;
    for (int digits = 0; digits < parameter.NumericScale(); ++digits) {
        unit /= 10;
    }
    if (unit != 0 && date.nanosecond % unit != 0) {
        throw kPartOfTime;
    }
}

DateText DateOf(const Given& given) {
    const auto read = ReadDate(given.text, given.forms);
    if (!read) {
        throw kNotADate;
    }
    return *read;
}

odbc::Value ToTimestamp(const Given& given) {
    if (const auto* const same = given.As<Date>()) {
        // A Date is a value that the server returned. One of the type datetime counts 300ths of a second, but
        // the system's driver accepts whole milliseconds only.
        Date date = *same;
        if (given.parameter.Precision() == kDateTimePrecision) {
            date.nanosecond = (date.nanosecond + kMillisecond / 2) / kMillisecond * kMillisecond;
        }
        return date;
    }
    const Date date = DateOf(given).date;
    CheckRange(date, given.parameter);
    return date;
}

/// Returns a date without a time, as text that the driver accepts in every locale.
odbc::Value ToDay(const Given& given) {
    const DateText read = DateOf(given);
    if (!read.has_date || read.has_time) {
        throw read.has_date ? kPartOfTime : kNotADate;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", int{read.date.year}, unsigned{read.date.month},
                  unsigned{read.date.day});
    return std::string(text);
}

/// Returns a time of day without a date, as text that the driver accepts in every locale: with up to seven
/// digits of a second's fraction, without zeros at the end.
odbc::Value ToTime(const Given& given) {
    const DateText read = DateOf(given);
    if (!read.has_time || read.has_date) {
        throw read.has_time ? kPartOfTime : kNotADate;
    }
    constexpr std::uint32_t kUnit = 100; // nanoseconds
    if (read.date.nanosecond % kUnit != 0) {
        throw kPartOfTime;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u.%07u", unsigned{read.date.hour},
                  unsigned{read.date.minute}, unsigned{read.date.second}, read.date.nanosecond / kUnit);
    std::string time(text);
    time.resize(time.find_last_not_of('0') + 1);
    return time.ends_with('.') ? time.substr(0, time.size() - 1) : time;
}

// ------------------------------------------------------------------ text and bytes

/// Throws kTooLong if `size`, the value's number of bytes, exceeds the parameter's Size; 0 means no limit.
void CheckSize(const Given& given, std::size_t size) {
    if (given.parameter.Size() > 0 && size > static_cast<std::size_t>(given.parameter.Size())) {
        throw kTooLong;
    }
}

odbc::Value ToText(const Given& given) {
    CheckSize(given, given.text.size());
    return given.text;
}

std::optional<unsigned> DigitOf(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t digit = kDigits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    return digit == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(digit));
}

/// Returns nothing if the text is not an even number of hexadecimal digits.
std::optional<std::string> BytesOf(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const auto high = DigitOf(digits[i]);
        const auto low = i + 1 < digits.size() ? DigitOf(digits[i + 1]) : std::nullopt;
        if (!high || !low) {
            return std::nullopt;
        }
        bytes += static_cast<char>(*high << 4U | *low);
    }
    return bytes;
}

odbc::Value ToBytes(const Given& given) {
    std::string_view digits = WithoutBlanks(given.text);
    if (digits.empty()) {
        throw kNotHexDigits; // an empty row of bytes is written as "0x"
    }
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
    }
    auto bytes = BytesOf(digits);
    if (!bytes) {
        throw kNotHexDigits;
    }
    CheckSize(given, bytes->size());
    return odbc::Bytes{std::move(*bytes)};
}

odbc::Value ToGuid(const Given& given) {
    std::string_view text = WithoutBlanks(given.text);
    if (text.starts_with('{') && text.ends_with('}')) {
        text = text.substr(1, text.size() - 2);
    }
    constexpr std::string_view kShape = "00000000-0000-0000-0000-000000000000";
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Must be "-" where the shape has one, and a hexadecimal digit everywhere else.
        if (i < kShape.size() && kShape[i] == '-' ? text[i] != '-' : !DigitOf(text[i])) {
            throw kNotAGuid;
        }
        digits += text[i] == '-' ? "" : std::string(1, text[i]);
    }
    const auto bytes = BytesOf(digits);
    if (text.size() != kShape.size() || !bytes) {
        throw kNotAGuid;
    }
    // The highest byte comes first.
    const auto number = [&](std::size_t begin, std::size_t size) {
        std::uint32_t value = 0;
        for (const char byte : bytes->substr(begin, size)) {
            value = value << 8U | static_cast<unsigned char>(byte);
        }
        return value;
    };
    odbc::Guid guid;
    guid.data1 = number(0, 4);
    guid.data2 = static_cast<std::uint16_t>(number(4, 2));
    guid.data3 = static_cast<std::uint16_t>(number(6, 2));
    for (std::size_t i = 0; i < sizeof guid.data4; ++i) {
        guid.data4[i] = static_cast<std::uint8_t>(number(8 + i, 1));
    }
    return guid;
}

/// A type that holds values of several kinds takes the value without conversion.
odbc::Value ToAny(const Given& given) {
    return OdbcValueOf(given.parameter.Value());
}

// ------------------------------------------------------------------ types

struct Conversion {
    DataType type;
    odbc::Value (*convert)(const Given& given);
};

/// Types that are not in the table are text.
constexpr std::array kConversions = {
    Conversion{adBoolean, ToBit},
    Conversion{adUnsignedTinyInt, ToInteger<std::uint8_t>},
    Conversion{adSmallInt, ToInteger<std::int16_t>},
    Conversion{adInteger, ToInteger<std::int32_t>},
    Conversion{adBigInt, ToInteger<std::int64_t>},
    Conversion{adSingle, ToFloating<float>},
    Conversion{adDouble, ToFloating<double>},
    Conversion{adNumeric, ToDecimal},
    Conversion{adCurrency, ToMoney},
    Conversion{adDBTimeStamp, ToTimestamp},
    Conversion{adDBDate, ToDay},
    Conversion{adDBTime, ToTime},
    Conversion{adGUID, ToGuid},
    Conversion{adBinary, ToBytes},
    Conversion{adVarBinary, ToBytes},
    Conversion{adLongVarBinary, ToBytes},
    Conversion{adVariant, ToAny},
};

/// Shortens a long text for a message.
std::string Shortened(const std::string& text) {
    constexpr std::size_t kMost = 100;
    return text.size() > kMost ? text.substr(0, kMost) + "..." : text;
}

} // namespace

std::string DeclarationOf(const Parameter& parameter) {
    const AdoType& type = AdoTypeOf(parameter.Type());
    std::string text(type.server_name);
    if (IsDateTime2(parameter)) {
        return "datetime2(" + std::to_string(parameter.NumericScale()) + ")";
    }
    if (type.number == adCurrency || type.number == adDBTimeStamp) {
        const bool small = parameter.Precision() ==
                           (type.number == adCurrency ? kSmallMoneyPrecision : kSmallDateTimePrecision);
        return small ? "small" + text : text;
    }
    if (type.kind == TypeKind::Decimal) {
        return text + "(" + std::to_string(parameter.Precision()) + "," +
               std::to_string(parameter.NumericScale()) + ")";
    }
    if (type.kind == TypeKind::Sized && type.number != adVariant) {
        const bool wide = type.number == adWChar || type.number == adVarWChar;
        const std::int32_t most_in_row = wide ? 4000 : 8000;
        return text + "(" + (parameter.Size() > most_in_row ? "max" : std::to_string(parameter.Size())) + ")";
    }
    return text;
}

odbc::Value TypedValue(const Parameter& parameter, const platform::LocaleForms& forms) {
    if (parameter.Value().IsEmpty() || parameter.Value().IsNull()) {
        return {};
    }
    const auto* const row = std::ranges::find(kConversions, parameter.Type(), &Conversion::type);
    const Given given{parameter, forms, parameter.Value().ToString(forms)};
    try {
        return row != kConversions.end() ? row->convert(given) : ToText(given);
    } catch (const Reason& reason) {
        throw ValueRefused(reason.sql_state, "The value '" + Shortened(given.text) +
                                                 "' cannot be given to the parameter " + parameter.Name() +
                                                 " of the type " + DeclarationOf(parameter) + ": " +
                                                 reason.text + ".");
    }
}

} // namespace ado

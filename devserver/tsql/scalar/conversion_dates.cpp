// Conversions to datetime, smalldatetime and date, and the styles in which CONVERT writes them.
#include <algorithm>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_parser.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// A style of CONVERT: how it is written, and in which order a date in digits is read under it.
struct DateStyle {
    int number;
    /// Y yyyy, y yyyy or yy, M mm, N mon, d dd, D day with a blank, H hh of 24, h hour of 12 with a blank, i
    /// minutes, s seconds, f milliseconds, F "." and milliseconds if there are any, p AM or PM. "T" and marks
    /// stand for themselves.
    std::string_view pattern;
    DateOrder order = DateOrder::MonthDayYear;
};

constexpr DateOrder kDmy = DateOrder::DayMonthYear;
constexpr DateOrder kYmd = DateOrder::YearMonthDay;

// Those from 100 to 121 are the same with four digits for the year.
constexpr DateStyle kStyles[] = {{0, "N D Y h:ip"},
                                 {1, "M/d/y"},
                                 {2, "y.M.d", kYmd},
                                 {3, "d/M/y", kDmy},
                                 {4, "d.M.y", kDmy},
                                 {5, "d-M-y", kDmy},
                                 {6, "d N y", kDmy},
                                 {7, "N d, y"},
                                 {8, "H:i:s"},
                                 {9, "N D Y h:i:s:fp"},
                                 {10, "M-d-y"},
                                 {11, "y/M/d", kYmd},
                                 {12, "yMd", kYmd},
                                 {13, "d N Y H:i:s:f", kDmy},
                                 {14, "H:i:s:f"},
                                 {20, "Y-M-d H:i:s", kYmd},
                                 {21, "Y-M-d H:i:s.f", kYmd},
                                 {22, "M/d/y h:i:s p"},
                                 {23, "Y-M-d", kYmd},
                                 {24, "H:i:s"},
                                 {25, "Y-M-d H:i:s.f", kYmd},
                                 {126, "Y-M-dTH:i:sF", kYmd},
                                 {127, "Y-M-dTH:i:sF", kYmd}};

bool HasCentury(int style) {
    return style >= 100 && style <= 121;
}

/// Null for an unknown one.
const DateStyle* FindStyle(int number) {
    const auto* found =
        std::ranges::find(kStyles, HasCentury(number) ? number - 100 : number, &DateStyle::number);
    return found == std::end(kStyles) ? nullptr : found;
}

std::string Padded(std::int32_t number, std::size_t width, char fill = '0') {
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), fill) + digits;
}

std::string WritePart(char part, const CivilTime& time, bool century) {
    const std::int32_t milliseconds = MillisecondsOf(time.ticks);
    switch (part) {
    case 'Y':
        return Padded(time.year, 4);
    case 'y':
        return century ? Padded(time.year, 4) : Padded(time.year % 100, 2);
    case 'M':
        return Padded(time.month, 2);
    case 'N':
        return std::string(MonthName(time.month).substr(0, 3));
    case 'd':
        return Padded(time.day, 2);
    case 'D':
        return Padded(time.day, 2, ' ');
    case 'H':
        return Padded(time.hour, 2);
    case 'h':
        return Padded((time.hour + 11) % 12 + 1, 2, ' ');
    case 'i':
        return Padded(time.minute, 2);
    case 's':
        return Padded(time.second, 2);
    case 'f':
        return Padded(milliseconds, 3);
    case 'F':
        return milliseconds == 0 ? "" : "." + Padded(milliseconds, 3);
    case 'p':
        return time.hour < 12 ? "AM" : "PM";
    default:
        return {part};
    }
}

[[noreturn]] void OutOfRange(const Type& from, TypeId to) {
    RaiseIf(to == TypeId::Date, 241);
    throw ErrorOf(242, {TypeName(from.id), TypeName(to)}, 3);
}

[[noreturn]] void Overflow(TypeId to) {
    throw ErrorOf(8115, {"expression", TypeName(to)}, 2);
}

Value DateFromText(const std::string& text, const Type& from, TypeId to, Style style) {
    DateTime value;
    switch (ParseDateTime(text, style.value_or(0) == 0 ? CurrentDateSettings().order : OrderOfStyle(style),
                          value)) {
    case DateReading::NoDate:
        RaiseError(to == TypeId::SmallDateTime ? 295 : 241);
    case DateReading::OutOfRange:
        OutOfRange(from, to);
    case DateReading::Good:
        break;
    }
    return value;
}

Value DateFromNumber(double days, TypeId to) {
    const auto value = FromDayNumber(days);
    if (!value) {
        Overflow(to);
    }
    return *value;
}

/// A datetime has four bytes of days and four of 1/300 seconds, a smalldatetime two of days and two of
/// minutes.
Value DateFromBytes(std::string_view bytes, TypeId to) {
    const std::size_t half = to == TypeId::DateTime ? 4 : 2;
    std::string all(bytes.substr(bytes.size() - std::min(bytes.size(), 2 * half)));
    all.insert(0, 2 * half - all.size(), '\0');
    const std::uint64_t days = FromBigEndian(std::string_view(all).substr(0, half));
    const std::uint64_t time = FromBigEndian(std::string_view(all).substr(half));
    const std::uint64_t unit = to == TypeId::DateTime ? 1 : 60 * kTicksPerSecond;
    const DateTime value{static_cast<std::int32_t>(days), static_cast<std::int32_t>(time * unit)};
    const bool valid =
        value.days >= kFirstDay && value.days <= kLastDay && value.ticks >= 0 && value.ticks < kTicksPerDay;
    RaiseIf(!valid, 210);
    return value;
}

/// A date as generated scripts write it: days since 0001-01-01, the lowest byte first.
Value DayFromBytes(std::string_view bytes) {
    constexpr std::int64_t kDaysTo1900 = 693595;
    std::int64_t days = 0;
    for (std::size_t i = std::min<std::size_t>(bytes.size(), 4); i-- > 0;) {
        days = days * 256 + static_cast<unsigned char>(bytes[i]);
    }
    days -= kDaysTo1900;
    RaiseIf(days < kFirstDay || days > kLastDay, 241);
    return DateTime{static_cast<std::int32_t>(days), 0};
}

/// The part of a style that a date without time is written in.
std::string_view DayPattern(std::string_view pattern) {
    for (const std::string_view time : {" H", " h", "TH"}) {
        pattern = pattern.substr(0, pattern.find(time));
    }
    return pattern;
}

} // namespace

DateOrder OrderOfStyle(Style style) {
    const DateStyle* found = FindStyle(style.value_or(0));
    if (found == nullptr) {
        RaiseError(281, {std::to_string(*style), TypeName(TypeId::DateTime)});
    }
    return found->order;
}

std::string WriteDate(const DateTime& value, const Type& type, int style) {
    constexpr int kDayStyle = 23; // the default of a date
    const bool day = type.id == TypeId::Date;
    const DateStyle* found = FindStyle(day && style == 0 ? kDayStyle : style);
    if (found == nullptr) {
        RaiseError(281, {std::to_string(style), TypeName(type.id)});
    }
    const CivilTime time = ToCivil(value);
    std::string text;
    for (const char part : day ? DayPattern(found->pattern) : found->pattern) {
        text += WritePart(part, time, HasCentury(style));
    }
    return text;
}

Value ToDate(const Value& value, const Type& from, TypeId to, Style style) {
    const Value result =
        std::visit(Overloaded{
                       [&](std::int64_t v) { return DateFromNumber(static_cast<double>(v), to); },
                       [&](double v) { return DateFromNumber(v, to); },
                       [&](const Decimal& v) { return DateFromNumber(ToDouble(v), to); },
                       [](const DateTime& v) { return Value(v); },
                       [&](const std::string& v) { return DateFromText(v, from, to, style); },
                       [&](const Bytes& v) {
                           return to == TypeId::Date ? DayFromBytes(v.data) : DateFromBytes(v.data, to);
                       },
                       [](const auto&) { return Value(); },
                   },
                   value);
    if (to == TypeId::DateTime) {
        return result;
    }
    if (to == TypeId::Date) {
        return DateTime{std::get<DateTime>(result).days, 0};
    }
    const auto small = ToSmallDateTime(std::get<DateTime>(result));
    if (!small) {
        if (IsNumber(from.id)) {
            Overflow(to);
        }
        OutOfRange(from, to);
    }
    return *small;
}

} // namespace devsql

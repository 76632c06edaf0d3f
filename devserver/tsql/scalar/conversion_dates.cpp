// Conversions to datetime and smalldatetime, and the styles in which CONVERT writes them.
#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_settings.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// A style of CONVERT: how it is written, and in which order a date in digits is read under it.
struct DateStyle {
    int number;
    /// Y yyyy, y yy, M mm, N mon, d dd, D day with a blank, H hh of 24, h hour of 12 with a blank, i minutes,
    /// s seconds, f milliseconds, F "." and milliseconds if there are any, p AM or PM. "T" and marks stand
    /// for themselves.
    std::string_view pattern;
    DateOrder order = DateOrder::MonthDayYear;
};

constexpr DateOrder kDmy = DateOrder::DayMonthYear;
constexpr DateOrder kYmd = DateOrder::YearMonthDay;

constexpr std::array kStyles = {
    DateStyle{0, "N D Y h:ip"},
    DateStyle{1, "M/d/y"},
    DateStyle{2, "y.M.d", kYmd},
    DateStyle{3, "d/M/y", kDmy},
    DateStyle{4, "d.M.y", kDmy},
    DateStyle{5, "d-M-y", kDmy},
    DateStyle{6, "d N y", kDmy},
    DateStyle{7, "N d, y"},
    DateStyle{8, "H:i:s"},
    DateStyle{9, "N D Y h:i:s:fp"},
    DateStyle{10, "M-d-y"},
    DateStyle{11, "y/M/d", kYmd},
    DateStyle{12, "yMd", kYmd},
    DateStyle{13, "d N Y H:i:s:f", kDmy},
    DateStyle{14, "H:i:s:f"},
    DateStyle{20, "Y-M-d H:i:s", kYmd},
    DateStyle{21, "Y-M-d H:i:s.f", kYmd},
    DateStyle{22, "M/d/y h:i:s p"},
    DateStyle{23, "Y-M-d", kYmd},
    DateStyle{24, "H:i:s"},
    DateStyle{25, "Y-M-d H:i:s.f", kYmd},
    DateStyle{100, "N D Y h:ip"},
    DateStyle{101, "M/d/Y"},
    DateStyle{102, "Y.M.d", kYmd},
    DateStyle{103, "d/M/Y", kDmy},
    DateStyle{104, "d.M.Y", kDmy},
    DateStyle{105, "d-M-Y", kDmy},
    DateStyle{106, "d N Y", kDmy},
    DateStyle{107, "N d, Y"},
    DateStyle{108, "H:i:s"},
    DateStyle{109, "N D Y h:i:s:fp"},
    DateStyle{110, "M-d-Y"},
    DateStyle{111, "Y/M/d", kYmd},
    DateStyle{112, "YMd", kYmd},
    DateStyle{113, "d N Y H:i:s:f", kDmy},
    DateStyle{114, "H:i:s:f"},
    DateStyle{120, "Y-M-d H:i:s", kYmd},
    DateStyle{121, "Y-M-d H:i:s.f", kYmd},
    DateStyle{126, "Y-M-dTH:i:sF", kYmd},
    DateStyle{127, "Y-M-dTH:i:sF", kYmd},
};

const DateStyle* FindStyle(int number) {
    const auto* found = std::find_if(kStyles.begin(), kStyles.end(),
                                     [number](const DateStyle& style) { return style.number == number; });
    return found == kStyles.end() ? nullptr : found;
}

std::string Padded(std::int32_t number, std::size_t width, char fill = '0') {
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), fill) + digits;
}

std::string WritePart(char part, const CivilTime& time) {
    const std::int32_t milliseconds = MillisecondsOf(time.ticks);
    switch (part) {
    case 'Y':
        return Padded(time.year, 4);
    case 'y':
        return Padded(time.year % 100, 2);
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
    if (to == TypeId::Date) {
        RaiseError(241);
    }
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

/// Days and 1/300 seconds, four bytes each; of smalldatetime days and minutes, two each.
Value DateFromBytes(std::string_view bytes, TypeId to) {
    const std::size_t half = to == TypeId::DateTime ? 4 : 2;
    std::string all(bytes.substr(bytes.size() - std::min(bytes.size(), 2 * half)));
    all.insert(0, 2 * half - all.size(), '\0');
    const std::uint64_t days = FromBigEndian(std::string_view(all).substr(0, half));
    const std::uint64_t time = FromBigEndian(std::string_view(all).substr(half));
    DateTime value;
    if (to == TypeId::DateTime) {
        value = {static_cast<std::int32_t>(days), static_cast<std::int32_t>(time)};
    } else {
        value = {static_cast<std::int32_t>(days), static_cast<std::int32_t>(time * 60 * kTicksPerSecond)};
    }
    const bool valid =
        value.days >= kFirstDay && value.days <= kLastDay && value.ticks >= 0 && value.ticks < kTicksPerDay;
    if (!valid) {
        RaiseError(210);
    }
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
    if (days < kFirstDay || days > kLastDay) {
        RaiseError(241);
    }
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
        text += WritePart(part, time);
    }
    return text;
}

Value ToDate(const Value& value, const Type& from, TypeId to, Style style) {
    struct Visitor {
        const Type& from;
        TypeId to;
        Style style;

        Value operator()(std::monostate) const { return {}; }
        Value operator()(std::int64_t v) const { return DateFromNumber(static_cast<double>(v), to); }
        Value operator()(double v) const { return DateFromNumber(v, to); }
        Value operator()(const Decimal& v) const { return DateFromNumber(ToDouble(v), to); }
        Value operator()(const DateTime& v) const { return v; }
        Value operator()(const std::string& v) const { return DateFromText(v, from, to, style); }
        Value operator()(const Bytes& v) const {
            return to == TypeId::Date ? DayFromBytes(v.data) : DateFromBytes(v.data, to);
        }
        Value operator()(const Guid&) const { return {}; }
    };
    const Value result = std::visit(Visitor{from, to, style}, value);
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

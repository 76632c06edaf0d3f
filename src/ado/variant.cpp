#include "ado/variant.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>

namespace ado {
namespace {

/// The day that a date without a day stands on.
constexpr std::chrono::year_month_day kDayZero{std::chrono::year(1899), std::chrono::month(12),
                                               std::chrono::day(30)};

template <class Number>
std::string FormatNumber(Number value, int digits) {
    if (value == 0) {
        return "0"; // also for a zero with a sign
    }
    char text[64];
    // As printf's %G, and several times as fast.
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, static_cast<double>(value),
                                                   std::chars_format::general, digits);
    std::replace(text, end.ptr, 'e', 'E');
    return {text, end.ptr};
}

/// Without the zeros that a column's scale puts behind it and with the zero that some drivers leave out in
/// front.
std::string FormatDecimal(std::string_view digits) {
    const bool negative = digits.starts_with('-');
    if (negative) {
        digits.remove_prefix(1);
    }
    std::string text(digits);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.')) {
            text.pop_back();
        }
    }
    if (text.empty() || text.front() == '.') {
        text.insert(text.begin(), '0');
    }
    return negative && text != "0" ? "-" + text : text;
}

/// To the whole second, since the text has no parts of one.
std::chrono::sys_seconds RoundedTime(const Date& date) {
    using namespace std::chrono;
    const sys_days day = year_month_day(year(date.year), month(date.month), std::chrono::day(date.day));
    const nanoseconds time =
        hours(date.hour) + minutes(date.minute) + seconds(date.second) + nanoseconds(date.nanosecond);
    // The day is not counted in nanoseconds: that reaches from 1677 to 2262 only.
    return sys_seconds(day) + floor<seconds>(time + milliseconds(500));
}

std::string FormatDate(const Date& date) {
    using namespace std::chrono;
    const sys_seconds rounded = RoundedTime(date);
    const sys_days midnight = floor<days>(rounded);
    const year_month_day day(midnight);
    const hh_mm_ss time(rounded - sys_seconds(midnight));
    char text[64];
    std::string result;
    if (day != kDayZero) {
        std::snprintf(text, sizeof text, "%u/%u/%d", static_cast<unsigned>(day.month()),
                      static_cast<unsigned>(day.day()), static_cast<int>(day.year()));
        result = text;
    }
    if (rounded != sys_seconds(midnight) || day == kDayZero) {
        std::snprintf(text, sizeof text, "%d:%02d:%02d %s", static_cast<int>(make12(time.hours()).count()),
                      static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                      is_am(time.hours()) ? "AM" : "PM");
        result += (result.empty() ? "" : " ") + std::string(text);
    }
    return result;
}

std::string FormatBytes(const ByteArray& bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "0x";
    text.reserve(2 + 2 * bytes.data.size());
    for (const char c : bytes.data) {
        const auto byte = static_cast<unsigned char>(c);
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xFU];
    }
    return text;
}

/// Days since day zero, the time of day as the fraction.
double SerialNumber(const Date& date) {
    using namespace std::chrono;
    const auto since = RoundedTime(date) - sys_seconds(sys_days(kDayZero));
    return duration_cast<duration<double, days::period>>(since).count();
}

double ParseNumber(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        throw ConversionError(ConversionFault::TypeMismatch);
    }
    text = text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    // Words for infinity and the like, and a second sign, are no numbers.
    const bool negative = text.starts_with('-');
    const std::size_t first = negative ? 1 : 0;
    if (text.find_first_of("0123456789.", first) != first) {
        throw ConversionError(ConversionFault::TypeMismatch);
    }
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) {
        throw ConversionError(ConversionFault::TypeMismatch);
    }
    if (error == std::errc::result_out_of_range) {
        throw ConversionError(ConversionFault::Overflow);
    }
    return number;
}

double RoundHalfToEven(double number) {
    const double below = std::floor(number);
    const double rest = number - below;
    if (rest != 0.5) {
        return rest < 0.5 ? below : below + 1;
    }
    return std::fmod(below, 2) == 0 ? below : below + 1;
}

std::int16_t RoundToInt16(double number) {
    using Limits = std::numeric_limits<std::int16_t>;
    const double rounded = RoundHalfToEven(number);
    if (!(rounded >= Limits::min() && rounded <= Limits::max())) {
        throw ConversionError(ConversionFault::Overflow);
    }
    return static_cast<std::int16_t>(rounded);
}

struct ToText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(Null) const { throw ConversionError(ConversionFault::InvalidUseOfNull); }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(float value) const { return FormatNumber(value, 7); }
    std::string operator()(double value) const { return FormatNumber(value, 15); }
    std::string operator()(const Decimal& value) const { return FormatDecimal(value.digits); }
    std::string operator()(const Date& value) const { return FormatDate(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const ByteArray& value) const { return FormatBytes(value); }
};

struct ToNumber {
    double operator()(std::monostate) const { return 0; }
    double operator()(Null) const { throw ConversionError(ConversionFault::InvalidUseOfNull); }
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(std::int64_t value) const { return static_cast<double>(value); }
    double operator()(float value) const { return static_cast<double>(value); }
    double operator()(double value) const { return value; }
    double operator()(const Decimal& value) const { return ParseNumber(value.digits); }
    double operator()(const Date& value) const { return SerialNumber(value); }
    double operator()(const std::string& value) const { return ParseNumber(value); }
    double operator()(const ByteArray&) const { throw ConversionError(ConversionFault::TypeMismatch); }
};

} // namespace

std::string Variant::ToString() const {
    return std::visit(ToText{}, storage_);
}

std::int16_t Variant::ToInt16() const {
    return RoundToInt16(std::visit(ToNumber{}, storage_));
}

} // namespace ado

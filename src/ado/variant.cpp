// Converts values to text and to 16-bit integers.
#include "ado/variant.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <string_view>

#include "ado/date_text.h"
#include "ado/number_text.h"
#include "odbc/value_text.h"
#include "platform/locale.h"

namespace ado {
namespace {

/// Returns the number of days since kDayZero, with the time of day as the fraction.
double SerialNumber(const Date& date) {
    using namespace std::chrono;
    const auto day_of = [](const Date& one) {
        return sys_days(year_month_day(year(one.year), month(one.month), day(one.day)));
    };
    const Date rounded = RoundedToSecond(date);
    const seconds since = day_of(rounded) - day_of(kDayZero) + hours(rounded.hour) + minutes(rounded.minute) +
                          seconds(rounded.second);
    return duration_cast<duration<double, days::period>>(since).count();
}

double ParseNumber(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        throw ConversionError(kv::run_time::kTypeMismatch);
    }
    text = text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    // Words such as "inf", which from_chars reads, are not numbers, nor is a number with a second sign.
    const bool negative = text.starts_with('-');
    const std::size_t first = negative ? 1 : 0;
    if (text.find_first_of("0123456789.", first) != first) {
        throw ConversionError(kv::run_time::kTypeMismatch);
    }
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) {
        throw ConversionError(kv::run_time::kTypeMismatch);
    }
    if (error == std::errc::result_out_of_range) {
        throw ConversionError(kv::run_time::kOverflow);
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
        throw ConversionError(kv::run_time::kOverflow);
    }
    return static_cast<std::int16_t>(rounded);
}

struct ToText {
    const platform::LocaleForms& forms;

    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(Null) const { throw ConversionError(kv::run_time::kInvalidUseOfNull); }
    std::string operator()(bool value) const { return value ? forms.true_word : forms.false_word; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(float value) const { return ShowFloating(value, 7, forms); }
    std::string operator()(double value) const { return ShowFloating(value, 15, forms); }
    std::string operator()(const Decimal& value) const { return ShowExact(value.digits, forms); }
    std::string operator()(const Date& value) const { return ShowDate(value, forms); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const ByteArray& value) const { return odbc::TextOf(value); }
};

struct ToNumber {
    double operator()(std::monostate) const { return 0; }
    double operator()(Null) const { throw ConversionError(kv::run_time::kInvalidUseOfNull); }
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(std::int64_t value) const { return static_cast<double>(value); }
    double operator()(float value) const { return static_cast<double>(value); }
    double operator()(double value) const { return value; }
    double operator()(const Decimal& value) const { return ParseNumber(value.digits); }
    double operator()(const Date& value) const { return SerialNumber(value); }
    double operator()(const std::string& value) const { return ParseNumber(value); }
    double operator()(const ByteArray&) const { throw ConversionError(kv::run_time::kTypeMismatch); }
};

} // namespace

std::string Variant::ToString() const {
    return ToString(platform::UserLocale());
}

std::string Variant::ToString(const platform::LocaleForms& forms) const {
    return std::visit(ToText{forms}, storage_);
}

std::int16_t Variant::ToInt16() const {
    return RoundToInt16(std::visit(ToNumber{}, storage_));
}

} // namespace ado

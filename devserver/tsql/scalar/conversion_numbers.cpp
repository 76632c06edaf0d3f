// Conversions to integers, decimals, money and floats, with the overflow error that each pair of types has.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

constexpr int kMoneyScale = 4;

/// Messages call decimal numeric.
std::string_view MessageName(TypeId id) {
    return id == TypeId::Decimal ? TypeName(TypeId::Numeric) : TypeName(id);
}

[[noreturn]] void Overflow(std::string_view from, TypeId to) {
    constexpr std::uint8_t kOfDecimals = 8;
    constexpr std::uint8_t kOfFloats = 6;
    throw ErrorOf(8115, {from, MessageName(to)},
                  !IsDecimal(to)    ? std::uint8_t{2}
                  : from == "float" ? kOfFloats
                                    : kOfDecimals);
}

[[noreturn]] void BadFormat(const Type& from, TypeId to) {
    throw ErrorOf(8114, {TypeName(from.id), MessageName(to)}, 5);
}

Value IntegerFromInteger(std::int64_t value, const IntegerRange& range) {
    if (!range.Holds(value)) {
        if (range.bytes < 4) {
            RaiseError(220, {TypeName(range.id), std::to_string(value)});
        }
        Overflow("expression", range.id);
    }
    return value;
}

Value IntegerFromDecimal(const Decimal& value, const Type& from, const IntegerRange& range) {
    // numeric loses its fraction, money is rounded.
    const auto whole = ToInt64(value, IsMoney(from.id) ? Rounding::HalfUp : Rounding::TowardZero);
    if (!whole || !range.Holds(*whole)) {
        Overflow(IsMoney(from.id) ? "expression" : "numeric", range.id);
    }
    return *whole;
}

Value IntegerFromDouble(double value, const IntegerRange& range) {
    // The doubles next to the limits of bigint are whole numbers; 2^63 itself is already too large.
    const double whole = std::trunc(value);
    constexpr double limit = 9223372036854775808.0;
    const bool in_range = whole >= -limit && whole < limit;
    if (!in_range && range.id == TypeId::BigInt) {
        Overflow("expression", range.id);
    }
    if (!in_range || !range.Holds(static_cast<std::int64_t>(whole))) {
        RaiseError(232, {TypeName(range.id), FixedText(value, 6)});
    }
    return static_cast<std::int64_t>(whole);
}

/// The days since 1900-01-01, with the time rounded to the nearest day.
std::int64_t WholeDays(const DateTime& value) {
    return value.days + (value.ticks >= kTicksPerDay / 2 ? 1 : 0);
}

Value IntegerFromDate(const DateTime& value, const IntegerRange& range) {
    if (!range.Holds(WholeDays(value))) {
        Overflow("expression", range.id);
    }
    return WholeDays(value);
}

Value IntegerFromText(const std::string& text, const Type& from, const IntegerRange& range) {
    const ParsedInteger parsed = ParseInteger(text);
    if (!parsed.valid) {
        if (range.id == TypeId::BigInt) {
            BadFormat(from, range.id);
        }
        RaiseError(245, {TypeName(from.id), text, TypeName(range.id)});
    }
    if (!parsed.value || !range.Holds(*parsed.value)) {
        if (range.id == TypeId::BigInt) {
            Overflow("expression", range.id);
        }
        RaiseIf(range.id == TypeId::Int, 248, {TypeName(from.id), text});
        RaiseError(244, {TypeName(from.id), text, range.column});
    }
    return *parsed.value;
}

Value IntegerFromBytes(std::string_view bytes, const IntegerRange& range) {
    const std::uint64_t raw = FromBigEndian(bytes.substr(bytes.size() - std::min(bytes.size(), range.bytes)));
    return range.id == TypeId::SmallInt ? std::int64_t{static_cast<std::int16_t>(raw)}
           : range.id == TypeId::Int    ? std::int64_t{static_cast<std::int32_t>(raw)}
                                        : static_cast<std::int64_t>(raw);
}

bool BitFromText(const std::string& text, const Type& from) {
    const std::string_view word = TrimBlanks(text);
    if (AsciiEqual(word, "true") || AsciiEqual(word, "false")) {
        return AsciiEqual(word, "true");
    }
    const ParsedInteger parsed = ParseInteger(text);
    RaiseIf(!parsed.valid, 245, {TypeName(from.id), text, "bit"});
    return !parsed.value || *parsed.value != 0;
}

/// Everything but zero is 1.
bool BitOf(const Value& value, const Type& from) {
    return std::visit(Overloaded{
                          [](std::int64_t v) { return v != 0; },
                          [](double v) { return v != 0; },
                          [](const Decimal& v) { return v.unscaled != 0; },
                          [](const DateTime& v) { return WholeDays(v) != 0; },
                          [&](const std::string& v) { return BitFromText(v, from); },
                          [](const Bytes& v) { return !v.data.empty() && v.data.back() != 0; },
                          [](const auto&) { return false; },
                      },
                      value);
}

// ------------------------------------------------------------------ decimals

/// The number to be fitted into the target type, and the name that the overflow error gives to its source.
struct Exact {
    std::optional<Decimal> value;
    std::string_view source;
};

Exact ExactFromText(const std::string& text, const Type& from, const Type& to) {
    if (IsMoney(to.id)) {
        const ParsedMoney parsed = ParseMoney(text);
        if (!parsed.valid) {
            RaiseError(to.id == TypeId::Money ? 235 : 293);
        }
        return {parsed.value, "expression"};
    }
    const ParsedDecimal parsed = ParseDecimal(TrimBlanks(text), to.scale);
    if (!parsed.valid) {
        BadFormat(from, to.id);
    }
    return {parsed.value, TypeName(from.id)};
}

Exact ExactOf(const Value& value, const Type& from, const Type& to, int scale) {
    return std::visit(Overloaded{
                          [&](std::int64_t v) {
                              return Exact{Decimal{v, 0}, MessageName(from.id)};
                          },
                          [&](double v) {
                              return Exact{FromDouble(v, scale), MessageName(from.id)};
                          },
                          [&](const Decimal& v) {
                              return Exact{v, MessageName(from.id)};
                          },
                          [&](const DateTime& v) {
                              return Exact{FromDouble(ToDayNumber(v), scale), "expression"};
                          },
                          [&](const std::string& v) { return ExactFromText(v, from, to); },
                          [](const auto&) { return Exact{}; }, // never converts (type_rules.cpp)
                      },
                      value);
}

} // namespace

const IntegerRange& RangeOf(TypeId id) {
    static constexpr IntegerRange kRanges[] = {{TypeId::Bit, 0, 1, 1, "BIT"},
                                               {TypeId::TinyInt, 0, 255, 1, "INT1"},
                                               {TypeId::SmallInt, INT16_MIN, INT16_MAX, 2, "INT2"},
                                               {TypeId::Int, INT32_MIN, INT32_MAX, 4, ""},
                                               {TypeId::BigInt, INT64_MIN, INT64_MAX, 8, ""}};
    return *std::ranges::find(kRanges, id, &IntegerRange::id);
}

Value ToInteger(const Value& value, const Type& from, TypeId to) {
    if (to == TypeId::Bit) {
        return std::int64_t{BitOf(value, from)};
    }
    const IntegerRange& range = RangeOf(to);
    return std::visit(Overloaded{
                          [&](std::int64_t v) { return IntegerFromInteger(v, range); },
                          [&](double v) { return IntegerFromDouble(v, range); },
                          [&](const Decimal& v) { return IntegerFromDecimal(v, from, range); },
                          [&](const DateTime& v) { return IntegerFromDate(v, range); },
                          [&](const std::string& v) { return IntegerFromText(v, from, range); },
                          [&](const Bytes& v) { return IntegerFromBytes(v.data, range); },
                          [](const auto&) { return Value(); },
                      },
                      value);
}

Value ToDecimalOrMoney(const Value& value, const Type& from, const Type& to) {
    const int scale = IsMoney(to.id) ? kMoneyScale : to.scale;
    const Exact exact = ExactOf(value, from, to, scale);
    const auto fitted = exact.value ? Rescale(*exact.value, scale) : std::nullopt;
    const bool fits = fitted && (IsMoney(to.id) ? MoneyInRange(fitted->unscaled, to.id)
                                                : FitsPrecision(fitted->unscaled, to.precision));
    if (!fits) {
        Overflow(exact.source, to.id);
    }
    return *fitted;
}

Value ToApproximate(const Value& value, const Type& from, TypeId to) {
    double result = 0;
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        result = static_cast<double>(*integer);
    } else if (const auto* decimal = std::get_if<Decimal>(&value)) {
        result = ToDouble(*decimal);
    } else if (const auto* date = std::get_if<DateTime>(&value)) {
        result = ToDayNumber(*date);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        const auto parsed = ParseFloat(*text);
        if (!parsed) {
            BadFormat(from, to);
        }
        result = *parsed;
    } else {
        result = std::get<double>(value);
    }
    if (to == TypeId::Real) {
        if (std::fabs(result) > static_cast<double>(std::numeric_limits<float>::max())) {
            RaiseError(232, {TypeName(to), FixedText(result, 6)});
        }
        result = static_cast<double>(static_cast<float>(result));
    }
    if (!std::isfinite(result)) {
        Overflow("expression", to);
    }
    return result;
}

ParsedInteger ParseInteger(std::string_view text) {
    text = TrimBlanks(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (negative || text.front() == '+')) {
        text.remove_prefix(1);
    }
    text = TrimBlanks(text);
    const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digits) {
        return {};
    }
    const std::string number = (negative ? "-" : "") + std::string(text.empty() ? "0" : text);
    std::int64_t value = 0;
    const auto end = std::from_chars(number.data(), number.data() + number.size(), value);
    return {true, end.ec == std::errc() ? std::optional<std::int64_t>(value) : std::nullopt};
}

std::optional<double> ParseFloat(std::string_view text) {
    text = TrimBlanks(text);
    if (text.empty()) {
        return 0.0;
    }
    const bool plus = text.front() == '+';
    text.remove_prefix(plus ? 1 : 0);
    // from_chars takes words such as "inf" too, which no float of the server is.
    const bool number = std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || std::string_view("+-.eE").find(c) != std::string_view::npos;
    });
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!number || text.empty() || (plus && text.front() == '-') || end.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    if (end.ec == std::errc::result_out_of_range) {
        // A number too small is read as 0, one too large as infinite. The sign of the exponent decides.
        const std::size_t exponent = text.find_first_of("eE");
        const bool tiny =
            exponent != std::string_view::npos && exponent + 1 < text.size() && text[exponent + 1] == '-';
        return tiny ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return value;
}

ParsedMoney ParseMoney(std::string_view text) {
    std::string digits;
    bool currency = false;
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = DecodeUtf8(text, i);
        const bool sign = c == U'$' || c == U'£' || c == U'¥' || c == U'€' || c == U'¢' || c == U'¤';
        if (sign) {
            if (currency || digits.find_first_of("0123456789.") != std::string::npos) {
                return {};
            }
            currency = true;
        } else if (c < 0x80 && c != U',') {
            digits += static_cast<char>(c);
        } else if (c >= 0x80) {
            return {};
        }
    }
    std::string_view number = TrimBlanks(digits);
    const bool negative = !number.empty() && number.front() == '-';
    if (!number.empty() && (negative || number.front() == '+')) {
        number = TrimBlanks(number.substr(1));
    }
    if (number.empty() || number == ".") {
        return {true, Decimal{0, kMoneyScale}};
    }
    if (number.front() == '-' || number.front() == '+') {
        return {};
    }
    const ParsedDecimal parsed = ParseDecimal(number, kMoneyScale);
    if (!parsed.valid || !parsed.value) {
        return {parsed.valid, std::nullopt};
    }
    const Int128 unscaled = parsed.value->unscaled;
    return {true, Decimal{negative ? -unscaled : unscaled, parsed.value->scale}};
}

bool MoneyInRange(Int128 unscaled, TypeId id) {
    return id == TypeId::Money ? unscaled >= INT64_MIN && unscaled <= INT64_MAX
                               : unscaled >= INT32_MIN && unscaled <= INT32_MAX;
}

std::string_view TrimBlanks(std::string_view text) {
    const auto is_blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && is_blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace devsql

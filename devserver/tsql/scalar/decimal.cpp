// Implements decimal.h: products have 256 bits, and a quotient is found digit by digit.
#include "devserver/tsql/scalar/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace devsql {

namespace {

__extension__ typedef unsigned __int128 UInt128;

struct UInt256 {
    UInt128 high = 0;
    UInt128 low = 0;
};

constexpr std::array<Int128, kMaxDigits + 1> MakePowers() {
    std::array<Int128, kMaxDigits + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}

constexpr auto kPowers = MakePowers();

UInt128 Magnitude(Int128 value) {
    return value < 0 ? ~static_cast<UInt128>(value) + 1 : static_cast<UInt128>(value);
}

Int128 WithSign(UInt128 magnitude, bool negative) {
    const auto value = static_cast<Int128>(magnitude);
    return negative ? -value : value;
}

UInt256 Multiply(UInt128 a, UInt128 b) {
    constexpr UInt128 mask = ~std::uint64_t{0};
    const UInt128 low_low = (a & mask) * (b & mask);
    const UInt128 low_high = (a & mask) * (b >> 64);
    const UInt128 high_low = (a >> 64) * (b & mask);
    const UInt128 middle = (low_low >> 64) + (low_high & mask) + (high_low & mask);
    return {(a >> 64) * (b >> 64) + (low_high >> 64) + (high_low >> 64) + (middle >> 64),
            (middle << 64) | (low_low & mask)};
}

bool Less(const UInt256& a, const UInt256& b) {
    return a.high != b.high ? a.high < b.high : a.low < b.low;
}

UInt256 ShiftLeft(const UInt256& a) {
    return {(a.high << 1) | (a.low >> 127), a.low << 1};
}

struct Quotient {
    UInt256 quotient;
    UInt128 remainder = 0;
};

/// Long division, bit by bit. The divisor must be below 2^127, so that the doubled remainder fits 128 bits.
Quotient Divide(const UInt256& dividend, UInt128 divisor) {
    if (dividend.high == 0) {
        return {{0, dividend.low / divisor}, dividend.low % divisor};
    }
    Quotient result;
    for (int bit = 255; bit >= 0; --bit) {
        const UInt128 word = bit >= 128 ? dividend.high : dividend.low;
        result.remainder = (result.remainder << 1) | ((word >> (bit % 128)) & 1);
        result.quotient = ShiftLeft(result.quotient);
        if (result.remainder >= divisor) {
            result.remainder -= divisor;
            result.quotient.low |= 1;
        }
    }
    return result;
}

bool InRange(UInt128 magnitude) {
    return magnitude < static_cast<UInt128>(kPowers[kMaxDigits]);
}

std::optional<Decimal> MakeDecimal(const UInt256& magnitude, bool negative, int scale) {
    if (magnitude.high != 0 || !InRange(magnitude.low)) {
        return std::nullopt;
    }
    return Decimal{WithSign(magnitude.low, negative), static_cast<std::uint8_t>(scale)};
}

/// magnitude / 10^digits as a whole number, rounded or cut as `rounding` says.
UInt256 DropDigits(const UInt256& magnitude, int digits, Rounding rounding) {
    UInt256 value = magnitude;
    for (int left = digits; left > 0;) {
        // The first dropped digit decides about rounding up. It belongs to the last step, so the steps before
        // it cut.
        const int step = std::min(left, kMaxDigits - 1);
        const auto divisor = static_cast<UInt128>(kPowers[static_cast<std::size_t>(step)]);
        const Quotient parts = Divide(value, divisor);
        value = parts.quotient;
        left -= step;
        if (left == 0 && rounding == Rounding::HalfUp && parts.remainder >= divisor - parts.remainder) {
            value.low += 1;
            value.high += value.low == 0 ? 1 : 0;
        }
    }
    return value;
}

/// |value| * 10^digits; nullopt if `digits` is above 38, unless the value is 0.
std::optional<UInt256> Scaled(Int128 value, int digits) {
    if (digits > kMaxDigits) {
        return value == 0 ? std::optional<UInt256>(UInt256{}) : std::nullopt;
    }
    return Multiply(Magnitude(value), static_cast<UInt128>(PowerOfTen(digits)));
}

} // namespace

Int128 PowerOfTen(int exponent) {
    return kPowers.at(static_cast<std::size_t>(exponent));
}

bool FitsPrecision(Int128 unscaled, int precision) {
    return Magnitude(unscaled) < static_cast<UInt128>(PowerOfTen(precision));
}

int DigitCount(Int128 value) {
    int digits = 1;
    while (digits < kMaxDigits && !FitsPrecision(value, digits)) {
        ++digits;
    }
    return digits;
}

std::optional<Decimal> Rescale(const Decimal& value, int scale, Rounding rounding) {
    const bool negative = value.unscaled < 0;
    if (scale >= value.scale) {
        const auto scaled = Scaled(value.unscaled, scale - value.scale);
        return scaled ? MakeDecimal(*scaled, negative, scale) : std::nullopt;
    }
    return MakeDecimal(DropDigits({0, Magnitude(value.unscaled)}, value.scale - scale, rounding), negative,
                       scale);
}

std::optional<Decimal> AddDecimals(const Decimal& a, const Decimal& b, int scale) {
    const auto x = Rescale(a, scale);
    const auto y = Rescale(b, scale);
    if (!x || !y) {
        return std::nullopt;
    }
    // With the same sign the sum may not fit an Int128, so the magnitudes are added: they fit 128 bits
    // without a sign.
    const bool same_sign = (x->unscaled < 0) == (y->unscaled < 0);
    if (same_sign) {
        return MakeDecimal({0, Magnitude(x->unscaled) + Magnitude(y->unscaled)}, x->unscaled < 0, scale);
    }
    return Decimal{x->unscaled + y->unscaled, static_cast<std::uint8_t>(scale)};
}

std::optional<Decimal> MultiplyDecimals(const Decimal& a, const Decimal& b, int scale) {
    const bool negative = (a.unscaled < 0) != (b.unscaled < 0);
    const UInt256 product = Multiply(Magnitude(a.unscaled), Magnitude(b.unscaled));
    const int surplus = a.scale + b.scale - scale;
    if (surplus >= 0) {
        return MakeDecimal(DropDigits(product, surplus, Rounding::HalfUp), negative, scale);
    }
    const auto exact = MakeDecimal(product, negative, a.scale + b.scale);
    return exact ? Rescale(*exact, scale) : std::nullopt;
}

std::optional<Decimal> DivideDecimals(const Decimal& a, const Decimal& b, int scale) {
    const bool negative = (a.unscaled < 0) != (b.unscaled < 0);
    const UInt128 divisor = Magnitude(b.unscaled);
    UInt128 quotient = Magnitude(a.unscaled) / divisor;
    UInt128 remainder = Magnitude(a.unscaled) % divisor;
    // How many digits the quotient of the unscaled numbers lacks; if negative, how many it has too many.
    int digits = scale + b.scale - a.scale;
    while (digits > 0) { // As many further digits as 256 bits hold.
        const int step = std::min(digits, kMaxDigits);
        const auto power = static_cast<UInt128>(PowerOfTen(step));
        const UInt256 shifted = Multiply(quotient, power);
        const Quotient next = Divide(Multiply(remainder, power), divisor);
        if (shifted.high != 0 || !InRange(shifted.low)) {
            return std::nullopt;
        }
        quotient = shifted.low + next.quotient.low;
        remainder = next.remainder;
        digits -= step;
    }
    return MakeDecimal(DropDigits({0, quotient}, -digits, Rounding::TowardZero), negative, scale);
}

std::optional<Decimal> DecimalRemainder(const Decimal& a, const Decimal& b, int scale) {
    const int common = std::max(a.scale, b.scale);
    const auto dividend = Scaled(a.unscaled, common - a.scale);
    const auto divisor = Rescale(b, common);
    if (!dividend) {
        return std::nullopt;
    }
    if (!divisor) {
        // The divisor has too many digits for the common scale, so it is larger than the dividend, and the
        // whole dividend is the remainder.
        return Rescale(a, scale);
    }
    const UInt128 rest = Divide(*dividend, Magnitude(divisor->unscaled)).remainder;
    return Rescale({WithSign(rest, a.unscaled < 0), static_cast<std::uint8_t>(common)}, scale);
}

int CompareDecimals(const Decimal& a, const Decimal& b) {
    const bool negative = a.unscaled < 0;
    if (negative != (b.unscaled < 0)) {
        return negative ? -1 : 1;
    }
    const int common = std::max(a.scale, b.scale);
    const UInt256 x = Multiply(Magnitude(a.unscaled), static_cast<UInt128>(PowerOfTen(common - a.scale)));
    const UInt256 y = Multiply(Magnitude(b.unscaled), static_cast<UInt128>(PowerOfTen(common - b.scale)));
    const int order = Less(x, y) ? -1 : static_cast<int>(Less(y, x));
    return negative ? -order : order;
}

std::string DecimalText(const Decimal& value) {
    std::string digits;
    for (UInt128 left = Magnitude(value.unscaled); left != 0; left /= 10) {
        digits += static_cast<char>('0' + static_cast<int>(left % 10));
    }
    digits.resize(std::max<std::size_t>(digits.size(), value.scale + 1U), '0');
    std::reverse(digits.begin(), digits.end());
    if (value.scale != 0) {
        digits.insert(digits.size() - value.scale, 1, '.');
    }
    return value.unscaled < 0 ? "-" + digits : digits;
}

double ToDouble(const Decimal& value) {
    const std::string text = DecimalText(value);
    double result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

std::optional<Decimal> FromDouble(double value, int scale) {
    if (!std::isfinite(value)) {
        return std::nullopt;
    }
    // Reads the 17 digits of "d.dddddddddddddddde±xx" as a whole number, and the place of its point.
    std::array<char, 40> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                   std::chars_format::scientific, 16);
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
    const std::size_t mark = text.find('e');
    std::int64_t digits = 0;
    const std::string mantissa = std::string(text.substr(0, 1)) + std::string(text.substr(2, mark - 2));
    std::from_chars(mantissa.data(), mantissa.data() + mantissa.size(), digits);
    int exponent = 0;
    const std::size_t first = mark + (text[mark + 1] == '+' ? 2 : 1);
    std::from_chars(text.data() + first, text.data() + text.size(), exponent);

    const int point = 16 - exponent; // digits after the point
    UInt256 magnitude{0, static_cast<UInt128>(digits)};
    if (point > scale) {
        // Far more digits are dropped than there are: 0.
        magnitude = point - scale > 2 * kMaxDigits ? UInt256{}
                                                   : DropDigits(magnitude, point - scale, Rounding::HalfUp);
    } else {
        const auto scaled = Scaled(digits, scale - point);
        if (!scaled) {
            return std::nullopt;
        }
        magnitude = *scaled;
    }
    return MakeDecimal(magnitude, value < 0, scale);
}

std::optional<std::int64_t> ToInt64(const Decimal& value, Rounding rounding) {
    const auto whole = Rescale(value, 0, rounding);
    if (!whole || whole->unscaled > INT64_MAX || whole->unscaled < INT64_MIN) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(whole->unscaled);
}

ParsedDecimal ParseDecimal(std::string_view text, int most_scale) {
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (negative || text.front() == '+')) {
        text.remove_prefix(1);
    }
    UInt128 magnitude = 0;
    int scale = 0;
    bool point = false;
    bool any_digit = false;
    bool in_range = true;
    bool rounded = false;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') {
            return {};
        }
        any_digit = true;
        if (point && scale == most_scale) {
            // The first digit beyond the last place decides; the others change nothing.
            magnitude += !rounded && c >= '5' ? 1 : 0;
            rounded = true;
            continue;
        }
        in_range = in_range && magnitude < static_cast<UInt128>(kPowers[kMaxDigits - 1]);
        magnitude = in_range ? magnitude * 10 + static_cast<unsigned>(c - '0') : magnitude;
        scale += point ? 1 : 0;
    }
    if (!any_digit) {
        return {};
    }
    if (!in_range || !InRange(magnitude)) {
        return {true, std::nullopt};
    }
    return {true, Decimal{WithSign(magnitude, negative), static_cast<std::uint8_t>(scale)}};
}

} // namespace devsql

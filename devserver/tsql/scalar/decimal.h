// Exact decimal arithmetic on up to 38 digits, with 256 bits in between. Knows nothing of types: who calls
// says the precision and scale of the result.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

inline constexpr int kMaxDigits = 38;

/// 10^exponent, 0 to 38.
Int128 PowerOfTen(int exponent);
/// True if |unscaled| < 10^precision.
bool FitsPrecision(Int128 unscaled, int precision);
/// Digits of |value|, at least 1.
int DigitCount(Int128 value);

enum class Rounding : std::uint8_t { HalfUp, TowardZero };

/// The same number with another scale; nothing if it has more than 38 digits.
std::optional<Decimal> Rescale(const Decimal& value, int scale, Rounding rounding = Rounding::HalfUp);

// Each returns nothing if the result has more than 38 digits. The divisors must not be 0.

std::optional<Decimal> AddDecimals(const Decimal& a, const Decimal& b, int scale);
std::optional<Decimal> MultiplyDecimals(const Decimal& a, const Decimal& b, int scale);
/// Cut, not rounded, after the last digit, as SQL Server divides.
std::optional<Decimal> DivideDecimals(const Decimal& a, const Decimal& b, int scale);
/// With the sign of `a`.
std::optional<Decimal> DecimalRemainder(const Decimal& a, const Decimal& b, int scale);

/// Negative, 0 or positive.
int CompareDecimals(const Decimal& a, const Decimal& b);

/// "-12.340": all digits of the scale.
std::string DecimalText(const Decimal& value);
double ToDouble(const Decimal& value);
/// From the 17 digits that identify a double; nothing if the result has more than 38 digits.
std::optional<Decimal> FromDouble(double value, int scale);
/// The whole part, cut; nothing if it does not fit 64 bits.
std::optional<std::int64_t> ToInt64(const Decimal& value, Rounding rounding);

/// "12", "-1.5", ".5", "5.", with a sign, without exponent and blanks. The scale is that of the text, but
/// digits beyond `most_scale` are rounded away.
struct ParsedDecimal {
    bool valid = false;
    std::optional<Decimal> value;
};
ParsedDecimal ParseDecimal(std::string_view text, int most_scale = kMaxDigits);

} // namespace devsql

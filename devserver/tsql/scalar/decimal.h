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

/// The same number with another scale; none beyond 38 digits.
std::optional<Decimal> Rescale(const Decimal& value, int scale, Rounding rounding = Rounding::HalfUp);

// Each gives none beyond 38 digits. The divisors must not be 0.

std::optional<Decimal> AddDecimals(const Decimal& a, const Decimal& b, int scale);
std::optional<Decimal> MultiplyDecimals(const Decimal& a, const Decimal& b, int scale);
/// Cut, not rounded, behind the last digit, as SQL Server divides.
std::optional<Decimal> DivideDecimals(const Decimal& a, const Decimal& b, int scale);
/// With the sign of `a`.
std::optional<Decimal> DecimalRemainder(const Decimal& a, const Decimal& b, int scale);

/// Negative, 0 or positive.
int CompareDecimals(const Decimal& a, const Decimal& b);

/// "-12.340": all digits of the scale.
std::string DecimalText(const Decimal& value);
double ToDouble(const Decimal& value);
/// By the 17 digits that tell a double from all others; none beyond 38 digits.
std::optional<Decimal> FromDouble(double value, int scale);
/// Whole part, cut; none beyond 64 bits.
std::optional<std::int64_t> ToInt64(const Decimal& value, Rounding rounding);

/// "12", "-1.5", ".5", "5.", with a sign, without exponent and blanks. The scale is that of the text, but
/// fine digits beyond `most_scale` are rounded away. none: not a number; the inner none: beyond 38 digits.
struct ParsedDecimal {
    bool valid = false;
    std::optional<Decimal> value;
};
ParsedDecimal ParseDecimal(std::string_view text, int most_scale = kMaxDigits);

} // namespace devsql

// Exact decimal arithmetic on up to 38 digits; intermediate results have 256 bits. Knows nothing of SQL
// types: the caller gives the scale of the result and checks its precision.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

inline constexpr int kMaxDigits = 38;

/// 10^exponent; the exponent is 0 to 38.
Int128 PowerOfTen(int exponent);
/// True if |unscaled| < 10^precision.
bool FitsPrecision(Int128 unscaled, int precision);
/// The number of decimal digits of |value|, at least 1.
int DigitCount(Int128 value);

enum class Rounding : std::uint8_t { HalfUp, TowardZero };

/// The same number with another scale; nullopt if it has more than 38 digits.
std::optional<Decimal> Rescale(const Decimal& value, int scale, Rounding rounding = Rounding::HalfUp);

// Each returns nullopt if the result has more than 38 digits. `scale` is the result's. A divisor must not
// be 0.

std::optional<Decimal> AddDecimals(const Decimal& a, const Decimal& b, int scale);
std::optional<Decimal> MultiplyDecimals(const Decimal& a, const Decimal& b, int scale);
/// Cuts the quotient after its last digit and does not round it, as SQL Server does.
std::optional<Decimal> DivideDecimals(const Decimal& a, const Decimal& b, int scale);
/// The remainder has the sign of `a`.
std::optional<Decimal> DecimalRemainder(const Decimal& a, const Decimal& b, int scale);

/// Negative if a < b, 0 if they are equal, positive if a > b.
int CompareDecimals(const Decimal& a, const Decimal& b);

/// "-12.340": always as many digits after the point as the scale says.
std::string DecimalText(const Decimal& value);
double ToDouble(const Decimal& value);
/// Rounds the 17 digits that identify the double to the scale; nullopt if the result has more than 38 digits.
std::optional<Decimal> FromDouble(double value, int scale);
/// The value as a whole number, rounded or cut as `rounding` says; nullopt if it does not fit 64 bits.
std::optional<std::int64_t> ToInt64(const Decimal& value, Rounding rounding);

struct ParsedDecimal {
    bool valid = false;           ///< the text is a number
    std::optional<Decimal> value; ///< nullopt if the number has more than 38 digits
};
/// Reads "12", "-1.5", "+1.5", ".5" or "5."; an exponent or blanks are not valid. The result has the text's
/// scale, but at most `most_scale`: the digits after that are rounded.
ParsedDecimal ParseDecimal(std::string_view text, int most_scale = kMaxDigits);

} // namespace devsql

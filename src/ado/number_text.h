// Numbers as text, in the forms of a locale, and back. Internal to the layer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/locale.h"

namespace ado {

/// Shows at most `digits` significant digits, with an exponent where that is shorter.
std::string ShowFloating(double value, int digits, const platform::LocaleForms& forms);
/// Shows an exact number, which is given in digits with "." as the decimal point: without the zeros that a
/// column's scale adds at the end, and with the zero before the point that some drivers leave out.
std::string ShowExact(std::string_view digits, const platform::LocaleForms& forms);

/// A number with all its digits: `digits` * 10^-`scale`. `digits` has no zero at either end; the number 0 has
/// no digits.
struct ExactNumber {
    bool negative = false;
    std::string digits;
    std::int64_t scale = 0;

    /// The number of digits before the decimal point; 0 or negative for a number below 1.
    std::int64_t WholeDigits() const { return static_cast<std::int64_t>(digits.size()) - scale; }
    bool HasFraction() const { return scale > 0; }
    /// As in "-12.5". For numbers of a moderate size.
    std::string Plain() const;
    /// As in "-125E-1", which the functions of the C++ library read.
    std::string Scientific() const;
};

/// Reads a sign, the currency's symbol, digits, perhaps grouped, a decimal point and an exponent. Returns
/// nothing if the text is not a number in the locale. Groups of a wrong size are refused: their separator may
/// be meant as the decimal point of another locale.
std::optional<ExactNumber> ReadNumber(std::string_view text, const platform::LocaleForms& forms);

/// The text without spaces, tabs and no-break spaces at both ends.
std::string_view WithoutBlanks(std::string_view text);

} // namespace ado

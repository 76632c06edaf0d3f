// Numbers as text, in the forms of a locale, and back. Inner header of the layer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/locale.h"

namespace ado {

/// With so many significant digits at most, and an exponent where that is shorter.
std::string ShowFloating(double value, int digits, const platform::LocaleForms& forms);
/// An exact number, whose digits have a "." for the decimal point: without the zeros that a column's scale
/// adds at the end, and with the zero that some drivers leave out at the front.
std::string ShowExact(std::string_view digits, const platform::LocaleForms& forms);

/// A number as it was written, without loss: `digits` * 10^-`scale`. It has neither a zero at the front nor
/// one at the end; no digits are zero.
struct ExactNumber {
    bool negative = false;
    std::string digits;
    std::int64_t scale = 0;

    /// Digits before the decimal point; negative or 0 for a number below 1.
    std::int64_t WholeDigits() const { return static_cast<std::int64_t>(digits.size()) - scale; }
    bool HasFraction() const { return scale > 0; }
    /// "-12.5", for a number of a moderate size.
    std::string Plain() const;
    /// "-125E-1", for the functions of the C++ library.
    std::string Scientific() const;
};

/// Reads a sign, the currency's symbol, digits, perhaps grouped, a decimal point and an exponent. Nothing if
/// the text is not a number of the locale: groups of a wrong size are refused, since a decimal point of
/// another locale would be lost in them.
std::optional<ExactNumber> ReadNumber(std::string_view text, const platform::LocaleForms& forms);

/// The text without spaces, tabs and no-break spaces at both ends.
std::string_view WithoutBlanks(std::string_view text);

} // namespace ado

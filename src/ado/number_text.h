// Converts numbers to text in the forms of a locale, and back. Internal to the layer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/locale.h"

namespace ado {

/// Returns the number with at most `digits` significant digits. Very large and very small numbers have an
/// exponent, as with printf's %G.
std::string ShowFloating(double value, int digits, const platform::LocaleForms& forms);
/// Returns an exact number in the locale's form. `digits` is the number with "." as the decimal point. The
/// zeros that a column's scale adds at the end are removed, and the zero before the point that some drivers
/// leave out is added.
std::string ShowExact(std::string_view digits, const platform::LocaleForms& forms);

/// A number with all its digits: `digits` as a whole number times 10 to the power of -`scale`. `digits` has
/// no zero at either end; the number 0 has no digits.
struct ExactNumber {
    bool negative = false;
    std::string digits;
    std::int64_t scale = 0;

    /// Returns the number of digits before the decimal point; 0 or a negative number for a number below 1.
    std::int64_t WholeDigits() const { return static_cast<std::int64_t>(digits.size()) - scale; }
    bool HasFraction() const { return scale > 0; }
    /// Returns all digits, as in "-12.5". Must not be called for a number with a huge exponent, which would
    /// have as many zeros.
    std::string Plain() const;
    /// Returns the form "-125E-1", which the functions of the C++ library read.
    std::string Scientific() const;
};

/// Reads a sign, the currency's symbol, digits, perhaps grouped, a decimal point and an exponent. Returns
/// nothing if the text is not a number in the locale. Groups of a wrong size are refused: their separator may
/// be meant as the decimal point of another locale.
std::optional<ExactNumber> ReadNumber(std::string_view text, const platform::LocaleForms& forms);

/// Returns the text without spaces, tabs and no-break spaces at both ends. The result refers to `text`.
std::string_view WithoutBlanks(std::string_view text);

} // namespace ado

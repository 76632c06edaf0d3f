// Dates and times of day as text, in the forms of a locale, and back. Inner header of the layer.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ado/variant.h"
#include "platform/locale.h"

namespace ado {

/// The day that a time of day without a date stands on.
inline constexpr Date kDayZero{1899, 12, 30, 0, 0, 0, 0};

/// To the whole second, since the text has no parts of one; the last moment of the year 9999 is not rounded
/// up.
Date RoundedToSecond(const Date& date);

/// Midnight and the day zero are left out, unless both would be.
std::string ShowDate(const Date& date, const platform::LocaleForms& forms);

/// A text that was read.
struct DateText {
    Date date = kDayZero;
    bool has_date = false;
    bool has_time = false;
};

/// Reads a date, a time or both: in the locale's own order, with the year in four digits, with or without
/// seconds; or by ISO 8601, with a space or a "T" between the two and parts of a second. Nothing for any
/// other text: neither the order of day and month nor a century is guessed.
std::optional<DateText> ReadDate(std::string_view text, const platform::LocaleForms& forms);

} // namespace ado

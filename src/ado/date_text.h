// Converts dates and times of day to text in the forms of a locale, and back. Internal to the layer.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ado/variant.h"
#include "platform/locale.h"

namespace ado {

/// The day of a Date that has only a time of day.
inline constexpr Date kDayZero{1899, 12, 30, 0, 0, 0, 0};

/// Rounds to the nearest second, since the text shows no fraction. The last second of the year 9999 is
/// rounded down.
Date RoundedToSecond(const Date& date);

/// Returns the text of a date and time, rounded to a second. The date is left out if it is kDayZero, and the
/// time is left out if it is midnight. Midnight of kDayZero is shown as a time.
std::string ShowDate(const Date& date, const platform::LocaleForms& forms);

/// A date that was read from a text.
struct DateText {
    Date date = kDayZero;
    bool has_date = false; ///< the text has a date
    bool has_time = false; ///< the text has a time of day
};

/// Reads a date, a time of day, or a date followed by a time. Two forms are accepted:
///  - that of the locale, in its order of day, month and year; seconds may be left out,
///    and so may AM and PM if the hour is of a 24-hour clock;
///  - ISO 8601, with a space or a "T" between date and time; seconds may be left out or have a fraction.
/// The year must have four digits. Returns nullopt for any other text: neither the order of day and month nor
/// the century is guessed.
std::optional<DateText> ReadDate(std::string_view text, const platform::LocaleForms& forms);

} // namespace ado

// Dates and times of day as text, in the forms of a locale, and back. Internal to the layer.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ado/variant.h"
#include "platform/locale.h"

namespace ado {

/// The day that a Date holds if it stands for a time of day only.
inline constexpr Date kDayZero{1899, 12, 30, 0, 0, 0, 0};

/// Rounds to a whole second, since the text shows no fraction. The last second of the year 9999 is not
/// rounded up.
Date RoundedToSecond(const Date& date);

/// The text of a date and time, rounded to a second. The date is left out if it is day zero, and the time if
/// it is midnight. Midnight of day zero is shown as a time.
std::string ShowDate(const Date& date, const platform::LocaleForms& forms);

/// A date that was read from a text.
struct DateText {
    Date date = kDayZero;
    bool has_date = false;
    bool has_time = false;
};

/// Reads a date, a time of day, or a date followed by a time. Two forms are accepted:
///  - that of the locale, in its order of day, month and year; seconds may be left out,
///    and so may AM and PM if the hour is of a 24-hour clock;
///  - ISO 8601, with a space or a "T" between date and time; seconds may be left out or have a fraction.
/// The year must have four digits. Returns nullopt for any other text: neither the order of day and month nor
/// the century is guessed.
std::optional<DateText> ReadDate(std::string_view text, const platform::LocaleForms& forms);

} // namespace ado

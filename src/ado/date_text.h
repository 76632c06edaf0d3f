// Dates and times of day as text, in the forms of a locale, and back. Internal to the layer.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ado/variant.h"
#include "platform/locale.h"

namespace ado {

/// The date of a time of day that has no date.
inline constexpr Date kDayZero{1899, 12, 30, 0, 0, 0, 0};

/// Rounds to a whole second, since the text shows no fraction. The last second of the year 9999 is not
/// rounded up.
Date RoundedToSecond(const Date& date);

/// Leaves out the date if it is day zero, and the time if it is midnight; midnight of day zero is shown as
/// the time alone.
std::string ShowDate(const Date& date, const platform::LocaleForms& forms);

/// A date that was read from a text.
struct DateText {
    Date date = kDayZero;
    bool has_date = false;
    bool has_time = false;
};

/// Reads a date, a time or both: in the locale's own order, with the year in four digits, with or without
/// seconds; or by ISO 8601, with a space or a "T" between the two and parts of a second. Returns nothing for
/// any other text: neither the order of day and month nor a century is guessed.
std::optional<DateText> ReadDate(std::string_view text, const platform::LocaleForms& forms);

} // namespace ado

// The calendar: days since 1900-01-01 and 1/300 seconds to years, months and clock times and back; date
// parts; the clock. Knows nothing of text.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

inline constexpr std::int32_t kFirstDay = -53690; ///< 1753-01-01
inline constexpr std::int32_t kLastDay = 2958463; ///< 9999-12-31
inline constexpr std::int32_t kTicksPerSecond = 300;
inline constexpr std::int32_t kTicksPerDay = 86400 * 300;
inline constexpr std::int32_t kLastSmallDay = 65535; ///< 2079-06-06; smalldatetime begins at day 0

/// A date and time in its parts.
struct CivilTime {
    std::int32_t year = 1900;
    std::int32_t month = 1; ///< 1 to 12
    std::int32_t day = 1;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t ticks = 0; ///< 1/300 seconds within the second
};

std::int32_t DaysFromCivil(std::int32_t year, std::int32_t month, std::int32_t day);
CivilTime ToCivil(const DateTime& value);
/// Normalises nothing: every part must be in its range.
DateTime FromCivil(const CivilTime& civil);
std::int32_t DaysInMonth(std::int32_t year, std::int32_t month);
/// 0 Sunday to 6 Saturday.
std::int32_t DayOfWeek(std::int32_t days);
std::int32_t DayOfYear(std::int32_t days);
/// The milliseconds of 1/300 seconds within a second, as SQL Server prints them: 0, 3, 7, 10, 13, ...
std::int32_t MillisecondsOf(std::int32_t ticks);

/// Days since 1900-01-01, with the time as fraction, to datetime; nothing beyond its range.
std::optional<DateTime> FromDayNumber(double days);
double ToDayNumber(const DateTime& value);
/// To the whole minute, 29.998 seconds down and 29.999 up; nothing beyond the range of smalldatetime.
std::optional<DateTime> ToSmallDateTime(const DateTime& value);

/// The local time, rounded to 1/300 seconds.
DateTime Now();
/// The same in universal time.
DateTime UtcNow();

// ------------------------------------------------------------------ date parts

enum class DatePart : std::uint8_t {
    Year,
    Quarter,
    Month,
    DayOfYear,
    Day,
    Week,
    Weekday,
    Hour,
    Minute,
    Second,
    Millisecond,
    IsoWeek, ///< of DATEPART and DATENAME alone
};

/// By name or abbreviation ("yy", "year", "dw"), ignoring case; nothing for another word.
std::optional<DatePart> FindDatePart(std::string_view name);
/// `datefirst` is 1 Monday to 7 Sunday, 7 under us_english.
std::int32_t GetDatePart(DatePart part, const DateTime& value, int datefirst = 7);
/// Returns nothing when the result leaves the range of datetime.
std::optional<DateTime> AddDatePart(DatePart part, std::int64_t count, const DateTime& value);
/// The boundaries between the two, as DATEDIFF counts them.
std::int64_t CountDateParts(DatePart part, const DateTime& from, const DateTime& to);

/// "January" for 1; "Sunday" for 0.
std::string_view MonthName(std::int32_t month);
std::string_view WeekdayName(std::int32_t weekday);

} // namespace devsql

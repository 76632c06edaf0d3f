// Reading dates and times as SQL Server reads them under us_english.
#pragma once

#include <cstdint>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// The order of day, month and year in a date of digits.
enum class DateOrder : std::uint8_t { MonthDayYear, DayMonthYear, YearMonthDay };

enum class DateReading : std::uint8_t {
    Good,
    NoDate,    ///< not a form of a date: 241
    OutOfRange ///< the form of a date, but there is no such day or it lies outside datetime: 242
};

/// Takes yyyymmdd, yymmdd, yyyy, digits with "/", "-" or ".", months by name, ISO 8601 with "T", times with
/// milliseconds and AM/PM before or after the date. An empty text is 1900-01-01; two digits of a year below
/// 50 are in the 2000s. Writes to `value` only when Good.
DateReading ParseDateTime(std::string_view text, DateOrder order, DateTime& value);

} // namespace devsql

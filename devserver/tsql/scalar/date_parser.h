// Reads dates and times in texts as SQL Server does under us_english, by the session's date settings.
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

// The settings of SET DATEFIRST and SET DATEFORMAT. The functions of this library get values alone, so the
// settings of a session belong to the thread that runs its statements.

struct DateSettings {
    std::int32_t first_day = 7; ///< of the week: 1 Monday to 7 Sunday
    DateOrder order = DateOrder::MonthDayYear;
};

/// The settings of the innermost scope of this thread; those of us_english outside of any scope.
const DateSettings& CurrentDateSettings();

/// While it lives, the thread has these settings. It keeps a reference to them, so a change of them has
/// effect at once, and they must outlive it.
class DateSettingsScope {
  public:
    explicit DateSettingsScope(const DateSettings& settings);
    DateSettingsScope(const DateSettingsScope&) = delete;
    DateSettingsScope& operator=(const DateSettingsScope&) = delete;
    ~DateSettingsScope();

  private:
    const DateSettings* outer_;
};

} // namespace devsql

// The proleptic Gregorian calendar, counted in days of 1900, and the arithmetic of date parts.
#include "devserver/tsql/scalar/date_time.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "devserver/tsql/scalar/text.h"
#include "platform/clock.h"

namespace devsql {

namespace {

constexpr std::int32_t kTicksPerMinute = 60 * kTicksPerSecond;
constexpr std::int32_t kTicksPerHour = 60 * kTicksPerMinute;
constexpr std::int64_t kMillisecondsPerDay = 86'400'000;

/// The day of 1900-01-01 in the count of the C++ calendar (from 1970).
constexpr std::int32_t kEpoch = -25567;

/// The names and abbreviations, in the order of DatePart.
constexpr std::string_view kPartNames[] = {"year,yyyy,yy",   "quarter,qq,q",   "month,mm,m",
                                           "dayofyear,dy,y", "day,dd,d",       "week,wk,ww",
                                           "weekday,dw,w",   "hour,hh",        "minute,mi,n",
                                           "second,ss,s",    "millisecond,ms", "iso_week,isowk,isoww"};

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

std::int64_t FloorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

std::optional<DateTime> FromTotalTicks(std::int64_t total) {
    const std::int64_t days = FloorDivide(total, kTicksPerDay);
    if (days < kFirstDay || days > kLastDay) {
        return std::nullopt;
    }
    return DateTime{static_cast<std::int32_t>(days), static_cast<std::int32_t>(total - days * kTicksPerDay)};
}

std::int64_t TotalTicks(const DateTime& value) {
    return static_cast<std::int64_t>(value.days) * kTicksPerDay + value.ticks;
}

/// The months are added, and a day that the new month lacks becomes its last.
std::optional<DateTime> AddMonths(const DateTime& value, std::int64_t count) {
    CivilTime civil = ToCivil(value);
    const std::int64_t months = civil.year * 12LL + civil.month - 1 + count;
    const std::int64_t year = FloorDivide(months, 12);
    if (year < 1753 || year > 9999) {
        return std::nullopt;
    }
    civil.year = static_cast<std::int32_t>(year);
    civil.month = static_cast<std::int32_t>(months - year * 12) + 1;
    civil.day = std::min(civil.day, DaysInMonth(civil.year, civil.month));
    return FromCivil(civil);
}

/// The ticks of a unit that is always the same whole number of ticks; 0 for other units. A millisecond is no
/// whole number of ticks.
std::int64_t TicksOf(DatePart part) {
    switch (part) {
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::Weekday:
        return kTicksPerDay;
    case DatePart::Week:
        return 7LL * kTicksPerDay;
    case DatePart::Hour:
        return kTicksPerHour;
    case DatePart::Minute:
        return kTicksPerMinute;
    case DatePart::Second:
        return kTicksPerSecond;
    default:
        return 0;
    }
}

std::int32_t WeekOfYear(std::int32_t days, int datefirst) {
    const std::int32_t day_of_year = DayOfYear(days);
    const std::int32_t january_first = DayOfWeek(days - day_of_year + 1);
    return (day_of_year - 1 + (january_first - datefirst % 7 + 7) % 7) / 7 + 1;
}

/// The week by ISO 8601: weeks begin on Monday, and the first has at least four days of the year. So a week
/// has the number that its Thursday has in the Thursday's year.
std::int32_t IsoWeekOfYear(std::int32_t days) {
    const std::int32_t since_monday = (DayOfWeek(days) + 6) % 7;
    return (DayOfYear(days - since_monday + 3) - 1) / 7 + 1;
}

DateTime FromSystemTime(std::chrono::system_clock::time_point time, std::int64_t offset_seconds) {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::int64_t since_1970 = FloorDivide((milliseconds + offset_seconds * 1000) * 3 + 5, 10);
    const std::int64_t days = FloorDivide(since_1970, kTicksPerDay);
    return {static_cast<std::int32_t>(days - kEpoch),
            static_cast<std::int32_t>(since_1970 - days * kTicksPerDay)};
}

/// How far local time is ahead of universal time. Both clocks are read at different moments, so the
/// difference is rounded to the quarter of an hour that all time zones keep to.
std::int64_t LocalOffsetSeconds(std::chrono::system_clock::time_point time) {
    const platform::LocalTime local = platform::Now();
    const std::int64_t local_seconds =
        (DaysFromCivil(local.year, local.month, local.day) + kEpoch) * 86400LL + local.hour * 3600LL +
        local.minute * 60LL + local.second;
    const auto utc = std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
    constexpr std::int64_t quarter = 900;
    return FloorDivide(local_seconds - utc + quarter / 2, quarter) * quarter;
}

} // namespace

std::int32_t DaysFromCivil(std::int32_t year, std::int32_t month, std::int32_t day) {
    const std::chrono::sys_days days = std::chrono::year(year) / month / day;
    return static_cast<std::int32_t>(days.time_since_epoch().count()) - kEpoch;
}

CivilTime ToCivil(const DateTime& value) {
    const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(value.days + kEpoch))};
    CivilTime civil;
    civil.year = static_cast<int>(date.year());
    civil.month = static_cast<std::int32_t>(static_cast<unsigned>(date.month()));
    civil.day = static_cast<std::int32_t>(static_cast<unsigned>(date.day()));
    civil.hour = value.ticks / kTicksPerHour;
    civil.minute = value.ticks % kTicksPerHour / kTicksPerMinute;
    civil.second = value.ticks % kTicksPerMinute / kTicksPerSecond;
    civil.ticks = value.ticks % kTicksPerSecond;
    return civil;
}

DateTime FromCivil(const CivilTime& civil) {
    return {DaysFromCivil(civil.year, civil.month, civil.day),
            civil.hour * kTicksPerHour + civil.minute * kTicksPerMinute + civil.second * kTicksPerSecond +
                civil.ticks};
}

std::int32_t DaysInMonth(std::int32_t year, std::int32_t month) {
    const auto last =
        std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) / std::chrono::last;
    return static_cast<std::int32_t>(static_cast<unsigned>(last.day()));
}

std::int32_t DayOfWeek(std::int32_t days) {
    // 1900-01-01 was a Monday.
    return static_cast<std::int32_t>(((days + 1LL) % 7 + 7) % 7);
}

std::int32_t DayOfYear(std::int32_t days) {
    return days - DaysFromCivil(ToCivil({days, 0}).year, 1, 1) + 1;
}

std::int32_t MillisecondsOf(std::int32_t ticks) {
    return (ticks * 10 + 1) / 3;
}

std::optional<DateTime> FromDayNumber(double days) {
    if (!(days >= kFirstDay && days < kLastDay + 1.0)) {
        return std::nullopt;
    }
    const double whole = std::floor(days);
    return FromTotalTicks(static_cast<std::int64_t>(whole) * kTicksPerDay +
                          std::llround((days - whole) * kTicksPerDay));
}

double ToDayNumber(const DateTime& value) {
    return value.days + static_cast<double>(value.ticks) / kTicksPerDay;
}

std::optional<DateTime> ToSmallDateTime(const DateTime& value) {
    // 29.998 seconds is the last that rounds down; no tick lies between it and the half minute.
    const std::int64_t minutes = (TotalTicks(value) + kTicksPerMinute / 2);
    const std::int64_t rounded = FloorDivide(minutes, kTicksPerMinute) * kTicksPerMinute;
    const std::optional<DateTime> result = FromTotalTicks(rounded);
    return result && result->days >= 0 && result->days <= kLastSmallDay ? result : std::nullopt;
}

DateTime Now() {
    const auto time = std::chrono::system_clock::now();
    return FromSystemTime(time, LocalOffsetSeconds(time));
}

DateTime UtcNow() {
    return FromSystemTime(std::chrono::system_clock::now(), 0);
}

std::optional<DatePart> FindDatePart(std::string_view name) {
    const auto* found =
        std::ranges::find_if(kPartNames, [&](std::string_view names) { return ListHas(names, name); });
    return found == std::end(kPartNames) ? std::nullopt
                                         : std::optional(static_cast<DatePart>(found - kPartNames));
}

std::int32_t GetDatePart(DatePart part, const DateTime& value, int datefirst) {
    const CivilTime civil = ToCivil(value);
    switch (part) {
    case DatePart::Year:
        return civil.year;
    case DatePart::Quarter:
        return (civil.month - 1) / 3 + 1;
    case DatePart::Month:
        return civil.month;
    case DatePart::DayOfYear:
        return DayOfYear(value.days);
    case DatePart::Day:
        return civil.day;
    case DatePart::Week:
        return WeekOfYear(value.days, datefirst);
    case DatePart::IsoWeek:
        return IsoWeekOfYear(value.days);
    case DatePart::Weekday:
        return (DayOfWeek(value.days) - datefirst % 7 + 7) % 7 + 1;
    case DatePart::Hour:
        return civil.hour;
    case DatePart::Minute:
        return civil.minute;
    case DatePart::Second:
        return civil.second;
    default:
        return MillisecondsOf(civil.ticks);
    }
}

std::optional<DateTime> AddDatePart(DatePart part, std::int64_t count, const DateTime& value) {
    switch (part) {
    case DatePart::Year:
        return AddMonths(value, count * 12);
    case DatePart::Quarter:
        return AddMonths(value, count * 3);
    case DatePart::Month:
        return AddMonths(value, count);
    case DatePart::Millisecond:
        return FromTotalTicks(TotalTicks(value) + FloorDivide(count * 3 + 5, 10));
    default:
        return FromTotalTicks(TotalTicks(value) + count * TicksOf(part));
    }
}

std::int64_t CountDateParts(DatePart part, const DateTime& from, const DateTime& to) {
    const auto months = [](const DateTime& value) {
        const CivilTime civil = ToCivil(value);
        return civil.year * 12LL + civil.month - 1;
    };
    const auto milliseconds = [](const DateTime& value) {
        return value.days * kMillisecondsPerDay + value.ticks / kTicksPerSecond * 1000LL +
               MillisecondsOf(value.ticks % kTicksPerSecond);
    };
    switch (part) {
    case DatePart::Year:
        return FloorDivide(months(to), 12) - FloorDivide(months(from), 12);
    case DatePart::Quarter:
        return FloorDivide(months(to), 3) - FloorDivide(months(from), 3);
    case DatePart::Month:
        return months(to) - months(from);
    case DatePart::Week: {
        // Weeks begin on Sunday here, whatever DATEFIRST says; day -1 (1899-12-31) was one.
        const auto week = [](const DateTime& value) { return FloorDivide(value.days + 1LL, 7); };
        return week(to) - week(from);
    }
    case DatePart::Millisecond:
        return milliseconds(to) - milliseconds(from);
    default: {
        const std::int64_t unit = TicksOf(part);
        return FloorDivide(TotalTicks(to), unit) - FloorDivide(TotalTicks(from), unit);
    }
    }
}

std::string_view MonthName(std::int32_t month) {
    return kMonths.at(static_cast<std::size_t>(month - 1));
}

std::string_view WeekdayName(std::int32_t weekday) {
    return kWeekdays.at(static_cast<std::size_t>(weekday));
}

} // namespace devsql

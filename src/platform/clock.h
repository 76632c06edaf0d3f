// Reads the local date and time.
#pragma once

namespace platform {

/// A point in local time, as a calendar and a clock show it.
struct LocalTime {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;  ///< 0 to 23
    int minute = 0;
    int second = 0;

    friend bool operator==(const LocalTime&, const LocalTime&) = default;
};

/// Returns the current local time. Fractions of a second are cut.
LocalTime Now();

} // namespace platform

// How the user's locale writes numbers, dates and truth values. The service only provides these forms;
// callers convert.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace platform {

/// Text is in the program's code page. The initial values are the forms of English (United States). They are
/// also used for a locale that the machine does not have, and for a form that the code page cannot hold.
struct LocaleForms {
    using MonthNames = std::array<std::string, 12>;

    std::string decimal_point = ".";
    /// Between groups of digits; empty if the locale does not group. Every kind of space is given as a
    /// no-break space.
    std::string group_separator = ",";
    /// The sizes of the groups, from the decimal point to the left; the last one applies to all further
    /// groups.
    std::vector<std::size_t> group_sizes = {3};
    std::string currency_symbol = "$";
    std::string true_word = "True";
    std::string false_word = "False";
    /// Pictures as Windows writes them: d, dd, M, MM, MMM, MMMM, yyyy for a date, h, hh, H, HH, m, mm, s, ss,
    /// t, tt for a time; text between apostrophes and all other characters are literal.
    std::string date_picture = "M/d/yyyy";
    std::string time_picture = "h:mm:ss tt";
    std::string am = "AM";
    std::string pm = "PM";
    MonthNames months = {"January", "February", "March",     "April",   "May",      "June",
                         "July",    "August",   "September", "October", "November", "December"};
    MonthNames short_months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

    friend bool operator==(const LocaleForms&, const LocaleForms&) = default;
};

/// The forms of the user's locale, read once.
const LocaleForms& UserLocale();

/// The forms of a locale with a name such as "de-DE"; the empty name is the user's locale. The initial values
/// if the machine does not have the locale.
LocaleForms NamedLocale(const std::string& name);

} // namespace platform

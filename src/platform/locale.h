// Reads how a locale writes numbers, dates and truth values. Converts nothing: callers do that with the forms
// that they get here.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace platform {

/// The forms of one locale, in code page 1252. The initial values are those of English (United States). They
/// are also used for a locale that the machine does not have, and for a form that has a character which the
/// code page lacks.
struct LocaleForms {
    using MonthNames = std::array<std::string, 12>;

    std::string decimal_point = ".";
    /// The text between groups of digits; empty if the locale does not group digits. Every kind of space is
    /// given as a no-break space (0xA0).
    std::string group_separator = ",";
    /// The numbers of digits in the groups, from the decimal point to the left. The last one applies to all
    /// further groups.
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

/// Returns the forms of the user's locale, which are read at the first call. Valid until the program ends.
const LocaleForms& UserLocale();

/// Reads the forms of a locale with a name such as "de-DE"; an empty name means the user's locale. Returns
/// the initial values if the machine does not have the locale.
LocaleForms NamedLocale(const std::string& name);

} // namespace platform

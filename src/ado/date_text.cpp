// Shows and reads dates by the pictures of a locale, and reads dates in ISO 8601.
#include "ado/date_text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <vector>

#include "ado/number_text.h"
#include "text/text.h"

namespace ado {
namespace {

using platform::LocaleForms;

/// A piece of a picture (platform/locale.h): an element such as "MM", or literal text.
struct Element {
    char letter = '\0';    ///< one of d M y h H m s t; NUL for literal text
    std::size_t count = 0; ///< the number of letters of an element
    std::string text{};    ///< the literal text
};
using Picture = std::vector<Element>;

/// A no-break space. Some locales write it where an operator types a space.
constexpr std::string_view kNoBreakSpace = "\xA0";

/// True for weekdays and eras. They are left out together with the text that follows them, since the date is
/// complete without them.
bool IsLeftOut(char letter, std::size_t count) {
    return letter == 'g' || (letter == 'd' && count > 2);
}

/// Calls `take` with each piece of a picture: an element's letter and its text, or NUL and a literal
/// character.
template <class Take>
void ForEachPiece(std::string_view picture, Take take) {
    bool quoted = false;
    bool left_out = false;
    for (std::size_t i = 0; i < picture.size();) {
        const char c = picture[i];
        constexpr std::string_view kLetters = "dMyghHmst";
        if (c == '\'') {
            quoted = !quoted;
            ++i;
        } else if (quoted || kLetters.find(c) == std::string_view::npos) {
            if (!left_out) {
                take('\0', picture.substr(i, 1));
            }
            ++i;
        } else {
            const std::size_t end = std::min(picture.find_first_not_of(c, i), picture.size());
            left_out = IsLeftOut(c, end - i);
            if (!left_out) {
                take(c, picture.substr(i, end - i));
            }
            i = end;
        }
    }
}

Picture PictureOf(std::string_view text) {
    Picture picture;
    ForEachPiece(text, [&](char letter, std::string_view piece) {
        if (letter != '\0') {
            picture.push_back({letter, piece.size()});
        } else if (!picture.empty() && picture.back().letter == '\0') {
            picture.back().text += piece;
        } else {
            picture.push_back({'\0', 0, std::string(piece)});
        }
    });
    return picture;
}

// ------------------------------------------------------------------ showing

std::string Digits(unsigned number, std::size_t width) {
    std::string text = std::to_string(number);
    if (text.size() < width) {
        text.insert(0, width - text.size(), '0');
    }
    return text;
}

unsigned HourOf12(unsigned hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

std::string ShowElement(char letter, std::size_t count, const Date& date, const LocaleForms& forms) {
    switch (letter) {
    case 'd':
        return Digits(date.day, count);
    case 'M':
        return count > 3    ? forms.months.at(date.month - 1U)
               : count == 3 ? forms.short_months.at(date.month - 1U)
                            : Digits(date.month, count);
    case 'y':
        return Digits(static_cast<unsigned>(date.year), 4);
    case 'h':
        return Digits(HourOf12(date.hour), count);
    case 'H':
        return Digits(date.hour, count);
    case 'm':
        return Digits(date.minute, count);
    case 's':
        return Digits(date.second, count);
    default: { // t
        const std::string& word = date.hour < 12 ? forms.am : forms.pm;
        return count > 1 ? word : word.substr(0, 1);
    }
    }
}

std::string Show(const std::string& picture, const Date& date, const LocaleForms& forms) {
    std::string text;
    ForEachPiece(picture, [&](char letter, std::string_view piece) {
        if (letter == '\0') {
            text += piece;
        } else {
            text += ShowElement(letter, piece.size(), date, forms);
        }
    });
    return text;
}

// ------------------------------------------------------------------ reading

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The functions Take… remove something from the front of a text. They return false if it is not there.

/// Takes a number of `min_digits` to `max_digits` digits.
template <class Number>
bool TakeNumber(std::string_view& text, std::size_t min_digits, std::size_t max_digits, Number& number) {
    std::size_t size = 0;
    while (size < text.size() && IsDigit(text[size])) {
        ++size;
    }
    if (size < min_digits || size > max_digits) {
        return false;
    }
    std::from_chars(text.data(), text.data() + size, number);
    text.remove_prefix(size);
    return true;
}

bool TakeWord(std::string_view& text, const std::string& word) {
    if (word.empty() || text::LowerCase(text.substr(0, word.size())) != text::LowerCase(word)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

bool TakeMonth(std::string_view& text, const LocaleForms& forms, std::uint16_t& month) {
    for (const LocaleForms::MonthNames* const names : {&forms.months, &forms.short_months}) {
        for (std::size_t i = 0; i < names->size(); ++i) {
            if (TakeWord(text, (*names)[i])) {
                month = static_cast<std::uint16_t>(i + 1);
                return true;
            }
        }
    }
    return false;
}

/// The rest of a text that is being read, and the date as far as it has been read.
struct Reading {
    std::string_view text;
    Date date = kDayZero;
    bool twelve_hours = false; ///< the text has AM or PM
    bool afternoon = false;    ///< the text has PM
};

bool TakeElement(const Element& element, const LocaleForms& forms, Reading& reading) {
    switch (element.letter) {
    case 'd':
        return TakeNumber(reading.text, 1, 2, reading.date.day);
    case 'M':
        return element.count > 2 ? TakeMonth(reading.text, forms, reading.date.month)
                                 : TakeNumber(reading.text, 1, 2, reading.date.month);
    case 'y':
        return TakeNumber(reading.text, 4, 4, reading.date.year);
    case 'h':
    case 'H':
        return TakeNumber(reading.text, 1, 2, reading.date.hour);
    case 'm':
        return TakeNumber(reading.text, 1, 2, reading.date.minute);
    case 's':
        return TakeNumber(reading.text, 1, 2, reading.date.second);
    case 't':
        reading.twelve_hours = true;
        reading.afternoon = TakeWord(reading.text, forms.pm);
        return reading.afternoon || TakeWord(reading.text, forms.am);
    default:
        return TakeWord(reading.text, text::ReplaceAll(element.text, kNoBreakSpace, " "));
    }
}

bool TakePicture(const Picture& picture, const LocaleForms& forms, Reading& reading) {
    return std::ranges::all_of(picture,
                               [&](const Element& element) { return TakeElement(element, forms, reading); });
}

/// Converts the hour to a clock of 24 hours. Returns false if there is no such hour.
bool ConvertTo24Hours(Reading& reading) {
    std::uint16_t& hour = reading.date.hour;
    if (!reading.twelve_hours) {
        return hour < 24;
    }
    if (hour < 1 || hour > 12) {
        return false;
    }
    hour = static_cast<std::uint16_t>(hour % 12 + (reading.afternoon ? 12 : 0));
    return true;
}

bool IsValid(const Date& date) {
    const std::chrono::year_month_day day{std::chrono::year(date.year), std::chrono::month(date.month),
                                          std::chrono::day(date.day)};
    return date.year >= 1 && day.ok() && date.hour < 24 && date.minute < 60 && date.second < 60;
}

/// Returns the picture without an element and without the literal text before it, or after it if the element
/// is the first piece.
Picture Without(Picture picture, char letter) {
    const auto found = std::ranges::find(picture, letter, &Element::letter);
    if (found == picture.end()) {
        return picture;
    }
    const bool first = found == picture.begin();
    const auto beside = first ? found + 1 : found - 1;
    const bool text = beside != picture.end() && beside->letter == '\0';
    if (!text) {
        picture.erase(found);
    } else {
        picture.erase(std::min(found, beside), std::max(found, beside) + 1);
    }
    return picture;
}

/// Returns the locale's picture of a time; the same without seconds; without AM and PM, for a clock of 24
/// hours; and without both.
std::vector<Picture> TimePictures(const LocaleForms& forms) {
    const Picture whole = PictureOf(forms.time_picture);
    return {whole, Without(whole, 's'), Without(whole, 't'), Without(Without(whole, 's'), 't')};
}

/// Returns the date that was read; nothing if text is left or the date does not exist.
std::optional<DateText> Finished(Reading reading, bool has_date, bool has_time) {
    if (!reading.text.empty() || !ConvertTo24Hours(reading) || !IsValid(reading.date)) {
        return std::nullopt;
    }
    return DateText{reading.date, has_date, has_time};
}

std::optional<DateText> ReadLocaleDate(std::string_view text, const LocaleForms& forms) {
    Reading start{text};
    const bool has_date = TakePicture(PictureOf(forms.date_picture), forms, start);
    if (!has_date) {
        start = Reading{text};
    } else if (start.text.empty()) {
        return Finished(start, true, false);
    } else if (WithoutBlanks(start.text).size() == start.text.size()) {
        return std::nullopt; // no blank between date and time
    }
    start.text = WithoutBlanks(start.text);
    for (const Picture& picture : TimePictures(forms)) {
        Reading reading = start;
        if (TakePicture(picture, forms, reading) && reading.text.empty()) {
            return Finished(reading, has_date, true);
        }
    }
    return std::nullopt;
}

/// Takes a point and a fraction of a second of up to nine digits, if the text begins with a point.
bool TakeFraction(std::string_view& text, std::uint32_t& nanosecond) {
    if (!text.starts_with('.')) {
        return true;
    }
    text.remove_prefix(1);
    constexpr std::size_t kDigits = 9;
    const std::size_t size = text.size();
    if (!TakeNumber(text, 1, kDigits, nanosecond)) {
        return false;
    }
    for (std::size_t digits = size - text.size(); digits < kDigits; ++digits) {
        nanosecond *= 10;
    }
    return true;
}

/// True if the text begins with this shape: a digit for each 0, and every other character as it is.
bool HasShape(std::string_view text, std::string_view shape) {
    return text.size() >= shape.size() &&
           std::ranges::equal(text.substr(0, shape.size()), shape,
                              [](char c, char wanted) { return wanted == '0' ? IsDigit(c) : c == wanted; });
}

std::optional<DateText> ReadIsoTime(Reading reading, bool has_date) {
    static const Picture kMinutes = PictureOf("HH':'mm");
    static const Picture kSeconds = PictureOf("HH':'mm':'ss");
    const bool seconds = HasShape(reading.text, "00:00:00");
    if (!HasShape(reading.text, "00:00") || !TakePicture(seconds ? kSeconds : kMinutes, {}, reading) ||
        (seconds && !TakeFraction(reading.text, reading.date.nanosecond))) {
        return std::nullopt;
    }
    return Finished(reading, has_date, true);
}

std::optional<DateText> ReadIsoDate(std::string_view text) {
    static const Picture kDay = PictureOf("yyyy-MM-dd");
    Reading reading{text};
    if (!TakePicture(kDay, {}, reading)) {
        return std::nullopt;
    }
    if (reading.text.empty()) {
        return Finished(reading, true, false);
    }
    if (reading.text.front() != 'T' && reading.text.front() != ' ') {
        return std::nullopt;
    }
    reading.text.remove_prefix(1);
    return ReadIsoTime(reading, true);
}

} // namespace

Date RoundedToSecond(const Date& date) {
    using namespace std::chrono;
    constexpr std::uint32_t kHalf = 500'000'000;
    Date rounded = date;
    rounded.nanosecond = 0;
    const bool last = date.year == 9999 && date.month == 12 && date.day == 31 && date.hour == 23 &&
                      date.minute == 59 && date.second == 59;
    if (date.nanosecond < kHalf || last) {
        return rounded;
    }
    const sys_days day = year_month_day(year(date.year), month(date.month), std::chrono::day(date.day));
    // Counted in seconds: a clock of nanoseconds reaches from 1677 to 2262 only.
    const sys_seconds next =
        sys_seconds(day) + hours(date.hour) + minutes(date.minute) + seconds(date.second + 1);
    const sys_days midnight = floor<days>(next);
    const year_month_day next_day(midnight);
    const hh_mm_ss time(next - sys_seconds(midnight));
    rounded.year = static_cast<std::int16_t>(static_cast<int>(next_day.year()));
    rounded.month = static_cast<std::uint16_t>(static_cast<unsigned>(next_day.month()));
    rounded.day = static_cast<std::uint16_t>(static_cast<unsigned>(next_day.day()));
    rounded.hour = static_cast<std::uint16_t>(time.hours().count());
    rounded.minute = static_cast<std::uint16_t>(time.minutes().count());
    rounded.second = static_cast<std::uint16_t>(time.seconds().count());
    return rounded;
}

std::string ShowDate(const Date& date, const LocaleForms& forms) {
    const Date rounded = RoundedToSecond(date);
    const bool day_zero =
        rounded.year == kDayZero.year && rounded.month == kDayZero.month && rounded.day == kDayZero.day;
    const bool midnight = rounded.hour == 0 && rounded.minute == 0 && rounded.second == 0;
    std::string text;
    if (!day_zero) {
        text = Show(forms.date_picture, rounded, forms);
    }
    if (!midnight || day_zero) {
        text += (text.empty() ? "" : " ") + Show(forms.time_picture, rounded, forms);
    }
    return text;
}

std::optional<DateText> ReadDate(std::string_view given, const LocaleForms& forms) {
    const std::string text = text::ReplaceAll(WithoutBlanks(given), kNoBreakSpace, " ");
    // A text in the form of ISO 8601 is never read in the locale's order, in which it could be another day.
    if (HasShape(text, "0000-00-00")) {
        return ReadIsoDate(text);
    }
    if (auto read = ReadLocaleDate(text, forms)) {
        return read;
    }
    return ReadIsoTime(Reading{text}, false);
}

} // namespace ado

// Reads a date and time in a text. The text is cut into numbers, words and marks; the time is found by its
// colons and AM/PM, and the rest is the date.
#include "devserver/tsql/scalar/date_parser.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

enum class TokenKind : std::uint8_t { Number, Word, Mark };

struct Token {
    TokenKind kind = TokenKind::Mark;
    std::string text;         ///< words in upper case
    std::int32_t number = 0;  ///< of a Number
    bool after_blank = false; ///< a blank stands before it

    bool Is(TokenKind k, std::string_view t) const { return kind == k && text == t; }
    bool IsMark(std::string_view t) const { return Is(TokenKind::Mark, t); }
    bool IsNumber() const { return kind == TokenKind::Number; }
    std::size_t Digits() const { return text.size(); }
};

using Tokens = std::vector<Token>;

/// No part of a date has more digits than yyyymmdd.
constexpr std::size_t kMostDigits = 8;
/// The years 00 to 49 are 2000 to 2049.
constexpr std::int32_t kTwoDigitYearCutoff = 50;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// Returns nothing if the text has a character that no date has.
std::optional<Tokens> Cut(std::string_view text) {
    Tokens tokens;
    bool blank = false;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ' || text[i] == '\t') {
            blank = true;
            ++i;
            continue;
        }
        Token token;
        token.after_blank = blank;
        blank = false;
        const auto same = [&](auto is) {
            return static_cast<std::size_t>(
                std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), is) -
                text.begin());
        };
        std::size_t end = i + 1;
        if (IsDigit(text[i])) {
            end = same(IsDigit);
            if (end - i > kMostDigits) {
                return std::nullopt;
            }
            token.kind = TokenKind::Number;
            token.number = std::stoi(std::string(text.substr(i, end - i)));
        } else if (IsLetter(text[i])) {
            end = same(IsLetter);
            token.kind = TokenKind::Word;
        } else if (std::string_view("/-.,:").find(text[i]) == std::string_view::npos) {
            return std::nullopt;
        }
        token.text = AsciiUpper(text.substr(i, end - i));
        tokens.push_back(token);
        i = end;
    }
    return tokens;
}

struct Time {
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t milliseconds = 0;
};

bool IsHalf(const Tokens& tokens, std::size_t i) {
    return i < tokens.size() && (tokens[i].Is(TokenKind::Word, "AM") || tokens[i].Is(TokenKind::Word, "PM"));
}

/// The number after `mark` at `i`: the next part of a time.
bool IsPart(const Tokens& tokens, std::size_t i, std::string_view mark) {
    return i + 1 < tokens.size() && tokens[i].IsMark(mark) && tokens[i + 1].IsNumber();
}

/// Milliseconds after ":" are a count, after "." a fraction. Returns false for more than three digits.
bool ReadMilliseconds(const Tokens& tokens, std::size_t& i, Time& time) {
    const bool count = IsPart(tokens, i, ":");
    if (!count && !IsPart(tokens, i, ".")) {
        return true;
    }
    const Token& token = tokens[i + 1];
    if (token.Digits() > 3) {
        return false;
    }
    constexpr std::array<std::int32_t, 4> unit = {0, 100, 10, 1};
    time.milliseconds = token.number * (count ? 1 : unit[token.Digits()]);
    i += 2;
    return true;
}

DateReading ApplyHalf(const Token& half, Time& time) {
    if (time.hour > 12) {
        return half.text == "PM" ? DateReading::Good : DateReading::OutOfRange;
    }
    time.hour = time.hour % 12 + (half.text == "PM" ? 12 : 0);
    return DateReading::Good;
}

/// Takes the time out of `tokens`. A text without one has midnight.
DateReading TakeTime(Tokens& tokens, Time& time, bool& found) {
    std::size_t first = 0;
    while (first < tokens.size() &&
           !(tokens[first].IsNumber() && (IsPart(tokens, first + 1, ":") || IsHalf(tokens, first + 1)))) {
        ++first;
    }
    found = first < tokens.size();
    if (!found) {
        return DateReading::Good;
    }
    std::size_t i = first + 1;
    time.hour = tokens[first].number;
    if (IsPart(tokens, i, ":")) {
        time.minute = tokens[i + 1].number;
        i += 2;
        if (IsPart(tokens, i, ":")) {
            time.second = tokens[i + 1].number;
            i += 2;
            if (!ReadMilliseconds(tokens, i, time)) {
                return DateReading::NoDate;
            }
        }
    }
    DateReading reading = DateReading::Good;
    if (IsHalf(tokens, i)) {
        reading = ApplyHalf(tokens[i++], time);
    }
    // The T and Z of ISO 8601.
    if (i < tokens.size() && tokens[i].Is(TokenKind::Word, "Z") && i + 1 == tokens.size()) {
        ++i;
    }
    if (first > 1 && tokens[first - 1].Is(TokenKind::Word, "T") && tokens[first - 2].IsNumber()) {
        --first;
    }
    tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(first),
                 tokens.begin() + static_cast<std::ptrdiff_t>(i));
    if (time.hour > 23 || time.minute > 59 || time.second > 59) {
        return DateReading::OutOfRange;
    }
    return reading;
}

struct Date {
    std::int32_t year = 1900;
    std::int32_t month = 1;
    std::int32_t day = 1;
};

std::int32_t FullYear(const Token& token) {
    if (token.Digits() > 2) {
        return token.number;
    }
    return token.number + (token.number < kTwoDigitYearCutoff ? 2000 : 1900);
}

std::optional<std::int32_t> MonthOf(const Token& token) {
    if (token.kind != TokenKind::Word) {
        return std::nullopt;
    }
    for (std::int32_t month = 1; month <= 12; ++month) {
        const std::string name = AsciiUpper(MonthName(month));
        if (token.text == name || token.text == name.substr(0, 3)) {
            return month;
        }
    }
    return std::nullopt;
}

/// yyyymmdd, yymmdd, yyyy.
std::optional<Date> UnseparatedDate(const Token& token) {
    const std::int32_t day = token.number % 100;
    const std::int32_t month = token.number / 100 % 100;
    switch (token.Digits()) {
    case 8:
        return Date{token.number / 10000, month, day};
    case 6: {
        const std::int32_t year = token.number / 10000;
        return Date{year + (year < kTwoDigitYearCutoff ? 2000 : 1900), month, day};
    }
    case 4:
        return Date{token.number, 1, 1};
    default:
        return std::nullopt;
    }
}

/// Three numbers with the same mark between them.
std::optional<Date> SeparatedDate(const Tokens& t, DateOrder order) {
    const bool form = t.size() == 5 && t[0].IsNumber() && t[2].IsNumber() && t[4].IsNumber() &&
                      t[1].kind == TokenKind::Mark && t[1].text == t[3].text && t[1].text != "," &&
                      t[1].text != ":";
    if (!form) {
        return std::nullopt;
    }
    // Four digits are a year. The other two numbers come in the order that is set.
    const std::array parts = {&t[0], &t[2], &t[4]};
    const auto found = std::ranges::find_if(parts, [](const Token* part) { return part->Digits() == 4; });
    const std::size_t year = found != parts.end() ? static_cast<std::size_t>(found - parts.begin())
                             : order == DateOrder::YearMonthDay ? 0
                                                                : 2;
    const std::int32_t first = parts[year == 0 ? 1 : 0]->number;
    const std::int32_t second = parts[year == 2 ? 1 : 2]->number;
    return order == DateOrder::DayMonthYear ? Date{FullYear(*parts[year]), second, first}
                                            : Date{FullYear(*parts[year]), first, second};
}

/// A month by name with a year and perhaps a day, in any order.
std::optional<Date> NamedDate(const Tokens& tokens) {
    std::optional<std::int32_t> month;
    std::vector<Token> numbers;
    for (const Token& token : tokens) {
        if (token.IsNumber()) {
            numbers.push_back(token);
        } else if (const auto named = MonthOf(token); named && !month) {
            month = named;
        } else if (token.kind == TokenKind::Word || token.text == ":") {
            return std::nullopt;
        }
    }
    const bool widths = std::all_of(numbers.begin(), numbers.end(),
                                    [](const Token& n) { return n.Digits() <= 2 || n.Digits() == 4; });
    if (!month || !widths) {
        return std::nullopt;
    }
    if (numbers.size() == 1 && numbers[0].Digits() == 4) {
        return Date{numbers[0].number, *month, 1};
    }
    if (numbers.size() != 2) {
        return std::nullopt;
    }
    const bool year_first = numbers[0].Digits() == 4;
    if (year_first && numbers[1].Digits() == 4) {
        return std::nullopt;
    }
    return Date{FullYear(numbers[year_first ? 0 : 1]), *month, numbers[year_first ? 1 : 0].number};
}

std::optional<Date> ReadDate(const Tokens& tokens, DateOrder order) {
    if (tokens.empty()) {
        return Date{};
    }
    if (tokens.size() == 1 && tokens[0].IsNumber()) {
        return UnseparatedDate(tokens[0]);
    }
    if (const auto date = SeparatedDate(tokens, order)) {
        return date;
    }
    return NamedDate(tokens);
}

bool Exists(const Date& date) {
    return date.year >= 1753 && date.year <= 9999 && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
           date.day <= DaysInMonth(date.year, date.month);
}

constexpr DateSettings kUsEnglish;
thread_local const DateSettings* current = &kUsEnglish;

} // namespace

DateReading ParseDateTime(std::string_view text, DateOrder order, DateTime& value) {
    auto tokens = Cut(text);
    if (!tokens) {
        return DateReading::NoDate;
    }
    Time time;
    bool has_time = false;
    const DateReading reading = TakeTime(*tokens, time, has_time);
    if (reading == DateReading::NoDate) {
        return reading;
    }
    const auto date = ReadDate(*tokens, order);
    if (!date) {
        return DateReading::NoDate;
    }
    if (reading != DateReading::Good || !Exists(*date)) {
        return DateReading::OutOfRange;
    }
    CivilTime civil{date->year, date->month, date->day, time.hour, time.minute, time.second, 0};
    DateTime result = FromCivil(civil);
    result.ticks += (time.milliseconds * 3 + 5) / 10;
    if (result.ticks == kTicksPerDay) {
        if (result.days == kLastDay) {
            return DateReading::OutOfRange;
        }
        result = {result.days + 1, 0};
    }
    value = result;
    return DateReading::Good;
}

const DateSettings& CurrentDateSettings() {
    return *current;
}

DateSettingsScope::DateSettingsScope(const DateSettings& settings)
    : outer_(std::exchange(current, &settings)) {}

DateSettingsScope::~DateSettingsScope() {
    current = outer_;
}

} // namespace devsql

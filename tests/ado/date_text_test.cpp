// Tests how dates are shown as text and read from text, in the forms of different locales.
#include "ado/date_text.h"

#include <gtest/gtest.h>

#include "fakes/fake_locale.h"

namespace ado {
namespace {

using fakes::American;
using fakes::German;
using fakes::Swedish;

constexpr Date kAfternoon{2024, 2, 29, 14, 3, 5, 0};

/// Reads the text as a date and returns it as "2024-02-29 14:03:05.000000000", with "date" or "time" before
/// it if the text had only one of them; "-" if the text is refused.
std::string Read(const std::string& text, const platform::LocaleForms& forms = American()) {
    const auto read = ReadDate(text, forms);
    if (!read) {
        return "-";
    }
    const Date& date = read->date;
    char shown[80];
    std::snprintf(shown, sizeof shown, "%04d-%02u-%02u %02u:%02u:%02u", int{date.year}, unsigned{date.month},
                  unsigned{date.day}, unsigned{date.hour}, unsigned{date.minute}, unsigned{date.second});
    std::string result = shown;
    if (date.nanosecond != 0) {
        result += "." + std::to_string(date.nanosecond);
    }
    return (read->has_time ? read->has_date ? "" : "time " : "date ") + result;
}

TEST(DateText, IsShownInTheLocalesForms) {
    EXPECT_EQ(ShowDate(kAfternoon, American()), "2/29/2024 2:03:05 PM");
    EXPECT_EQ(ShowDate(kAfternoon, German()), "29.02.2024 14:03:05");
    EXPECT_EQ(ShowDate(kAfternoon, Swedish()), "2024-02-29 14:03:05");
    EXPECT_EQ(ShowDate({2024, 2, 29, 0, 0, 0, 0}, German()), "29.02.2024");
    EXPECT_EQ(ShowDate({1899, 12, 30, 9, 5, 0, 0}, German()), "09:05:00");
    EXPECT_EQ(ShowDate({1, 1, 1, 0, 0, 0, 0}, American()), "1/1/0001");
}

TEST(DateText, ShowsEveryElementOfAPicture) {
    platform::LocaleForms forms = German();
    forms.date_picture = "dddd, d. MMMM yy 'g''";
    forms.time_picture = "tt h.m.s";
    forms.am = "vorm.";
    forms.pm = "nachm.";
    EXPECT_EQ(ShowDate({2024, 3, 5, 14, 3, 5, 0}, forms), "5. M\xE4rz 2024 g nachm. 2.3.5")
        << "no weekday, and the year has four digits";
    forms.date_picture = "yyyy/MMM/dd gg";
    forms.time_picture = "HH:mm:ss t";
    EXPECT_EQ(ShowDate({2024, 3, 5, 9, 3, 5, 0}, forms), "2024/M\xE4r/05  09:03:05 v");
}

TEST(DateText, IsNotRoundedBeyondTheYear9999) {
    EXPECT_EQ(ShowDate({9999, 12, 31, 23, 59, 59, 997000000}, American()), "12/31/9999 11:59:59 PM");
    EXPECT_EQ(ShowDate({9999, 12, 31, 23, 59, 58, 997000000}, American()), "12/31/9999 11:59:59 PM");
    EXPECT_EQ(ShowDate({9999, 12, 30, 23, 59, 59, 997000000}, American()), "12/31/9999");
}

TEST(DateText, ReadsTheLocalesOwnForms) {
    EXPECT_EQ(Read("2/29/2024 12:34:57 PM"), "2024-02-29 12:34:57");
    EXPECT_EQ(Read("02/29/2024 12:34:57 am"), "2024-02-29 00:34:57");
    EXPECT_EQ(Read(" 2/29/2024\t"), "date 2024-02-29 00:00:00");
    EXPECT_EQ(Read("2:03:22 PM"), "time 1899-12-30 14:03:22");
    EXPECT_EQ(Read("12:00:00 AM"), "time 1899-12-30 00:00:00");
    EXPECT_EQ(Read("2/29/2024 2:03 PM"), "2024-02-29 14:03:00");
    EXPECT_EQ(Read("2/29/2024   14:03"), "2024-02-29 14:03:00");
    EXPECT_EQ(Read("29.02.2024 14:03:05", German()), "2024-02-29 14:03:05");
    EXPECT_EQ(Read("9.2.2024", German()), "date 2024-02-09 00:00:00");
    EXPECT_EQ(Read("31.12.2024 9:05", German()), "2024-12-31 09:05:00");
    EXPECT_EQ(Read("2024-02-29 14:03:05", Swedish()), "2024-02-29 14:03:05");
    platform::LocaleForms names = German();
    names.date_picture = "d. MMM yyyy";
    EXPECT_EQ(Read("5. M\xE4rz 2024", names), "date 2024-03-05 00:00:00");
    EXPECT_EQ(Read("5. M\xC4R 2024", names), "date 2024-03-05 00:00:00");
    names.time_picture = "h:mm:ss\xA0tt";
    names.am = "AM";
    names.pm = "PM";
    EXPECT_EQ(Read("2:03:05 pm", names), "time 1899-12-30 14:03:05");
    EXPECT_EQ(Read("2:03:05\xA0PM", names), "time 1899-12-30 14:03:05");
}

TEST(DateText, ReadsIsoDatesInEveryLocale) {
    for (const platform::LocaleForms& forms : {American(), German(), Swedish()}) {
        EXPECT_EQ(Read("2024-02-29", forms), "date 2024-02-29 00:00:00");
        EXPECT_EQ(Read("2024-02-29T12:34:57", forms), "2024-02-29 12:34:57");
        EXPECT_EQ(Read("2024-02-29 12:34", forms), "2024-02-29 12:34:00");
        EXPECT_EQ(Read("2024-02-29T12:34:57.123", forms), "2024-02-29 12:34:57.123000000");
        EXPECT_EQ(Read("2024-02-29 12:34:57.000000001", forms), "2024-02-29 12:34:57.1");
        EXPECT_EQ(Read("12:34:57.5", forms), "time 1899-12-30 12:34:57.500000000");
    }
}

TEST(DateText, RefusesEveryOtherText) {
    for (const char* const text : {"",
                                   " ",
                                   "31.12.2024",
                                   "2024-13-01",
                                   "2024-02-30",
                                   "2023-02-29",
                                   "2/30/2024",
                                   "13/1/2024",
                                   "0/1/2024",
                                   "1/0/2024",
                                   "2/29/24",
                                   "2/29",
                                   "2024",
                                   "tomorrow",
                                   "2/29/2024x",
                                   "2/29/20242:03 PM",
                                   "2/29/2024 25:00",
                                   "24:00",
                                   "2/29/2024 13:00:00 PM",
                                   "0:30 AM",
                                   "2:60 PM",
                                   "2:03:60 PM",
                                   "2/29/2024 2:03:22 PM PM",
                                   "0000-01-01",
                                   "2024-02-29T",
                                   "2024-02-29X12:00",
                                   "2024-02-29T12",
                                   "2024-02-29T12:34:57.",
                                   "2024-02-29T12:34:57.1234567890",
                                   "2024-02-29T12:34:57Z",
                                   "2024-02-29T12:34:57+01:00",
                                   "2024-2-29",
                                   "12/31/10000",
                                   "5.7"}) {
        EXPECT_EQ(Read(text), "-") << text;
    }
    EXPECT_EQ(Read("12/31/2024", German()), "-");
    EXPECT_EQ(Read("12.31.2024", German()), "-") << "the order is not guessed";
    EXPECT_EQ(Read("2:03:22 PM", German()), "-");
}

TEST(DateText, IsReadAsItWasShown) {
    platform::LocaleForms names = German();
    names.date_picture = "dddd, d. MMMM yyyy";
    for (const platform::LocaleForms& forms : {American(), German(), Swedish(), names}) {
        for (const Date& date : {kAfternoon, Date{1753, 1, 1, 0, 0, 0, 0}, Date{9999, 12, 31, 23, 59, 59, 0},
                                 Date{1899, 12, 30, 0, 0, 0, 0}, Date{1899, 12, 30, 0, 0, 1, 0},
                                 Date{2000, 11, 10, 12, 0, 0, 0}, Date{1, 1, 1, 0, 30, 0, 0}}) {
            const std::string shown = ShowDate(date, forms);
            const auto read = ReadDate(shown, forms);
            ASSERT_TRUE(read) << shown;
            EXPECT_EQ(read->date, date) << shown;
        }
    }
}

} // namespace
} // namespace ado

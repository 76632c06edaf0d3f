// Reading, formatting and calculating with dates.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"
#include "devserver/tsql/scalar/date_time.h"

namespace devsql {
namespace {

const Type kDateTime = Simple(TypeId::DateTime);
const Type kSmallDateTime = Simple(TypeId::SmallDateTime);

struct ReadingCase {
    std::string_view text;
    std::string_view expected;
};

constexpr std::string_view kNoDate =
    "241 Conversion failed when converting date and/or time from character string.";
constexpr std::string_view kOutOfRange =
    "242 The conversion of a varchar data type to a datetime data type resulted in "
    "an out-of-range value.";

TEST(DateTexts, AreReadInAllForms) {
    const ReadingCase cases[] = {
        {"2001-02-03", "2001-02-03 00:00:00.000"},
        {"20010203", "2001-02-03 00:00:00.000"},
        {"010203", "2001-02-03 00:00:00.000"},
        {"500203", "1950-02-03 00:00:00.000"},
        {"2001", "2001-01-01 00:00:00.000"},
        {"2/3/2001", "2001-02-03 00:00:00.000"},
        {"2-3-01", "2001-02-03 00:00:00.000"},
        {"2.3.99", "1999-02-03 00:00:00.000"},
        {"2/2001/3", "2001-02-03 00:00:00.000"},
        {"Feb 3 2001", "2001-02-03 00:00:00.000"},
        {"February 3, 2001", "2001-02-03 00:00:00.000"},
        {"3 feb 01", "2001-02-03 00:00:00.000"},
        {"3-Feb-2001", "2001-02-03 00:00:00.000"},
        {"2001 FEBRUARY 3", "2001-02-03 00:00:00.000"},
        {"Feb 2001", "2001-02-01 00:00:00.000"},
        {"2001-02-03T04:05:06", "2001-02-03 04:05:06.000"},
        {"2001-02-03T04:05:06.007Z", "2001-02-03 04:05:06.007"},
        {"20010203 04:05", "2001-02-03 04:05:00.000"},
        {"2001-02-03 04:05:06.7", "2001-02-03 04:05:06.700"},
        {"2001-02-03 04:05:06:7", "2001-02-03 04:05:06.007"},
        {"Feb  3 2001 12:05AM", "2001-02-03 00:05:00.000"},
        {"Feb  3 2001 12:05 pm", "2001-02-03 12:05:00.000"},
        {"Feb  3 2001  4:05:06:007PM", "2001-02-03 16:05:06.007"},
        {"4PM", "1900-01-01 16:00:00.000"},
        {"16:05 2001-02-03", "2001-02-03 16:05:00.000"},
        {"04:05:06", "1900-01-01 04:05:06.000"},
        {"", "1900-01-01 00:00:00.000"},
        {"   ", "1900-01-01 00:00:00.000"},
        {"1753-01-01", "1753-01-01 00:00:00.000"},
        {"9999-12-31 23:59:59.997", "9999-12-31 23:59:59.997"},
        {"2000-02-29", "2000-02-29 00:00:00.000"},
    };
    for (const ReadingCase& c : cases) {
        EXPECT_EQ(Converted(Text(c.text), kDateTime), c.expected) << c.text;
    }
}

TEST(DateTexts, RoundToA300thOfASecond) {
    const ReadingCase cases[] = {
        {"2001-02-03 00:00:00.001", "2001-02-03 00:00:00.000"},
        {"2001-02-03 00:00:00.002", "2001-02-03 00:00:00.003"},
        {"2001-02-03 00:00:00.005", "2001-02-03 00:00:00.007"},
        {"2001-02-03 00:00:00.008", "2001-02-03 00:00:00.007"},
        {"2001-02-03 00:00:00.009", "2001-02-03 00:00:00.010"},
        {"2001-02-03 23:59:59.998", "2001-02-03 23:59:59.997"},
        {"2001-02-03 23:59:59.999", "2001-02-04 00:00:00.000"},
    };
    for (const ReadingCase& c : cases) {
        EXPECT_EQ(Converted(Text(c.text), kDateTime), c.expected) << c.text;
    }
}

TEST(DateTexts, ThatAreNotDatesAreErrors) {
    for (const std::string_view text :
         {"yesterday", "2001-02", "Feb", "Feb 3", "2001-02-03 04:05:06.0071", "1/2/3/4", "2001-02-03 x",
          "1,2,2001", "123", "12345", "2001-02/03", "123456789", "2001-02-03T", "Mai 3 2001"}) {
        EXPECT_EQ(Converted(Text(text), kDateTime), kNoDate) << text;
    }
}

TEST(DateTexts, OfMissingDaysAreErrors) {
    for (const std::string_view text :
         {"2001-02-29", "2001-13-01", "20010230", "1752-12-31", "13/13/2001", "2001-02-03 24:00",
          "2001-02-03 12:60", "0000-01-01", "9999-12-31 23:59:59.999"}) {
        EXPECT_EQ(Converted(Text(text), kDateTime), kOutOfRange) << text;
    }
    EXPECT_EQ(Converted(NText("2001-02-29"), kDateTime),
              "242 The conversion of a nvarchar data type to a datetime data type resulted in an "
              "out-of-range value.");
}

TEST(DateTexts, AreReadInTheOrderOfTheStyle) {
    EXPECT_EQ(Converted(Text("03/02/2001"), kDateTime, 103), "2001-02-03 00:00:00.000");
    EXPECT_EQ(Converted(Text("03/02/2001"), kDateTime, 101), "2001-03-02 00:00:00.000");
    EXPECT_EQ(Converted(Text("13.02.2001"), kDateTime, 104), "2001-02-13 00:00:00.000");
    EXPECT_EQ(Converted(Text("01.02.03"), kDateTime, 2), "2001-02-03 00:00:00.000");
    EXPECT_EQ(Converted(Text("20010203"), kDateTime, 112), "2001-02-03 00:00:00.000");
}

TEST(SmallDates, AreWholeMinutes) {
    EXPECT_EQ(Converted(Text("2001-02-03 04:05:29.998"), kSmallDateTime), "2001-02-03 04:05:00.000");
    EXPECT_EQ(Converted(Text("2001-02-03 04:05:29.999"), kSmallDateTime), "2001-02-03 04:06:00.000");
    EXPECT_EQ(Converted(Date("2001-02-03 23:59:30"), kSmallDateTime), "2001-02-04 00:00:00.000");
    EXPECT_EQ(Converted(Text("2079-06-06"), kSmallDateTime), "2079-06-06 00:00:00.000");
    EXPECT_EQ(
        Converted(Text("2079-06-07"), kSmallDateTime),
        "242 The conversion of a varchar data type to a smalldatetime data type resulted in an out-of-range "
        "value.");
    EXPECT_EQ(Converted(Text("1899-12-31"), kSmallDateTime).substr(0, 3), "242");
    EXPECT_EQ(Converted(Text("never"), kSmallDateTime),
              "295 Conversion failed when converting character string to smalldatetime data type.");
}

struct StyleCase {
    int style;
    std::string_view expected;
};

TEST(DateStyles, FormatDates) {
    const Typed date = Date("2001-02-03 04:05:06.007");
    const StyleCase cases[] = {
        {0, "Feb  3 2001  4:05AM"},
        {1, "02/03/01"},
        {2, "01.02.03"},
        {3, "03/02/01"},
        {4, "03.02.01"},
        {5, "03-02-01"},
        {6, "03 Feb 01"},
        {7, "Feb 03, 01"},
        {8, "04:05:06"},
        {9, "Feb  3 2001  4:05:06:007AM"},
        {10, "02-03-01"},
        {11, "01/02/03"},
        {12, "010203"},
        {13, "03 Feb 2001 04:05:06:007"},
        {14, "04:05:06:007"},
        {20, "2001-02-03 04:05:06"},
        {21, "2001-02-03 04:05:06.007"},
        {100, "Feb  3 2001  4:05AM"},
        {101, "02/03/2001"},
        {102, "2001.02.03"},
        {103, "03/02/2001"},
        {104, "03.02.2001"},
        {105, "03-02-2001"},
        {106, "03 Feb 2001"},
        {107, "Feb 03, 2001"},
        {108, "04:05:06"},
        {109, "Feb  3 2001  4:05:06:007AM"},
        {110, "02-03-2001"},
        {111, "2001/02/03"},
        {112, "20010203"},
        {113, "03 Feb 2001 04:05:06:007"},
        {114, "04:05:06:007"},
        {120, "2001-02-03 04:05:06"},
        {121, "2001-02-03 04:05:06.007"},
        {126, "2001-02-03T04:05:06.007"},
        {130, "281 130 is not a valid style number when converting from datetime to a character string."},
        {15, "281 15 is not a valid style number when converting from datetime to a character string."},
    };
    for (const StyleCase& c : cases) {
        EXPECT_EQ(Converted(date, Sized(TypeId::VarChar, 40), c.style), c.expected) << c.style;
    }
}

TEST(DateStyles, DistinguishMorningFromAfternoon) {
    const Type text = Sized(TypeId::VarChar, 40);
    EXPECT_EQ(Converted(Date("2001-12-13 00:00"), text), "Dec 13 2001 12:00AM");
    EXPECT_EQ(Converted(Date("2001-12-13 12:00"), text), "Dec 13 2001 12:00PM");
    EXPECT_EQ(Converted(Date("2001-12-13 23:59"), text), "Dec 13 2001 11:59PM");
    EXPECT_EQ(Converted(Date("2001-12-13 00:00"), text, 126), "2001-12-13T00:00:00");
    EXPECT_EQ(Converted(Date("2001-12-13"), Sized(TypeId::VarChar, 11)), "Dec 13 2001")
        << "a date is cut without an error";
}

TEST(DateNumbers, CountDaysSince1900) {
    EXPECT_EQ(Converted(Whole(0), kDateTime), "1900-01-01 00:00:00.000");
    EXPECT_EQ(Converted(Num("36524.5"), kDateTime), "2000-01-01 12:00:00.000");
    EXPECT_EQ(Converted(Real(-1), kDateTime), "1899-12-31 00:00:00.000");
    EXPECT_EQ(Converted(Whole(-53691), kDateTime),
              "8115 Arithmetic overflow error converting expression to data type datetime.");
    EXPECT_EQ(Converted(Date("2000-01-01 11:59"), Simple(TypeId::Int)), "36524");
    EXPECT_EQ(Converted(Date("2000-01-01 12:00"), Simple(TypeId::Int)), "36525");
    EXPECT_EQ(Converted(Date("2000-01-01 12:00"), Simple(TypeId::Float)), "36524.5");
}

TEST(Calendar, ConvertsInBothDirections) {
    EXPECT_EQ(DaysFromCivil(1753, 1, 1), kFirstDay);
    EXPECT_EQ(DaysFromCivil(9999, 12, 31), kLastDay);
    EXPECT_EQ(DaysFromCivil(2079, 6, 6), kLastSmallDay);
    for (std::int32_t day = kFirstDay; day <= kLastDay; day += 97) {
        const CivilTime civil = ToCivil({day, 5});
        EXPECT_EQ(FromCivil(civil), (DateTime{day, 5}));
    }
    EXPECT_EQ(DaysInMonth(1900, 2), 28);
    EXPECT_EQ(DaysInMonth(2000, 2), 29);
    EXPECT_EQ(DayOfWeek(0), 1) << "1900-01-01 was a Monday";
    EXPECT_EQ(DayOfWeek(-1), 0);
    EXPECT_EQ(DayOfWeek(DaysFromCivil(2024, 2, 29)), 4);
}

TEST(Calendar, PrintsTicksAsMilliseconds) {
    EXPECT_EQ(MillisecondsOf(0), 0);
    EXPECT_EQ(MillisecondsOf(1), 3);
    EXPECT_EQ(MillisecondsOf(2), 7);
    EXPECT_EQ(MillisecondsOf(3), 10);
    EXPECT_EQ(MillisecondsOf(299), 997);
}

TEST(Clock, LocalAndUniversalTimeDifferByQuartersOfAnHour) {
    const DateTime local = Now();
    const DateTime universal = UtcNow();
    const std::int64_t seconds = CountDateParts(DatePart::Second, universal, local);
    const std::int64_t rest = ((seconds + 60) % 900 + 900) % 900;
    EXPECT_LE(rest, 120) << "both were read within a minute";
    EXPECT_GT(local.days, DaysFromCivil(2024, 1, 1));
}

struct PartCase {
    std::string_view part;
    int expected;
};

TEST(DateParts, HaveNamesAndAbbreviations) {
    const DateTime date = std::get<DateTime>(Date("2001-02-03 04:05:06.007").value);
    const PartCase cases[] = {{"year", 2001}, {"yy", 2001}, {"QQ", 1}, {"month", 2}, {"m", 2},
                              {"dy", 34},     {"dd", 3},    {"wk", 5}, {"dw", 7},    {"hour", 4},
                              {"mi", 5},      {"n", 5},     {"ss", 6}, {"ms", 7}};
    for (const PartCase& c : cases) {
        const auto part = FindDatePart(c.part);
        ASSERT_TRUE(part) << c.part;
        EXPECT_EQ(GetDatePart(*part, date), c.expected) << c.part;
    }
    EXPECT_EQ(GetDatePart(DatePart::Weekday, date, 1), 6) << "with Monday first, Saturday is the sixth";
    EXPECT_FALSE(FindDatePart("fortnight"));
}

TEST(DateParts, WeeksBeginOnSunday) {
    const auto week = [](std::string_view text) {
        return GetDatePart(DatePart::Week, std::get<DateTime>(Date(text).value));
    };
    EXPECT_EQ(week("2000-01-01"), 1);
    EXPECT_EQ(week("2000-01-02"), 2);
    EXPECT_EQ(week("2000-12-31"), 54);
    EXPECT_EQ(week("2001-12-31"), 53);
}

struct AddCase {
    DatePart part;
    int count;
    std::string_view from;
    std::string_view expected;
};

TEST(DateAddition, KeepsWithinMonthsAndRange) {
    const AddCase cases[] = {
        {DatePart::Month, 1, "2001-01-31", "2001-02-28 00:00:00.000"},
        {DatePart::Month, -11, "2001-01-31", "2000-02-29 00:00:00.000"},
        {DatePart::Year, 1, "2000-02-29", "2001-02-28 00:00:00.000"},
        {DatePart::Quarter, 2, "2001-01-31", "2001-07-31 00:00:00.000"},
        {DatePart::Week, -1, "2001-01-03", "2000-12-27 00:00:00.000"},
        {DatePart::Hour, 25, "2001-01-01", "2001-01-02 01:00:00.000"},
        {DatePart::Second, -1, "2001-01-01", "2000-12-31 23:59:59.000"},
        {DatePart::Millisecond, 1, "2001-01-01", "2001-01-01 00:00:00.000"},
        {DatePart::Millisecond, 2, "2001-01-01", "2001-01-01 00:00:00.003"},
        {DatePart::Millisecond, -3, "2001-01-01", "2000-12-31 23:59:59.997"},
    };
    for (const AddCase& c : cases) {
        const auto sum = AddDatePart(c.part, c.count, std::get<DateTime>(Date(c.from).value));
        ASSERT_TRUE(sum) << c.from;
        EXPECT_EQ(Shown(*sum, kDateTime), c.expected);
    }
    EXPECT_FALSE(AddDatePart(DatePart::Year, 8100, {0, 0}));
    EXPECT_FALSE(AddDatePart(DatePart::Day, -60000, {0, 0}));
}

struct DifferenceCase {
    DatePart part;
    std::string_view from;
    std::string_view to;
    int expected;
};

TEST(DateDifferences, CountBoundaries) {
    const DifferenceCase cases[] = {
        {DatePart::Year, "2000-12-31", "2001-01-01", 1},
        {DatePart::Quarter, "2000-12-31", "2001-04-01", 2},
        {DatePart::Month, "2001-01-31", "2001-02-01", 1},
        {DatePart::Day, "2001-01-01 23:59", "2001-01-02 00:00", 1},
        {DatePart::Week, "2001-02-03", "2001-02-04", 1},
        {DatePart::Week, "2001-02-04", "2001-02-10", 0},
        {DatePart::Hour, "2001-01-01 00:59", "2001-01-01 01:00", 1},
        {DatePart::Minute, "2001-01-01", "2000-12-31 23:58", -2},
        {DatePart::Second, "2001-01-01", "2001-01-02", 86400},
        {DatePart::Millisecond, "2001-01-01 00:00:00.003", "2001-01-01 00:00:00.010", 7},
    };
    for (const DifferenceCase& c : cases) {
        EXPECT_EQ(CountDateParts(c.part, std::get<DateTime>(Date(c.from).value),
                                 std::get<DateTime>(Date(c.to).value)),
                  c.expected)
            << c.from << " to " << c.to;
    }
}

} // namespace
} // namespace devsql

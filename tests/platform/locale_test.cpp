// The forms of real locales, which on Linux the build has made.
#include "platform/locale.h"

#include <gmock/gmock.h>

namespace platform {
namespace {

TEST(Locale, American) {
    const LocaleForms forms = NamedLocale("en-US");
    EXPECT_EQ(forms.decimal_point, ".");
    EXPECT_EQ(forms.group_separator, ",");
    EXPECT_EQ(forms.group_sizes.front(), 3U);
    EXPECT_EQ(forms.currency_symbol, "$");
    EXPECT_EQ(forms.true_word, "True");
    EXPECT_EQ(forms.false_word, "False");
    EXPECT_THAT(forms.date_picture, ::testing::AnyOf("M/d/yyyy", "MM/dd/yyyy"));
    EXPECT_THAT(forms.time_picture, ::testing::AnyOf("h:mm:ss tt", "hh:mm:ss tt"));
    EXPECT_EQ(forms.am, "AM");
    EXPECT_EQ(forms.pm, "PM");
    EXPECT_EQ(forms.months.at(11), "December");
    EXPECT_EQ(forms.short_months.at(0), "Jan");
}

TEST(Locale, German) {
    const LocaleForms forms = NamedLocale("de-DE");
    EXPECT_EQ(forms.decimal_point, ",");
    EXPECT_EQ(forms.group_separator, ".");
    EXPECT_EQ(forms.group_sizes.front(), 3U);
    EXPECT_EQ(forms.currency_symbol, "\x80");
    EXPECT_EQ(forms.true_word, "Wahr");
    EXPECT_EQ(forms.false_word, "Falsch");
    EXPECT_THAT(forms.date_picture, ::testing::AnyOf("d.M.yyyy", "dd.MM.yyyy"));
    EXPECT_EQ(forms.time_picture, "HH:mm:ss");
    EXPECT_EQ(forms.months.at(2), "M\xE4rz");
}

TEST(Locale, Swedish) {
    const LocaleForms forms = NamedLocale("sv-SE");
    EXPECT_EQ(forms.decimal_point, ",");
    EXPECT_EQ(forms.group_separator, "\xA0");
    EXPECT_EQ(forms.currency_symbol, "kr");
    EXPECT_EQ(forms.true_word, "Sant");
    EXPECT_EQ(forms.false_word, "Falskt");
    EXPECT_EQ(forms.date_picture, "yyyy-MM-dd");
    EXPECT_EQ(forms.time_picture, "HH:mm:ss");
    EXPECT_EQ(forms.months.at(4), "maj");
}

TEST(Locale, TheUsersLocaleIsReadOnce) {
    EXPECT_EQ(&UserLocale(), &UserLocale());
    EXPECT_EQ(UserLocale(), NamedLocale(""));
}

} // namespace
} // namespace platform

// The environment's locale.
#include "platform/locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace platform {
namespace {

class EnvironmentsLocale : public ::testing::Test {
  protected:
    EnvironmentsLocale() {
        for (const char* const name :
             {"LC_ALL", "LC_CTYPE", "LC_NUMERIC", "LC_TIME", "LC_MONETARY", "LC_MESSAGES", "LANG"}) {
            unsetenv(name);
        }
    }
    static LocaleForms With(const char* variable, const char* locale) {
        setenv(variable, locale, 1);
        return NamedLocale("");
    }
};

TEST_F(EnvironmentsLocale, IsTakenFromTheUsualVariables) {
    EXPECT_EQ(NamedLocale(""), LocaleForms());
    EXPECT_EQ(With("LANG", "sv_SE.UTF-8"), NamedLocale("sv-SE"));
    EXPECT_EQ(With("LC_ALL", "de_DE.UTF-8"), NamedLocale("de-DE"));
    EXPECT_NE(NamedLocale("sv-SE"), NamedLocale("de-DE"));
}

TEST_F(EnvironmentsLocale, EachCategoryHasItsOwn) {
    setenv("LANG", "en_US.UTF-8", 1);
    EXPECT_EQ(With("LC_NUMERIC", "de_DE.UTF-8").decimal_point, ",");
    EXPECT_EQ(With("LC_TIME", "sv_SE.UTF-8").date_picture, "yyyy-MM-dd");
    EXPECT_EQ(With("LC_MONETARY", "de_DE.UTF-8").currency_symbol, "\x80");
    EXPECT_EQ(With("LC_MESSAGES", "fi_FI.UTF-8").false_word, "Ep\xE4tosi");
    EXPECT_EQ(NamedLocale("").decimal_point, ",");
}

TEST_F(EnvironmentsLocale, CAndPosixAreTheInitialForms) {
    for (const char* const name : {"C", "POSIX", "C.UTF-8", ""}) {
        EXPECT_EQ(With("LC_ALL", name), LocaleForms()) << name;
    }
}

TEST_F(EnvironmentsLocale, OneThatTheMachineDoesNotHaveIsTheInitialForms) {
    EXPECT_EQ(With("LC_ALL", "xx_YY.UTF-8"), LocaleForms());
    EXPECT_EQ(NamedLocale("xx-YY"), LocaleForms());
    unsetenv("LC_ALL");
    setenv("LANG", "xx_YY.UTF-8", 1);
    EXPECT_EQ(With("LC_TIME", "sv_SE.UTF-8").date_picture, "yyyy-MM-dd")
        << "the other categories are read all the same";
}

TEST_F(EnvironmentsLocale, AYearHasFourDigitsAndANarrowSpaceBecomesANoBreakSpace) {
    EXPECT_EQ(NamedLocale("en-GB").date_picture, "dd/MM/yyyy");
    EXPECT_EQ(NamedLocale("fr-FR").group_separator, "\xA0");
    EXPECT_EQ(NamedLocale("fi-FI").time_picture, "HH.mm.ss");
}

TEST_F(EnvironmentsLocale, TheProcesssOwnLocaleStaysAsItWas) {
    With("LC_ALL", "de_DE.UTF-8");
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_STREQ(std::localeconv()->decimal_point, ".");
}

} // namespace
} // namespace platform

// Compares the layer's conversions of values to text with those of Windows for the same locale. Windows must
// also read the layer's texts as the same values.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "ado/date_text.h"
#include "ado/number_text.h"
#include "platform/locale.h"
#include "platform/windows/lean_windows.h"
#include "text/code_page.h"

#include <oleauto.h>

namespace ado {
namespace {

struct Case {
    const char* name;
    LCID locale;
};

class SystemConversions : public ::testing::TestWithParam<Case> {
  protected:
    const LCID locale_ = GetParam().locale;
    const platform::LocaleForms forms_ = platform::NamedLocale(GetParam().name);
    std::mt19937_64 random_{20240229};

    template <class Call>
    static std::string Text(Call call) {
        BSTR text = nullptr;
        EXPECT_EQ(call(&text), S_OK);
        std::string narrow = text::Narrow(reinterpret_cast<const char16_t*>(text));
        ::SysFreeString(text);
        return narrow;
    }
    static std::u16string Wide(const std::string& text) { return text::Widen(text); }
    static wchar_t* Pointer(std::u16string& text) { return reinterpret_cast<wchar_t*>(text.data()); }
};

TEST_P(SystemConversions, NumbersAreShownAndReadAlike) {
    // The numbers have at most 15 digits: with more, the two conversions round a half in the last digit
    // differently.
    std::uniform_int_distribution<std::int64_t> digits(-999'999'999'999'999, 999'999'999'999'999);
    std::uniform_int_distribution<int> exponent(-30, 20);
    for (int i = 0; i < 2000; ++i) {
        const double value = std::stod(std::to_string(digits(random_) / (i % 7 == 0 ? 10'000'000'000 : 1)) +
                                       "E" + std::to_string(exponent(random_)));
        const std::string shown = ShowFloating(value, 15, forms_);
        std::string systems = Text([&](BSTR* to) { return ::VarBstrFromR8(value, locale_, 0, to); });
        // In a number with an exponent Wine 8 writes the C library's decimal point instead of the locale's.
        if (const std::size_t point = systems.find('.');
            point != std::string::npos && systems.find('E') != std::string::npos) {
            systems.replace(point, 1, forms_.decimal_point);
        }
        EXPECT_EQ(shown, systems);
        std::u16string wide = Wide(shown);
        double read = 0;
        ASSERT_EQ(::VarR8FromStr(Pointer(wide), locale_, 0, &read), S_OK) << shown;
        EXPECT_NEAR(read, std::stod(ReadNumber(shown, forms_)->Scientific()), std::abs(value) * 1e-14)
            << shown;
    }
}

TEST_P(SystemConversions, DatesAreShownAndReadAlike) {
    std::uniform_int_distribution<int> days(-53000, 2900000); // from 1754 to 9839
    std::uniform_int_distribution<int> second_of_day(0, 86399);
    for (int i = 0; i < 2000; ++i) {
        const int day = i == 0 ? 0 : days(random_);
        const int seconds = i % 5 == 1 ? 0 : second_of_day(random_);
        // Before day zero, too, the time of day is added to the day.
        const double serial = day + (day < 0 ? -1 : 1) * seconds / 86400.0;
        SYSTEMTIME time{};
        ASSERT_TRUE(::VariantTimeToSystemTime(serial, &time));
        const Date date{static_cast<std::int16_t>(time.wYear),
                        time.wMonth,
                        time.wDay,
                        time.wHour,
                        time.wMinute,
                        time.wSecond,
                        0};
        const std::string shown = ShowDate(date, forms_);
        EXPECT_EQ(shown, Text([&](BSTR* to) { return ::VarBstrFromDate(serial, locale_, 0, to); }));
        std::u16string wide = Wide(shown);
        double read = 0;
        ASSERT_EQ(::VarDateFromStr(Pointer(wide), locale_, 0, &read), S_OK) << shown;
        EXPECT_NEAR(read, serial, 1e-6) << shown;
        EXPECT_EQ(ReadDate(shown, forms_)->date, date) << shown;
    }
}

TEST_P(SystemConversions, TruthValuesAreTheSystemsWords) {
    for (const VARIANT_BOOL value : {VARIANT_TRUE, VARIANT_FALSE}) {
        EXPECT_EQ(value == VARIANT_TRUE ? forms_.true_word : forms_.false_word,
                  Text([&](BSTR* to) { return ::VarBstrFromBool(value, locale_, VARIANT_LOCALBOOL, to); }));
    }
}

INSTANTIATE_TEST_SUITE_P(Locales, SystemConversions,
                         ::testing::Values(Case{"en-US", 0x0409}, Case{"de-DE", 0x0407},
                                           Case{"sv-SE", 0x041D}),
                         [](const auto& test) { return std::string(test.param.name).substr(0, 2); });

} // namespace
} // namespace ado

// Implements platform/locale.h, and has the forms of three locales.
#include "fakes/fake_locale.h"

namespace {

platform::LocaleForms& Current() {
    static platform::LocaleForms forms;
    return forms;
}

} // namespace

namespace fakes {

platform::LocaleForms American() {
    return {};
}

platform::LocaleForms German() {
    platform::LocaleForms forms;
    forms.decimal_point = ",";
    forms.group_separator = ".";
    forms.currency_symbol = "\x80";
    forms.true_word = "Wahr";
    forms.false_word = "Falsch";
    forms.date_picture = "dd.MM.yyyy";
    forms.time_picture = "HH:mm:ss";
    forms.am.clear();
    forms.pm.clear();
    forms.months = {"Januar", "Februar", "M\xE4rz",   "April",   "Mai",      "Juni",
                    "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    forms.short_months = {"Jan", "Feb", "M\xE4r", "Apr", "Mai", "Jun",
                          "Jul", "Aug", "Sep",    "Okt", "Nov", "Dez"};
    return forms;
}

platform::LocaleForms Swedish() {
    platform::LocaleForms forms;
    forms.decimal_point = ",";
    forms.group_separator = "\xA0";
    forms.currency_symbol = "kr";
    forms.true_word = "Sant";
    forms.false_word = "Falskt";
    forms.date_picture = "yyyy-MM-dd";
    forms.time_picture = "HH:mm:ss";
    forms.am.clear();
    forms.pm.clear();
    return forms;
}

FakeLocale::FakeLocale(const platform::LocaleForms& forms) {
    Current() = forms;
}

FakeLocale::~FakeLocale() {
    Current() = {};
}

} // namespace fakes

namespace platform {

const LocaleForms& UserLocale() {
    return Current();
}

LocaleForms NamedLocale(const std::string& name) {
    return name == "de-DE" ? fakes::German() : name == "sv-SE" ? fakes::Swedish() : LocaleForms();
}

} // namespace platform

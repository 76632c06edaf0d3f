// The user's locale with the user's own settings. The words for True and False are those of oleaut32.
#include "platform/locale.h"

#include "platform/windows/lean_windows.h"

#include <oleauto.h>

#include "text/code_page.h"

namespace platform {
namespace {

/// Converts a text to the code page. Returns `otherwise` if the code page lacks a character.
std::string InCodePage(const wchar_t* text, const std::string& otherwise) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    std::u16string characters(reinterpret_cast<const char16_t*>(text));
    for (char16_t& character : characters) {
        constexpr char16_t kNarrowNoBreakSpace = 0x202F;
        constexpr char16_t kNoBreakSpace = 0xA0;
        if (character == kNarrowNoBreakSpace) {
            character = kNoBreakSpace;
        }
    }
    std::string narrow = text::Narrow(characters);
    return text::Widen(narrow) == characters ? narrow : otherwise;
}

/// Returns an item of the locale, such as LOCALE_SDECIMAL; `otherwise` if it cannot be read.
std::string Info(LCID locale, LCTYPE type, const std::string& otherwise) {
    wchar_t text[128];
    return ::GetLocaleInfoW(locale, type, text, 128) > 0 ? InCodePage(text, otherwise) : otherwise;
}

std::string TruthWord(LCID locale, VARIANT_BOOL value, const std::string& otherwise) {
    BSTR word = nullptr;
    if (FAILED(::VarBstrFromBool(value, locale, VARIANT_LOCALBOOL, &word))) {
        return otherwise;
    }
    std::string text = InCodePage(word, otherwise);
    ::SysFreeString(word);
    return text;
}

/// Reads the sizes of the groups of digits, which Windows writes as "3;0" or "3;2;0".
std::vector<std::size_t> GroupSizes(const std::string& text) {
    std::vector<std::size_t> sizes;
    for (const char c : text) {
        if (c > '0' && c <= '9') {
            sizes.push_back(static_cast<std::size_t>(c - '0'));
        }
    }
    return sizes.empty() ? LocaleForms().group_sizes : sizes;
}

LocaleForms FormsOf(LCID locale) {
    LocaleForms forms;
    forms.decimal_point = Info(locale, LOCALE_SDECIMAL, forms.decimal_point);
    forms.group_separator = Info(locale, LOCALE_STHOUSAND, forms.group_separator);
    forms.group_sizes = GroupSizes(Info(locale, LOCALE_SGROUPING, {}));
    forms.currency_symbol = Info(locale, LOCALE_SCURRENCY, forms.currency_symbol);
    forms.true_word = TruthWord(locale, VARIANT_TRUE, forms.true_word);
    forms.false_word = TruthWord(locale, VARIANT_FALSE, forms.false_word);
    forms.date_picture = Info(locale, LOCALE_SSHORTDATE, forms.date_picture);
    forms.time_picture = Info(locale, LOCALE_STIMEFORMAT, forms.time_picture);
    forms.am = Info(locale, LOCALE_S1159, forms.am);
    forms.pm = Info(locale, LOCALE_S2359, forms.pm);
    for (std::size_t i = 0; i < forms.months.size(); ++i) {
        const auto month = static_cast<LCTYPE>(i);
        forms.months[i] = Info(locale, LOCALE_SMONTHNAME1 + month, forms.months[i]);
        forms.short_months[i] = Info(locale, LOCALE_SABBREVMONTHNAME1 + month, forms.short_months[i]);
    }
    return forms;
}

} // namespace

const LocaleForms& UserLocale() {
    static const LocaleForms forms = NamedLocale("");
    return forms;
}

LocaleForms NamedLocale(const std::string& name) {
    const LCID locale = name.empty() ? LOCALE_USER_DEFAULT
                                     : ::LocaleNameToLCID(std::wstring(name.begin(), name.end()).c_str(), 0);
    return locale != 0 ? FormsOf(locale) : LocaleForms();
}

} // namespace platform

// Reads the environment's locale through a separate locale object: the process's global locale stays "C",
// since the driver manager and the driver depend on it.
#include "platform/locale.h"

#include <climits>
#include <clocale>
#include <langinfo.h>
#include <locale.h>
#include <memory>
#include <string_view>
#include <type_traits>

#include "text/code_page.h"
#include "text/utf8.h"

namespace platform {
namespace {

struct FreeLocale {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};
using OwnedLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// The words for True and False by language, since the C library does not have them.
struct TruthWords {
    std::string_view language;
    const char* true_word;
    const char* false_word;
};
constexpr TruthWords kTruthWords[] = {
    {"da", "Sand", "Falsk"},       {"de", "Wahr", "Falsch"}, {"es", "Verdadero", "Falso"},
    {"fi", "Tosi", "Ep\xE4tosi"},  {"fr", "Vrai", "Faux"},   {"it", "Vero", "Falso"},
    {"nb", "Sann", "Usann"},       {"nl", "Waar", "Onwaar"}, {"nn", "Sann", "Usann"},
    {"pt", "Verdadeiro", "Falso"}, {"sv", "Sant", "Falskt"},
};

/// The element of a picture (platform/locale.h) for each directive of strftime. A year always has four
/// digits, since two would lose the century. Directives that are not in the table, such as the time zone, are
/// left out.
struct Directive {
    char letter;
    const char* element;
};
constexpr Directive kDirectives[] = {
    {'d', "dd"},   {'e', "d"},          {'m', "MM"},         {'b', "MMM"},      {'h', "MMM"},
    {'B', "MMMM"}, {'y', "yyyy"},       {'Y', "yyyy"},       {'H', "HH"},       {'k', "H"},
    {'I', "hh"},   {'l', "h"},          {'M', "mm"},         {'S', "ss"},       {'p', "tt"},
    {'P', "tt"},   {'D', "MM/dd/yyyy"}, {'F', "yyyy-MM-dd"}, {'T', "HH:mm:ss"}, {'R', "HH:mm"},
};

/// Converts a text of the locale to the code page. Returns `otherwise` if the code page lacks a character.
std::string InCodePage(const char* text, const std::string& otherwise) {
    auto characters = text::FromUtf8(text);
    if (!characters) {
        return text; // the locale has an 8-bit code page
    }
    for (char16_t& character : *characters) {
        constexpr char16_t kThinSpace = 0x2009;
        constexpr char16_t kNarrowNoBreakSpace = 0x202F;
        constexpr char16_t kNoBreakSpace = 0xA0;
        if (character == kThinSpace || character == kNarrowNoBreakSpace) {
            character = kNoBreakSpace;
        }
    }
    std::string narrow = text::Narrow(*characters);
    return text::Widen(narrow) == *characters ? narrow : otherwise;
}

/// One of the system's locales. It is made category by category; a category that the machine does not have is
/// "C".
class SystemLocale {
  public:
    explicit SystemLocale(const char* name) {
        for (const int mask :
             {LC_CTYPE_MASK, LC_NUMERIC_MASK, LC_TIME_MASK, LC_MONETARY_MASK, LC_MESSAGES_MASK}) {
            if (const locale_t made = ::newlocale(mask, name, locale_.get()); made != nullptr) {
                // newlocale has taken over the old locale.
                static_cast<void>(locale_.release());
                locale_.reset(made);
            }
        }
    }

    /// Returns an item of nl_langinfo, such as RADIXCHAR; empty if no category could be made.
    const char* Text(nl_item item) const { return locale_ ? ::nl_langinfo_l(item, locale_.get()) : ""; }
    /// Returns the name of one category, as in "de_DE.UTF-8"; empty for "C", "POSIX" and "C.UTF-8".
    std::string_view NameOf(int category) const {
        const std::string_view name = Text(_NL_LOCALE_NAME(category));
        return name == "C" || name == "POSIX" || name.starts_with("C.") ? std::string_view() : name;
    }

  private:
    OwnedLocale locale_;
};

/// Converts a format of strftime to a picture.
std::string PictureOf(const SystemLocale& system, std::string_view format) {
    std::string picture;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            // Without quotes a letter would be an element.
            const bool letter =
                (format[i] >= 'a' && format[i] <= 'z') || (format[i] >= 'A' && format[i] <= 'Z');
            picture += letter ? "'" + std::string(1, format[i]) + "'" : std::string(1, format[i]);
            continue;
        }
        const bool unpadded = format.substr(i + 1).starts_with('-');
        i = format.find_first_not_of("-_0^#EO", i + 1); // flags, and the forms of other numerals
        if (i == std::string_view::npos) {
            break;
        }
        if (format[i] == 'r') {
            picture += PictureOf(system, system.Text(T_FMT_AMPM));
        }
        for (const Directive& directive : kDirectives) {
            if (directive.letter == format[i]) {
                const std::string_view element = directive.element;
                picture += unpadded && element.size() == 2 ? element.substr(1) : element;
            }
        }
    }
    return picture.substr(0, picture.find_last_not_of(' ') + 1);
}

bool HasAll(std::string_view picture, std::string_view letters) {
    return letters.find_first_not_of(picture) == std::string_view::npos;
}

void ReadNumbers(const SystemLocale& system, LocaleForms& forms) {
    if (system.NameOf(LC_NUMERIC).empty()) {
        return;
    }
    const LocaleForms initial;
    forms.decimal_point = InCodePage(system.Text(RADIXCHAR), initial.decimal_point);
    forms.group_separator = InCodePage(system.Text(THOUSEP), {});
    forms.group_sizes.clear();
    // One byte for each group, ended by NUL or by CHAR_MAX, which means that no group follows.
    for (const char* size = system.Text(GROUPING); *size > 0 && *size != CHAR_MAX; ++size) {
        forms.group_sizes.push_back(static_cast<std::size_t>(*size));
    }
    if (forms.group_sizes.empty()) {
        forms.group_sizes = initial.group_sizes;
    }
}

void ReadCurrency(const SystemLocale& system, LocaleForms& forms) {
    // The first character says on which side the symbol is written.
    const std::string_view symbol = system.Text(CRNCYSTR);
    if (!system.NameOf(LC_MONETARY).empty() && symbol.size() > 1) {
        forms.currency_symbol = InCodePage(symbol.data() + 1, forms.currency_symbol);
    }
}

void ReadDates(const SystemLocale& system, LocaleForms& forms) {
    if (system.NameOf(LC_TIME).empty()) {
        return;
    }
    if (const std::string date = PictureOf(system, system.Text(D_FMT)); HasAll(date, "dMy")) {
        forms.date_picture = InCodePage(date.c_str(), forms.date_picture);
    }
    const std::string time = PictureOf(system, system.Text(T_FMT));
    if (HasAll(time, "ms") && (HasAll(time, "H") || HasAll(time, "ht"))) {
        forms.time_picture = InCodePage(time.c_str(), forms.time_picture);
    }
    forms.am = InCodePage(system.Text(AM_STR), forms.am);
    forms.pm = InCodePage(system.Text(PM_STR), forms.pm);
    for (std::size_t i = 0; i < forms.months.size(); ++i) {
        const int month = static_cast<int>(i);
        forms.months[i] = InCodePage(system.Text(MON_1 + month), forms.months[i]);
        forms.short_months[i] = InCodePage(system.Text(ABMON_1 + month), forms.short_months[i]);
    }
}

void ReadTruthWords(const SystemLocale& system, LocaleForms& forms) {
    const std::string_view name = system.NameOf(LC_MESSAGES);
    for (const TruthWords& words : kTruthWords) {
        if (name.substr(0, name.find_first_of("_.@")) == words.language) {
            forms.true_word = words.true_word;
            forms.false_word = words.false_word;
        }
    }
}

LocaleForms FormsOf(const char* name) {
    const SystemLocale system(name);
    LocaleForms forms;
    ReadNumbers(system, forms);
    ReadCurrency(system, forms);
    ReadDates(system, forms);
    ReadTruthWords(system, forms);
    return forms;
}

} // namespace

const LocaleForms& UserLocale() {
    static const LocaleForms forms = NamedLocale("");
    return forms;
}

LocaleForms NamedLocale(const std::string& name) {
    if (name.empty()) {
        return FormsOf(""); // newlocale takes "" for the environment's locale
    }
    std::string system_name = name + ".UTF-8"; // "de_DE.UTF-8" for "de-DE"
    if (const std::size_t dash = name.find('-'); dash != std::string::npos) {
        system_name[dash] = '_';
    }
    return FormsOf(system_name.c_str());
}

} // namespace platform

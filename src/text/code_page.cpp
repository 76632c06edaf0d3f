// Code page 1252: the table of its characters and the conversions.
#include "text/code_page.h"

#include <algorithm>
#include <array>

namespace text {
namespace {

/// The characters of the bytes 0x80 to 0x9F. Every other byte is the character with the same number. So are
/// the five bytes of this range to which the code page gives no character, as on Windows.
constexpr unsigned char kFirstSpecial = 0x80;
constexpr std::array<char16_t, 32> kSpecial = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

char16_t WidenCharacter(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    const bool special = code >= kFirstSpecial && code < kFirstSpecial + kSpecial.size();
    return special ? kSpecial[code - kFirstSpecial] : static_cast<char16_t>(code);
}

std::optional<char> NarrowCharacter(char32_t character) {
    if (character < kFirstSpecial || (character >= kFirstSpecial + kSpecial.size() && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    const auto* const at = std::ranges::find(kSpecial, character);
    return at != kSpecial.end() ? std::optional(static_cast<char>(kFirstSpecial + (at - kSpecial.begin())))
                                : std::nullopt;
}

std::u16string Widen(std::string_view text) {
    std::u16string wide(text.size(), u'\0');
    std::ranges::transform(text, wide.begin(), WidenCharacter);
    return wide;
}

std::string Narrow(std::u16string_view text) {
    std::string narrow(text.size(), '\0');
    narrow.resize(static_cast<std::size_t>(NarrowTo(narrow.data(), text) - narrow.data()));
    return narrow;
}

char* NarrowTo(char* to, std::u16string_view text) {
    const char16_t* const __restrict from = text.data();
    char* const __restrict ascii = to;
    char16_t seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        seen |= from[i];
        ascii[i] = static_cast<char>(from[i]);
    }
    if (seen < kFirstSpecial) { // most text is ASCII and needs no conversion
        return to + text.size();
    }
    for (const char16_t unit : text) {
        if (!IsLowSurrogate(unit)) { // the high surrogate before it has become the "?"
            *to++ = NarrowCharacter(unit).value_or('?');
        }
    }
    return to;
}

} // namespace text

#include "querytool/text_input.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace querytool {
namespace {

/// What the bytes 0x80 to 0x9F mean in code page 1252; 0 where they mean nothing.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

char EncodeCharacter(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    const auto* const at = std::ranges::find(kUpperControls, static_cast<char16_t>(character));
    const bool found = character <= 0xFFFF && at != kUpperControls.end();
    return found ? static_cast<char>(0x80 + (at - kUpperControls.begin())) : '?';
}

std::uint32_t ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

/// The character that begins at `at`, which moves behind it; 0xFFFD for bytes that form none.
char32_t DecodeUtf8(std::string_view bytes, std::size_t& at) {
    const std::uint32_t lead = ByteAt(bytes, at++);
    if (lead < 0x80) {
        return lead;
    }
    const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    char32_t character = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        if (lead < 0xC0 || at >= bytes.size() || (ByteAt(bytes, at) & 0xC0U) != 0x80U) {
            return 0xFFFD;
        }
        character = (character << 6U) | (ByteAt(bytes, at++) & 0x3FU);
    }
    return character;
}

std::string FromUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        text += EncodeCharacter(DecodeUtf8(bytes, at));
    }
    return text;
}

std::string FromUtf16(std::string_view bytes, bool big_endian) {
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const std::uint32_t first = ByteAt(bytes, at);
        const std::uint32_t second = ByteAt(bytes, at + 1);
        const std::uint32_t unit = big_endian ? (first << 8U) | second : (second << 8U) | first;
        const bool low_surrogate = unit >= 0xDC00 && unit <= 0xDFFF;
        if (!low_surrogate) { // the high one of the pair has given its "?"
            text += EncodeCharacter(unit);
        }
    }
    return text;
}

} // namespace

std::string ToCodePage(std::string content) {
    const std::string_view view = content;
    if (view.starts_with("\xEF\xBB\xBF")) {
        return FromUtf8(view.substr(3));
    }
    if (view.starts_with("\xFF\xFE")) {
        return FromUtf16(view.substr(2), false);
    }
    if (view.starts_with("\xFE\xFF")) {
        return FromUtf16(view.substr(2), true);
    }
    return content;
}

} // namespace querytool

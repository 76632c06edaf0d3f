#include "querytool/text_input.h"

#include <cstdint>
#include <string_view>

#include "text/code_page.h"

namespace querytool {
namespace {

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

void AppendUtf16(std::u16string& text, char32_t character) {
    if (character <= 0xFFFF) {
        text += static_cast<char16_t>(character);
        return;
    }
    const char32_t above = character - 0x10000;
    text += static_cast<char16_t>(0xD800 + (above >> 10U));
    text += static_cast<char16_t>(0xDC00 + (above & 0x3FFU));
}

std::u16string FromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        AppendUtf16(text, DecodeUtf8(bytes, at));
    }
    return text;
}

std::u16string FromUtf16(std::string_view bytes, bool big_endian) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const std::uint32_t first = ByteAt(bytes, at);
        const std::uint32_t second = ByteAt(bytes, at + 1);
        text += static_cast<char16_t>(big_endian ? (first << 8U) | second : (second << 8U) | first);
    }
    return text;
}

} // namespace

std::string ToCodePage(std::string content) {
    const std::string_view view = content;
    if (view.starts_with("\xEF\xBB\xBF")) {
        return platform::Narrow(FromUtf8(view.substr(3)));
    }
    if (view.starts_with("\xFF\xFE")) {
        return platform::Narrow(FromUtf16(view.substr(2), false));
    }
    if (view.starts_with("\xFE\xFF")) {
        return platform::Narrow(FromUtf16(view.substr(2), true));
    }
    return content;
}

} // namespace querytool

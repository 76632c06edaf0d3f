#include "registry/linux/reg_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "text/utf8.h"

namespace platform {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kRegedit4 = "REGEDIT4";

/// The characters of the bytes 0x80 to 0x9F; every other byte is its own character.
constexpr std::size_t kFirstOwn = 0x80;
constexpr std::array<char16_t, 32> kCodePage1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::size_t LinesIn(std::u16string_view text) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\n'));
}

std::u16string FromUtf16(std::string_view bytes) {
    std::u16string characters;
    characters.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        characters += static_cast<char16_t>(low | (unsigned{high} << 8U));
    }
    if (bytes.size() % 2 != 0) {
        throw RegDamage(LinesIn(characters), "half a character at the end");
    }
    return characters;
}

std::string ToUtf16(std::u16string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size() * 2);
    for (const char16_t c : characters) {
        bytes += static_cast<char>(c & 0xFFU);
        bytes += static_cast<char>(c >> 8U);
    }
    return bytes;
}

char16_t FoldCase(char16_t c) {
    if ((c >= u'a' && c <= u'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) {
        return static_cast<char16_t>(c - 0x20);
    }
    switch (c) {
    case 0x00FF:
        return 0x0178;
    case 0x0153:
    case 0x0161:
    case 0x017E:
        return static_cast<char16_t>(c - 1);
    default:
        return c;
    }
}

} // namespace

RegText DecodeRegText(std::string_view bytes) {
    if (bytes.starts_with(kUtf16Mark)) {
        return {RegEncoding::Utf16, FromUtf16(bytes.substr(kUtf16Mark.size()))};
    }
    if (bytes.starts_with(kUtf16BigEndianMark)) {
        throw RegDamage(1, "big-endian UTF-16");
    }
    if (bytes.starts_with(kUtf8Mark)) {
        auto characters = FromUtf8(bytes.substr(kUtf8Mark.size()));
        if (!characters) {
            throw RegDamage(1, "marked as UTF-8 and is not");
        }
        return {RegEncoding::Utf8WithMark, std::move(*characters)};
    }
    if (!bytes.starts_with(kRegedit4)) {
        if (auto characters = FromUtf8(bytes)) {
            return {RegEncoding::Utf8, std::move(*characters)};
        }
    }
    return {RegEncoding::CodePage1252, FromCodePage1252(bytes)};
}

std::string EncodeRegText(const RegText& text) {
    switch (text.encoding) {
    case RegEncoding::Utf16:
        return std::string(kUtf16Mark) + ToUtf16(text.characters);
    case RegEncoding::Utf8:
        return ToUtf8(text.characters);
    case RegEncoding::Utf8WithMark:
        return std::string(kUtf8Mark) + ToUtf8(text.characters);
    case RegEncoding::CodePage1252:
        break;
    }
    return ToCodePage1252(text.characters);
}

std::u16string FromCodePage1252(std::string_view bytes) {
    std::u16string characters;
    characters.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        const bool own = code >= kFirstOwn && code < kFirstOwn + kCodePage1252.size();
        characters += own ? kCodePage1252[code - kFirstOwn] : static_cast<char16_t>(code);
    }
    return characters;
}

std::string ToCodePage1252(std::u16string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size());
    for (const char16_t c : characters) {
        if (c < kFirstOwn || (c >= 0xA0 && c <= 0xFF)) {
            bytes += static_cast<char>(c);
            continue;
        }
        const auto* own = std::find(kCodePage1252.begin(), kCodePage1252.end(), c);
        bytes +=
            own == kCodePage1252.end() ? '?' : static_cast<char>(kFirstOwn + (own - kCodePage1252.begin()));
    }
    return bytes;
}

std::u16string FoldCase(std::u16string_view name) {
    std::u16string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), [](char16_t c) { return FoldCase(c); });
    return folded;
}

} // namespace platform

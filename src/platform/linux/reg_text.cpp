#include "platform/linux/reg_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

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

void AppendCodePoint(std::u16string& characters, char32_t point) {
    constexpr char32_t kFirstPair = 0x10000;
    if (point < kFirstPair) {
        characters += static_cast<char16_t>(point);
        return;
    }
    constexpr char32_t kTenBits = 0x3FF;
    characters += static_cast<char16_t>(0xD800U | ((point - kFirstPair) >> 10U));
    characters += static_cast<char16_t>(0xDC00U | ((point - kFirstPair) & kTenBits));
}

/// One well-formed sequence from the front of `bytes`, which it takes away; nothing if there is none.
std::optional<char32_t> TakeUtf8(std::string_view& bytes) {
    struct Form {
        unsigned char mask, lead;
        std::size_t length;
        char32_t least;
    };
    static constexpr std::array<Form, 4> kForms = {
        {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}}};
    const auto first = static_cast<unsigned char>(bytes.front());
    const auto* form =
        std::find_if(kForms.begin(), kForms.end(), [&](const Form& f) { return (first & f.mask) == f.lead; });
    if (form == kForms.end() || bytes.size() < form->length) {
        return std::nullopt;
    }
    char32_t point = first & static_cast<unsigned char>(~form->mask);
    for (std::size_t i = 1; i < form->length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0U) != 0x80U) {
            return std::nullopt;
        }
        point = (point << 6U) | (next & 0x3FU);
    }
    const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
    if (point < form->least || point > 0x10FFFF || surrogate) {
        return std::nullopt;
    }
    bytes.remove_prefix(form->length);
    return point;
}

std::optional<std::u16string> FromUtf8(std::string_view bytes) {
    std::u16string characters;
    characters.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto point = TakeUtf8(bytes);
        if (!point) {
            return std::nullopt;
        }
        AppendCodePoint(characters, *point);
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

void AppendUtf8(std::string& bytes, char32_t point) {
    const auto tail = [&](unsigned shift) { bytes += static_cast<char>(0x80U | ((point >> shift) & 0x3FU)); };
    if (point < 0x80) {
        bytes += static_cast<char>(point);
    } else if (point < 0x800) {
        bytes += static_cast<char>(0xC0U | (point >> 6U));
        tail(0);
    } else if (point < 0x10000) {
        bytes += static_cast<char>(0xE0U | (point >> 12U));
        tail(6);
        tail(0);
    } else {
        bytes += static_cast<char>(0xF0U | (point >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// The characters come from FromUtf8 and from code page 1252, so every pair is whole.
std::string ToUtf8(std::u16string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size());
    for (std::size_t i = 0; i < characters.size(); ++i) {
        char32_t point = characters[i];
        if (point >= 0xD800 && point <= 0xDBFF && i + 1 < characters.size()) {
            ++i;
            point = 0x10000U + ((point - 0xD800U) << 10U) + (char32_t{characters[i]} - 0xDC00U);
        }
        AppendUtf8(bytes, point);
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

// Encodes and decodes UTF-8 and UTF-16.
#include "text/utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace text {
namespace {

constexpr char32_t kFirstPair = 0x10000; ///< the first character of two UTF-16 units
constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr char32_t kLastLow = 0xDFFF;
constexpr unsigned kHalf = 10; ///< the number of a character's bits in each of its two units
constexpr char32_t kHalfMask = 0x3FF;

} // namespace

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
    const bool surrogate = point >= kFirstHigh && point <= kLastLow;
    if (point < form->least || point > 0x10FFFF || surrogate) {
        return std::nullopt;
    }
    bytes.remove_prefix(form->length);
    return point;
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

void AppendUtf16(std::u16string& characters, char32_t character) {
    if (character < kFirstPair) {
        characters += static_cast<char16_t>(character);
        return;
    }
    characters += static_cast<char16_t>(kFirstHigh | ((character - kFirstPair) >> kHalf));
    characters += static_cast<char16_t>(kFirstLow | ((character - kFirstPair) & kHalfMask));
}

char32_t TakeUtf16(std::u16string_view& characters) {
    const char32_t first = characters.front();
    characters.remove_prefix(1);
    if (first < kFirstHigh || first >= kFirstLow || characters.empty()) {
        return first;
    }
    const char32_t second = characters.front();
    if (second < kFirstLow || second > kLastLow) {
        return first;
    }
    characters.remove_prefix(1);
    return kFirstPair + (((first & kHalfMask) << kHalf) | (second & kHalfMask));
}

std::optional<std::u16string> FromUtf8(std::string_view bytes) {
    std::u16string characters;
    characters.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto point = TakeUtf8(bytes);
        if (!point) {
            return std::nullopt;
        }
        AppendUtf16(characters, *point);
    }
    return characters;
}

std::string ToUtf8(std::u16string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size());
    while (!characters.empty()) {
        AppendUtf8(bytes, TakeUtf16(characters));
    }
    return bytes;
}

std::u16string FromUtf16Bytes(std::string_view bytes, std::endian order) {
    std::u16string characters;
    characters.reserve(bytes.size() / 2);
    const std::size_t low = order == std::endian::little ? 0 : 1; // of the two bytes
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned high_byte = static_cast<unsigned char>(bytes[i + 1 - low]);
        characters += static_cast<char16_t>(static_cast<unsigned char>(bytes[i + low]) | (high_byte << 8U));
    }
    return characters;
}

std::string ToUtf16Bytes(std::u16string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size() * 2);
    for (const char16_t c : characters) {
        bytes += static_cast<char>(c & 0xFFU);
        bytes += static_cast<char>(c >> 8U);
    }
    return bytes;
}

} // namespace text

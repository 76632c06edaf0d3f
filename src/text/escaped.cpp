// Writes and reads escaped text; escaped.h describes its form.
#include "text/escaped.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "text/code_page.h"
#include "text/utf8.h"

namespace text {
namespace {

constexpr char kBegin = '\x81';
constexpr char kEnd = '\x9D';
constexpr char kByteMark = 'x';
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kMaxDigits = 6;
constexpr char32_t kLastCharacter = 0x10FFFF;

std::string Hex(char32_t number) {
    std::string digits;
    for (; number != 0; number >>= 4U) {
        digits.insert(digits.begin(), kDigits[number & 0xFU]);
    }
    return digits;
}

std::string EscapeOf(char32_t character) {
    return kBegin + Hex(character) + kEnd;
}

std::string EscapeOfByte(char byte) {
    return std::string{kBegin, kByteMark} + Hex(static_cast<unsigned char>(byte)) + kEnd;
}

struct Escape {
    std::size_t length; ///< in bytes, with its first and last byte
    bool is_byte;
    char32_t number; ///< of the character or the byte
};

/// Parses hexadecimal digits. Returns nothing unless they are exactly those that Hex would write.
std::optional<char32_t> ParseHex(std::string_view digits) {
    if (digits.empty() || digits.size() > kMaxDigits || digits.front() == '0') {
        return std::nullopt;
    }
    char32_t number = 0;
    for (const char digit : digits) {
        const auto value = kDigits.find(digit);
        if (value == std::string_view::npos) {
            return std::nullopt;
        }
        number = (number << 4U) | static_cast<char32_t>(value);
    }
    return number;
}

/// The escape at the start of `text`. Returns nothing if there is no valid escape: the first byte is then a
/// plain character.
std::optional<Escape> EscapeAt(std::string_view text) {
    if (text.empty() || text.front() != kBegin) {
        return std::nullopt;
    }
    const auto end = text.substr(0, kMaxDigits + 2).find(kEnd);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view digits = text.substr(1, end - 1);
    const bool is_byte = digits.starts_with(kByteMark);
    if (is_byte) {
        digits.remove_prefix(1);
    }
    const auto number = ParseHex(digits);
    // True if EscapedFromUtf8 would write this escape.
    const auto is_valid = [&] {
        constexpr char32_t kLastAscii = 0x7F;
        constexpr char32_t kLastByte = 0xFF;
        if (is_byte) {
            return *number > kLastAscii && *number <= kLastByte;
        }
        // A plain kBegin is escaped if it and the text after it would otherwise look like an escape.
        return *number <= kLastCharacter &&
               (!NarrowCharacter(*number) || *number == static_cast<unsigned char>(kBegin));
    };
    return number && is_valid() ? std::optional(Escape{end + 1, is_byte, *number}) : std::nullopt;
}

/// Builds escaped text from characters and bytes.
class Escaper {
  public:
    void Append(char32_t character) {
        const auto byte = NarrowCharacter(character);
        if (!byte) {
            text_ += EscapeOf(character);
            return;
        }
        if (*byte == kBegin) {
            plain_begins_.push_back(text_.size());
        }
        text_ += *byte;
    }
    void AppendByte(char byte) { text_ += EscapeOfByte(byte); }

    /// Returns the text. The object must not be used afterwards.
    std::string Take() {
        // Replaces from the last to the first, so that the remaining positions stay valid.
        std::for_each(plain_begins_.rbegin(), plain_begins_.rend(), [&](std::size_t place) {
            if (EscapeAt(std::string_view(text_).substr(place))) {
                text_.replace(place, 1, EscapeOf(static_cast<unsigned char>(kBegin)));
            }
        });
        return std::move(text_);
    }

  private:
    std::string text_;
    std::vector<std::size_t> plain_begins_; ///< positions of kBegin that are plain characters
};

/// Hands every character of the text to `take_character` and every escaped byte to `take_byte`.
template <class TakeCharacter, class TakeByte>
void ForEach(std::string_view text, TakeCharacter&& take_character, TakeByte&& take_byte) {
    while (!text.empty()) {
        const auto escape = EscapeAt(text);
        if (!escape) {
            take_character(WidenCharacter(text.front()));
        } else if (escape->is_byte) {
            take_byte(static_cast<char>(escape->number));
        } else {
            take_character(escape->number);
        }
        text.remove_prefix(escape ? escape->length : 1);
    }
}

} // namespace

std::string EscapedFromUtf8(std::string_view bytes) {
    Escaper escaper;
    while (!bytes.empty()) {
        if (const auto character = TakeUtf8(bytes)) {
            escaper.Append(*character);
        } else {
            escaper.AppendByte(bytes.front());
            bytes.remove_prefix(1);
        }
    }
    return escaper.Take();
}

std::string Utf8FromEscaped(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    ForEach(
        text, [&](char32_t character) { AppendUtf8(bytes, character); }, [&](char byte) { bytes += byte; });
    return bytes;
}

std::string EscapedFromUtf16(std::u16string_view characters) {
    Escaper escaper;
    while (!characters.empty()) {
        escaper.Append(TakeUtf16(characters));
    }
    return escaper.Take();
}

std::u16string Utf16FromEscaped(std::string_view text) {
    std::u16string characters;
    characters.reserve(text.size());
    ForEach(
        text, [&](char32_t character) { AppendUtf16(characters, character); },
        [&](char byte) { characters += Widen(EscapeOfByte(byte)); });
    return characters;
}

bool HoldsEscape(std::string_view text) {
    for (auto at = text.find(kBegin); at != std::string_view::npos; at = text.find(kBegin, at + 1)) {
        if (EscapeAt(text.substr(at))) {
            return true;
        }
    }
    return false;
}

} // namespace text

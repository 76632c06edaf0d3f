// The encodings, written out: no locale and no service of the platform, so that every platform gives the
// same.
#include "devserver/tsql/scalar/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Code page 1252 from 0x80 to 0x9F; the rest is Latin-1. The five undefined bytes stand for themselves.
constexpr std::array<char16_t, 32> kHigh1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

unsigned char ByteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

/// The bytes of a sequence by its first byte; 0 for a byte that can't begin one.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

void AppendBytes(std::string& text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | (c >> 12));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (c >> 18));
        text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

/// The high surrogate that stands alone at the end of `text`; 0 if none does.
char32_t LastHighSurrogate(std::string_view text) {
    if (text.size() < 3 || ByteAt(text, text.size() - 3) != 0xED) {
        return 0;
    }
    std::size_t position = text.size() - 3;
    const char32_t c = DecodeUtf8(text, position);
    return IsHighSurrogate(c) ? c : 0;
}

/// The byte of code page 1252; -1 for what it lacks.
int ByteOf(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
        return static_cast<int>(c);
    }
    const auto found = std::find(kHigh1252.begin(), kHigh1252.end(), c);
    return found == kHigh1252.end() ? -1 : static_cast<int>(0x80 + (found - kHigh1252.begin()));
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

char32_t DecodeUtf8(std::string_view text, std::size_t& position) {
    const unsigned char lead = ByteAt(text, position++);
    const std::size_t length = SequenceLength(lead);
    if (length == 1) {
        return lead;
    }
    if (length == 0) {
        return kReplacement;
    }
    char32_t c = lead & (0xFFU >> (length + 1));
    std::size_t next = position;
    for (std::size_t i = 1; i < length; ++i, ++next) {
        if (next >= text.size() || (ByteAt(text, next) & 0xC0) != 0x80) {
            return kReplacement;
        }
        c = (c << 6) | (ByteAt(text, next) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    if (c < smallest[length] || c > 0x10FFFF) {
        return kReplacement;
    }
    position = next;
    return c;
}

void AppendUtf8(std::string& text, char32_t character) {
    if (IsLowSurrogate(character)) {
        if (const char32_t high = LastHighSurrogate(text); high != 0) {
            text.resize(text.size() - 3);
            AppendBytes(text, 0x10000 + ((high - 0xD800) << 10) + (character - 0xDC00));
            return;
        }
    }
    AppendBytes(text, character);
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = DecodeUtf8(text, i);
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return result;
}

std::string FromUtf16(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char16_t unit : text) {
        AppendUtf8(result, unit);
    }
    return result;
}

std::string ToUtf16Le(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : ToUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::string FromUtf16Le(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        AppendUtf8(result, static_cast<char32_t>(ByteAt(bytes, i) | (ByteAt(bytes, i + 1) << 8)));
    }
    return result;
}

std::string ToCodePage1252(std::string_view text) {
    if (IsAscii(text)) {
        return std::string(text);
    }
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = DecodeUtf8(text, i);
        const int byte = ByteOf(c);
        bytes += byte < 0 ? '?' : static_cast<char>(byte);
        if (c >= 0x10000) {
            bytes += '?';
        }
    }
    return bytes;
}

std::string FromCodePage1252(std::string_view bytes) {
    if (IsAscii(bytes)) {
        return std::string(bytes);
    }
    std::string text;
    text.reserve(bytes.size() * 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const unsigned char byte = ByteAt(bytes, i);
        AppendBytes(text, byte >= 0x80 && byte <= 0x9F ? kHigh1252[byte - 0x80U] : byte);
    }
    return text;
}

std::string NarrowToCodePage1252(std::string_view text) {
    return IsAscii(text) ? std::string(text) : FromCodePage1252(ToCodePage1252(text));
}

void RequireRoom(std::size_t bytes) {
    constexpr std::size_t kMostBytes = std::size_t{1} << 28;
    if (bytes > kMostBytes) {
        Raise(7119, {std::to_string(kMostBytes)});
    }
}

std::string Concatenate(std::string_view left, std::string_view right) {
    RequireRoom(left.size() + right.size());
    std::string result(left);
    result.reserve(left.size() + right.size());
    std::size_t position = 0;
    if (!right.empty() && LastHighSurrogate(left) != 0) {
        AppendUtf8(result, DecodeUtf8(right, position));
    }
    return result.append(right.substr(position));
}

std::size_t TextLength(std::string_view text) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (ByteAt(text, i) < 0x80) {
            ++i;
            ++length;
            continue;
        }
        length += DecodeUtf8(text, i) < 0x10000 ? 1 : 2;
    }
    return length;
}

std::string SubText(std::string_view text, std::size_t start, std::size_t count) {
    if (IsAscii(text)) {
        return std::string(start < text.size() ? text.substr(start, count) : std::string_view());
    }
    const std::u16string units = ToUtf16(text);
    return start < units.size() ? FromUtf16(std::u16string_view(units).substr(start, count)) : std::string();
}

std::string_view TrimTrailingBlanks(std::string_view text) {
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string AsciiUpper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return result;
}

bool AsciiEqual(std::string_view a, std::string_view b) {
    return a.size() == b.size() && AsciiUpper(a) == AsciiUpper(b);
}

} // namespace devsql

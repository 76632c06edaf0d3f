// Texts that may hold half a surrogate pair, over the encodings and the letter case of src/text.
#include "devserver/tsql/scalar/text.h"

#include <algorithm>
#include <optional>
#include <string>

#include "devserver/tsql/scalar/sql_error.h"
#include "text/code_page.h"
#include "text/text.h"
#include "text/utf8.h"

namespace devsql {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

unsigned char ByteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

/// Half of a surrogate pair, in the three bytes of its number; 0 if the text begins with something else.
char32_t HalfOfPair(std::string_view text) {
    const auto follows = [&](std::size_t at) { return (ByteAt(text, at) & 0xC0) == 0x80; };
    if (text.size() < 3 || ByteAt(text, 0) != 0xED || !follows(1) || !follows(2)) {
        return 0;
    }
    const char32_t c = 0xD000U | ((ByteAt(text, 1) & 0x3FU) << 6) | (ByteAt(text, 2) & 0x3FU);
    return IsHighSurrogate(c) || IsLowSurrogate(c) ? c : 0;
}

/// The high surrogate that stands alone at the end of `text`; 0 if none does.
char32_t LastHighSurrogate(std::string_view text) {
    const char32_t c = text.size() < 3 ? 0 : HalfOfPair(text.substr(text.size() - 3));
    return IsHighSurrogate(c) ? c : 0;
}

template <typename Map>
std::string MapText(std::string_view text, Map map) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        AppendUtf8(result, map(DecodeUtf8(text, i)));
    }
    return result;
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

char32_t DecodeUtf8(std::string_view text, std::size_t& position) {
    if (const unsigned char byte = ByteAt(text, position); byte < 0x80) {
        ++position;
        return byte;
    }
    std::string_view rest = text.substr(position);
    const std::optional<char32_t> character = text::TakeUtf8(rest);
    if (const char32_t half = character ? 0 : HalfOfPair(rest); half != 0) {
        position += 3;
        return half;
    }
    position = character ? text.size() - rest.size() : position + 1;
    return character.value_or(kReplacement);
}

void AppendUtf8(std::string& text, char32_t character) {
    if (IsLowSurrogate(character)) {
        if (const char32_t high = LastHighSurrogate(text); high != 0) {
            text.resize(text.size() - 3);
            text::AppendUtf8(text, 0x10000 + ((high - 0xD800) << 10) + (character - 0xDC00));
            return;
        }
    }
    text::AppendUtf8(text, character);
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        text::AppendUtf16(result, DecodeUtf8(text, i));
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
    return text::ToUtf16Bytes(ToUtf16(text));
}

std::string FromUtf16Le(std::string_view bytes) {
    return FromUtf16(text::FromUtf16Bytes(bytes));
}

std::string ToCodePage1252(std::string_view text) {
    if (IsAscii(text)) {
        return std::string(text);
    }
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = DecodeUtf8(text, i);
        bytes += text::NarrowCharacter(c).value_or('?');
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
    for (const char byte : bytes) {
        text::AppendUtf8(text, text::WidenCharacter(byte));
    }
    return text;
}

std::string NarrowToCodePage1252(std::string_view text) {
    return IsAscii(text) ? std::string(text) : FromCodePage1252(ToCodePage1252(text));
}

void RequireRoom(std::size_t bytes) {
    constexpr std::size_t kMostBytes = std::size_t{1} << 28;
    if (bytes > kMostBytes) {
        RaiseError(7119, {std::to_string(kMostBytes)});
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

char32_t ToUpper(char32_t character) {
    return text::UpperCharacter(character);
}

char32_t ToLower(char32_t character) {
    return text::LowerCharacter(character);
}

std::string ToUpper(std::string_view text) {
    return MapText(text, text::UpperCharacter);
}

std::string ToLower(std::string_view text) {
    return MapText(text, text::LowerCharacter);
}

std::string Folded(std::string_view name) {
    return ToLower(TrimTrailingBlanks(name));
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

std::vector<std::string_view> WordsOf(std::string_view list) {
    std::vector<std::string_view> words;
    while (!list.empty()) {
        words.push_back(list.substr(0, list.find(',')));
        list.remove_prefix(std::min(words.back().size() + 1, list.size()));
    }
    return words;
}

bool ListHas(std::string_view list, std::string_view word) {
    for (std::size_t begin = 0, end = 0; begin <= list.size(); begin = end + 1) {
        end = std::min(list.find(',', begin), list.size());
        if (AsciiEqual(list.substr(begin, end - begin), word)) {
            return true;
        }
    }
    return false;
}

} // namespace devsql

// The encodings of .reg files.
#include "registry/linux/reg_text.h"

#include <algorithm>

#include "text/code_page.h"
#include "text/utf8.h"

namespace registry {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kRegedit4 = "REGEDIT4";

std::size_t LinesIn(std::u16string_view text) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\n'));
}

std::u16string FromUtf16(std::string_view bytes) {
    std::u16string characters = text::FromUtf16Bytes(bytes);
    if (bytes.size() % 2 != 0) {
        throw RegDamage(LinesIn(characters), "half a character at the end");
    }
    return characters;
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
        auto characters = text::FromUtf8(bytes.substr(kUtf8Mark.size()));
        if (!characters) {
            throw RegDamage(1, "marked as UTF-8 and is not");
        }
        return {RegEncoding::Utf8WithMark, std::move(*characters)};
    }
    if (!bytes.starts_with(kRegedit4)) {
        if (auto characters = text::FromUtf8(bytes)) {
            return {RegEncoding::Utf8, std::move(*characters)};
        }
    }
    return {RegEncoding::CodePage1252, text::Widen(bytes)};
}

std::string EncodeRegText(const RegText& text) {
    switch (text.encoding) {
    case RegEncoding::Utf16:
        return std::string(kUtf16Mark) + text::ToUtf16Bytes(text.characters);
    case RegEncoding::Utf8:
        return text::ToUtf8(text.characters);
    case RegEncoding::Utf8WithMark:
        return std::string(kUtf8Mark) + text::ToUtf8(text.characters);
    case RegEncoding::CodePage1252:
        break;
    }
    std::string bytes = text::Narrow(text.characters);
    if (text::Widen(bytes) != text.characters) {
        throw RegDamage(0, "a character that the file's code page lacks");
    }
    return bytes;
}

} // namespace registry

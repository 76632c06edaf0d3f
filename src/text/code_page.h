// The program's 8-bit text, code page 1252, to and from UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace text {

/// The character of a byte.
char16_t WidenCharacter(char byte);
/// The byte of a character; nothing if the code page lacks it.
std::optional<char> NarrowCharacter(char32_t character);

/// Every byte has a character, as Windows maps them.
std::u16string Widen(std::string_view text);
/// A character that the code page lacks becomes one "?", also if it takes two UTF-16 units.
std::string Narrow(std::u16string_view text);
/// The same, written to `to`, which has room for text.size() bytes. Returns the end of the written bytes.
char* NarrowTo(char* to, std::u16string_view text);

} // namespace text

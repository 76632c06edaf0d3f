// Converts the program's 8-bit text, which is in code page 1252, to and from UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace text {

/// Returns the character of a byte. Every byte has a character, as Windows maps them.
char16_t WidenCharacter(char byte);
/// Returns the byte of a character, or nothing if the code page lacks the character.
std::optional<char> NarrowCharacter(char32_t character);

/// Converts to UTF-16; one unit for each byte.
std::u16string Widen(std::string_view text);
/// Converts from UTF-16. A character that the code page lacks becomes one "?", also if it has two UTF-16
/// units.
std::string Narrow(std::u16string_view text);
/// Converts as Narrow does, and writes the result to `to`, which must have space for text.size() bytes.
/// Returns the end of the written bytes.
char* NarrowTo(char* to, std::u16string_view text);

} // namespace text

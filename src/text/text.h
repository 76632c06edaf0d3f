// Searching, replacing and letter case in 8-bit text of code page 1252. The results are the same on every
// system and in every locale.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// Converts the letters of code page 1252. A letter whose other case is not in the code page stays as it is.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
/// Converts the same letters in UTF-16 or in single characters; all other characters stay as they are.
std::u16string UpperCase(std::u16string_view text);
char32_t UpperCharacter(char32_t character);
char32_t LowerCharacter(char32_t character);

/// Returns the position of the first occurrence of `wanted` at or after `from`, letter case ignored; npos if
/// it does not occur.
std::size_t FindIgnoringCase(std::string_view text, std::string_view wanted, std::size_t from = 0);

/// True if the texts differ in nothing but letter case.
bool SameIgnoringCase(std::string_view one, std::string_view other);

/// Returns the text without the blanks (0x20) at both ends. Other white space is not removed. The result
/// refers to `text`.
std::string_view Trim(std::string_view text);

/// Replaces every occurrence of `wanted`, which must not be empty, from left to right.
std::string ReplaceAll(std::string_view text, std::string_view wanted, std::string_view replacement);

} // namespace text

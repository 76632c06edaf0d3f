// Searching and letter case in 8-bit text of code page 1252, the same on every system.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// Letter case of code page 1252; a letter whose other case is not in the code page stays as it is.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
/// The same letters in UTF-16; all other characters stay as they are.
std::u16string UpperCase(std::u16string_view text);
char32_t UpperCharacter(char32_t character);
char32_t LowerCharacter(char32_t character);

/// The place of the first occurrence at or after `from`, letter case ignored; npos if it does not occur.
std::size_t FindIgnoringCase(std::string_view text, std::string_view wanted, std::size_t from = 0);

/// True if the texts differ in nothing but letter case.
bool SameIgnoringCase(std::string_view one, std::string_view other);

/// The text without the blanks at both ends; no other white space counts.
std::string_view Trim(std::string_view text);

/// Replaces every occurrence of `wanted`, which must not be empty, from left to right.
std::string ReplaceAll(std::string_view text, std::string_view wanted, std::string_view replacement);

} // namespace text

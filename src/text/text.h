// Searching and letter case in 8-bit text of code page 1252, the same on every system.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// Case of code page 1252's letters; a letter without a partner in the code page stays.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
/// The same letters in UTF-16; all other characters stay.
std::u16string UpperCase(std::u16string_view text);
char32_t UpperCharacter(char32_t character);
char32_t LowerCharacter(char32_t character);

/// The place of the first occurrence at or after `from`, letter case ignored; npos if it does not occur.
std::size_t FindIgnoringCase(std::string_view text, std::string_view wanted, std::size_t from = 0);

/// The text without the blanks at both ends; no other white space counts.
std::string_view Trim(std::string_view text);

/// Every occurrence of `wanted` (not empty), from the first character on, replaced.
std::string ReplaceAll(std::string_view text, std::string_view wanted, std::string_view replacement);

} // namespace kv

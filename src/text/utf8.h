// Converts UTF-8 to and from UTF-16, and UTF-16 to and from bytes.
#pragma once

#include <bit>
#include <optional>
#include <string>
#include <string_view>

namespace text {

/// Removes one character from the front of `bytes`, which must not be empty, and returns it. If the bytes
/// there are not valid UTF-8, returns nothing and removes nothing.
std::optional<char32_t> TakeUtf8(std::string_view& bytes);
/// Appends the character as UTF-8. Half of a surrogate pair is encoded like any other number.
void AppendUtf8(std::string& bytes, char32_t character);
/// Appends the character as UTF-16: one unit, or two from U+10000 on.
void AppendUtf16(std::u16string& characters, char32_t character);
/// Removes one character of one or two units from the front of `characters`, which must not be empty, and
/// returns it. Half of a surrogate pair is returned as it is.
char32_t TakeUtf16(std::u16string_view& characters);

/// Converts UTF-8 to UTF-16. Returns nothing if the bytes are not valid UTF-8.
std::optional<std::u16string> FromUtf8(std::string_view bytes);
/// Converts UTF-16 to UTF-8, as AppendUtf8 does for each character.
std::string ToUtf8(std::u16string_view characters);

/// Reads UTF-16 from its bytes, which have the byte order `order`. A single byte at the end is ignored.
std::u16string FromUtf16Bytes(std::string_view bytes, std::endian order = std::endian::little);
/// Returns the bytes of UTF-16 in little-endian order.
std::string ToUtf16Bytes(std::u16string_view characters);

} // namespace text

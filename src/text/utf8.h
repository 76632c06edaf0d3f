// UTF-8 to and from UTF-16, and UTF-16 to and from bytes.
#pragma once

#include <bit>
#include <optional>
#include <string>
#include <string_view>

namespace text {

/// Takes one well-formed character from the front of `bytes`, which must not be empty. Returns nothing, and
/// takes nothing, if there is no such character.
std::optional<char32_t> TakeUtf8(std::string_view& bytes);
/// Half of a surrogate pair is encoded like any other number.
void AppendUtf8(std::string& bytes, char32_t character);
/// Appends one unit, or two from U+10000 on.
void AppendUtf16(std::u16string& characters, char32_t character);
/// Takes one character of one or two units from the front of `characters`, which must not be empty.
char32_t TakeUtf16(std::u16string_view& characters);

/// Returns nothing if the bytes are not well-formed UTF-8.
std::optional<std::u16string> FromUtf8(std::string_view bytes);
std::string ToUtf8(std::u16string_view characters);

/// The UTF-16 characters of their bytes in this order; a last odd byte is left out.
std::u16string FromUtf16Bytes(std::string_view bytes, std::endian order = std::endian::little);
/// Little-endian.
std::string ToUtf16Bytes(std::u16string_view characters);

} // namespace text

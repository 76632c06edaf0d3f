// UTF-8 to and from UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Takes one well-formed character from the front of `bytes`, which must not be empty. Returns nothing, and
/// takes nothing, if there is no such character.
std::optional<char32_t> TakeUtf8(std::string_view& bytes);
/// Half of a surrogate pair is written in the form that its number would have.
void AppendUtf8(std::string& bytes, char32_t character);
/// In one unit or, from U+10000 on, two.
void AppendUtf16(std::u16string& characters, char32_t character);
/// Takes one character of one or two units from the front of `characters`, which must not be empty.
char32_t TakeUtf16(std::u16string_view& characters);

/// Nothing if the bytes are not well-formed UTF-8.
std::optional<std::u16string> FromUtf8(std::string_view bytes);
std::string ToUtf8(std::u16string_view characters);

} // namespace platform

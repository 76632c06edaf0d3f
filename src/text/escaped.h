// Escaped text: text of code page 1252 in which escapes stand for characters that the code page lacks and for
// bytes that are not valid UTF-8. So it can represent any text of the system, and nothing is lost.
//
// The escape of a character is the byte 0x81, the character's number in hexadecimal digits and the byte 0x9D.
// The escape of a byte has "x" and two digits in place of the number. 0x81 and 0x9D are control characters
// that nobody types. An escape contains no blank, quote or separator, so it can be part of a command line or
// a path.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// Converts any bytes, valid UTF-8 or not. Utf8FromEscaped converts the result back to the same bytes.
std::string EscapedFromUtf8(std::string_view bytes);
/// Converts to UTF-8. If `text` has no escapes, EscapedFromUtf8 converts the result back to `text`.
std::string Utf8FromEscaped(std::string_view text);

// These two do the same for UTF-16. Half of a surrogate pair counts as a character that the code page lacks.

std::string EscapedFromUtf16(std::u16string_view characters);
std::u16string Utf16FromEscaped(std::string_view text);

/// True if the text contains an escape.
bool HoldsEscape(std::string_view text);

} // namespace text

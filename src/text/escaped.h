// Text of code page 1252 that can represent any text of the system: characters that the code page lacks, and
// bytes that are not text, are written as escapes. Nothing is lost.
//
// An escape is the byte 0x81, the character's number in hexadecimal digits (a byte: "x" and two digits) and
// the byte 0x9D. Both bytes are control characters that nobody types. An escape contains no blank, quote or
// separator, so it can be part of a command line or a path.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// One to one: Utf8FromEscaped gives the same bytes back, whatever they are.
std::string EscapedFromUtf8(std::string_view bytes);
/// Text of the code page without escapes comes back from EscapedFromUtf8 as it was.
std::string Utf8FromEscaped(std::string_view text);

/// The same for UTF-16. Half of a surrogate pair counts as a character that the code page lacks.
std::string EscapedFromUtf16(std::u16string_view characters);
std::u16string Utf16FromEscaped(std::string_view text);

/// True if the text contains an escape.
bool HoldsEscape(std::string_view text);

} // namespace text

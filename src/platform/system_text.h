// Converts the program's text (code page 1252) to and from the text that the system's 8-bit calls use for
// arguments, names of files and the terminal.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Converts text of the system to text of the program. On Windows the two are the same. On Linux the system's
/// text is UTF-8: a character that the code page lacks becomes an escape (text/escaped.h), so that a file
/// with such a name can still be opened.
std::string FromSystemText(std::string_view text);
/// Converts in the other direction: ToSystemText(FromSystemText(text)) is `text`.
std::string ToSystemText(std::string_view text);

} // namespace platform

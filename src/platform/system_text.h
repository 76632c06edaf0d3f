// The program's 8-bit text, code page 1252, to and from the text of the system's own 8-bit calls: arguments,
// names of files, the terminal.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Text that came from the system. On Windows the two are the same. On Linux, where the system's text is
/// UTF-8: text that is not UTF-8 or has characters that the code page lacks stays as it is, so that a file of
/// such a name can at least be reached by it.
std::string FromSystemText(std::string_view text);
/// The way back. Text that is UTF-8 already came through unchanged, and goes so.
std::string ToSystemText(std::string_view text);

} // namespace platform

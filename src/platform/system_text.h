// 8-bit text of code page 1252, to and from the text of the system's own 8-bit calls: arguments, names of
// files, the terminal.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Text that came from the system. On Windows the two are the same. On Linux the system's text is UTF-8: what
/// the code page cannot hold becomes an escape (text/escaped.h), so that a file of such a name can be reached
/// by it.
std::string FromSystemText(std::string_view text);
/// The way back: whatever FromSystemText has read comes out as it was.
std::string ToSystemText(std::string_view text);

} // namespace platform

// Input files of every encoding that editors leave behind, as the 8-bit text (code page 1252) that the tool
// works in.
#pragma once

#include <string>

namespace querytool {

/// A file that begins with the mark of UTF-8 or UTF-16 is converted; characters that the code page lacks
/// become "?". All other files stay as they are, byte for byte.
std::string ToCodePage(std::string content);

} // namespace querytool

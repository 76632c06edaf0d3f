// The program's 8-bit text, code page 1252, to and from UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Every byte has a character, as Windows maps them.
std::u16string Widen(std::string_view text);
/// A character that the code page lacks becomes "?"; one that takes two units, one "?".
std::string Narrow(std::u16string_view text);
/// The same, behind what `to` holds.
void AppendNarrow(std::string& to, std::u16string_view text);

} // namespace platform

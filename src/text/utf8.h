// UTF-8 to and from UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Nothing if the bytes are no well-formed UTF-8.
std::optional<std::u16string> FromUtf8(std::string_view bytes);
/// Every high surrogate must be followed by its low one.
std::string ToUtf8(std::u16string_view characters);

} // namespace platform

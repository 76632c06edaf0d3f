// LIKE and PATINDEX: %, _, [set], [a-z], [^set] and an escape character, compared as the collation does.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace devsql {

/// `text` LIKE `pattern`. Blanks at the end of `text` count only when `unicode` is true (nchar, nvarchar).
bool Like(std::string_view text, std::string_view pattern, std::optional<char32_t> escape = std::nullopt,
          bool unicode = false);

/// The character of an ESCAPE clause; nothing for an empty text. Raises 506 for a longer text.
std::optional<char32_t> EscapeCharacter(std::string_view text);

/// The position, from 1 in UTF-16 units, at which `pattern` is found, 0 if it isn't.
std::int64_t PatIndex(std::string_view pattern, std::string_view text);

} // namespace devsql

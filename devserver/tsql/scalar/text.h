// Text in its encodings: UTF-8 inside, UTF-16LE and code page 1252 at the edges; lengths and cuts in UTF-16
// units, as the server's length and position functions count; upper and lower case.
// Knows nothing of collation: see compare.h.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace devsql {

// All texts are UTF-8 in which a lone surrogate may stand in three bytes (WTF-8), so that any UTF-16 text
// round trips. Bytes that are not UTF-8 read as U+FFFD.

/// Reads the character at `position` and moves past it; `position` < `text.size()`.
char32_t DecodeUtf8(std::string_view text, std::size_t& position);
/// Appends one code point; a low surrogate after a high one at the end of `text` joins it to one character.
void AppendUtf8(std::string& text, char32_t character);

std::u16string ToUtf16(std::string_view text);
std::string FromUtf16(std::u16string_view text);
/// The bytes of the UTF-16LE form, without mark.
std::string ToUtf16Le(std::string_view text);
/// From the bytes of UTF-16LE; an odd last byte is left out.
std::string FromUtf16Le(std::string_view bytes);
/// A byte for each UTF-16 unit; "?" for a unit that code page 1252 lacks.
std::string ToCodePage1252(std::string_view text);
std::string FromCodePage1252(std::string_view bytes);
/// `text` with "?" for each UTF-16 unit that a varchar could not hold.
std::string NarrowToCodePage1252(std::string_view text);

/// `left` followed by `right`, with a surrogate pair at the seam joined to one character.
std::string Concatenate(std::string_view left, std::string_view right);
/// Raises 7119 for a text or binary longer than this server lets one grow: a statement of a few words could
/// ask for all the memory there is.
void RequireRoom(std::size_t bytes);

/// UTF-16 units.
std::size_t TextLength(std::string_view text);
/// `count` units from `start` (from 0) on, both cut to what is there. Cutting through a pair leaves lone
/// surrogates.
std::string SubText(std::string_view text, std::size_t start, std::size_t count = std::string_view::npos);
/// Without the blanks (U+0020) at its end.
std::string_view TrimTrailingBlanks(std::string_view text);

/// Case of the letters of code page 1252; any other character stays as it is.
char32_t ToUpper(char32_t character);
char32_t ToLower(char32_t character);
std::string ToUpper(std::string_view text);
std::string ToLower(std::string_view text);
/// The form of a name that every other spelling of it shares: lower case, no blanks at its end.
std::string Folded(std::string_view name);
/// ASCII letters only; for keywords and names of the language.
std::string AsciiUpper(std::string_view text);
/// Equal but for the case of ASCII letters.
bool AsciiEqual(std::string_view a, std::string_view b);
/// The words of a list such as "NOLOCK,HOLDLOCK".
std::vector<std::string_view> WordsOf(std::string_view list);
/// True if such a list has the word, but for the case of ASCII letters.
bool ListHas(std::string_view list, std::string_view word);

} // namespace devsql

// Replaces the tokens of a template by an ordered list of passes, each over the result of the previous one.
// Knows no files and no settings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// One pass: replaces all occurrences of the token by the value, from left to right.
struct TokenPass {
    /// "###", letters A to Z in either case, "###". ReplaceTokens relies on this form.
    std::string token;
    /// True if the token is found in any letter case, false if only in its own.
    bool any_case = false;
    std::string value;
};

/// Returns the same text as if each pass were run over the whole text, one after the other. Besides the
/// result it needs memory for about a quarter of the text. Its time grows with the length of the text and
/// hardly with the number of tokens.
std::string ReplaceTokens(std::string_view text, const std::vector<TokenPass>& passes);

} // namespace kv

// Replaces the tokens of a template: an ordered list of passes, each over the result of the one before.
// Knows nothing of files or settings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// One pass: all occurrences of the token, from the first character on, become the value.
struct TokenPass {
    /// "###", letters A to Z in either case, "###". ReplaceTokens relies on this form.
    std::string token;
    /// True: letter case is ignored when the token is looked for. False: it must agree.
    bool any_case = false;
    std::string value;
};

/// Gives what the passes, run one behind the other over the whole text, would give.
/// Needs room for the result and about a quarter of the text beside it; its time grows with the length of the
/// text and hardly with the number of tokens.
std::string ReplaceTokens(std::string_view text, const std::vector<TokenPass>& passes);

} // namespace kv

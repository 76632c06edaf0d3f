// Fuzzes the replacement of tokens. The input is the values of seven tokens, separated by NUL, and the
// template. The result must equal that of separate passes over the whole text, one for each token in turn.
#include "fuzz/input.h"
#include "scripts/token_passes.h"
#include "text/text.h"

namespace {

/// A value can contain tokens, so each pass can double the length of the text.
constexpr std::size_t kLongestValue = 40;
constexpr std::size_t kLongestText = 4096;

std::string OneAfterTheOther(std::string text, const std::vector<kv::TokenPass>& passes) {
    for (const kv::TokenPass& pass : passes) {
        std::string result;
        std::size_t from = 0;
        for (;;) {
            const std::size_t at =
                pass.any_case ? text::FindIgnoringCase(text, pass.token, from) : text.find(pass.token, from);
            if (at == std::string::npos) {
                break;
            }
            result += text.substr(from, at - from) + pass.value;
            from = at + pass.token.size();
        }
        text = result + text.substr(from);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size > kLongestText) {
        return 0;
    }
    fuzz::Input input(bytes, size);
    std::vector<kv::TokenPass> passes = {{"###SERVER###", false, {}}, {"###server###", false, {}},
                                         {"###USERID###", true, {}},  {"###PASSWORD###", true, {}},
                                         {"###DOMAIN###", false, {}}, {"###DATAPATH###", true, {}},
                                         {"###SERVERA###", false, {}}};
    for (kv::TokenPass& pass : passes) {
        pass.value = input.Text().substr(0, kLongestValue);
    }
    const std::string text(input.Rest());
    fuzz::Require(kv::ReplaceTokens(text, passes) == OneAfterTheOther(text, passes),
                  "the result is that of the passes one after the other");
    return 0;
}

// A token consists of letters and hash signs, and replacing never removes another character. So a text can be
// split into runs of letters and hash signs that do not influence one another: the passes over the whole text
// give the same as the passes over each run. A template repeats the same few runs, so their results are kept.
#include "scripts/token_passes.h"

#include <deque>
#include <unordered_map>

namespace kv {
namespace {

constexpr std::string_view kMark = "###";

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsRunCharacter(char c) {
    return c == '#' || IsLetter(c);
}

char LowerLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool IsTokenAt(std::string_view text, std::size_t at, const TokenPass& pass) {
    if (text.size() - at < pass.token.size()) {
        return false;
    }
    const std::string_view piece = text.substr(at, pass.token.size());
    if (!pass.any_case) {
        return piece == pass.token;
    }
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (LowerLetter(piece[i]) != LowerLetter(pass.token[i])) {
            return false;
        }
    }
    return true;
}

std::string RunPass(const std::string& text, const TokenPass& pass) {
    std::string result;
    std::size_t copied = 0;
    std::size_t at = text.find('#');
    while (at != std::string::npos) {
        if (IsTokenAt(text, at, pass)) {
            result.append(text, copied, at - copied).append(pass.value);
            at += pass.token.size();
            copied = at;
        } else {
            ++at;
        }
        at = text.find('#', at);
    }
    result.append(text, copied);
    return result;
}

std::string RunAllPasses(std::string_view run, const std::vector<TokenPass>& passes) {
    std::string text(run);
    for (const TokenPass& pass : passes) {
        text = RunPass(text, pass);
    }
    return text;
}

/// The result of the passes over a run. The result of a run that was seen before is looked up.
class RunResults {
  public:
    explicit RunResults(const std::vector<TokenPass>& passes) : passes_(passes) {}

    /// The returned reference is valid as long as this object.
    const std::string& Of(std::string_view run) {
        constexpr std::size_t kLongestRemembered = 128;
        constexpr std::size_t kMostRemembered = 4096;
        if (run.size() > kLongestRemembered) {
            return kept_.emplace_back(RunAllPasses(run, passes_));
        }
        if (const auto found = remembered_.find(run); found != remembered_.end()) {
            return *found->second;
        }
        const std::string& result = kept_.emplace_back(RunAllPasses(run, passes_));
        if (remembered_.size() < kMostRemembered) {
            remembered_.emplace(run, &result); // the key is a view into the text, which outlives this object
        }
        return result;
    }

  private:
    const std::vector<TokenPass>& passes_;
    std::deque<std::string> kept_;
    std::unordered_map<std::string_view, const std::string*> remembered_;
};

/// A part of the text that changes, and the text that replaces it.
struct Replacement {
    std::size_t begin;
    std::size_t end;
    const std::string* result;
};

std::vector<Replacement> FindReplacements(std::string_view text, RunResults& results) {
    std::vector<Replacement> replacements;
    std::size_t end_of_last = 0;
    std::size_t at = text.find('#');
    while (at != std::string_view::npos) {
        if (text.compare(at, kMark.size(), kMark) != 0) {
            at = text.find('#', at + 1);
            continue;
        }
        std::size_t begin = at;
        while (begin > end_of_last && IsRunCharacter(text[begin - 1])) {
            --begin;
        }
        std::size_t end = at + kMark.size();
        while (end < text.size() && IsRunCharacter(text[end])) {
            ++end;
        }
        const std::string& result = results.Of(text.substr(begin, end - begin));
        if (result != text.substr(begin, end - begin)) {
            replacements.push_back({begin, end, &result});
        }
        end_of_last = end;
        at = text.find('#', end);
    }
    return replacements;
}

} // namespace

std::string ReplaceTokens(std::string_view text, const std::vector<TokenPass>& passes) {
    RunResults results(passes);
    const std::vector<Replacement> replacements = FindReplacements(text, results);

    // The size is computed first: a result that grows step by step would be in memory twice.
    std::size_t size = text.size();
    for (const Replacement& replacement : replacements) {
        size = size - (replacement.end - replacement.begin) + replacement.result->size();
    }
    std::string result;
    result.reserve(size);
    std::size_t copied = 0;
    for (const Replacement& replacement : replacements) {
        result.append(text.substr(copied, replacement.begin - copied)).append(*replacement.result);
        copied = replacement.end;
    }
    result.append(text.substr(copied));
    return result;
}

} // namespace kv

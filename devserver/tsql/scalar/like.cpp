// Matches texts with patterns. A pattern is cut into steps; the match walks text and steps side by side, and
// goes back to the last "%" where they do not fit.
#include "devserver/tsql/scalar/like.h"

#include <algorithm>
#include <string>
#include <vector>

#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

struct Step {
    /// Any is "%", One is "_"; Never is a part of a malformed pattern, which matches nothing.
    enum class Kind : std::uint8_t { Any, One, Character, Set, Never };

    Kind kind = Kind::Never;
    char32_t character = 0; ///< lower case
    bool negated = false;
    std::vector<CharacterRange> ranges;
};

using Steps = std::vector<Step>;

std::string OneCharacter(char32_t c) {
    std::string text;
    AppendUtf8(text, c);
    return text;
}

int CompareCharacters(char32_t a, char32_t b) {
    return ToLower(a) == ToLower(b) ? 0 : CompareText(OneCharacter(a), OneCharacter(b));
}

bool InRange(char32_t c, const CharacterRange& range) {
    if (range.first == range.last) {
        return ToLower(c) == ToLower(range.first);
    }
    return CompareCharacters(range.first, c) <= 0 && CompareCharacters(c, range.last) <= 0;
}

class PatternReader {
  public:
    PatternReader(std::string_view pattern, std::optional<char32_t> escape)
        : pattern_(ToUtf16(pattern)), escape_(escape) {}

    Steps Read() {
        Steps steps;
        while (at_ < pattern_.size()) {
            steps.push_back(ReadStep());
        }
        return steps;
    }

  private:
    Step ReadStep() {
        Step step;
        const char32_t c = pattern_[at_++];
        if (escape_ && c == *escape_) {
            // A pattern that ends with the escape character matches nothing.
            return at_ < pattern_.size() ? Literal(pattern_[at_++]) : step;
        }
        if (c == U'%' || c == U'_') {
            step.kind = c == U'%' ? Step::Kind::Any : Step::Kind::One;
            return step;
        }
        return c == U'[' ? ReadSet() : Literal(c);
    }

    static Step Literal(char32_t c) {
        Step step;
        step.kind = Step::Kind::Character;
        step.character = ToLower(c);
        return step;
    }

    bool TakeSetCharacter(char32_t& c) {
        if (escape_ && at_ + 1 < pattern_.size() && pattern_[at_] == *escape_) {
            ++at_;
        }
        if (at_ >= pattern_.size()) {
            return false;
        }
        c = pattern_[at_++];
        return true;
    }

    /// A set that is not closed matches nothing.
    Step ReadSet() {
        Step step;
        if (at_ < pattern_.size() && pattern_[at_] == u'^') {
            step.negated = true;
            ++at_;
        }
        while (at_ < pattern_.size() && pattern_[at_] != u']') {
            CharacterRange range{};
            if (!TakeSetCharacter(range.first)) {
                return step;
            }
            range.last = range.first;
            if (at_ + 1 < pattern_.size() && pattern_[at_] == u'-' && pattern_[at_ + 1] != u']') {
                ++at_;
                if (!TakeSetCharacter(range.last)) {
                    return step;
                }
            }
            step.ranges.push_back(range);
        }
        if (at_ >= pattern_.size()) {
            return step;
        }
        ++at_;
        step.kind = Step::Kind::Set;
        return step;
    }

    std::u16string pattern_;
    std::optional<char32_t> escape_;
    std::size_t at_ = 0;
};

bool Matches(const Step& step, char32_t c) {
    switch (step.kind) {
    case Step::Kind::One:
        return true;
    case Step::Kind::Character:
        return ToLower(c) == step.character;
    case Step::Kind::Set:
        return step.negated != std::any_of(step.ranges.begin(), step.ranges.end(),
                                           [c](const CharacterRange& range) { return InRange(c, range); });
    default:
        return false;
    }
}

bool OnlyBlanks(std::u16string_view text) {
    return text.find_first_not_of(u' ') == std::u16string_view::npos;
}

bool MatchSteps(std::u16string_view text, const Steps& steps, std::size_t first_step, bool blanks_count) {
    std::size_t at = 0;
    std::size_t step = first_step;
    std::size_t any_step = std::string::npos; // the last "%"
    std::size_t any_at = 0;
    while (true) {
        if (step < steps.size() && steps[step].kind == Step::Kind::Any) {
            any_step = step++;
            any_at = at;
            continue;
        }
        if (step == steps.size() && (at == text.size() || (!blanks_count && OnlyBlanks(text.substr(at))))) {
            return true;
        }
        if (step < steps.size() && at < text.size() && Matches(steps[step], text[at])) {
            ++step;
            ++at;
            continue;
        }
        if (any_step == std::string::npos || any_at >= text.size()) {
            return false;
        }
        step = any_step + 1;
        at = ++any_at;
    }
}

} // namespace

bool Like(std::string_view text, std::string_view pattern, std::optional<char32_t> escape, bool unicode) {
    return MatchSteps(ToUtf16(text), PatternReader(pattern, escape).Read(), 0, unicode);
}

std::optional<char32_t> EscapeCharacter(std::string_view text) {
    if (text.empty()) {
        return std::nullopt;
    }
    RaiseIf(TextLength(text) != 1, 506, {text, "LIKE"});
    std::size_t position = 0;
    return DecodeUtf8(text, position);
}

std::int64_t PatIndex(std::string_view pattern, std::string_view text) {
    const std::u16string units = ToUtf16(text);
    const Steps steps = PatternReader(pattern, std::nullopt).Read();
    const bool anywhere = !steps.empty() && steps.front().kind == Step::Kind::Any;
    if (!anywhere) {
        return MatchSteps(units, steps, 0, false) ? 1 : 0;
    }
    for (std::size_t start = 0; start < units.size(); ++start) {
        if (MatchSteps(std::u16string_view(units).substr(start), steps, 1, false)) {
            return static_cast<std::int64_t>(start) + 1;
        }
    }
    return 0;
}

} // namespace devsql

// LIKE and PATINDEX.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"
#include "devserver/tsql/scalar/like.h"

namespace devsql {
namespace {

struct LikeCase {
    std::string_view text;
    std::string_view pattern;
    bool expected;
};

TEST(Like, MatchesTheWholeText) {
    const LikeCase cases[] = {
        {"abc", "abc", true},
        {"abc", "ab", false},
        {"abc", "a%", true},
        {"abc", "%c", true},
        {"abc", "%b%", true},
        {"abc", "%", true},
        {"", "%", true},
        {"", "", true},
        {"", "_", false},
        {"abc", "_b_", true},
        {"abc", "__", false},
        {"abc", "ABC", true},
        {"äbc", "Ä%", true},
        {"äbc", "a%", false},
        {"a%c", "a[%]c", true},
        {"abc", "a[%]c", false},
        {"aXbXc", "a%b%c", true},
        {"mississippi", "%iss%ip%", true},
        {"abab", "%ab", true},
        {"x", "[a-z]", true},
        {"X", "[a-z]", true},
        {"5", "[a-z]", false},
        {"b", "[abc]", true},
        {"d", "[abc]", false},
        {"d", "[^abc]", true},
        {"-", "[a-]", true},
        {"é", "[a-z]", true},
        {"sysjobs", "sys[^t]%", true},
        {"systypes", "sys[^t]%", false},
        {"a[b", "a[[]b", true},
        {"a]b", "a]b", true},
        {"a[b", "a[b", false},
        {"07", "[0-9][0-9]", true},
    };
    for (const LikeCase& c : cases) {
        EXPECT_EQ(Like(c.text, c.pattern), c.expected) << c.text << " LIKE " << c.pattern;
    }
}

TEST(Like, AcceptsAnEscapeCharacter) {
    EXPECT_TRUE(Like("50%", "50!%", U'!'));
    EXPECT_FALSE(Like("500", "50!%", U'!'));
    EXPECT_TRUE(Like("a_b", "a\\_b", U'\\'));
    EXPECT_FALSE(Like("axb", "a\\_b", U'\\'));
    EXPECT_TRUE(Like("a!b", "a!!b", U'!'));
    EXPECT_FALSE(Like("a", "a!", U'!')) << "an escape character at the end matches nothing";
}

TEST(Like, TrailingBlanksCountOnlyInUnicode) {
    EXPECT_TRUE(Like("abc   ", "abc"));
    EXPECT_FALSE(Like("abc   ", "abc", std::nullopt, true));
    EXPECT_FALSE(Like("abc", "abc ")) << "trailing blanks of the pattern always count";
    EXPECT_TRUE(Like("abc ", "%c ", std::nullopt, true));
}

TEST(Like, ManyPercentSignsDoNotTakeExponentialTime) {
    const std::string text(2000, 'a');
    EXPECT_FALSE(Like(text, "%a%a%a%a%a%a%a%a%a%a%b"));
}

TEST(Escape, IsOneCharacter) {
    EXPECT_EQ(EscapeCharacter("!"), U'!');
    EXPECT_EQ(EscapeCharacter(""), std::nullopt);
    EXPECT_EQ(Outcome([] {
                  EscapeCharacter("ab");
                  return std::string();
              }),
              "506 The invalid escape character \"ab\" was specified in a LIKE predicate.");
}

TEST(PatIndexOf, FindsTheFirstPlace) {
    struct Case {
        std::string_view pattern;
        std::string_view text;
        int expected;
    };
    const Case cases[] = {{"%ter%", "interesting data", 3},
                          {"%x%", "abc", 0},
                          {"abc", "abc", 1},
                          {"b%", "abc", 0},
                          {"%c", "abcabc", 6},
                          {"%[0-9]%", "ab12", 3},
                          {"%b%", "😀b", 3},
                          {"%en_ure%", "please ensure the door", 8}};
    for (const Case& c : cases) {
        EXPECT_EQ(PatIndex(c.pattern, c.text), c.expected) << c.pattern << " in " << c.text;
    }
}

} // namespace
} // namespace devsql

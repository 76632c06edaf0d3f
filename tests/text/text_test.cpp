#include "text/text.h"

#include <gtest/gtest.h>

#include "text/code_page.h"

namespace text {
namespace {

TEST(Text, UpperAndLowerCaseFollowCodePage1252) {
    // Some letters that the code page has in both cases, in the same order.
    const std::string upper = "AZ\x8A\x8C\x8E\x9F\xC0\xC4\xD6\xD8\xDC\xDE";
    const std::string lower = "az\x9A\x9C\x9E\xFF\xE0\xE4\xF6\xF8\xFC\xFE";
    EXPECT_EQ(UpperCase(lower), upper);
    EXPECT_EQ(UpperCase(Widen(lower)), Widen(upper));
    // Letters with an upper case that is not in the code page.
    EXPECT_EQ(UpperCase(u"\u0142\u00B5"), u"\u0142\u00B5");
    EXPECT_EQ(LowerCase(upper), lower);
    EXPECT_EQ(UpperCase(upper), upper);
    EXPECT_EQ(LowerCase(lower), lower);
}

TEST(Text, ACharacterWithoutAnotherCaseInTheCodePageStays) {
    const std::string others = "09#\\_\xD7\xF7\xDF\xB5\x83\x80\xAA\xBA@[`{";
    EXPECT_EQ(UpperCase(others), others);
    EXPECT_EQ(LowerCase(others), others);
}

TEST(Text, ACharacterChangesItsCaseAsItsByteDoes) {
    for (int i = 0; i < 256; ++i) {
        const char byte = static_cast<char>(i);
        const char32_t character = WidenCharacter(byte);
        EXPECT_EQ(NarrowCharacter(UpperCharacter(character)), UpperCase(std::string(1, byte))[0]) << i;
        EXPECT_EQ(NarrowCharacter(LowerCharacter(character)), LowerCase(std::string(1, byte))[0]) << i;
    }
    EXPECT_EQ(UpperCharacter(0x142), 0x142U) << "a letter that the code page lacks";
    EXPECT_EQ(LowerCharacter(0x1F600), 0x1F600U);
}

TEST(Text, LowerCaseUndoesUpperCase) {
    int letters = 0;
    for (int i = 0; i < 256; ++i) {
        const std::string c(1, static_cast<char>(i));
        if (UpperCase(c) != c) {
            ++letters;
            EXPECT_EQ(LowerCase(UpperCase(c)), c) << i;
        }
    }
    EXPECT_EQ(letters, 26 + 30 + 4); // a to z; \xE0 to \xFE without \xF7; \x9A, \x9C, \x9E, \xFF
}

TEST(Text, SameIgnoringCaseComparesWholeTexts) {
    EXPECT_TRUE(SameIgnoringCase("sp\xC4", "SP\xE4"));
    EXPECT_TRUE(SameIgnoringCase("", ""));
    EXPECT_FALSE(SameIgnoringCase("sp\xD7", "sp\xF7")); // the signs of multiplication and division
    EXPECT_FALSE(SameIgnoringCase("sp", "spx"));
    EXPECT_FALSE(SameIgnoringCase("spx", "sp"));
}

TEST(Text, FindIgnoringCaseReturnsTheFirstMatch) {
    EXPECT_EQ(FindIgnoringCase("xx /Help /help", "/HELP"), 3U);
    EXPECT_EQ(FindIgnoringCase("xx /Help /help", "/HELP", 4), 9U);
    EXPECT_EQ(FindIgnoringCase("xx", "xxx"), std::string_view::npos);
    EXPECT_EQ(FindIgnoringCase("", "x"), std::string_view::npos);
    EXPECT_EQ(FindIgnoringCase("x", "x", 2), std::string_view::npos);
    EXPECT_EQ(FindIgnoringCase("M\xDCLLER", "m\xFCller"), 0U);
}

TEST(Text, TrimRemovesBlanksOnly) {
    EXPECT_EQ(Trim("  a b\t "), "a b\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(Text, ReplaceAllGoesFromTheLeftWithoutOverlap) {
    EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(ReplaceAll("C:\\P (x86)\\Q (x86)", " (x86)", ""), "C:\\P\\Q");
    EXPECT_EQ(ReplaceAll("none", "x", "y"), "none");
}

} // namespace
} // namespace text

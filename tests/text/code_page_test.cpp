#include "text/code_page.h"

#include <gtest/gtest.h>

namespace text {
namespace {

TEST(CodePage, EveryByteIsConvertedToACharacterAndBack) {
    for (int i = 0; i < 256; ++i) {
        const char byte = static_cast<char>(i);
        EXPECT_EQ(NarrowCharacter(WidenCharacter(byte)), byte) << i;
    }
}

TEST(CodePage, HasItsOwnCharactersBetween80And9F) {
    EXPECT_EQ(Widen("\x80\x8A\x9C\x9F\xA0\xFF"), u"\u20AC\u0160\u0153\u0178\u00A0\u00FF");
    EXPECT_EQ(Widen("\x81\x8D\x8F\x90\x9D"), u"\u0081\u008D\u008F\u0090\u009D");
}

TEST(CodePage, ACharacterThatItLacksHasNoByte) {
    EXPECT_EQ(NarrowCharacter(0x80), std::nullopt);
    EXPECT_EQ(NarrowCharacter(0x2126), std::nullopt);
    EXPECT_EQ(NarrowCharacter(0x1F600), std::nullopt);
}

TEST(CodePage, AMissingCharacterBecomesOneQuestionMarkEvenAsAPair) {
    EXPECT_EQ(Narrow(u"a\u2126b"), "a?b");
    EXPECT_EQ(Narrow(u"a\U0001F600b"), "a?b");
}

} // namespace
} // namespace text

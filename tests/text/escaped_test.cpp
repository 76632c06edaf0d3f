// Any text of the system can be written in the code page and converted back, and only characters that the
// code page lacks are escaped.
#include "text/escaped.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "text/code_page.h"
#include "text/utf8.h"

namespace text {
namespace {

std::string AllBytes() {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    return bytes;
}

TEST(EscapedText, OfTheCodePageIsItsCharacters) {
    EXPECT_EQ(EscapedFromUtf8("Pr\xC3\xBC"
                              "f \xE2\x82\xAC"),
              "Pr\xFC"
              "f \x80");
    EXPECT_EQ(Utf8FromEscaped(AllBytes()), ToUtf8(Widen(AllBytes())));
    EXPECT_EQ(EscapedFromUtf8(Utf8FromEscaped(AllBytes())), AllBytes());
    EXPECT_FALSE(HoldsEscape(AllBytes()));
}

TEST(EscapedText, ThatIsAlsoValidUtf8IsNotTakenForUtf8) {
    // Two characters of the code page whose bytes are the UTF-8 of one.
    const std::string password = "\xC3\xA4";
    EXPECT_EQ(Utf8FromEscaped(password), "\xC3\x83\xC2\xA4");
    EXPECT_EQ(EscapedFromUtf8("\xC3\x83\xC2\xA4"), password);
}

TEST(EscapedText, HoldsCharactersThatTheCodePageLacks) {
    EXPECT_EQ(EscapedFromUtf8("/home/\xC5\x81ukasz"), "/home/\x81"
                                                      "141\x9Dukasz");
    EXPECT_EQ(EscapedFromUtf8("\xF0\x9F\x98\x80"), "\x81"
                                                   "1F600\x9D");
    EXPECT_TRUE(HoldsEscape(EscapedFromUtf8("a\xC5\x81")));
    EXPECT_EQ(Utf8FromEscaped(EscapedFromUtf8("/home/\xC5\x81ukasz")), "/home/\xC5\x81ukasz");
}

TEST(EscapedText, HoldsBytesThatAreNotText) {
    EXPECT_EQ(EscapedFromUtf8("a\xFF\xC3"), "a\x81xFF\x9D\x81xC3\x9D");
    EXPECT_EQ(Utf8FromEscaped("a\x81xFF\x9D\x81xC3\x9D"), "a\xFF\xC3");
    EXPECT_TRUE(HoldsEscape("\x81xFF\x9D"));
}

TEST(EscapedText, DoesNotTakeOtherTextForAnEscape) {
    for (const char* text : {"\x81", "\x81\x9D",
                             "\x81"
                             "141",
                             "\x81"
                             "0141\x9D",
                             "\x81"
                             "14l\x9D",
                             "\x81"
                             "41\x9D",
                             "\x81"
                             "20AC\x9D",
                             "\x81"
                             "110000\x9D",
                             "\x81"
                             "1234567\x9D",
                             "\x81x41\x9D", "\x81xFFF\x9D", "\x81x\x9D"}) {
        EXPECT_FALSE(HoldsEscape(text));
        EXPECT_EQ(EscapedFromUtf8(Utf8FromEscaped(text)), text);
    }
}

TEST(EscapedText, FromTheSystemThatLooksLikeAnEscapeRoundTrips) {
    for (const char* inside : {"\x81"
                               "141\x9D",
                               "\x81xFF\x9D",
                               "\x81"
                               "81\x9D"}) {
        const std::string outside = ToUtf8(Widen(inside));
        EXPECT_NE(EscapedFromUtf8(outside), inside);
        EXPECT_EQ(Utf8FromEscaped(EscapedFromUtf8(outside)), outside);
    }
}

TEST(EscapedText, GivesEveryRandomStringOfBytesBack) {
    // Pieces whose combinations could break the rules for escapes.
    const std::vector<std::string> pieces = {
        "a",    "1",    "F",    "x",    "\xC2\x81", "\xC2\x9D", "\xC5\x81", "\xC3\xA4", "\xC3",
        "\xA4", "\x81", "\x9D", "\xFF", "\xED\xA0", "\\",       "\xC2\x80", "81",       "141"};
    std::mt19937 random(12);
    for (int i = 0; i < 50000; ++i) {
        std::string outside;
        for (auto n = random() % 12; n != 0; --n) {
            outside += pieces[random() % pieces.size()];
        }
        const std::string inside = EscapedFromUtf8(outside);
        ASSERT_EQ(Utf8FromEscaped(inside), outside) << i;
        ASSERT_EQ(EscapedFromUtf8(Utf8FromEscaped(inside)), inside) << i;
    }
}

TEST(EscapedText, OfUtf16RoundTripsWithHalvesOfPairs) {
    const std::u16string wide = u"a\u0141\U0001F600\u20AC\u0081" + std::u16string{0xD83D, u'x', 0xDE00};
    const std::string inside = EscapedFromUtf16(wide);
    EXPECT_EQ(inside, "a\x81"
                      "141\x9D\x81"
                      "1F600\x9D\x80\x81\x81"
                      "D83D\x9Dx\x81"
                      "DE00\x9D");
    EXPECT_EQ(Utf16FromEscaped(inside), wide);
}

} // namespace
} // namespace text

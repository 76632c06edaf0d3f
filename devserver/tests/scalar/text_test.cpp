// Encodings, lengths, cuts and letter case.
#include <gtest/gtest.h>

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

TEST(CodePage1252, EveryByteRoundTrips) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(ToCodePage1252(FromCodePage1252(all)), all);
}

TEST(CodePage1252, HasSpecialCharactersBetween80And9F) {
    EXPECT_EQ(FromCodePage1252("\x80\x85\x99\x9F"), "€…™Ÿ");
    EXPECT_EQ(ToCodePage1252("€…™Ÿ"), "\x80\x85\x99\x9F");
}

TEST(CodePage1252, AMissingCharacterBecomesAQuestionMarkForEachUnit) {
    EXPECT_EQ(ToCodePage1252("aΩb"), "a?b");
    EXPECT_EQ(ToCodePage1252("😀"), "??");
    EXPECT_EQ(NarrowToCodePage1252("é Ω"), "é ?");
}

TEST(Utf16, RoundTripsWithPairsAndLoneSurrogates) {
    const std::u16string units = {u'a', 0xD83D, 0xDE00, 0xD800, u'b', 0xDC00};
    EXPECT_EQ(ToUtf16(FromUtf16(units)), units);
    EXPECT_EQ(FromUtf16(units).substr(1, 4), "😀");
}

TEST(Utf16, BytesAreLittleEndian) {
    EXPECT_EQ(ToUtf16Le("é€"), std::string("\xE9\x00\xAC\x20", 4));
    EXPECT_EQ(FromUtf16Le(std::string("\xE9\x00\xAC\x20", 4)), "é€");
    EXPECT_EQ(FromUtf16Le(std::string("A\0B", 3)), "A") << "an odd last byte is ignored";
}

TEST(Utf8, InvalidBytesBecomeTheReplacementCharacter) {
    for (const std::string_view broken : {"\x80", "\xC3", "\xFF", "\xC0\x80", "\xF5\x80\x80\x80"}) {
        const std::u16string units = ToUtf16(broken);
        ASSERT_FALSE(units.empty());
        EXPECT_EQ(units[0], 0xFFFD);
    }
    EXPECT_EQ(ToUtf16("\xE2\x82"), (std::u16string{0xFFFD, 0xFFFD}));
}

TEST(Length, CountsUtf16Units) {
    EXPECT_EQ(TextLength("abc"), 3U);
    EXPECT_EQ(TextLength("é€"), 2U);
    EXPECT_EQ(TextLength("a😀"), 3U);
}

TEST(Cut, CountsUtf16Units) {
    EXPECT_EQ(SubText("häuser", 1, 3), "äus");
    EXPECT_EQ(SubText("abc", 5, 3), "");
    EXPECT_EQ(SubText("abc", 1), "bc");
}

TEST(Cut, HalvesOfAPairCanBeJoinedAgain) {
    const std::string high = SubText("😀", 0, 1);
    const std::string low = SubText("😀", 1, 1);
    EXPECT_EQ(TextLength(high), 1U);
    EXPECT_EQ(Concatenate(high, low), "😀");
    EXPECT_EQ(Concatenate("a", "b"), "ab");
}

TEST(Case, ChangesTheLettersOfTheCodePage) {
    EXPECT_EQ(ToUpper("straße àéîõü ÿšžœ"), "STRAßE ÀÉÎÕÜ ŸŠŽŒ");
    EXPECT_EQ(ToLower("ÀÉÎÕÜ ŸŠŽŒ"), "àéîõü ÿšžœ");
}

TEST(Case, KeepsLettersOutsideTheCodePage) {
    EXPECT_EQ(ToUpper("łα😀щ"), "łα😀щ");
    EXPECT_EQ(ToLower("ŁΑ😀Щ"), "ŁΑ😀Щ");
}

TEST(Case, KeepsSignsBetweenTheLetters) {
    EXPECT_EQ(ToLower("×"), "×");
    EXPECT_EQ(ToUpper("÷µƒ"), "÷µƒ");
}

TEST(Blanks, AreTrimmedOnlyAtTheEnd) {
    EXPECT_EQ(TrimTrailingBlanks("  a \t  "), "  a \t");
    EXPECT_EQ(TrimTrailingBlanks("   "), "");
}

TEST(AsciiCase, KeepsOtherLetters) {
    EXPECT_TRUE(AsciiEqual("Select", "sELECT"));
    EXPECT_FALSE(AsciiEqual("é", "É"));
    EXPECT_FALSE(AsciiEqual("a", "ab"));
}

TEST(Text, CannotGrowBeyondAQuarterOfAGigabyte) {
    // Only the length of the text is used.
    const std::string_view longest("x", std::size_t{1} << 28);
    EXPECT_THROW(Concatenate(longest, "y"), SqlError);
    EXPECT_NO_THROW(RequireRoom(longest.size()));
}

} // namespace
} // namespace devsql

#include "text/utf8.h"

#include <gtest/gtest.h>

namespace text {
namespace {

TEST(Utf8, SequencesOfEachLengthAreConvertedAndBack) {
    const std::u16string characters = u"a\u00E9\u20AC\U0001F600";
    EXPECT_EQ(ToUtf8(characters), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8(ToUtf8(characters)), characters);
}

TEST(Utf8, BytesThatAreNotWellFormedAreRefused) {
    for (const std::string_view broken :
         {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xE0\x80\x80", "\xF5\x80\x80\x80", "\xED\xA0\x80", "\xFF"}) {
        EXPECT_EQ(FromUtf8(broken), std::nullopt) << testing::PrintToString(broken);
    }
}

TEST(Utf8, OneSequenceIsTakenFromTheFront) {
    std::string_view bytes = "\xC3\xA9z";
    EXPECT_EQ(TakeUtf8(bytes), 0xE9U);
    EXPECT_EQ(bytes, "z");
    std::string_view broken = "\x80z";
    EXPECT_EQ(TakeUtf8(broken), std::nullopt);
    EXPECT_EQ(broken, "\x80z") << "nothing is taken";
}

TEST(Utf16Bytes, AreReadInBothOrdersAndWrittenLittleEndian) {
    const std::string little("G\0\xAC\x20", 4);
    EXPECT_EQ(FromUtf16Bytes(little), u"G\u20AC");
    EXPECT_EQ(FromUtf16Bytes(std::string("\0G\x20\xAC", 4), std::endian::big), u"G\u20AC");
    EXPECT_EQ(ToUtf16Bytes(u"G\u20AC"), little);
}

TEST(Utf16Bytes, ALastOddByteIsLeftOut) {
    EXPECT_EQ(FromUtf16Bytes(std::string("G\0x", 3)), u"G");
    EXPECT_EQ(FromUtf16Bytes("x"), u"");
}

} // namespace
} // namespace text

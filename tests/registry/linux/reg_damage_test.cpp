// Damaged .reg files: each damage is found at its line, and no damaged file is read as an empty or shorter
// registry.
#include <string>

#include <gtest/gtest.h>

#include "registry/linux/reg_file.h"

namespace {

using namespace registry;

struct Damage {
    const char* name;
    std::string bytes;
    std::size_t line;
};

std::string Body(const std::string& lines) {
    return "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n" + lines;
}

const Damage kDamages[] = {
    {"NothingAtAll", "", 1},
    {"OnlyALineEnd", "\r\n", 1},
    {"ABlankLineAboveTheHeader", "\r\nREGEDIT4\r\n", 1},
    {"AnUnknownHeader", "REGEDIT5\r\n", 1},
    {"AHeaderInAnotherCase", "regedit4\r\n", 1},
    {"ACutHeader", "Windows Registry Editor Version 5.0", 1},
    {"TextAfterTheHeader", "REGEDIT4 [HKLM\\A]\r\n", 1},
    {"APicture", "\x89PNG\r\n\x1A\n", 1},
    {"APage", "<!DOCTYPE html>\n<html></html>\n", 1},
    {"OnlyZeroBytes", std::string(4096, '\0'), 1},
    {"OnlyTheUtf16Mark", "\xFF\xFE", 1},
    {"OnlyTheUtf8Mark", "\xEF\xBB\xBF", 1},
    {"BigEndianUtf16", std::string("\xFE\xFF\0R\0E\0G", 8), 1},
    {"Utf16WithoutItsMark",
     std::string("R\0E\0G\0E\0D\0I\0T\0"
                 "4\0",
                 16),
     1},
    {"AnOddLengthOfUtf16", EncodeRegText({RegEncoding::Utf16, u"REGEDIT4\r\n[HKLM\\A]\r\n"}) + "\r", 3},
    {"AMarkOfUtf8WithoutUtf8", "\xEF\xBB\xBFREGEDIT4\r\n;\xFC\r\n", 1},
    {"HalfASurrogatePairInUtf8", "\xEF\xBB\xBFREGEDIT4\r\n;\xED\xA0\x80\r\n", 1},
    {"AnOverlongCharacterInUtf8", "\xEF\xBB\xBFREGEDIT4\r\n;\xC0\xAF\r\n", 1},
    {"ACharacterAfterTheLastInUtf8", "\xEF\xBB\xBFREGEDIT4\r\n;\xF4\x90\x80\x80\r\n", 1},
    {"ACutCharacterInUtf8", "\xEF\xBB\xBFREGEDIT4\r\n;\xE2\x82", 1},
    {"AZeroByteInALine", Body("\"v\"=\"a\"\r\n") + std::string("\0", 1), 5},
    {"AZeroByteInAComment", Body(std::string(";\0\r\n", 4)), 4},
    {"AGarbageLine", Body("\"v\"=\"a\"\r\nthis is no line\r\n"), 5},
    {"AGarbageLineAboveTheFirstKey", "REGEDIT4\r\nhello\r\n[HKLM\\A]\r\n", 2},
    {"ANameWithoutQuotes", Body("v=\"a\"\r\n"), 4},
    {"AValueAboveTheFirstKey", "REGEDIT4\r\n\"v\"=\"a\"\r\n", 2},
    {"AnUnterminatedName", Body("\"v=dword:00000001\r\n"), 4},
    {"AnUnterminatedText", Body("\"v\"=\"a\r\n\r\n"), 4},
    {"AnUnterminatedTextAboveAnotherValue", Body("\"v\"=\"a\r\n\"w\"=\"b\"\r\n"), 5},
    {"AnUnterminatedTextAboveANumber", Body("\"v\"=\"a\r\n\"w\"=dword:00000001\r\n"), 5},
    {"AnUnterminatedTextAboveADefaultValue", Body("\"v\"=\"a\r\n@=\"b\"\r\n"), 5},
    {"AnUnterminatedTextAboveAnotherKey", Body("\"v\"=\"a\r\n\r\n[HKLM\\B]\r\n\"w\"=\"b\"\r\n"), 7},
    {"ATextThatEndsInABackslash", Body("\"v\"=\"C:\\a\\\"\r\n"), 4},
    {"ATextWithAnOpenQuoteInside", Body("\"v\"=\"a \"b\" c\"\r\n"), 4},
    {"ATextWithoutQuotes", Body("\"v\"=a\r\n"), 4},
    {"AValueWithoutAnEqualsSign", Body("\"v\" \"a\"\r\n"), 4},
    {"AValueWithoutData", Body("\"v\"=\r\n"), 4},
    {"ADefaultValueWithoutAnything", Body("@\r\n"), 4},
    {"AValueAfterAValue", Body("\"v\"=\"a\" \"w\"=\"b\"\r\n"), 4},
    {"AKeyAfterAValue", Body("\"v\"=dword:1 [HKLM\\B]\r\n"), 4},
    {"TextAfterADeletion", Body("\"v\"=-x\r\n"), 4},
    {"ANumberWithoutDigits", Body("\"v\"=dword:\r\n"), 4},
    {"ANumberWithTooManyDigits", Body("\"v\"=dword:000000001\r\n"), 4},
    {"ANumberWithALetter", Body("\"v\"=dword:0000000g\r\n"), 4},
    {"ANumberWithASign", Body("\"v\"=dword:-1\r\n"), 4},
    {"AnUnknownKindOfValue", Body("\"v\"=qword:1\r\n"), 4},
    {"ABinaryValueWithALetter", Body("\"v\"=hex:01,0x\r\n"), 4},
    {"ABinaryValueWithAByteOfThreeDigits", Body("\"v\"=hex:01,002\r\n"), 4},
    {"ABinaryValueWithTwoCommas", Body("\"v\"=hex:01,,02\r\n"), 4},
    {"ABinaryValueThatEndsInAComma", Body("\"v\"=hex:01,\r\n"), 4},
    {"ABinaryValueWithoutItsColon", Body("\"v\"=hex 01\r\n"), 4},
    {"ABinaryValueWithBlanksForCommas", Body("\"v\"=hex:01 02\r\n"), 4},
    {"ABrokenLineAtTheEnd", Body("\"v\"=hex:01,\\"), 4},
    {"ABrokenLineAboveABlankOne", Body("\"v\"=hex:01,\\\r\n\r\n"), 5},
    {"ABrokenLineAboveAnotherValue", Body("\"v\"=hex:01,\\\r\n\"w\"=\"a\"\r\n"), 5},
    {"ABackslashInTheMiddleOfALine", Body("\"v\"=hex:01,\\02\r\n"), 4},
    {"ATypeWithoutADigit", Body("\"v\"=hex():01\r\n"), 4},
    {"ATypeWithoutItsBracket", Body("\"v\"=hex(2:01\r\n"), 4},
    {"ATypeOfTooManyDigits", Body("\"v\"=hex(000000002):01\r\n"), 4},
    {"AKeyWithoutItsBracket", "REGEDIT4\r\n[HKLM\\A\r\n", 2},
    {"ATextAfterAKey", "REGEDIT4\r\n[HKLM\\A] x\r\n", 2},
    {"AKeyOfNoHive", "REGEDIT4\r\n[SOFTWARE\\A]\r\n", 2},
    {"AKeyWithoutAName", "REGEDIT4\r\n[]\r\n", 2},
    {"ADeletionWithoutAName", "REGEDIT4\r\n[-]\r\n", 2},
    {"ADeletionOfNoHive", "REGEDIT4\r\n[-HKXX\\A]\r\n", 2},
};

class DamagedRegFile : public testing::TestWithParam<Damage> {};

TEST_P(DamagedRegFile, IsFoundAtItsLine) {
    try {
        const RegFile file(GetParam().bytes);
        FAIL() << "was read";
    } catch (const RegDamage& damage) {
        EXPECT_EQ(damage.Line(), GetParam().line) << damage.what();
        EXPECT_STRNE(damage.what(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Each, DamagedRegFile, testing::ValuesIn(kDamages),
                         [](const auto& test) { return std::string(test.param.name); });

const std::u16string kSample =
    u"Windows Registry Editor Version 5.00\r\n\r\n; \u00FCber\r\n"
    u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\r\n@=\"C:\\\\Log\"\r\n\"v\"=dword:0000000a\r\n"
    u"\"b\"=hex(2):41,00,\\\r\n  00,00\r\n\"gone\"=-\r\n\r\n"
    u"[-HKEY_CURRENT_USER\\B]\r\n\r\n[HKCU\\C]\r\n\"last\"=\"\u20AC\"\r\n";

bool Reads(const std::string& bytes) {
    try {
        const RegFile file(bytes);
        return true;
    } catch (const RegDamage&) {
        return false;
    }
}

/// The number of cuts after which the file can be read, since they leave complete lines; all others are
/// damage.
std::size_t CutsThatRead(const std::string& bytes) {
    std::size_t count = 0;
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        count += Reads(bytes.substr(0, length)) ? 1 : 0;
    }
    return count;
}

class CutRegFile : public testing::TestWithParam<RegEncoding> {};

TEST_P(CutRegFile, IsReadOrFoundAtEveryByte) {
    const std::string bytes = EncodeRegText({GetParam(), kSample});
    ASSERT_TRUE(Reads(bytes));
    const std::size_t count = CutsThatRead(bytes);
    EXPECT_GT(count, 20U);
    EXPECT_LT(count, bytes.size() / 2);
}

INSTANTIATE_TEST_SUITE_P(Encodings, CutRegFile,
                         testing::Values(RegEncoding::Utf16, RegEncoding::Utf8, RegEncoding::Utf8WithMark,
                                         RegEncoding::CodePage1252));

TEST(ChangedRegFile, IsReadOrFoundWithAnyOneByteChanged) {
    const std::string bytes = EncodeRegText({RegEncoding::Utf8, kSample});
    std::size_t found = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const char c : {'\0', '\n', '"', '\\', ']', '[', ';', '\xFF', '='}) {
            std::string changed = bytes;
            changed[i] = c;
            found += Reads(changed) ? 0 : 1;
        }
    }
    EXPECT_GT(found, bytes.size());
}

} // namespace

// The content of .reg files, and changes to them.
#include "registry/linux/reg_file.h"

#include <string>

#include <gtest/gtest.h>

#include "text/escaped.h"

namespace {

using namespace registry;

const std::string kRegedit4 = "REGEDIT4\r\n\r\n";
const std::string kVersion5 = "Windows Registry Editor Version 5.00\r\n\r\n";

RegPath Path(const std::string& subkey) {
    return MakeRegPath(u"HKEY_LOCAL_MACHINE", subkey);
}

std::string Utf16(const std::u16string& text) {
    return EncodeRegText({RegEncoding::Utf16, text});
}

std::u16string Wide(const std::string& text) {
    return text::Utf16FromEscaped(text);
}

/// The stored bytes; the text "none" if there is no such value.
std::string BytesOf(const RegFile& file, const std::string& key, const std::string& name) {
    const RegValue* value = file.Find(Path(key), name);
    return value == nullptr ? "none" : value->bytes;
}

/// A text without its NUL.
std::string TextOf(const RegFile& file, const std::string& key, const std::string& name) {
    const std::string bytes = BytesOf(file, key, name);
    return bytes.substr(0, bytes.find('\0'));
}

/// The value "v" of the key A, where `data` is its text after the equals sign.
RegValue ValueOf(const std::string& header, const std::string& data) {
    const RegFile file(header + "[HKEY_LOCAL_MACHINE\\A]\r\n\"v\"=" + data + "\r\n");
    const RegValue* value = file.Find(Path("A"), "v");
    return value == nullptr ? RegValue{0, "none"} : *value;
}

TEST(RegFile, ReadsVersion5AsWindowsExportsIt) {
    const RegFile file(Utf16(Wide(kVersion5) + u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\r\n@=\"default\"\r\n"
                                               u"\"Name\"=\"Z\u00FCrich \u20AC\"\r\n\r\n"));
    EXPECT_EQ(TextOf(file, "SOFTWARE\\A", ""), "default");
    EXPECT_EQ(TextOf(file, "SOFTWARE\\A", "Name"), "Z\xFCrich \x80");
}

TEST(RegFile, ReadsRegedit4InTheEightBitCodePage) {
    const RegFile file(kRegedit4 + "[HKEY_LOCAL_MACHINE\\A]\r\n\"N\xE4me\"=\"Z\xFCrich \x80\"\r\n");
    EXPECT_EQ(TextOf(file, "A", "N\xC4ME"), "Z\xFCrich \x80");
}

TEST(RegFile, ReadsVersion5AsPeopleSaveItInUtf8) {
    const std::string body = kVersion5 + "[HKLM\\A]\n\"v\"=\"Z\xC3\xBCrich \xE2\x82\xAC\"\n";
    EXPECT_EQ(TextOf(RegFile(body), "A", "v"), "Z\xFCrich \x80");
    EXPECT_EQ(TextOf(RegFile("\xEF\xBB\xBF" + body), "A", "v"), "Z\xFCrich \x80");
}

TEST(RegFile, ReadsVersion5ThatIsNotUtf8InTheEightBitCodePage) {
    EXPECT_EQ(TextOf(RegFile(kVersion5 + "[HKLM\\A]\n\"v\"=\"Z\xFCrich\"\n"), "A", "v"), "Z\xFCrich");
}

TEST(RegFile, EscapesACharacterOutsideTheCodePage) {
    EXPECT_EQ(TextOf(RegFile(Utf16(Wide(kVersion5) + u"[HKLM\\A]\r\n\"v\"=\"a\u0416b\"\r\n")), "A", "v"),
              "a\x81"
              "416\x9D"
              "b");
}

TEST(RegFile, SkipsCommentsEmptyLinesAndBlanks) {
    const RegFile file(kRegedit4 + "; a comment\r\n\r\n  [HKEY_LOCAL_MACHINE\\A]  ; and another\r\n\t\r\n"
                                   "  \"v\" = \"text\" ; \"more\"\r\n;\"w\"=\"no\"\r\n");
    EXPECT_EQ(TextOf(file, "A", "v"), "text");
    EXPECT_EQ(BytesOf(file, "A", "w"), "none");
}

TEST(RegFile, ReadsEveryKindOfLineEndAndALastLineWithoutOne) {
    for (const std::string end : {"\r\n", "\n", "\r"}) {
        std::string bytes;
        for (const char* line : {"REGEDIT4", "", "[HKLM\\A]", "\"v\"=\"one\""}) {
            bytes += line;
            bytes += end;
        }
        const RegFile file(bytes + "\"w\"=\"two\"");
        EXPECT_EQ(TextOf(file, "A", "v"), "one");
        EXPECT_EQ(TextOf(file, "A", "w"), "two");
    }
}

TEST(RegFile, ReadsEscapedBackslashesAndQuotes) {
    const RegFile file(kRegedit4 + R"([HKLM\A])"
                                   "\r\n"
                                   R"("a\\b\"c"="C:\\d \"e\"\\")"
                                   "\r\n");
    EXPECT_EQ(TextOf(file, "A", "a\\b\"c"), "C:\\d \"e\"\\");
}

TEST(RegFile, KeepsABackslashThatEscapesNothing) {
    EXPECT_EQ(ValueOf(kRegedit4, R"("C:\Data\new")").bytes, std::string("C:\\Data\\new\0", 12));
}

TEST(RegFile, ReadsATextOverSeveralLinesAsWindowsWritesOne) {
    EXPECT_EQ(ValueOf(kRegedit4, "\"one\r\ntwo\"").bytes, std::string("one\r\ntwo\0", 9));
}

TEST(RegFile, GivesTheBytesOfANumber) {
    const RegValue value = ValueOf(kRegedit4, "dword:01020304");
    EXPECT_EQ(value.type, 4U);
    EXPECT_EQ(value.bytes, "\x04\x03\x02\x01");
}

TEST(RegFile, GivesTheBytesOfABinaryValueOverBrokenLines) {
    const RegValue value = ValueOf(kRegedit4, "hex:01,ff,\\\r\n  0A, 0b,\\\r\n  c");
    EXPECT_EQ(value.type, 3U);
    EXPECT_EQ(value.bytes, "\x01\xFF\x0A\x0B\x0C");
    EXPECT_EQ(ValueOf(kRegedit4, "hex:").bytes, "");
}

TEST(RegFile, GivesTheTypeOfAnyOtherValue) {
    const RegValue value = ValueOf(kVersion5, "hex(b):01,00,00,00,00,00,00,00");
    EXPECT_EQ(value.type, 11U);
    EXPECT_EQ(value.bytes, std::string("\x01\0\0\0\0\0\0\0", 8));
}

TEST(RegFile, TakesHexadecimalTextInTheEncodingOfItsVersion) {
    for (const std::string type : {"1", "2", "7"}) {
        EXPECT_EQ(ValueOf(kVersion5, "hex(" + type + "):41,00,fc,00,ac,20,00,00").bytes,
                  std::string("A\xFC\x80\0", 4));
        EXPECT_EQ(ValueOf(kRegedit4, "hex(" + type + "):41,fc,80,00").bytes, std::string("A\xFC\x80\0", 4));
    }
}

TEST(RegFile, LeavesOutHalfACharacterOfHexadecimalText) {
    EXPECT_EQ(ValueOf(kVersion5, "hex(1):41,00,42").bytes, "A");
}

TEST(RegFile, AcceptsTheShortNamesOfTheHives) {
    const RegFile file(kRegedit4 + "[hklm\\A]\r\n\"v\"=\"machine\"\r\n[HKCU\\A]\r\n\"v\"=\"user\"\r\n");
    EXPECT_EQ(TextOf(file, "A", "v"), "machine");
    const RegValue* value = file.Find(MakeRegPath(u"HKEY_CURRENT_USER", "A"), "v");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->bytes, std::string("user\0", 5));
}

TEST(RegFile, ComparesNamesWithoutCaseAndTakesRunsOfSeparatorsForOne) {
    const RegFile file(kRegedit4 + "[HKEY_local_machine\\Soft\\\\Ware\\]\r\n\"Val\"=\"x\"\r\n");
    EXPECT_EQ(TextOf(file, "\\sOFT\\WARE\\\\", "vAL"), "x");
}

TEST(RegFile, HasTheKeysAboveAKey) {
    const RegFile file(kRegedit4 + "[HKLM\\A\\B\\C]\r\n");
    EXPECT_TRUE(file.HasKey(Path("A\\B")));
    EXPECT_TRUE(file.HasKey(Path("A\\B\\C")));
    EXPECT_FALSE(file.HasKey(Path("A\\B\\C\\D")));
    EXPECT_FALSE(file.HasKey(Path("B")));
}

TEST(RegFile, EndsAKeyAtItsLastBracket) {
    EXPECT_TRUE(RegFile(kRegedit4 + "[HKLM\\A [x] b]\r\n").HasKey(Path("A [x] b")));
}

TEST(RegFile, JoinsSeveralSectionsOfAKeyAndTheLastValueCounts) {
    const RegFile file(
        kRegedit4 + "[HKLM\\A]\r\n\"v\"=\"1\"\r\n\"w\"=\"2\"\r\n[HKLM\\B]\r\n[HKLM\\a]\r\n\"V\"=\"3\"\r\n");
    EXPECT_EQ(TextOf(file, "A", "v"), "3");
    EXPECT_EQ(TextOf(file, "A", "w"), "2");
}

TEST(RegFile, DeletesAValue) {
    const RegFile file(kRegedit4 + "[HKLM\\A]\r\n\"v\"=\"1\"\r\n@=\"2\"\r\n\"v\"=-\r\n@=-\r\n");
    EXPECT_EQ(BytesOf(file, "A", "v"), "none");
    EXPECT_EQ(BytesOf(file, "A", ""), "none");
    EXPECT_TRUE(file.HasKey(Path("A")));
}

TEST(RegFile, DeletesAKeyWithAllKeysBelowItAndNoOther) {
    const RegFile file(
        kRegedit4 +
        "[HKLM\\A\\B]\r\n\"v\"=\"1\"\r\n[HKLM\\AB]\r\n[HKLM\\A!]\r\n[-HKLM\\A]\r\n\"v\"=\"2\"\r\n");
    EXPECT_FALSE(file.HasKey(Path("A")));
    EXPECT_FALSE(file.HasKey(Path("A\\B")));
    EXPECT_TRUE(file.HasKey(Path("AB")));
    EXPECT_TRUE(file.HasKey(Path("A!")));
}

TEST(RegFile, HasAKeyThatIsMadeAgainAfterItsDeletion) {
    RegFile file(kRegedit4 + "[HKLM\\A]\r\n\"v\"=\"1\"\r\n[-HKLM\\A]\r\n[HKLM\\A]\r\n\"w\"=\"2\"\r\n");
    EXPECT_EQ(BytesOf(file, "A", "v"), "none");
    file.SetValue(Path("A"), "v", 1, "new");
    EXPECT_EQ(TextOf(RegFile(file.Bytes()), "A", "v"), "new");
    EXPECT_EQ(TextOf(RegFile(file.Bytes()), "A", "w"), "2");
}

TEST(RegFile, IsEmptyAfterItsHeader) {
    EXPECT_FALSE(RegFile("REGEDIT4").HasKey(Path("A")));
    EXPECT_FALSE(RegFile("Windows Registry Editor Version 5.00  \n").HasKey(Path("A")));
}

TEST(RegFileChange, ReplacesAValueAndLeavesEverythingElse) {
    const std::string before = kRegedit4 +
                               "; kept\r\n[HKLM\\A]\r\n\"v\" = \"old\" ; why\r\n\"n\"=dword:00000001\r\n"
                               "\"q\"=hex(b):01,\\\r\n  02\r\n[-HKLM\\Gone]\r\n";
    RegFile file(before);
    file.SetValue(Path("a"), "V", 1, "new");
    std::string after = before;
    after.replace(after.find("old"), 3, "new");
    EXPECT_EQ(file.Bytes(), after);
}

TEST(RegFileChange, PutsANewValueAfterTheLastOfItsKey) {
    RegFile file("REGEDIT4\n\n[HKLM\\A]\n\"v\"=hex:01,\\\n  02 ; two\n\n[HKLM\\B]\n");
    file.SetValue(Path("A"), "w", 1, "x");
    EXPECT_EQ(file.Bytes(), "REGEDIT4\n\n[HKLM\\A]\n\"v\"=hex:01,\\\n  02 ; two\n\"w\"=\"x\"\n\n[HKLM\\B]\n");
}

TEST(RegFileChange, ReplacesTheValueThatCounts) {
    RegFile file("REGEDIT4\n[HKLM\\A]\n\"v\"=\"1\"\n[HKLM\\A]\n\"v\"=\"2\"\n");
    file.SetValue(Path("A"), "v", 1, "3");
    EXPECT_EQ(file.Bytes(), "REGEDIT4\n[HKLM\\A]\n\"v\"=\"1\"\n[HKLM\\A]\n\"v\"=\"3\"\n");
}

TEST(RegFileChange, BringsADeletedValueBack) {
    RegFile file("REGEDIT4\n[HKLM\\A]\n\"v\"=\"1\"\n\"v\"=-\n");
    file.SetValue(Path("A"), "v", 1, "2");
    EXPECT_EQ(TextOf(RegFile(file.Bytes()), "A", "v"), "2");
}

TEST(RegFileChange, AddsAKeyAtTheEndWithItsClassAboveIt) {
    RegFile file("REGEDIT4\n[HKLM\\B]");
    file.AddKey(Path("A\\C"), "The \"class\"");
    EXPECT_EQ(file.Bytes(),
              "REGEDIT4\n[HKLM\\B]\n\n; class \"The \\\"class\\\"\"\n[HKEY_LOCAL_MACHINE\\A\\C]\n");
}

TEST(RegFileChange, LeavesAKeyThatIsThereAsItIs) {
    const std::string before = kRegedit4 + "[HKLM\\A\\B]\r\n";
    RegFile file(before);
    file.AddKey(Path("A"), "class");
    EXPECT_EQ(file.Bytes(), before);
}

TEST(RegFileChange, WritesAValueOfAKeyThatOnlyItsSubkeysName) {
    RegFile file(kRegedit4 + "[HKLM\\A\\B]\r\n");
    file.SetValue(Path("A"), "v", 1, "x");
    EXPECT_EQ(TextOf(RegFile(file.Bytes()), "A", "v"), "x");
}

TEST(RegFileChange, KeepsTheEncodingOfTheFile) {
    const std::string value = "Z\xFCrich \x80 \x81";
    for (const auto encoding : {RegEncoding::Utf16, RegEncoding::Utf8, RegEncoding::Utf8WithMark}) {
        const std::u16string body = Wide(kVersion5) + u"; \u0416 \U0001F600\r\n[HKLM\\A]\r\n\"v\"=\"1\"\r\n";
        RegFile file(EncodeRegText({encoding, body}));
        file.SetValue(Path("A"), "v", 1, value);
        const RegText after = DecodeRegText(file.Bytes());
        EXPECT_EQ(after.encoding, encoding);
        EXPECT_NE(after.characters.find(u"; \u0416 \U0001F600\r\n"), std::u16string::npos);
        EXPECT_EQ(TextOf(RegFile(file.Bytes()), "A", "v"), value);
    }
    RegFile file(kRegedit4 + "; \xFC\r\n[HKLM\\A]\r\n");
    file.SetValue(Path("A"), "v", 1, value);
    EXPECT_EQ(file.Bytes(), kRegedit4 + "; \xFC\r\n[HKLM\\A]\r\n\"v\"=\"" + value + "\"\r\n");
}

TEST(RegFileChange, KeepsHalfASurrogatePairOfAComment) {
    const std::string before = Utf16(Wide(kVersion5) + u"; \xD83D\r\n[HKLM\\A]\r\n\"v\"=\"1\"\r\n");
    RegFile file(before);
    file.SetValue(Path("A"), "v", 1, "1");
    EXPECT_EQ(file.Bytes(), before);
}

TEST(RegFileChange, WritesControlCharactersWithoutBreakingALine) {
    const std::string text("a\r\nb\0c\td", 8);
    for (const auto& header : {kRegedit4, kVersion5}) {
        RegFile file(header);
        file.SetValue(Path("A"), "v", 1, text);
        EXPECT_EQ(file.Bytes().find("\nb"), std::string::npos);
        EXPECT_EQ(BytesOf(RegFile(file.Bytes()), "A", "v"), text + '\0');
    }
}

TEST(RegFileChange, WritesOtherTypesAsTheirBytes) {
    RegFile file(kRegedit4);
    file.SetValue(Path("A"), "v", 3, std::string("\0\xFF", 2));
    EXPECT_EQ(BytesOf(RegFile(file.Bytes()), "A", "v"), std::string("\0\xFF", 2));
    file.SetValue(Path("A"), "v", 4, std::string("\1\0\0\0", 4));
    EXPECT_NE(file.Bytes().find("\"v\"=hex(4):01,00,00,00"), std::string::npos);
}

TEST(RegFileChange, RefusesAKeyThatTheFileCannotHold) {
    EXPECT_THROW(RegFile(kRegedit4).AddKey(Path("A] ;x"), ""), RegDamage);
    EXPECT_THROW(RegFile(kRegedit4).AddKey(Path("A\r\nB"), ""), RegDamage);
}

TEST(RegFileChange, WritesANewFileAsWindowsExportsOne) {
    RegFile file;
    file.SetValue(Path("SOFTWARE\\A"), "", 1, "x");
    EXPECT_EQ(file.Bytes(), Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n"
                                  u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\r\n@=\"x\"\r\n"));
}

} // namespace

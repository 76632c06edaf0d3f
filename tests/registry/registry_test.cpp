// The functions of registry.h with the real registry of the system.
#include "registry/registry.h"

#include <string>

#include <gtest/gtest.h>

#include "registry/registry_fixture.h"

namespace {

using namespace registry;
using namespace registry::error;
using registry_tests::TestRegistry;

constexpr std::uint32_t kExpandText = 2;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kNumber = 4;

struct Query {
    std::int32_t error;
    std::string buffer;
};

Query Read(std::int32_t hive, const std::string& key, const std::string& name, std::size_t size = 400) {
    const OpenedKey opened = OpenKey(hive, key, kKeyQueryValue);
    if (opened.error != kSuccess) {
        return {opened.error.number, {}};
    }
    Query query{kSuccess, std::string(size, ' ')};
    query.error = QueryValue(opened.key, name, query.buffer).number;
    EXPECT_EQ(CloseKey(opened.key), kSuccess);
    return query;
}

std::string UpToNul(const std::string& buffer) {
    return buffer.substr(0, buffer.find('\0'));
}

void Write(std::int32_t hive, const std::string& key, const std::string& name, const std::string& text) {
    const OpenedKey created = CreateKey(hive, key, name, kKeyAllAccess);
    ASSERT_EQ(created.error, kSuccess);
    EXPECT_EQ(SetValue(created.key, name, kRegSz, text), kSuccess);
    EXPECT_EQ(CloseKey(created.key), kSuccess);
}

class Registry : public testing::Test {
  protected:
    TestRegistry registry_;
};

class RegistryHive : public testing::TestWithParam<std::int32_t> {
  protected:
    TestRegistry registry_;
};

TEST_P(RegistryHive, ReturnsTheWrittenValue) {
    Write(GetParam(), registry_.Key("A"), "Value", "text");
    const Query query = Read(GetParam(), registry_.Key("A"), "Value");
    EXPECT_EQ(query.error, kSuccess);
    EXPECT_EQ(UpToNul(query.buffer), "text");
}

TEST_P(RegistryHive, KeepsTheOtherHiveApart) {
    Write(GetParam(), registry_.Key("A"), "Value", "text");
    const std::int32_t other = GetParam() == kHkeyLocalMachine ? kHkeyCurrentUser : kHkeyLocalMachine;
    EXPECT_EQ(Read(other, registry_.Key("A"), "Value").error, kFileNotFound);
}

INSTANTIATE_TEST_SUITE_P(Both, RegistryHive, testing::Values(kHkeyCurrentUser, kHkeyLocalMachine));

TEST_F(Registry, ReportsAMissingKey) {
    EXPECT_EQ(OpenKey(kHkeyLocalMachine, registry_.Key("Nowhere"), kKeyQueryValue).error, kFileNotFound);
}

TEST_F(Registry, ReportsAMissingValueOfAnExistingKey) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "text");
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Other").error, kFileNotFound);
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "").error, kFileNotFound);
}

TEST_F(Registry, TakesTheEmptyNameForTheDefaultValue) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "", "the default");
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), "").buffer), "the default");
}

TEST_F(Registry, ReplacesAValue) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "a longer text");
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "b");
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").buffer), "b");
}

TEST_F(Registry, KeepsEveryEightBitCharacterOfAText) {
    std::string text;
    for (int c = 1; c < 256; ++c) {
        text += static_cast<char>(c);
    }
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", text);
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").buffer), text);
}

TEST_F(Registry, KeepsQuotesAndBackslashesOfNamesAndTexts) {
    Write(kHkeyLocalMachine, registry_.Key("A"), R"(a "name" \)", R"(C:\a "b"\)");
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), R"(a "name" \)").buffer), R"(C:\a "b"\)");
}

TEST_F(Registry, GivesATextOf399CharactersWithItsNulInABufferOf400) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", std::string(399, 'x'));
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").buffer, std::string(399, 'x') + '\0');
}

TEST_F(Registry, ReportsMoreDataForATextOf400Characters) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", std::string(400, 'x'));
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").error, kMoreData);
}

TEST_F(Registry, LeavesTheBufferAfterAValueAsItIs) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "ab");
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 6).buffer, std::string("ab\0   ", 6));
}

TEST_F(Registry, AddsTheNulThatAStoredTextLacksWhereThereIsRoom) {
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "Value", kRegSz, "ab");
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 6).buffer, std::string("ab\0   ", 6));
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 2).buffer, "ab");
}

TEST_F(Registry, GivesATextWithVariablesAsItIsStored) {
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "Value", kExpandText, std::string("%TEMP%\0", 7));
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").buffer), "%TEMP%");
}

TEST_F(Registry, GivesTheRawBytesOfANumber) {
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "Value", kNumber, "\x01\x02\x03\x04");
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 6).buffer, "\x01\x02\x03\x04  ");
}

TEST_F(Registry, GivesTheRawBytesOfABinaryValue) {
    const std::string bytes("a\0\xFF ", 4);
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "Value", kBinary, bytes);
    EXPECT_EQ(Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 6).buffer, bytes + "  ");
}

TEST_F(Registry, GivesNoBytesOfAnEmptyBinaryValue) {
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "Value", kBinary, "");
    const Query query = Read(kHkeyLocalMachine, registry_.Key("A"), "Value", 3);
    EXPECT_EQ(query.error, kSuccess);
    EXPECT_EQ(query.buffer, "   ");
}

TEST_F(Registry, ComparesNamesWithoutCase) {
    Write(kHkeyLocalMachine, registry_.Key("Sub Key"), "Value", "text");
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("SUB kEY"), "vALUE").buffer), "text");
}

TEST_F(Registry, TakesARunOfSeparatorsForOne) {
    Write(kHkeyLocalMachine, registry_.Key("A\\B\\C"), "Value", "text");
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A\\\\B\\\\C"), "Value").buffer), "text");
}

TEST_F(Registry, CreatesTheParentKeysOfANewKey) {
    Write(kHkeyLocalMachine, registry_.Key("A\\B\\C"), "Value", "text");
    const OpenedKey middle = OpenKey(kHkeyLocalMachine, registry_.Key("A\\B"), kKeyQueryValue);
    EXPECT_EQ(middle.error, kSuccess);
    EXPECT_EQ(CloseKey(middle.key), kSuccess);
}

TEST_F(Registry, OpensAKeyBelowAnOpenKey) {
    Write(kHkeyLocalMachine, registry_.Key("A\\B"), "Value", "text");
    const OpenedKey above = OpenKey(kHkeyLocalMachine, registry_.Key("A"), kKeyQueryValue);
    const OpenedKey below = OpenKey(above.key, "B", kKeyQueryValue);
    std::string buffer(5, ' ');
    EXPECT_EQ(QueryValue(below.key, "Value", buffer), kSuccess);
    EXPECT_EQ(UpToNul(buffer), "text");
    EXPECT_EQ(CloseKey(below.key), kSuccess);
    EXPECT_EQ(CloseKey(above.key), kSuccess);
}

TEST_F(Registry, KeepsTheClassThatAKeyWasMadeWith) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "text");
    EXPECT_EQ(registry_.ClassOf(kHkeyLocalMachine, registry_.Key("A")), "Value");
}

TEST_F(Registry, SetsNothingThroughAKeyThatWasOpenedForReading) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "old");
    const OpenedKey opened = OpenKey(kHkeyLocalMachine, registry_.Key("A"), kKeyQueryValue);
    EXPECT_EQ(SetValue(opened.key, "Value", kRegSz, "new"), kAccessDenied);
    EXPECT_EQ(CloseKey(opened.key), kSuccess);
    EXPECT_EQ(UpToNul(Read(kHkeyLocalMachine, registry_.Key("A"), "Value").buffer), "old");
}

TEST_F(Registry, RefusesAClosedKey) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "text");
    const OpenedKey opened = OpenKey(kHkeyLocalMachine, registry_.Key("A"), kKeyQueryValue);
    EXPECT_EQ(CloseKey(opened.key), kSuccess);
    std::string buffer(5, ' ');
    EXPECT_EQ(QueryValue(opened.key, "Value", buffer), kInvalidHandle);
    EXPECT_EQ(CloseKey(opened.key), kInvalidHandle);
}

TEST_F(Registry, DoesNotReachAComputerThatIsNotThere) {
    EXPECT_EQ(ConnectRegistry("\\\\kv-no-such-computer", kHkeyLocalMachine).error, kBadNetPath);
}

TEST_F(Registry, ReachesThisComputerByTheEmptyName) {
    Write(kHkeyLocalMachine, registry_.Key("A"), "Value", "text");
    const OpenedKey root = ConnectRegistry("", kHkeyLocalMachine);
    ASSERT_EQ(root.error, kSuccess);
    const OpenedKey opened = OpenKey(root.key, registry_.Key("A"), kKeyQueryValue);
    std::string buffer(5, ' ');
    EXPECT_EQ(QueryValue(opened.key, "Value", buffer), kSuccess);
    EXPECT_EQ(UpToNul(buffer), "text");
    EXPECT_EQ(CloseKey(opened.key), kSuccess);
}

TEST_F(Registry, HasATextWithItsLineEndForEachErrorOfItsCalls) {
    for (const auto error : {kFileNotFound, kAccessDenied, kInvalidHandle, kBadNetPath, kInvalidParameter,
                             kDiskFull, kMoreData, kBadDb, kCantOpen, kCantRead, kCantWrite}) {
        const std::string text = SystemMessage(error, 200);
        EXPECT_GT(text.size(), 2U) << error;
        EXPECT_TRUE(text.ends_with("\r\n")) << error;
    }
}

TEST_F(Registry, HasNoTextForAnUnknownError) {
    EXPECT_EQ(SystemMessage(0x2FFFFFFF, 200), "");
}

TEST_F(Registry, HasNoTextWhereTheBufferIsTooSmallForIt) {
    const std::size_t length = SystemMessage(kFileNotFound, 200).size();
    EXPECT_EQ(SystemMessage(kFileNotFound, length).size(), 0U);
    EXPECT_EQ(SystemMessage(kFileNotFound, length + 1).size(), length);
}

} // namespace

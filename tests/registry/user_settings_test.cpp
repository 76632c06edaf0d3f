#include "registry/user_settings.h"

#include <gtest/gtest.h>

#include "registry/user_settings_fixture.h"

namespace {

class UserSettings : public ::testing::Test {
  protected:
    std::string Read(const std::string& key, const std::string& section = "Settings") const {
        return registry::ReadUserSetting(settings_.Application(), section, key, "none");
    }
    bool Write(const std::string& key, const std::string& value,
               const std::string& section = "Settings") const {
        return registry::WriteUserSetting(settings_.Application(), section, key, value);
    }

    settings_tests::TestSettings settings_;
};

TEST_F(UserSettings, ThereAreNoSettingsAtFirst) {
    EXPECT_EQ(Read("edtScriptFolder"), "none");
    EXPECT_TRUE(Write("other", "x"));
    EXPECT_EQ(Read("edtScriptFolder"), "none");
}

TEST_F(UserSettings, TextsAreReadAsTheyWereWritten) {
    for (const char* text : {"", "C:\\Data\\", " blanks at both ends ", "a=b", "[section]", "\xE4\x80\x9F",
                             "; no comment", "\"quoted\"", "100%"}) {
        EXPECT_TRUE(Write("key", text)) << text;
        EXPECT_EQ(Read("key"), text);
    }
}

TEST_F(UserSettings, KeysAndSectionsAreKeptApart) {
    EXPECT_TRUE(Write("edtServerName0", "A"));
    EXPECT_TRUE(Write("edtServerName1", "B"));
    EXPECT_TRUE(Write("edtServerName0", "C", "Other"));
    EXPECT_TRUE(Write("edtServerName", "D"));
    EXPECT_EQ(Read("edtServerName0"), "A");
    EXPECT_EQ(Read("edtServerName1"), "B");
    EXPECT_EQ(Read("edtServerName0", "Other"), "C");
    EXPECT_EQ(Read("edtServerName"), "D");
}

TEST_F(UserSettings, ALaterTextReplacesTheEarlierOne) {
    EXPECT_TRUE(Write("key", "a long text"));
    EXPECT_TRUE(Write("key", "short"));
    EXPECT_EQ(Read("key"), "short");
}

TEST_F(UserSettings, ATextOfSeveralLinesIsRefusedAndTheOldOneStays) {
    EXPECT_TRUE(Write("key", "old"));
    EXPECT_FALSE(Write("key", "two\r\nlines"));
    EXPECT_FALSE(Write("key", "[Settings]\nkey=forged"));
    EXPECT_EQ(Read("key"), "old");
}

} // namespace

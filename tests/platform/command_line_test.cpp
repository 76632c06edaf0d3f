#include "platform/command_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace platform {
namespace {

using Words = std::vector<std::string>;

std::string Joined(const Words& arguments) {
    return JoinArguments(arguments, {"scriptfolder", "sqldatapath"});
}

TEST(CommandLine, NoArgumentGivesAnEmptyLine) {
    EXPECT_EQ(Joined({}), "");
}

TEST(CommandLine, OneBlankStandsBetweenArguments) {
    EXPECT_EQ(Joined({"/server", "S", "-user", "U"}), "/server S -user U");
}

TEST(CommandLine, AnEmptyArgumentAndOneWithABlankGoBetweenQuotes) {
    EXPECT_EQ(Joined({"/password", "", "/server", "a b"}), "/password \"\" /server \"a b\"");
    EXPECT_EQ(Joined({" "}), "\" \"");
}

TEST(CommandLine, ASlashInTheValueOfAPathOptionBecomesABackslash) {
    EXPECT_EQ(Joined({"/scriptfolder", "/home/user/scripts", "/sqldatapath", "/var/my data/"}),
              R"(/scriptfolder \home\user\scripts /sqldatapath "\var\my data\")");
    EXPECT_EQ(Joined({"-ScriptFolder", "a/b"}), R"(-ScriptFolder a\b)");
}

TEST(CommandLine, OtherValuesKeepTheirSlashes) {
    EXPECT_EQ(Joined({"/password", "a/b", "/server", "s/i"}), "/password a/b /server s/i");
    EXPECT_EQ(Joined({"scriptfolder", "a/b"}), "scriptfolder a/b");
    EXPECT_EQ(Joined({"/scriptfolders", "a/b"}), "/scriptfolders a/b");
}

TEST(CommandLine, OnlyTheOneArgumentBehindAPathOptionChanges) {
    EXPECT_EQ(Joined({"/scriptfolder", "/s", "/installdb"}), R"(/scriptfolder \s /installdb)");
    EXPECT_EQ(Joined({"/scriptfolder", "/sqldatapath", "/d/e"}), R"(/scriptfolder \sqldatapath /d/e)");
    EXPECT_EQ(Joined({"/scriptfolder"}), "/scriptfolder");
}

TEST(CommandLine, ParametersAreSplitAsAWindowsProgramSplitsThem) {
    EXPECT_EQ(SplitArguments(""), Words{});
    EXPECT_EQ(SplitArguments("  a  b\tc "), (Words{"a", "b", "c"}));
    EXPECT_EQ(SplitArguments(R"( -S x -P  -i "C:\a b\Data\s.sql")"),
              (Words{"-S", "x", "-P", "-i", R"(C:\a b\Data\s.sql)"}));
    EXPECT_EQ(SplitArguments(R"("" a"b c"d)"), (Words{"", "ab cd"}));
    EXPECT_EQ(SplitArguments(R"(\\server\share "C:\dir\\" x)"),
              (Words{R"(\\server\share)", R"(C:\dir\)", "x"}));
    EXPECT_EQ(SplitArguments(R"(a\"b "c\"d" "e""f")"), (Words{R"(a"b)", R"(c"d)", R"(e"f)"}));
    EXPECT_EQ(SplitArguments(R"("open to the end)"), (Words{"open to the end"}));
}

} // namespace
} // namespace platform

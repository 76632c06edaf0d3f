#include "platform/command_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace platform {
namespace {

using Words = std::vector<std::string>;

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

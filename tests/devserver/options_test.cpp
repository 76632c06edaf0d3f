// The command line of devsqlserver and its file of logins.
#include "devserver/options.h"

#include <gtest/gtest.h>
#include <sstream>

namespace devsql {
namespace {

std::string UsageOf(const std::vector<std::string>& arguments) {
    try {
        ParseArguments(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

std::map<std::string, std::string> Logins(const std::string& text) {
    std::istringstream lines(text);
    return ParseLogins(lines, "logins");
}

std::string LoginsError(const std::string& text) {
    try {
        Logins(text);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(DevsqlserverOptions, EveryArgumentIsTaken) {
    const ProgramOptions options = ParseArguments({"--root", "/r", "--port", "0", "--logins", "/l", "--drive",
                                                   "d=/data", "--drive", "E=/e", "--name", "SERVERA"});
    EXPECT_EQ(options.action, Action::Serve);
    EXPECT_EQ(options.engine.root, "/r");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.logins_file, "/l");
    EXPECT_EQ(options.engine.drives.at("D"), "/data");
    EXPECT_EQ(options.engine.drives.at("E"), "/e");
    EXPECT_EQ(options.engine.server_name, "SERVERA");
}

TEST(DevsqlserverOptions, HelpAndVersionNeedNothingElse) {
    EXPECT_EQ(ParseArguments({"--help"}).action, Action::Help);
    EXPECT_EQ(ParseArguments({"--version"}).action, Action::Version);
    EXPECT_NE(HelpText().find("not SQL Server"), std::string::npos);
}

TEST(DevsqlserverOptions, WrongUsageSaysWhatIsWrong) {
    EXPECT_EQ(UsageOf({}), "--root is missing");
    EXPECT_EQ(UsageOf({"--root", "r", "--port", "1"}), "--logins is missing");
    EXPECT_EQ(UsageOf({"--rot", "r"}), "unknown argument \"--rot\"");
    EXPECT_EQ(UsageOf({"--root"}), "--root needs a value");
    EXPECT_EQ(UsageOf({"--root", "a", "--root", "b"}), "--root is given twice");
    EXPECT_EQ(UsageOf({"--port", "65536"}), "--port: \"65536\" is no port from 0 to 65535");
    EXPECT_EQ(UsageOf({"--port", "12x"}), "--port: \"12x\" is no port from 0 to 65535");
    EXPECT_EQ(UsageOf({"--port", "-1"}), "--port: \"-1\" is no port from 0 to 65535");
    EXPECT_EQ(UsageOf({"--drive", "DATA=/x"}), "--drive: \"DATA=/x\" is not a letter, \"=\" and a folder");
    EXPECT_EQ(UsageOf({"--drive", "D="}), "--drive: \"D=\" is not a letter, \"=\" and a folder");
    EXPECT_EQ(UsageOf({"--drive", "D=/x", "--drive", "d=/y"}), "--drive: D is given twice");
}

TEST(DevsqlserverLogins, ThePasswordIsAllBehindTheFirstColon) {
    const auto logins = Logins("sa:a:b: c \n\n# a remark\n   \nreader:\r\n");
    EXPECT_EQ(logins.size(), 2U);
    EXPECT_EQ(logins.at("sa"), "a:b: c ");
    EXPECT_EQ(logins.at("reader"), "");
}

TEST(DevsqlserverLogins, ALineThatIsNoLoginIsNamed) {
    EXPECT_EQ(LoginsError("sa:x\nnonsense\n"), "logins, line 2: not a name, a colon and a password");
    EXPECT_EQ(LoginsError(":x\n"), "logins, line 1: not a name, a colon and a password");
    EXPECT_EQ(LoginsError("sa:x\nsa:y\n"), "logins, line 2: the login \"sa\" is there twice");
}

TEST(DevsqlserverLogins, AFileThatIsNotThereIsAnError) {
    EXPECT_THROW(ReadLogins("/nonexistent/logins"), UsageError);
    EXPECT_THROW(ReadLogins("/"), UsageError);
}

} // namespace
} // namespace devsql

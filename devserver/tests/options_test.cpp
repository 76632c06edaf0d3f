// The command line of devsqlserver and its file of logins.
#include "devserver/options.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "support/temp_folder.h"

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
    const ProgramOptions options =
        ParseArguments({"--root", "/r", "--port", "0", "--logins", "/l", "--drive", "d=/data", "--drive",
                        "E=/e", "--name", "SERVERA", "--browser", "--instance", "KV_BATCH"});
    EXPECT_EQ(options.action, Action::Serve);
    EXPECT_EQ(options.engine.root, "/r");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.logins_file, "/l");
    EXPECT_EQ(options.engine.drives.at("D"), "/data");
    EXPECT_EQ(options.engine.drives.at("E"), "/e");
    EXPECT_EQ(options.engine.server_name, "SERVERA\\KV_BATCH");
    EXPECT_EQ(options.browser_port, 1434);
}

TEST(DevsqlserverOptions, TheServersNameIsComputerAndInstanceInAnyOrder) {
    const std::vector<std::string> needed = {"--root", "r", "--port", "0", "--logins", "l"};
    const auto name = [&](std::vector<std::string> more) {
        more.insert(more.begin(), needed.begin(), needed.end());
        return ParseArguments(more).engine.server_name;
    };
    EXPECT_EQ(name({}), "DEVSQLSERVER");
    EXPECT_EQ(name({"--instance", "A"}), "DEVSQLSERVER\\A");
    EXPECT_EQ(name({"--instance", "A", "--name", "X"}), "X\\A");
    EXPECT_EQ(name({"--name", "X", "--instance", "A"}), "X\\A");
}

TEST(DevsqlserverOptions, TheBrowsersPortIsChosenForTests) {
    const std::vector<std::string> needed = {"--root",   "r", "--port",         "0",
                                             "--logins", "l", "--browser-port", "5"};
    EXPECT_EQ(ParseArguments(needed).browser_port, 5);
    std::vector<std::string> both = needed;
    both.emplace_back("--browser");
    EXPECT_EQ(ParseArguments(both).browser_port, 5);
    EXPECT_EQ(ParseArguments({needed.begin(), needed.begin() + 6}).browser_port, std::nullopt);
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
    EXPECT_EQ(UsageOf({"--browser", "--browser"}), "--browser is given twice");
    EXPECT_EQ(UsageOf({"--browser", "1434"}), "unknown argument \"1434\"");
    EXPECT_EQ(UsageOf({"--browser-port", "x"}), "--browser-port: \"x\" is no port from 0 to 65535");
    EXPECT_EQ(UsageOf({"--name", "A\\B"}),
              "--name: \"A\\B\" is no name of a computer; --instance names the instance");
    EXPECT_THAT(UsageOf({"--instance", "a b"}),
                testing::StartsWith("--instance: \"a b\" is no name of an instance"));
    EXPECT_NE(UsageOf({"--instance", "1a"}), "--root is missing");
    EXPECT_NE(UsageOf({"--instance", "a2345678901234567"}), "--root is missing");
    EXPECT_EQ(UsageOf({"--instance", "a234567890123456"}), "--root is missing");
    EXPECT_EQ(UsageOf({"--drive", "D=/x", "--drive", "d=/y"}), "--drive: D is given twice");
}

TEST(DevsqlserverLogins, ThePasswordIsEverythingAfterTheFirstColon) {
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

TEST(DevsqlserverLogins, AFileThatOthersMayReadOrChangeIsRefused) {
    namespace fs = std::filesystem;
    const support::TempFolder folder;
    const fs::path file = folder.Path() / "logins";
    std::ofstream(file) << "sa:x\n";
    const fs::perms own = fs::perms::owner_read | fs::perms::owner_write;
    for (const fs::perms right : {fs::perms::group_read, fs::perms::others_read, fs::perms::group_write}) {
        fs::permissions(file, own | right);
        try {
            ReadLogins(file);
            ADD_FAILURE() << "taken";
        } catch (const UsageError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith("--logins: " + file.string() + " holds passwords"));
        }
    }
    fs::permissions(file, own);
    EXPECT_EQ(ReadLogins(file).at("sa"), "x");
}

} // namespace
} // namespace devsql

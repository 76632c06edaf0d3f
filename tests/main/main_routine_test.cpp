// What a run of the program does, as decided from its command line.
#include "main/main_routine.h"

#include <string>

#include <gtest/gtest.h>

#include "fakes/fake_files.h"

namespace kv {
namespace {

class MainRoutine : public ::testing::Test {
  protected:
    MainRoutine() {
        files_.AddFolder("c:\\s");
        files_.AddFolder("d:\\data");
        files_.AddFolder("c:\\program files\\x");
        files_.AddFile("c:\\plain.txt", "");
    }

    static void ExpectWindowWithoutHelp(const std::string& line) {
        const MainDecision decision = DecideAction(line);
        EXPECT_EQ(decision.action, MainAction::ShowWindow) << line;
        EXPECT_FALSE(decision.show_help) << line;
    }

    fakes::FakeFiles files_;
};

constexpr char kLogin[] = R"(/scriptfolder c:\s /server S /user U /password P )";

TEST_F(MainRoutine, AnEmptyLineAndALineOfBlanksOpenTheWindow) {
    ExpectWindowWithoutHelp("");
    ExpectWindowWithoutHelp("   ");
}

TEST_F(MainRoutine, HelpInAnyCaseAndWithEitherPrefixShowsTheHelp) {
    for (const char* line : {"/HELP", "-Help", "/help"}) {
        const MainDecision decision = DecideAction(line);
        EXPECT_EQ(decision.action, MainAction::ShowWindow) << line;
        EXPECT_TRUE(decision.show_help) << line;
    }
}

TEST_F(MainRoutine, AnArgumentThatContainsHelpOpensTheWindowWithoutHelp) {
    ExpectWindowWithoutHelp("x/help");
    ExpectWindowWithoutHelp("/helpme");
}

TEST_F(MainRoutine, HelpGoesBeforeEverythingElse) {
    for (const std::string& line : {std::string(R"(/upgradedb /scriptfolder c:\s /help)"),
                                    std::string(kLogin) + R"(/sqldatapath d:\data /installdb -help)"}) {
        const MainDecision decision = DecideAction(line);
        EXPECT_EQ(decision.action, MainAction::ShowWindow) << line;
        EXPECT_TRUE(decision.show_help) << line;
    }
}

TEST_F(MainRoutine, UpgradeNeedsAnExistingScriptFolder) {
    ExpectWindowWithoutHelp("/upgradedb");
    ExpectWindowWithoutHelp(R"(/upgradedb /scriptfolder "C:\no such folder")");
    ExpectWindowWithoutHelp("/upgradedb /scriptfolder");
    ExpectWindowWithoutHelp(R"(/upgradedb /scriptfolder "")");
    const MainDecision decision = DecideAction(R"(/upgradedb /scriptfolder "c:\program files\x")");
    EXPECT_EQ(decision.action, MainAction::Upgrade);
    EXPECT_EQ(decision.script_folder, R"(c:\program files\x)");
}

TEST_F(MainRoutine, APlainFilePassesAsAScriptFolder) {
    EXPECT_EQ(DecideAction(R"(/upgradedb /scriptfolder c:\plain.txt)").action, MainAction::Upgrade);
}

TEST_F(MainRoutine, UpgradeGoesBeforeTheInstallArguments) {
    const MainDecision decision =
        DecideAction(std::string(kLogin) + R"(/sqldatapath d:\data /installdb /installdts /upgradedb)");
    EXPECT_EQ(decision.action, MainAction::Upgrade);
    EXPECT_EQ(decision.script_folder, R"(c:\s)");
}

TEST_F(MainRoutine, AnEmptyPasswordIsFoundAndAccepted) {
    const MainDecision decision =
        DecideAction(R"(/scriptfolder c:\s /server S /user U /password /installdb /sqldatapath d:\data)");
    EXPECT_EQ(decision.action, MainAction::Install);
    EXPECT_EQ(decision.server, "S");
    EXPECT_EQ(decision.user, "U");
    EXPECT_EQ(decision.password, "");
    EXPECT_EQ(decision.sql_data_path, R"(d:\data)");
    EXPECT_TRUE(decision.install_db);
}

TEST_F(MainRoutine, PackagesAloneNeedNoDataPath) {
    const MainDecision decision = DecideAction(std::string(kLogin) + "/installdts");
    EXPECT_EQ(decision.action, MainAction::Install);
    EXPECT_FALSE(decision.install_db);
    EXPECT_FALSE(decision.install_sp);
    EXPECT_TRUE(decision.install_dts);
    EXPECT_EQ(decision.sql_data_path, "");
    ExpectWindowWithoutHelp(std::string(kLogin) + "/installdb");
    ExpectWindowWithoutHelp(std::string(kLogin) + "/installsp");
}

TEST_F(MainRoutine, WithABadDataPathOnlyThePackagesAreInstalled) {
    const MainDecision decision =
        DecideAction(std::string(kLogin) + R"(/sqldatapath d:\none /installdb /installsp /installdts)");
    EXPECT_EQ(decision.action, MainAction::Install);
    EXPECT_FALSE(decision.install_db);
    EXPECT_FALSE(decision.install_sp);
    EXPECT_TRUE(decision.install_dts);
    EXPECT_EQ(decision.sql_data_path, R"(d:\none)");
}

TEST_F(MainRoutine, InstallingTheDatabaseInstallsTheProcedures) {
    const MainDecision db = DecideAction(std::string(kLogin) + R"(/sqldatapath d:\data /installdb)");
    EXPECT_TRUE(db.install_db);
    EXPECT_TRUE(db.install_sp);
    EXPECT_FALSE(db.install_dts);
    const MainDecision sp = DecideAction(std::string(kLogin) + R"(/sqldatapath d:\data /installsp)");
    EXPECT_FALSE(sp.install_db);
    EXPECT_TRUE(sp.install_sp);
    EXPECT_FALSE(sp.install_dts);
}

TEST_F(MainRoutine, AnIncompleteLoginOpensTheWindow) {
    const std::string rest = R"( /sqldatapath d:\data /installdb /installsp /installdts)";
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /user U /password P)" + rest);
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /server "" /user U /password P)" + rest);
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /server S /password P)" + rest);
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /server S /user "" /password P)" + rest);
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /server S /user U)" + rest);
}

TEST_F(MainRoutine, AnUnknownOptionOpensTheWindow) {
    ExpectWindowWithoutHelp("/frobnicate");
    ExpectWindowWithoutHelp(R"(/scriptfolder c:\s /frobnicate)");
}

TEST_F(MainRoutine, TheHelpTextIsTheProducts) {
    EXPECT_EQ(
        HelpText(),
        "The following command arguments can be defined:\r\n\r\n"
        "/help\r\n  - Shows this command help information.\r\n\r\n"
        "/scriptfolder\r\n  - Path to the folder with sql scripts and dts storage files.\r\n\r\n"
        "/server\r\n  - The name of the sql server instance.\r\n\r\n"
        "/user\r\n  - The user in the sql server instance.\r\n\r\n"
        "/password\r\n  - The password for the user in the sql server instance.\r\n\r\n"
        "/sqldatapath\r\n  - The sql server instance data path.\r\n\r\n"
        "/installdb\r\n  - Command to install batch database (requires ScriptFolder, Server, User, Password "
        "and SQLDataPath).\r\n\r\n"
        "/installsp\r\n  - Command to install batch stored procedures (requires ScriptFolder, Server, User, "
        "Password and SQLDataPath).\r\n\r\n"
        "/installdts\r\n  - Command to install DTS packages (requires ScriptFolder, Server, User and "
        "Password).\r\n\r\n"
        "/upgradedb\r\n  - Command to install upgrade current batch database to newer version (requires "
        "ScriptFolder).\r\n\r\n"
        "\r\n\r\n"
        "Example:\r\n\r\n"
        "kvlsqldbmgr.exe /upgradedb /scriptfolder \"c:\\program files\\orvik\\server\\sqlscripts\"\r\n\r\n");
}

} // namespace
} // namespace kv

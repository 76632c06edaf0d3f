#include "main/main_routine.h"

#include <string>
#include <vector>

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
        const MainDecision decision = DecideWay(line);
        EXPECT_EQ(decision.way, MainWay::Window) << line;
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
        const MainDecision decision = DecideWay(line);
        EXPECT_EQ(decision.way, MainWay::Window) << line;
        EXPECT_TRUE(decision.show_help) << line;
    }
}

TEST_F(MainRoutine, WhatOnlyLooksLikeHelpOpensTheWindowWithoutHelp) {
    ExpectWindowWithoutHelp("x/help");
    ExpectWindowWithoutHelp("/helpme");
}

TEST_F(MainRoutine, HelpBeatsEverythingElse) {
    for (const std::string& line : {std::string(R"(/upgradedb /scriptfolder c:\s /help)"),
                                    std::string(kLogin) + R"(/sqldatapath d:\data /installdb -help)"}) {
        const MainDecision decision = DecideWay(line);
        EXPECT_EQ(decision.way, MainWay::Window) << line;
        EXPECT_TRUE(decision.show_help) << line;
    }
}

TEST_F(MainRoutine, UpgradeNeedsAnExistingScriptFolder) {
    ExpectWindowWithoutHelp("/upgradedb");
    ExpectWindowWithoutHelp(R"(/upgradedb /scriptfolder "C:\no such folder")");
    ExpectWindowWithoutHelp("/upgradedb /scriptfolder");
    ExpectWindowWithoutHelp(R"(/upgradedb /scriptfolder "")");
    const MainDecision decision = DecideWay(R"(/upgradedb /scriptfolder "c:\program files\x")");
    EXPECT_EQ(decision.way, MainWay::Upgrade);
    EXPECT_EQ(decision.script_folder, R"(c:\program files\x)");
}

TEST_F(MainRoutine, APlainFilePassesAsAScriptFolder) {
    EXPECT_EQ(DecideWay(R"(/upgradedb /scriptfolder c:\plain.txt)").way, MainWay::Upgrade);
}

TEST_F(MainRoutine, UpgradeBeatsTheInstallArguments) {
    const MainDecision decision =
        DecideWay(std::string(kLogin) + R"(/sqldatapath d:\data /installdb /installdts /upgradedb)");
    EXPECT_EQ(decision.way, MainWay::Upgrade);
    EXPECT_EQ(decision.script_folder, R"(c:\s)");
}

TEST_F(MainRoutine, AnEmptyPasswordIsFoundAndAccepted) {
    const MainDecision decision =
        DecideWay(R"(/scriptfolder c:\s /server S /user U /password /installdb /sqldatapath d:\data)");
    EXPECT_EQ(decision.way, MainWay::Install);
    EXPECT_EQ(decision.server, "S");
    EXPECT_EQ(decision.user, "U");
    EXPECT_EQ(decision.password, "");
    EXPECT_EQ(decision.sql_data_path, R"(d:\data)");
    EXPECT_TRUE(decision.install_db);
}

TEST_F(MainRoutine, PackagesAloneNeedNoDataPath) {
    const MainDecision decision = DecideWay(std::string(kLogin) + "/installdts");
    EXPECT_EQ(decision.way, MainWay::Install);
    EXPECT_FALSE(decision.install_db);
    EXPECT_FALSE(decision.install_sp);
    EXPECT_TRUE(decision.install_dts);
    EXPECT_EQ(decision.sql_data_path, "");
    ExpectWindowWithoutHelp(std::string(kLogin) + "/installdb");
    ExpectWindowWithoutHelp(std::string(kLogin) + "/installsp");
}

TEST_F(MainRoutine, ABadDataPathTakesAwayTheDatabaseAndTheProceduresOnly) {
    const MainDecision decision =
        DecideWay(std::string(kLogin) + R"(/sqldatapath d:\none /installdb /installsp /installdts)");
    EXPECT_EQ(decision.way, MainWay::Install);
    EXPECT_FALSE(decision.install_db);
    EXPECT_FALSE(decision.install_sp);
    EXPECT_TRUE(decision.install_dts);
    EXPECT_EQ(decision.sql_data_path, R"(d:\none)");
}

TEST_F(MainRoutine, TheDatabaseBringsTheProceduresWithIt) {
    const MainDecision db = DecideWay(std::string(kLogin) + R"(/sqldatapath d:\data /installdb)");
    EXPECT_TRUE(db.install_db);
    EXPECT_TRUE(db.install_sp);
    EXPECT_FALSE(db.install_dts);
    const MainDecision sp = DecideWay(std::string(kLogin) + R"(/sqldatapath d:\data /installsp)");
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

class RecordedFaces : public Faces {
  public:
    void DoAutomaticUpgrade(const std::string& strScriptFolder) override {
        calls.push_back("upgrade " + strScriptFolder);
    }
    void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server,
                            const std::string& User, const std::string& Password,
                            const std::string& SQLDataPath, bool InstallDb, bool InstallSp,
                            bool InstallDts) override {
        calls.push_back("install " + ScriptFolder + "|" + Server + "|" + User + "|" + Password + "|" +
                        SQLDataPath + "|" + std::to_string(static_cast<int>(InstallDb)) +
                        std::to_string(static_cast<int>(InstallSp)) +
                        std::to_string(static_cast<int>(InstallDts)));
    }
    void ShowMainWindow() override { calls.emplace_back("window"); }
    void ShowHelp(const std::string& text) override {
        calls.push_back("help " + std::to_string(text.size()));
    }

    std::vector<std::string> calls;
};

std::vector<std::string> CallsOf(const std::string& line) {
    RecordedFaces faces;
    Main(line, faces);
    return faces.calls;
}

TEST_F(MainRoutine, MainGoesExactlyOneWay) {
    using Calls = std::vector<std::string>;
    EXPECT_EQ(CallsOf(""), Calls{"window"});
    EXPECT_EQ(CallsOf("/help"), (Calls{"window", "help " + std::to_string(HelpText().size())}));
    EXPECT_EQ(CallsOf(R"(/upgradedb /scriptfolder c:\s)"), Calls{R"(upgrade c:\s)"});
    EXPECT_EQ(CallsOf(std::string(kLogin) + R"(/sqldatapath d:\data /installdb /installdts)"),
              Calls{R"(install c:\s|S|U|P|d:\data|111)"});
}

TEST_F(MainRoutine, TheHelpTextStandsByteForByte) {
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

// The program's entry on a system in memory: it carries out what the command line asks for, and shows the
// help and the fatal error in boxes.
#include "console/console_fixture.h"
#include "fakes/fake_named_lock.h"
#include "main/main_routine.h"
#include "platform/memory_secrecy.h"

/// The program's main function, which this test is built with under another name.
int ProgramMain(int argc, char** argv);

namespace {
int kept_out_of_crashes = 0;
}

/// Counted only: in this process it would also stop the leak sanitizer.
void platform::KeepMemoryOutOfCrashes() {
    ++kept_out_of_crashes;
}

namespace kv {
namespace {

class MainProgram : public ConsoleTest {
  protected:
    void Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "KVLSQLDbMgr");
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        kept_out_of_crashes = 0;
        EXPECT_EQ(ProgramMain(static_cast<int>(argv.size()), argv.data()), 0);
        EXPECT_EQ(kept_out_of_crashes, 1);
    }
    /// What was shown: the calls of windows and boxes.
    Lines Shown() const {
        Lines shown;
        for (const std::string& call : screen_.calls) {
            if (call != "events" && call.rfind("pointer", 0) != 0) {
                shown.push_back(call);
            }
        }
        return shown;
    }
    /// The arguments of an installation on NodeA, without the commands that say what is installed.
    Lines InstallArguments(const std::string& command) {
        files_.AddFolder("S:\\Scripts");
        files_.AddFolder("D:\\Data");
        for (const char* name :
             {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql"}) {
            files_.AddFile(std::string("S:\\Scripts\\") + name, "USE ###SERVER### ###DATAPATH###");
        }
        files_.AddFile("S:\\Scripts\\StdSynchronize.dts", "");
        return {"/scriptfolder", "S:\\Scripts", "/server",      "NodeA",    "/user", "sa",
                "/password",     "pw",          "/sqldatapath", "D:\\Data", command};
    }

    fakes::FakeNamedLocks locks_;
};

TEST_F(MainProgram, AnInstallationOfTheDatabaseRunsWithTheLogin) {
    Run(InstallArguments("/installdb"));
    ASSERT_EQ(processes_.started.size(), 3U) << "the stored procedures are installed too";
    EXPECT_EQ(processes_.started.front().parameters.find(" -S NodeA -U sa -P pw -i "), 0U);
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\Create_Batch_Database.sql)"),
              "USE NODEA D:\\Data\r\n\r\n");
    EXPECT_TRUE(packages_.calls.empty());
    EXPECT_EQ(screen_.Count("make frmMain"), 0);
}

TEST_F(MainProgram, AnInstallationOfTheProceduresRunsOneScript) {
    Run(InstallArguments("/installsp"));
    ASSERT_EQ(processes_.started.size(), 1U);
    EXPECT_NE(processes_.started.front().parameters.find("Create_Batch_Stored_Procedures.sql"),
              std::string::npos);
    EXPECT_TRUE(packages_.calls.empty());
}

TEST_F(MainProgram, AnInstallationOfThePackagesRunsNoScript) {
    Run(InstallArguments("/installdts"));
    EXPECT_TRUE(processes_.started.empty());
    EXPECT_FALSE(packages_.calls.empty());
}

TEST_F(MainProgram, AnUpgradeAsksTheServerOfTheRegistry) {
    files_.AddFolder("S:\\Scripts");
    Text(registry_locations::kLoginKey, registry_locations::kServerNameValue, "NodeR");
    Text(registry_locations::kLoginKey, registry_locations::kUserIdValue, "sa");
    Run({"/upgradedb", "/scriptfolder", "S:\\Scripts"});
    EXPECT_EQ(Connections(), Lines{"NodeR master"});
    EXPECT_EQ(screen_.Count("label Retrieving upgrade information..."), 1);
    EXPECT_EQ(screen_.Count("make frmMain"), 0);
}

TEST_F(MainProgram, WithoutArgumentsItShowsTheConsole) {
    Run({});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "show frmMain", "run frmMain"}));
    EXPECT_FALSE(remembered_.reads.empty());
}

TEST_F(MainProgram, HelpIsABoxWithoutIconOverTheShownWindow) {
    Run({"/help"});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "show frmMain", "box [none] KVLSQLDbMgr: " + HelpText(),
                              "run frmMain"}));
}

TEST_F(MainProgram, AFailureThatNoHandlerCatchesShowsTheFatalErrorBox) {
    Version("14");
    Run({});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "box [critical] KVLSQLDbMgr: Run-time error '5':\r\n\r\n"
                                              "Invalid procedure call or argument"}));
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(MainProgram, IfNoWindowCanBeMadeItEndsWithoutABox) {
    toolkit_.has_windows = false;
    Run({});
    EXPECT_EQ(Shown(), Lines{});
}

} // namespace
} // namespace kv

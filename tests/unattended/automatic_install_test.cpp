// The unattended installation: its order, its progress bar and its failures.
#include "unattended/automatic_runs.h"

#include "fakes/fake_packages.h"
#include "scripts/script_mgr_fixture.h"

namespace kv {
namespace {

using Lines = std::vector<std::string>;

class AutomaticInstall : public ScriptMgrTest {
  protected:
    AutomaticInstall() {
        files_.AddFolder("S:\\Scripts");
        for (const char* name :
             {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql"}) {
            files_.AddFile(std::string("S:\\Scripts\\") + name, "USE ###SERVER### ###DATAPATH###");
        }
        for (const eDTSPackage package : kDtsPackages) {
            files_.AddFile("S:\\Scripts\\" + PackageFileName(package), "");
        }
    }

    static void Run(bool db, bool sp, bool dts) {
        DoAutomaticInstall("S:\\Scripts", "NodeA", "sa", "pw", "D:\\Data\\", db, sp, dts);
    }
    Lines Saved() const {
        Lines calls;
        for (const auto& call : packages_.calls) {
            calls.push_back(call.member);
        }
        return calls;
    }
    /// How often the bar moved, its range and its last position, as "steps range position".
    std::string Bar() const {
        const Lines bars = screen_.After("bar 0 ");
        // The first two come from loading the window and from InitProgressBar.
        return std::to_string(bars.size() - 2) + " " + bars.back();
    }
    void ExpectAbort() {
        EXPECT_EQ(LogLines(), Lines{"modMain::DoAutomaticUpgrade"});
        EXPECT_EQ(screen_.calls.back(), "window gone");
        EXPECT_EQ(screen_.Count("box"), 0);
        EXPECT_TRUE(processes_.started.empty());
        EXPECT_TRUE(packages_.calls.empty());
    }

    fakes::FakePackages packages_;
};

TEST_F(AutomaticInstall, TheBarMovesExactlyToItsEnd) {
    struct Case {
        bool db;
        bool sp;
        bool dts;
        const char* bar;
    };
    for (const Case& c : {Case{true, true, false, "8 8 8"}, Case{false, true, false, "4 4 4"},
                          Case{false, false, true, "8 8 8"}, Case{true, true, true, "14 14 14"}}) {
        screen_.calls.clear();
        Run(c.db, c.sp, c.dts);
        EXPECT_EQ(Bar(), c.bar);
    }
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(AutomaticInstall, TheOrderOnTheServerIsFixed) {
    Run(true, true, true);
    EXPECT_EQ(Executed(),
              (Lines{"Create_Batch_Database", "Insert_Default_Data", "Create_Batch_Stored_Procedures"}));
    ASSERT_EQ(packages_.calls.size(), 18U);
    for (std::size_t i = 0; i < kDtsPackages.size(); ++i) {
        EXPECT_EQ(packages_.calls[3 * i].arguments.back(), PackageName(kDtsPackages[i]));
        EXPECT_EQ(packages_.calls[3 * i + 2].member, "SaveToSQLServer");
    }
}

TEST_F(AutomaticInstall, TheStatusTextsFollowTheSteps) {
    Run(true, true, true);
    EXPECT_EQ(screen_.After("label "),
              (Lines{"Initializing installation...", "Modifying sql scripts...",
                     "Installing the new database...", "Inserting batch default data...",
                     "Installing batch stored procedures...", "Installing DTS packages..."}));
}

TEST_F(AutomaticInstall, TheWindowIsShownAfterItsFirstTextAndClosedAtTheEnd) {
    Run(false, true, false);
    const Lines wanted = {"window made Installing / Upgrading Lotkeeper database",
                          "bar 0 100 0",
                          "bar 0 4 0",
                          "label Initializing installation...",
                          "events",
                          "show",
                          "events",
                          "bar 0 4 1",
                          "label Modifying sql scripts...",
                          "events",
                          "bar 0 4 2",
                          "bar 0 4 3",
                          "label Installing batch stored procedures...",
                          "events",
                          "bar 0 4 4",
                          "window gone"};
    EXPECT_EQ(screen_.calls, wanted);
}

TEST_F(AutomaticInstall, EverythingIsDoneOnServerA) {
    Run(true, true, true);
    for (const auto& info : processes_.started) {
        EXPECT_EQ(info.parameters.find(" -S NodeA -U sa -P pw -i "), 0U) << info.parameters;
    }
    EXPECT_EQ(packages_.calls.front().arguments, (Lines{"NodeA", "sa", "pw", "StdSynchronize"}));
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\Create_Batch_Database.sql)"),
              "USE NODEA D:\\Data\r\n\r\n");
}

TEST_F(AutomaticInstall, AMissingTemplateEndsTheRunBeforeAnyScript) {
    for (const char* name :
         {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql"}) {
        files_.files.erase(std::string("S:/Scripts/") + name);
        files_.files.erase(fakes::FakeFiles::Plain(kLogFile));
        Run(true, true, true);
        ExpectAbort();
        files_.AddFile(std::string("S:\\Scripts\\") + name, "");
    }
}

TEST_F(AutomaticInstall, WithoutAQueryToolNotEvenPackagesAreInstalled) {
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    SqlPath("80", "C:\\none");
    Run(false, false, true);
    ExpectAbort();
    EXPECT_EQ(Bar(), "1 8 1");
}

TEST_F(AutomaticInstall, AVersionWithoutAPointEndsTheRun) {
    Version("14");
    Run(true, true, true);
    ExpectAbort();
}

TEST_F(AutomaticInstall, AFileFailureEndsTheRun) {
    files_.FailNext("write", R"(C:\Lotkeeper\Server\Data\Insert_Default_Data.sql)",
                    platform::FileFault::DiskFull);
    Run(true, true, true);
    ExpectAbort();
    EXPECT_TRUE(files_.HasFile(R"(C:\Lotkeeper\Server\Data\Create_Batch_Database.sql)"));
}

TEST_F(AutomaticInstall, IfTheLogFailsTheFailureIsRaisedToTheCallerAndTheWindowIsClosed) {
    files_.files.erase("S:/Scripts/Create_Batch_Database.sql");
    files_.FailNext("append", kLogFile, platform::FileFault::AccessDenied);
    EXPECT_THROW(Run(true, true, true), platform::FileError);
    EXPECT_EQ(screen_.calls.back(), "window gone");
}

TEST_F(AutomaticInstall, IfTheFolderDataCannotBeCreatedTheLogFailsToo) {
    // The log creates that folder too, so the failure is raised to the caller.
    files_.executable_folder = R"(X:\None)";
    EXPECT_THROW(Run(true, true, true), platform::FileError);
    EXPECT_EQ(screen_.calls.back(), "window gone");
    EXPECT_TRUE(LogLines().empty());
    EXPECT_TRUE(processes_.started.empty());
}

TEST_F(AutomaticInstall, AMissingPackageFileIsSkippedAndTheBarStillMoves) {
    files_.files.erase("S:/Scripts/BatchOverviewExport.dts");
    Run(false, false, true);
    EXPECT_EQ(Saved().size(), 15U);
    EXPECT_EQ(Bar(), "8 8 8");
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(AutomaticInstall, AToolThatDoesNotStartDoesNotEndTheRun) {
    processes_.on_start = [](const platform::ShellExecuteInfo&) { return false; };
    Run(true, true, true);
    EXPECT_EQ(Executed().size(), 3U);
    EXPECT_EQ(Saved().size(), 18U);
    EXPECT_EQ(Bar(), "14 14 14");
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(AutomaticInstall, APackageThatCannotBeInstalledIsLoggedAndTheNextOneFollows) {
    packages_.failures.insert({"SaveToSQLServer", packages::PackageError(-2147467259, "ODBC", "gone")});
    Run(false, false, true);
    Lines wanted;
    for (int i = 0; i < 6; ++i) {
        wanted.push_back("CSQLScriptMgr::InstallDTSPackage(" + std::to_string(i) + ")");
    }
    EXPECT_EQ(LogLines(), wanted);
    EXPECT_EQ(Bar(), "8 8 8");
}

TEST_F(AutomaticInstall, AnUnknownVersionIsReportedInABox) {
    Version("11.0.2100.60");
    Run(true, true, true);
    EXPECT_EQ(screen_.Count("box [exclamation] KVLSQLDbMgr: Can't determine installed SQL Server version!"),
              1);
    EXPECT_TRUE(processes_.started.empty());
    EXPECT_EQ(LogLines().back(), "modMain::DoAutomaticUpgrade");
}

TEST_F(AutomaticInstall, AValueOutsideTheCodePageIsRefusedByName) {
    constexpr char kOutside[] = "a\x81"
                                "141\x9D";
    struct Case {
        const char* name;
        std::string server, user, password, path;
    };
    for (const Case& one :
         {Case{"/server", kOutside, "u", "p", "D:"}, Case{"/user", "S", kOutside, "p", "D:"},
          Case{"/password", "S", "u", kOutside, "D:"}, Case{"/sqldatapath", "S", "u", "p", kOutside}}) {
        SCOPED_TRACE(one.name);
        files_.files.erase(fakes::FakeFiles::Plain(kLogFile));
        DoAutomaticInstall("S:\\Scripts", one.server, one.user, one.password, one.path, true, true, true);
        ExpectAbort();
        EXPECT_EQ(screen_.After("label ").back(),
                  std::string(one.name) + " has characters that code page 1252 lacks. Nothing was changed.");
    }
}

TEST_F(AutomaticInstall, AScriptFolderOutsideTheCodePageIsUsed) {
    const std::string folder = "S:\\\x81"
                               "141\x9D";
    files_.AddFolder(folder);
    files_.AddFile(folder + "\\Create_Batch_Stored_Procedures.sql", "x");
    DoAutomaticInstall(folder, "NodeA", "sa", "pw", "", false, true, false);
    EXPECT_EQ(LogLines(), Lines{});
    EXPECT_EQ(Executed(), Lines{"Create_Batch_Stored_Procedures"});
}

} // namespace
} // namespace kv

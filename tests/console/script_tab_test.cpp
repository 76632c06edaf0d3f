// Tests the Script tab: creating and running scripts, installing packages and listing the installed ones.
#include "console/console_fixture.h"
#include "fakes/fake_locale.h"
#include "scripts/executed_scripts.h"

namespace kv {
namespace {

const char* const kScriptBoxes[] = {"chkCreateInstallBatchDatabase", "chkCreateInstallBatchDefaultData",
                                    "chkCreateInstallBatchStoredProcedures",
                                    "chkCreateInstallSQLServerReplication", "chkCreateInstallScriptFile"};
const char* const kPackageBoxes[] = {"chkStandardSynchronize", "chkUpgradeDatabaseV1ToV2",
                                     "chkBatchOverviewExport", "chkBatchOverviewRecalcExport",
                                     "chkBatchSummaryExport",  "chkBatchSummaryRecalcExport"};
const char* const kTemplates[] = {"Create_Batch_Database.sql", "Insert_Default_Data.sql",
                                  "Create_Batch_Stored_Procedures.sql",
                                  "Create_Replication_Stored_Procedures.sql"};

class ScriptTabTest : public ConsoleTest {
  protected:
    ScriptTabTest() {
        files_.AddFolder("S:\\Scripts");
        Remember("edtScriptFolder", "S:\\Scripts");
        RememberServer(0);
        RememberServer(1);
    }
    void AddTemplates() {
        for (const char* name : kTemplates) {
            files_.AddFile(std::string("S:\\Scripts\\") + name, "USE ###SERVER### ###DOMAIN###");
        }
    }
    void AddPackages() {
        for (const eDTSPackage package : kDtsPackages) {
            files_.AddFile("S:\\Scripts\\" + PackageFileName(package), "");
        }
    }
    void AddUserScript() {
        files_.AddFile("S:\\User\\mine.sql", "PRINT 1");
        Remember("edtCreateInstallScriptFile", "S:\\User\\mine.sql");
    }

    void StartOnTab() {
        Start();
        Open(kScriptTab);
        screen_.calls.clear();
    }
    void Tick(const char* name) { ASSERT_TRUE(ui::Click(Check(name))) << name; }
    template <class Names>
    void TickAll(const Names& names) {
        for (const char* name : names) {
            Tick(name);
        }
    }
    /// Chooses that scripts are run after they have been created.
    void AlsoInstall() { ASSERT_TRUE(ui::Click(Option("optCreateInstallScriptFiles", 1))); }

    /// Presses the button and records the texts of the status line.
    void Run() {
        steps_.clear();
        bar_full_ = false;
        Form().Attach(&watch_);
        ASSERT_TRUE(ui::Click(Button("cmdCreateInstall")));
        Form().Attach(nullptr);
    }
    const Lines& Steps() const { return steps_; }

    Lines Executed() const { return ExecutedScripts(processes_); }
    Lines SavedMembers() const {
        Lines calls;
        for (const auto& call : packages_.calls) {
            calls.push_back(call.member);
        }
        return calls;
    }
    /// Checks that the command has ended: its button is enabled and has the focus, and the hourglass is gone.
    void ExpectButtonBack() {
        EXPECT_TRUE(Button("cmdCreateInstall").Enabled());
        EXPECT_EQ(Form().Focused(), &Button("cmdCreateInstall"));
        EXPECT_EQ(screen_.pointer, 0);
    }

    /// Calls Record for each change of the form.
    class Watch final : public ui::Mirror {
      public:
        explicit Watch(ScriptTabTest& test) : test_(test) {}
        void Changed(const ui::Control& control, ui::Property property) override {
            test_.Record(control, property);
        }

      private:
        ScriptTabTest& test_;
    };
    void Record(const ui::Control& control, ui::Property property) {
        if (&control == &Label("lblStatus") && property == ui::Property::Refresh) {
            steps_.push_back(Label("lblStatus").Caption());
            button_disabled_ = button_disabled_ || !Button("cmdCreateInstall").Enabled();
        }
        if (&control == &Bar() && Bar().Max() > 1.0F && Bar().Value() == Bar().Max()) {
            bar_full_ = true;
        }
    }

    Watch watch_{*this};
    Lines steps_;
    bool bar_full_ = false;
    bool button_disabled_ = false;
};

TEST_F(ScriptTabTest, WithNothingTickedTheRunIsRefusedAndKeepsTheStatusLine) {
    StartOnTab();
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: No scripts or DTS packages selected!"});
    EXPECT_EQ(Label("lblStatus").Caption(), "Initializing...");
    EXPECT_EQ(Bar().Max(), 2.0F);
    ExpectButtonBack();
    EXPECT_TRUE(files_.Log().empty());
}

TEST_F(ScriptTabTest, OnlyTheValueOneCountsAsTicked) {
    StartOnTab();
    Check("chkCreateInstallBatchDatabase").Value(2);
    Check("chkStandardSynchronize").Value(2);
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: No scripts or DTS packages selected!"});
}

TEST_F(ScriptTabTest, APackageThatIsNotTickedDoesNotCountAsFound) {
    AddPackages();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: No scripts or DTS packages were found in the script "
                             "folder!"});
}

TEST_F(ScriptTabTest, AnEmptyFolderIsRefused) {
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: You must specify a script folder!"});
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    EXPECT_EQ(Bar().Max(), 1.0F);
    ExpectButtonBack();
    EXPECT_EQ(screen_.Count("wait"), 0);
}

TEST_F(ScriptTabTest, AnEmptyFolderTextMeansTheRootOfTheDrive) {
    Remember("edtScriptFolder", "");
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(Boxes().at(0), "[exclamation] KVLSQLDbMgr: You must specify a script folder!");
    files_.AddFile("\\Create_Batch_Database.sql", "PRINT 1");
    Run();
    EXPECT_EQ(Boxes().size(), 1U) << "a file in the root is accepted";
    EXPECT_EQ(Steps().at(1), "Create modified batch database script...");
}

TEST_F(ScriptTabTest, IfNothingIsFoundTheRunIsRefusedAfterTheWaits) {
    files_.AddFile("S:\\Scripts\\other.txt", "");
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Tick("chkCreateInstallBatchDefaultData");
    Tick("chkStandardSynchronize");
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: No scripts or DTS packages were found in the script "
                             "folder!"});
    EXPECT_EQ(screen_.After("wait "), (Lines{"2000", "2000"})) << "it waits for a missing template too";
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    EXPECT_TRUE(packages_.calls.empty());
    ExpectButtonBack();
}

TEST_F(ScriptTabTest, WithoutAToolScriptsCanBeCreatedButNotInstalled) {
    AddTemplates();
    files_.files.erase(fakes::FakeFiles::Plain(kTool));
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_TRUE(Boxes().empty());
    AlsoInstall();
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: The query tool OSQL.EXE was not found!"});
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    ExpectButtonBack();
}

TEST_F(ScriptTabTest, AllBoxesRunAllSteps) {
    AddTemplates();
    AddPackages();
    AddUserScript();
    StartOnTab();
    TickAll(kScriptBoxes);
    TickAll(kPackageBoxes);
    AlsoInstall();
    Run();
    EXPECT_EQ(Steps(),
              (Lines{"Initializing...", "Create modified batch database script...",
                     "Create modified batch default data script...",
                     "Create modified batch stored procedure script...",
                     "Create modified batch sql server replication script...",
                     "Create modified user defined script...", "Install batch database...",
                     "Install batch stored procedures...", "Install batch default data...",
                     "Install batch sql server replication...", "Install user defined script file...",
                     "Install Standard Synchronize DTS package...",
                     "Install Upgrade Database V1 to V2 DTS package...",
                     "Install Batch Overview Export DTS package...",
                     "Install Batch Overview Recalculation Export DTS package...",
                     "Install Batch Summary Export DTS package...",
                     "Install Batch Summary Recalculation Export DTS package...", "Installation completed...",
                     ""}));
    Lines waits(10, "2000");
    waits.emplace_back("3000");
    EXPECT_EQ(screen_.After("wait "), waits);
    EXPECT_EQ(Executed(), (Lines{"Create_Batch_Database", "Create_Batch_Stored_Procedures",
                                 "Insert_Default_Data", "Create_Replication_Stored_Procedures", "mine"}));
    for (const char* name : kTemplates) {
        EXPECT_TRUE(files_.HasFile(std::string("C:\\Lotkeeper\\Server\\Data\\") + name)) << name;
    }
    EXPECT_TRUE(files_.HasFile("C:\\Lotkeeper\\Server\\Data\\mine.sql"));
    EXPECT_EQ(packages_.packages_created, 6);
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(button_disabled_);
    ExpectButtonBack();
}

TEST_F(ScriptTabTest, TheBarNeverQuiteFills) {
    AddTemplates();
    AddPackages();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Tick("chkStandardSynchronize");
    AlsoInstall();
    float last = 0;
    toolkit_.on_wait = [&] {
        last = Bar().Value();
        EXPECT_EQ(Bar().Max(), 5.0F);
    };
    Run();
    EXPECT_EQ(last, 4.0F);
    EXPECT_FALSE(bar_full_);
}

TEST_F(ScriptTabTest, CreatingScriptsInstallsNothingAndReportsCompletion) {
    AddTemplates();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(Steps(), (Lines{"Initializing...", "Create modified batch database script...",
                              "Installation completed...", ""}));
    EXPECT_EQ(screen_.After("wait "), (Lines{"2000", "3000"}));
    EXPECT_TRUE(processes_.started.empty());
    EXPECT_EQ(files_.Content("C:\\Lotkeeper\\Server\\Data\\Create_Batch_Database.sql").substr(0, 9),
              "USE NODEA");
}

TEST_F(ScriptTabTest, PackagesAreInstalledWhateverTheOption) {
    AddPackages();
    StartOnTab();
    Tick("chkBatchSummaryExport");
    Run();
    EXPECT_EQ(SavedMembers(), (Lines{"RemoveFromSQLServer", "LoadFromStorageFile", "SaveToSQLServer"}));
    EXPECT_EQ(Steps(), (Lines{"Initializing...", "Install Batch Summary Export DTS package...",
                              "Installation completed...", ""}));
}

TEST_F(ScriptTabTest, OneTemplateIsEnoughAndMissingScriptsAreRunToo) {
    files_.AddFile("S:\\Scripts\\Insert_Default_Data.sql", "PRINT 1");
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Tick("chkCreateInstallBatchDefaultData");
    AlsoInstall();
    Run();
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(Executed(), (Lines{"Create_Batch_Database", "Insert_Default_Data"}));
}

TEST_F(ScriptTabTest, AMissingPackageFileIsLogged) {
    AddTemplates();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Tick("chkStandardSynchronize");
    packages_.failures.emplace("LoadFromStorageFile", packages::PackageError(1, "DTS", "no such file"));
    Run();
    EXPECT_EQ(SavedMembers(), (Lines{"RemoveFromSQLServer", "LoadFromStorageFile"}))
        << "the old package was removed first";
    EXPECT_EQ(LogLines(), Lines{"CSQLScriptMgr::InstallDTSPackage(0)"});
    EXPECT_EQ(Steps().at(Steps().size() - 2), "Installation completed...");
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScriptTabTest, AToolThatDoesNotStartDoesNotEndTheRun) {
    AddTemplates();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    AlsoInstall();
    processes_.on_start = [](const platform::ShellExecuteInfo&) { return false; };
    Run();
    EXPECT_EQ(Steps().at(Steps().size() - 2), "Installation completed...");
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScriptTabTest, ARaisedFailureEndsTheRunAndEnablesTheButton) {
    AddTemplates();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    files_.FailNext("write", "C:\\Lotkeeper\\Server\\Data\\Create_Batch_Database.sql",
                    platform::FileFault::DiskFull);
    Run();
    EXPECT_EQ(LogLines(), Lines{"frmMain::cmdCreateInstall_Click"});
    EXPECT_EQ(screen_.Count("wait"), 0);
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    EXPECT_TRUE(Boxes().empty());
    ExpectButtonBack();
}

TEST_F(ScriptTabTest, AManagerThatCannotBeCreatedEndsTheRunAndEnablesTheButton) {
    AddTemplates();
    StartOnTab();
    Version("14");
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(LogLines(), Lines{"frmMain::cmdCreateInstall_Click"});
    ExpectButtonBack();
}

TEST_F(ScriptTabTest, AnUnknownServerVersionIsReportedInABoxAndTheRunContinues) {
    AddTemplates();
    Version("11.0");
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    Run();
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: Can't determine installed SQL Server version!"});
    EXPECT_EQ(Steps().at(Steps().size() - 2), "Installation completed...");
}

TEST_F(ScriptTabTest, TheRunUsesServerDomainAndPathsOfTheGeneralTab) {
    AddTemplates();
    Remember("edtDomainName", "dom");
    StartOnTab();
    ui::Click(Option("optScriptCurrentServer", 1));
    Tick("chkCreateInstallBatchDatabase");
    AlsoInstall();
    Run();
    EXPECT_EQ(files_.Content("C:\\Lotkeeper\\Server\\Data\\Create_Batch_Database.sql").substr(0, 13),
              "USE NODEB DOM");
    EXPECT_NE(processes_.started.at(0).parameters.find(" -S NodeB -U saB -P pwB "), std::string::npos);
}

TEST_F(ScriptTabTest, ASecondClickDuringARunDoesNothing) {
    AddTemplates();
    StartOnTab();
    Tick("chkCreateInstallBatchDatabase");
    bool accepted = true;
    toolkit_.on_wait = [&] { accepted = ui::Click(Button("cmdCreateInstall")); };
    Run();
    EXPECT_FALSE(accepted);
    EXPECT_EQ(screen_.After("wait ").size(), 2U);
}

TEST_F(ScriptTabTest, TheUsersScriptCanBeTickedIfItsFileExists) {
    files_.AddFile("S:\\User\\mine.sql", "PRINT 1");
    StartOnTab();
    EXPECT_FALSE(Check("chkCreateInstallScriptFile").Enabled());
    ui::Type(Edit("edtCreateInstallScriptFile"), "S:\\User\\mine.sq");
    EXPECT_FALSE(Check("chkCreateInstallScriptFile").Enabled());
    ui::Type(Edit("edtCreateInstallScriptFile"), "l");
    EXPECT_TRUE(Check("chkCreateInstallScriptFile").Enabled());
    Tick("chkCreateInstallScriptFile");
    files_.AddFile("S:\\User\\other.sql", "PRINT 2");
    ui::Edit(Edit("edtCreateInstallScriptFile"), "S:\\User\\other.sql");
    EXPECT_EQ(Check("chkCreateInstallScriptFile").Value(), 1) << "another file keeps the tick";
    ui::Type(Edit("edtCreateInstallScriptFile"), "x");
    EXPECT_FALSE(Check("chkCreateInstallScriptFile").Enabled());
    EXPECT_EQ(Check("chkCreateInstallScriptFile").Value(), 0)
        << "a script that does not exist must not be run";
}

TEST_F(ScriptTabTest, BrowsingForAScriptStartsAtTheTextAndCancellingEmptiesIt) {
    AddUserScript();
    StartOnTab();
    ui::Click(Button("cmdBrowseForScriptFile"));
    EXPECT_EQ(screen_.calls,
              Lines{"file [S:\\User\\mine.sql] Browse for script file Script Files (*.sql)|*.sql"});
    EXPECT_EQ(Edit("edtCreateInstallScriptFile").Text(), "");
    EXPECT_FALSE(Check("chkCreateInstallScriptFile").Enabled());
    toolkit_.picked = "S:\\User\\mine.sql";
    ui::Click(Button("cmdBrowseForScriptFile"));
    EXPECT_TRUE(Check("chkCreateInstallScriptFile").Enabled());
}

class PackageList : public ScriptTabTest {
  protected:
    void Installed(const std::string& name) {
        packages_.installed.push_back({name, "what it does", {2006, 5, 12, 14, 3, 22}});
    }
    std::string Listed() {
        StartOnTab();
        EXPECT_TRUE(ui::Click(Button("cmdGetInstalledPackages")));
        return Boxes().empty() ? std::string() : Boxes().front();
    }
};

TEST_F(PackageList, OnePackageIsListedWithoutALineOfHyphens) {
    Installed("StdSynchronize");
    EXPECT_EQ(Listed(),
              "[none] KVLSQLDbMgr: StdSynchronize\r\nwhat it does\r\nCreated: 5/12/2006 2:03:22 PM\r\n");
    EXPECT_EQ(screen_.Count("pointer"), 0) << "no hourglass";
}

TEST_F(PackageList, SeveralPackagesAreSeparatedByLinesOfHyphens) {
    Installed("A");
    Installed("A"); // two stored versions are two entries
    Installed("B");
    const std::string entry = "\r\nwhat it does\r\nCreated: 5/12/2006 2:03:22 PM\r\n";
    const std::string line = "\r\n" + std::string(46, '-') + "\r\n\r\n";
    EXPECT_EQ(Listed(), "[none] KVLSQLDbMgr: A" + entry + line + "A" + entry + line + "B" + entry);
}

TEST_F(PackageList, TheTimeIsInTheFormatOfTheUsersLocale) {
    const fakes::FakeLocale german(fakes::German());
    Installed("A");
    EXPECT_EQ(Listed(), "[none] KVLSQLDbMgr: A\r\nwhat it does\r\nCreated: 12.05.2006 14:03:22\r\n");
}

TEST_F(PackageList, WithoutPackagesNoBoxIsShown) {
    EXPECT_EQ(Listed(), "");
    EXPECT_EQ(packages_.applications_created, 1);
}

TEST_F(PackageList, IfThePackagesCannotBeReadABoxSaysSo) {
    packages_.failures.emplace("EnumPackageInfos", packages::PackageError(1, "DTS", "refused"));
    EXPECT_EQ(Listed(), "[none] KVLSQLDbMgr: Information about installed packages could not be read from the "
                        "SQL Server installation!");
    EXPECT_EQ(LogLines(), Lines{"CSQLScriptMgr::GetInstalledDTSPackages()"});
}

TEST_F(PackageList, AFailureToCreateTheManagerIsNotCaught) {
    StartOnTab();
    Version("14");
    EXPECT_THROW(ui::Click(Button("cmdGetInstalledPackages")), Failure);
    EXPECT_EQ(LogLines(), Lines{});
}

TEST_F(PackageList, TheSelectedServerIsAsked) {
    StartOnTab();
    ui::Click(Option("optScriptCurrentServer", 1));
    ui::Click(Button("cmdGetInstalledPackages"));
    EXPECT_EQ(packages_.calls.at(0).arguments.at(0), "NodeB");
}

} // namespace
} // namespace kv

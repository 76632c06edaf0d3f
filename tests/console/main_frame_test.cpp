// Tests the parts of frmMain that its tabs share: load and unload, remembered entries, which tabs and servers
// can be used, database lists and status line.
#include "console/console_fixture.h"
#include "platform/version_record.h"

namespace kv {
namespace {

const Lines kRememberedKeys = {
    "edtScriptFolder",
    "edtDomainName",
    "edtServerName0",
    "edtUserID0",
    "edtPassword0",
    "edtSQLDataPath0",
    "edtSQLUNCReplDataPath0",
    "edtServerName1",
    "edtUserID1",
    "edtPassword1",
    "edtSQLDataPath1",
    "edtSQLUNCReplDataPath1",
    "edtCreateInstallScriptFile",
    "cboRenameDatabase",
    "edtRenameNewDatabase",
    "cboUpgradeDatabaseDest",
    "cboUpgradeDatabaseSource",
    "cboRemoveDatabase",
    "cboViewDataDatabase",
    "cboStoredProcDatabase",
    "cboStoredProcedure",
};

class MainFrame : public ConsoleTest {
  protected:
    /// The numbers of the enabled tabs as one text, such as "0136".
    std::string OpenTabs() {
        std::string open;
        for (int tab = 0; tab < Tabs().Tabs(); ++tab) {
            open += Tabs().TabEnabled(tab) ? std::to_string(tab) : "";
        }
        return open;
    }
};

TEST_F(MainFrame, TheTitleEndsWithTheVersionRecord) {
    EXPECT_EQ(platform::VersionComments(), "Version 6.G4 Build 31");
    Start();
    EXPECT_EQ(Form().Caption(), "Halvane Vindrel SQL Database Manager [Version 6.G4 Build 31]");
}

TEST_F(MainFrame, AFirstStartLeavesAllBoxesEmptyAndShowsNoMessage) {
    main_.emplace();
    main_->Load();
    for (const auto& control : Form().Controls()) {
        if (control->Kind() == ui::Kind::TextBox) {
            EXPECT_EQ(static_cast<ui::TextBox&>(*control).Text(), "") << control->Name();
        }
    }
    EXPECT_EQ(OpenTabs(), "0");
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(LogLines().empty());
    EXPECT_TRUE(ado_.calls.empty());
}

TEST_F(MainFrame, LoadingShowsTheHourglass) {
    main_.emplace();
    main_->Load();
    EXPECT_EQ(screen_.calls, (Lines{"pointer 11", "events", "pointer 0"}));
}

TEST_F(MainFrame, EntriesAreReadInOrder) {
    Start();
    Lines expected;
    for (const std::string& key : kRememberedKeys) {
        expected.push_back("KVLSQLDbMgr/Settings/" + key);
    }
    EXPECT_EQ(remembered_.reads, expected);
}

TEST_F(MainFrame, EntriesAreSavedInTheSameOrderUnderTheHourglass) {
    RememberServer(0);
    Start();
    TypeInto(Edit("edtDomainName"), "dom");
    Databases({"master", "Batch"});
    Open(kUpgradeTab);
    ui::Choose(Combo("cboRemoveDatabase"), 1);
    screen_.calls.clear();
    ui::Click(Button("cmdClose"));
    EXPECT_TRUE(Form().Unloaded());
    ASSERT_EQ(remembered_.writes.size(), kRememberedKeys.size());
    for (std::size_t i = 0; i < kRememberedKeys.size(); ++i) {
        const std::string beginning = "KVLSQLDbMgr/Settings/" + kRememberedKeys[i] + "=";
        EXPECT_EQ(remembered_.writes[i].substr(0, beginning.size()), beginning);
    }
    EXPECT_EQ(remembered_.texts.at("KVLSQLDbMgr/Settings/edtDomainName"), "dom");
    EXPECT_EQ(remembered_.texts.at("KVLSQLDbMgr/Settings/cboRemoveDatabase"), "Batch");
    EXPECT_EQ(remembered_.texts.at("KVLSQLDbMgr/Settings/edtPassword0"), "pwA") << "in plain text";
    EXPECT_EQ(screen_.calls, (Lines{"pointer 11", "events", "pointer 0"}));
}

TEST_F(MainFrame, ClosingByTheFrameSavesAsWell) {
    Start();
    ui::Close(Form());
    EXPECT_EQ(remembered_.writes.size(), kRememberedKeys.size());
    EXPECT_TRUE(Form().Unloaded());
}

TEST_F(MainFrame, TheWindowClosesEvenIfTheEntriesCannotBeSaved) {
    Start();
    remembered_.writes_fail = true;
    ui::Click(Button("cmdClose"));
    EXPECT_TRUE(Form().Unloaded());
    EXPECT_EQ(remembered_.writes.size(), kRememberedKeys.size());
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(MainFrame, TypedTextsAreRestoredInTheNextRun) {
    Start();
    TypeInto(Edit("edtServerName", 0), "NodeA");
    TypeInto(Edit("edtServerName", 1), "NodeB");
    TypeInto(Edit("edtScriptFolder"), "S:\\Scripts");
    ui::Click(Button("cmdClose"));
    Start();
    EXPECT_EQ(Edit("edtServerName", 0).Text(), "NodeA");
    EXPECT_EQ(Edit("edtServerName", 1).Text(), "NodeB");
    EXPECT_EQ(Edit("edtScriptFolder").Text(), "S:\\Scripts");
}

TEST_F(MainFrame, ADropDownListRefusesItsRememberedTextAndAFreeComboBoxAcceptsIt) {
    for (const std::string& key : kRememberedKeys) {
        Remember(key, "Batch");
    }
    Start();
    for (const char* name : {"cboRenameDatabase", "cboUpgradeDatabaseSource", "cboRemoveDatabase",
                             "cboViewDataDatabase", "cboStoredProcDatabase", "cboStoredProcedure"}) {
        EXPECT_EQ(Combo(name).Text(), "") << name;
    }
    EXPECT_EQ(Combo("cboUpgradeDatabaseDest").Text(), "Batch");
    EXPECT_EQ(Edit("edtRenameNewDatabase").Text(), "Batch");
}

TEST_F(MainFrame, TheRememberedReplicationPathOverwritesTheDerivedOne) {
    Remember("edtSQLDataPath0", "D:\\Data");
    Remember("edtSQLUNCReplDataPath0", "kept");
    Remember("edtSQLDataPath1", "E:\\Data");
    Start();
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "kept");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 1).Text(), "") << "a missing entry overwrites it too";
    TypeInto(Edit("edtSQLDataPath", 0), "F:\\Data");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "F$\\ReplData");
}

TEST_F(MainFrame, AvailabilityIsWorkedOutOnceAtTheEndOfTheLoad) {
    RememberServer(0);
    RememberServer(1);
    SqlServerInstalled("TRUE");
    main_.emplace();
    main_->Load();
    const auto& calls = registry_.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Query SqlServerInstalled"), 1)
        << "although ten boxes were restored and changed";
    EXPECT_EQ(OpenTabs(), "0123456");
}

TEST_F(MainFrame, AChoiceOfATabDuringTheLoadHasNoEffect) {
    RememberLogin(0);
    main_.emplace();
    class Quick final : public ui::Mirror {
      public:
        explicit Quick(frmMain& main) : main_(main) {}
        void Changed(const ui::Control& control, ui::Property property) override {
            if (std::string(control.Name()) == "edtUserID" && property == ui::Property::Text) {
                ui::Choose(main_.Form().Get<ui::TabControl>("tabMain"), kUpgradeTab);
                general_enabled = main_.Form().Find("fraMainTab", kGeneralTab)->Enabled();
            }
        }
        bool general_enabled = false;

      private:
        frmMain& main_;
    } quick(*main_);
    Form().Attach(&quick);
    main_->Load();
    Form().Attach(nullptr);
    EXPECT_TRUE(quick.general_enabled) << "the page was switched";
    EXPECT_EQ(Option("optUpgradeCurrentServer", 0).Caption(), "Server A");
    EXPECT_TRUE(ado_.calls.empty());
    EXPECT_EQ(Tabs().Tab(), kGeneralTab) << "the load ends on this tab";
    EXPECT_TRUE(Form().Find("fraMainTab", kGeneralTab)->Enabled());
}

TEST_F(MainFrame, WithoutTheInstallationKeyTheDomainNameIsDisabled) {
    Start();
    EXPECT_TRUE(Edit("edtDomainName").Enabled());
    const auto& calls = registry_.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Query SqlDomain"), 1);
    registry_.Fail(fakes::RegistryCall::Open, 2);
    Start();
    EXPECT_FALSE(Edit("edtDomainName").Enabled());
    EXPECT_TRUE(Button("cmdGetInstalledPackages").Enabled())
        << "without an instance the packages stay enabled";
}

TEST_F(MainFrame, TheDomainInTheRegistryIsNotUsed) {
    Text(registry_locations::kInstallationKey, registry_locations::kSqlDomainValue, "REGDOM");
    const std::size_t open = registry_.OpenHandles();
    Start();
    EXPECT_EQ(Edit("edtDomainName").Text(), "");
    EXPECT_EQ(registry_.OpenHandles(), open);
}

TEST_F(MainFrame, TheScriptFileBoxFollowsARememberedFile) {
    Remember("edtCreateInstallScriptFile", "S:\\gone.sql");
    Start();
    EXPECT_FALSE(Check("chkCreateInstallScriptFile").Enabled());
    EXPECT_EQ(Check("chkCreateInstallScriptFile").Value(), 0);
    files_.AddFile("S:\\gone.sql", "");
    Start();
    EXPECT_TRUE(Check("chkCreateInstallScriptFile").Enabled());
}

TEST_F(MainFrame, TheDataListSelectsWholeRowsAndShowsGridLines) {
    Start();
    EXPECT_EQ(Form().Get<ui::ListView>("lvwViewData").ExtendedStyle(), ui::kFullRowSelect | ui::kGridLines);
}

TEST_F(MainFrame, OnlyThePageOfTheActiveTabIsEnabled) {
    RememberLogin(0);
    Start();
    const auto enabled = [this] {
        std::string pages;
        for (int page = 0; page < kMainTabs; ++page) {
            pages += Form().Find("fraMainTab", page)->Enabled() ? std::to_string(page) : "";
        }
        return pages;
    };
    EXPECT_EQ(enabled(), "0");
    Open(kViewDataTab);
    EXPECT_EQ(enabled(), "5");
}

TEST_F(MainFrame, WithEmptyFieldsOnlyTheGeneralTabCanBeUsed) {
    Start();
    EXPECT_EQ(OpenTabs(), "0");
    EXPECT_FALSE(ui::Choose(Tabs(), kScriptTab));
}

TEST_F(MainFrame, AvailabilityFollowsEachTypedCharacter) {
    RememberLogin(0);
    Start();
    EXPECT_EQ(OpenTabs(), "0356");
    TypeInto(Edit("edtPassword", 0), "");
    EXPECT_EQ(OpenTabs(), "0");
    ui::Type(Edit("edtPassword", 0), "x");
    EXPECT_EQ(OpenTabs(), "0356");
    TypeInto(Edit("edtSQLDataPath", 0), "D:\\Data");
    EXPECT_EQ(OpenTabs(), "01356");
    for (const char* name : {"edtServerName", "edtUserID", "edtPassword"}) {
        ui::Type(Edit(name, 1), "x");
    }
    EXPECT_EQ(OpenTabs(), "012356");
}

TEST_F(MainFrame, TheReplicationTabNeedsTheWordTrueInTheRegistry) {
    RememberServer(0);
    RememberServer(1);
    Start();
    EXPECT_FALSE(Tabs().TabEnabled(kReplicationTab));
    for (const char* word : {"true", "TRUE", "True"}) {
        SqlServerInstalled(word);
        Start();
        EXPECT_TRUE(Tabs().TabEnabled(kReplicationTab)) << word;
    }
    SqlServerInstalled("1");
    Start();
    EXPECT_FALSE(Tabs().TabEnabled(kReplicationTab));
}

TEST_F(MainFrame, ATabThatIsDisabledStaysOpen) {
    RememberLogin(0);
    Start();
    Open(kUpgradeTab);
    Edit("edtServerName", 0).Text("");
    EXPECT_FALSE(Tabs().TabEnabled(kUpgradeTab));
    EXPECT_EQ(Tabs().Tab(), kUpgradeTab);
}

TEST_F(MainFrame, AServerThatCannotBeUsedIsDisabledWhenTheTabIsOpened) {
    RememberLogin(0);
    Start();
    ui::OptionButton& b = Option("optUpgradeCurrentServer", 1);
    EXPECT_EQ(b.Caption(), "Server B");
    EXPECT_EQ(b.Tag(), "False");
    EXPECT_TRUE(b.Enabled()) << "the options change only when their tab is opened";
    Open(kUpgradeTab);
    EXPECT_EQ(Option("optUpgradeCurrentServer", 0).Caption(), "NodeA");
    EXPECT_TRUE(Option("optUpgradeCurrentServer", 0).Enabled());
    EXPECT_EQ(b.Caption(), "N/A");
    EXPECT_FALSE(b.Enabled());
}

TEST_F(MainFrame, TheSelectionMovesToTheServerThatCanBeUsed) {
    RememberLogin(1);
    Start();
    Open(kUpgradeTab);
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 0).Value());
    EXPECT_TRUE(Option("optUpgradeCurrentServer", 1).Value());
    EXPECT_EQ(Option("optUpgradeCurrentServer", 1).Caption(), "NodeB");
}

TEST_F(MainFrame, IfTheSelectedServerBCannotBeUsedServerAIsSelected) {
    RememberLogin(0);
    RememberLogin(1);
    Start();
    Option("optUpgradeCurrentServer", 1).Value(true);
    Edit("edtServerName", 1).Text("");
    Open(kUpgradeTab);
    EXPECT_TRUE(Option("optUpgradeCurrentServer", 0).Value());
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 1).Value());
}

TEST_F(MainFrame, TheSelectionStaysIfBothServersCanBeUsed) {
    RememberLogin(0);
    RememberLogin(1);
    Start();
    Option("optUpgradeCurrentServer", 1).Value(true);
    Open(kUpgradeTab);
    EXPECT_TRUE(Option("optUpgradeCurrentServer", 1).Value());
}

TEST_F(MainFrame, IfNoServerCanBeUsedNeitherIsSelected) {
    RememberLogin(0);
    RememberLogin(1);
    Start();
    Open(kUpgradeTab);
    Edit("edtServerName", 0).Text("");
    Edit("edtServerName", 1).Text("");
    EXPECT_TRUE(Option("optUpgradeCurrentServer", 0).Value()) << "until the tab is clicked again";
    Open(kGeneralTab);
    Tabs().TabEnabled(kUpgradeTab, true);
    Open(kUpgradeTab);
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 0).Value());
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 1).Value());
    EXPECT_EQ(Option("optUpgradeCurrentServer", 0).Caption(), "N/A");
}

TEST_F(MainFrame, IfNoServerCanBeUsedASelectedServerBIsClearedToo) {
    RememberLogin(0);
    RememberLogin(1);
    Start();
    Open(kUpgradeTab);
    ui::Click(Option("optUpgradeCurrentServer", 1));
    ASSERT_TRUE(Option("optUpgradeCurrentServer", 1).Value());
    Edit("edtServerName", 0).Text("");
    Edit("edtServerName", 1).Text("");
    Tabs().TabEnabled(kUpgradeTab, true);
    Open(kUpgradeTab);
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 0).Value());
    EXPECT_FALSE(Option("optUpgradeCurrentServer", 1).Value());
}

TEST_F(MainFrame, AClickOnTheActiveTabReadsItsListsAgain) {
    RememberLogin(0);
    Start();
    Databases({"master"});
    Open(kUpgradeTab);
    Databases({"master", "New"});
    Open(kUpgradeTab);
    EXPECT_EQ(ItemsOf(Combo("cboRemoveDatabase")), (Lines{"master", "New"}));
}

TEST_F(MainFrame, TheTickOfTheReplicationScriptsIsClearedWithServerBOnly) {
    RememberServer(0);
    RememberServer(1);
    Start();
    ui::CheckBox& box = Check("chkCreateInstallSQLServerReplication");
    EXPECT_TRUE(box.Enabled());
    box.Value(1);
    Edit("edtUserID", 0).Text("");
    EXPECT_FALSE(box.Enabled());
    EXPECT_EQ(box.Value(), 1) << "with Server A missing the tick stays";
    Edit("edtUserID", 0).Text("sa");
    Edit("edtUserID", 1).Text("");
    EXPECT_FALSE(box.Enabled());
    EXPECT_EQ(box.Value(), 0);
}

TEST_F(MainFrame, TheServersVersionDecidesIfPackagesCanBeInstalled) {
    const char* const controls[] = {"chkStandardSynchronize",       "chkBatchOverviewExport",
                                    "chkBatchSummaryExport",        "chkUpgradeDatabaseV1ToV2",
                                    "chkBatchOverviewRecalcExport", "chkBatchSummaryRecalcExport",
                                    "cmdGetInstalledPackages"};
    const std::pair<const char*, bool> versions[] = {
        {"9.00.1399.06", true}, {"11.9", true}, {"12.0.2000.8", false}, {"14.0.1000.169", false}, {"", true}};
    for (const auto& [version, enabled] : versions) {
        Version(version);
        Start();
        for (const char* name : controls) {
            EXPECT_EQ(Form().Find(name)->Enabled(), enabled) << version << " " << name;
        }
    }
}

TEST_F(MainFrame, AVersionWithoutAPointOrANumberFailsTheLoad) {
    const std::pair<const char*, std::int32_t> versions[] = {
        {"14", run_time::kInvalidProcedureCall},
        {"x.1", run_time::kTypeMismatch},
        {"40000.1", run_time::kOverflow},
    };
    for (const auto& [version, number] : versions) {
        Version(version);
        main_.emplace();
        try {
            main_->Load();
            FAIL() << "the load did not fail";
        } catch (...) {
            EXPECT_EQ(TranslateInFlight().Number(), number);
        }
        EXPECT_EQ(OpenTabs(), "0") << "availability is worked out before the version is read";
        EXPECT_TRUE(Form().Find("fraMainTab", kScriptTab)->Enabled()) << "the pages are disabled after it";
        EXPECT_EQ(screen_.pointer, 0);
    }
}

TEST_F(MainFrame, OpeningATabShowsTheHourglassAndLetsEventsRun) {
    RememberLogin(0);
    Start();
    Open(kUpgradeTab);
    EXPECT_EQ(screen_.calls, (Lines{"pointer 11", "events", "events", "pointer 0"}));
}

TEST_F(MainFrame, TheFirstTwoTabsAskNoServer) {
    RememberServer(0);
    Start();
    Open(kScriptTab);
    Open(kGeneralTab);
    EXPECT_TRUE(ado_.calls.empty());
}

TEST_F(MainFrame, TheOtherTabsFillTheirListsFromTheSelectedServer) {
    RememberServer(0);
    RememberServer(1);
    SqlServerInstalled("TRUE");
    Start();
    Databases({"master", "Batch"}, 9);
    const std::pair<MainTab, Lines> tabs[] = {
        {kUpgradeTab,
         {"cboRenameDatabase", "cboUpgradeDatabaseDest", "cboUpgradeDatabaseSource", "cboRemoveDatabase"}},
        {kReplicationTab, {"cboSQLReplicationDatabase"}},
        {kViewDataTab, {"cboViewDataDatabase"}},
        {kStoredProcTab, {"cboStoredProcDatabase"}},
    };
    for (const auto& [tab, combos] : tabs) {
        ado_.calls.clear();
        Open(tab);
        ASSERT_FALSE(Connections().empty());
        EXPECT_EQ(Connections().front(), "NodeA master");
        for (const std::string& combo : combos) {
            EXPECT_EQ(ItemsOf(Combo(combo.c_str())), (Lines{"master", "Batch"})) << combo;
        }
    }
    const std::pair<MainTab, const char*> options[] = {
        {kSynchronizeTab, "optSynchronizeSourceServer"}, {kUpgradeTab, "optUpgradeCurrentServer"},
        {kReplicationTab, "optSQLReplCurrentServer"},    {kViewDataTab, "optViewDataCurrentServer"},
        {kStoredProcTab, "optStoredProcCurrentServer"},
    };
    for (const auto& [tab, option] : options) {
        Option(option, 1).Value(true);
        ado_.calls.clear();
        Open(tab);
        ASSERT_FALSE(Connections().empty());
        EXPECT_EQ(Connections().front(), "NodeB master") << option;
    }
}

TEST_F(MainFrame, TheDestinationListShowsTheOtherServer) {
    RememberLogin(0);
    RememberLogin(1);
    Start();
    Databases({"ofA"});
    Databases({"ofB"});
    Open(kSynchronizeTab);
    EXPECT_EQ(Connections(), (Lines{"NodeA master", "NodeB master"}));
    EXPECT_EQ(Combo("cboSynchronizeSourceDatabase").Text(), "ofA");
    EXPECT_EQ(Combo("cboSynchronizeDestDatabase").Text(), "ofB");
}

TEST_F(MainFrame, ARefillKeepsTheChoiceOrElseChoosesTheFirst) {
    RememberLogin(0);
    Start();
    Databases({"master", "Batch"});
    Open(kUpgradeTab);
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "master");
    ui::Choose(Combo("cboRemoveDatabase"), 1);
    Databases({"batch", "tempdb", "Batch", "After"});
    main_->UpdateDatabaseLists(kUpgradeTab, true);
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "Batch") << "in another position";
    EXPECT_EQ(Combo("cboRemoveDatabase").ListIndex(), 2);
    Databases({"BATCH", "tempdb"});
    main_->UpdateDatabaseLists(kUpgradeTab, true);
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "BATCH")
        << "the letter case differs, so the first is chosen";
}

TEST_F(MainFrame, ARefillKeepsATypedDestination) {
    Remember("cboUpgradeDatabaseDest", "NotThereYet");
    RememberLogin(0);
    Start();
    Databases({"master"});
    Open(kUpgradeTab);
    EXPECT_EQ(Combo("cboUpgradeDatabaseDest").Text(), "NotThereYet");
    EXPECT_EQ(ItemsOf(Combo("cboUpgradeDatabaseDest")), Lines{"master"});
    EXPECT_EQ(Combo("cboUpgradeDatabaseSource").Text(), "master");
}

TEST_F(MainFrame, IfTheDatabasesCannotBeReadTheListsAreEmptyAndABoxSaysWhy) {
    RememberLogin(0);
    Start();
    Databases({"master"});
    Open(kUpgradeTab);
    ado_.Answer("Open", fakes::Failing(-2147217843, "Login failed"));
    main_->UpdateDatabaseLists(kUpgradeTab, true);
    EXPECT_EQ(Combo("cboRemoveDatabase").ListCount(), 0);
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "");
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("Login failed"), std::string::npos);
    EXPECT_EQ(LogLines(), Lines{"CUpgradeDbMgr::GetDatabases"});
}

TEST_F(MainFrame, ATabWithoutDatabaseListsFillsNothing) {
    RememberLogin(0);
    Start();
    Databases({"master"});
    main_->UpdateDatabaseLists(kScriptTab, true);
    EXPECT_EQ(Connections(), Lines{"NodeA master"}) << "the names are read nevertheless";
    EXPECT_EQ(Combo("cboRemoveDatabase").ListCount(), 0);
}

TEST_F(MainFrame, TheStatusLineStepsUpToItsEnd) {
    Start();
    Bar().Min(1);
    Bar().Value(7);
    main_->InitStatus(Int16(2), "Begin");
    EXPECT_EQ(Bar().Min(), 0.0F);
    EXPECT_EQ(Bar().Max(), 2.0F);
    EXPECT_EQ(Bar().Value(), 0.0F);
    EXPECT_EQ(Label("lblStatus").Caption(), "Begin");
    for (const float value : {1.0F, 2.0F, 2.0F}) {
        main_->StepStatus("Step");
        EXPECT_EQ(Bar().Value(), value);
    }
    Bar().Min(1);
    main_->ResetStatus("");
    EXPECT_EQ(Bar().Min(), 0.0F);
    EXPECT_EQ(Bar().Max(), 1.0F);
    EXPECT_EQ(Bar().Value(), 0.0F);
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    EXPECT_EQ(screen_.Count("events"), 5);
    main_->InitStatus(Int16(-1), "");
    EXPECT_EQ(Bar().Max(), 1.0F);
    main_->InitStatus(Int16(0), "");
    EXPECT_EQ(Bar().Max(), 0.0F);
}

TEST_F(MainFrame, TheSettingsAreTheCurrentTextsOfTheGeneralTab) {
    RememberServer(0);
    RememberServer(1);
    Start();
    Edit("edtUserID", 1).Text("other");
    class Manager : public ServerPairSettings {
    } settings;
    main_->FillSettings(settings, false);
    EXPECT_FALSE(settings.UseServerA());
    EXPECT_EQ(settings.ServerA() + settings.UserA() + settings.PasswordA(), "NodeAsaApwA");
    EXPECT_EQ(settings.ServerB() + settings.UserB() + settings.PasswordB(), "NodeBotherpwB");
    EXPECT_EQ(settings.SQLDataPathA() + settings.SQLDataPathB(), "D:\\DataE:\\Data");
    EXPECT_EQ(settings.SQLUNCReplDataPathA() + settings.SQLUNCReplDataPathB(), "D$\\ReplDataE$\\ReplData");
}

} // namespace
} // namespace kv

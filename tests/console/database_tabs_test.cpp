// Tests the commands of the Synchronize, Upgrade and Replication tabs.
#include "console/console_fixture.h"

namespace kv {
namespace {

class DatabaseTabs : public ConsoleTest {
  protected:
    DatabaseTabs() {
        RememberServer(0);
        RememberServer(1);
        SqlServerInstalled("TRUE");
    }
    /// Loads the window and opens a tab, with the databases "master" and "Batch" on both servers.
    void StartOn(MainTab tab) {
        Start();
        Databases({"master", "Batch"}, 2);
        Open(tab);
        // The command must not get an answer that was set for opening the tab.
        ado_.Take("exec sp_helpdb");
        screen_.calls.clear();
        ado_.calls.clear();
    }
    Lines Statements() const { return ado_.Statements(); }
    /// Checks that a command has ended: its button is enabled and has the focus, and the hourglass is gone.
    void ExpectButtonBack(const char* name) {
        EXPECT_TRUE(Button(name).Enabled());
        EXPECT_EQ(Form().Focused(), &Button(name));
        EXPECT_EQ(screen_.pointer, 0);
    }
};

using SynchronizeTabTest = DatabaseTabs;
using UpgradeTabTest = DatabaseTabs;
using ReplicationTabTest = DatabaseTabs;

TEST_F(SynchronizeTabTest, TheSourceIsCopiedToTheOtherServer) {
    StartOn(kSynchronizeTab);
    ui::Choose(Combo("cboSynchronizeSourceDatabase"), 1);
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Click(Button("cmdSynchronize"));
    EXPECT_EQ(Connections(), Lines{"NodeA Batch"});
    EXPECT_EQ(Statements().back(),
              "spStdSynchronize N'saA', N'pwA', N'NodeB', N'NodeA', N'master', N'Batch', "
              "N'saB', N'saA', N'pwB', N'pwA'");
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    ExpectButtonBack("cmdSynchronize");
}

TEST_F(SynchronizeTabTest, TheStatusLineSaysCompletedEvenAfterAFailure) {
    StartOn(kSynchronizeTab);
    ado_.Answer("Open", fakes::Failing(-2147467259, "no such server"));
    Lines texts;
    class Watch final : public ui::Mirror {
      public:
        Watch(ui::Label& label, Lines& texts) : label_(label), texts_(texts) {}
        void Changed(const ui::Control& control, ui::Property property) override {
            if (&control == &label_ && property == ui::Property::Refresh) {
                texts_.push_back(label_.Caption());
            }
        }

      private:
        ui::Label& label_;
        Lines& texts_;
    } watch(Label("lblStatus"), texts);
    Form().Attach(&watch);
    ui::Click(Button("cmdSynchronize"));
    Form().Attach(nullptr);
    EXPECT_EQ(texts,
              (Lines{"Initializing...", "Synchronizing databases...", "Synchronization completed...", ""}));
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("no such server"), std::string::npos);
    ExpectButtonBack("cmdSynchronize");
}

TEST_F(SynchronizeTabTest, TheSameDatabaseOfTheSameServerIsRefused) {
    StartOn(kSynchronizeTab);
    Edit("edtServerName", 1).Text("NodeA");
    ui::Click(Button("cmdSynchronize"));
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: Different source and destination database must be "
                             "specified!"});
    EXPECT_TRUE(ado_.calls.empty());
    EXPECT_EQ(Label("lblStatus").Caption(), "");
    ExpectButtonBack("cmdSynchronize");
    Edit("edtServerName", 1).Text("NODEA");
    ui::Click(Button("cmdSynchronize"));
    EXPECT_EQ(Boxes().size(), 1U) << "another spelling passes";
}

TEST_F(SynchronizeTabTest, WithServerBAsTheSourceServerAIsTheDestination) {
    StartOn(kSynchronizeTab);
    Databases({"ofB"});
    Databases({"ofA"});
    ui::Click(Option("optSynchronizeSourceServer", 1));
    ado_.calls.clear();
    ui::Click(Button("cmdSynchronize"));
    ASSERT_FALSE(Connections().empty());
    EXPECT_EQ(Connections().front(), "NodeB ofB");
}

TEST_F(SynchronizeTabTest, AnotherDatabaseOfTheSameServerIsAccepted) {
    StartOn(kSynchronizeTab);
    Edit("edtServerName", 1).Text("NodeA");
    ui::Choose(Combo("cboSynchronizeDestDatabase"), 1);
    ui::Click(Button("cmdSynchronize"));
    EXPECT_TRUE(Boxes().empty());
    EXPECT_FALSE(ado_.calls.empty());
}

TEST_F(SynchronizeTabTest, AChoiceOfTheSourceServerRefillsBothLists) {
    StartOn(kSynchronizeTab);
    ui::Click(Option("optSynchronizeSourceServer", 1));
    EXPECT_EQ(Connections(), (Lines{"NodeB master", "NodeA master"}));
    EXPECT_EQ(screen_.pointer, 0);
    EXPECT_EQ(screen_.Count("pointer 11"), 1);
}

TEST_F(SynchronizeTabTest, ARunDoesNotRefreshTheLists) {
    StartOn(kSynchronizeTab);
    ui::Click(Button("cmdSynchronize"));
    for (const std::string& statement : Statements()) {
        EXPECT_EQ(statement.find("sp_helpdb"), std::string::npos);
    }
}

TEST_F(UpgradeTabTest, RemoveRemovesAtOnceAndRefreshesTheLists) {
    StartOn(kUpgradeTab);
    ui::Choose(Combo("cboRemoveDatabase"), 1);
    Databases({"master"});
    ui::Click(Button("cmdRemove"));
    EXPECT_NE(Statements().at(2).find("DROP DATABASE [Batch]"), std::string::npos);
    EXPECT_EQ(Statements().back(), "exec sp_helpdb");
    EXPECT_EQ(ItemsOf(Combo("cboRemoveDatabase")), Lines{"master"});
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "master");
    EXPECT_TRUE(Boxes().empty());
    ExpectButtonBack("cmdRemove");
}

TEST_F(UpgradeTabTest, WithAnEmptyListRemovingTheEmptyNameSucceeds) {
    Start();
    Open(kUpgradeTab);
    ado_.calls.clear();
    ui::Click(Button("cmdRemove"));
    EXPECT_NE(Statements().at(2).find("DROP DATABASE []"), std::string::npos);
}

TEST_F(UpgradeTabTest, AnExistingNewNameIsRefusedWithoutARefresh) {
    StartOn(kUpgradeTab);
    TypeInto(Edit("edtRenameNewDatabase"), "Batch");
    Databases({"master", "Batch"});
    ui::Click(Button("cmdRename"));
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: The database 'Batch' already exist!"});
    EXPECT_EQ(Statements(), Lines{"exec sp_helpdb"});
    ExpectButtonBack("cmdRename");
}

TEST_F(UpgradeTabTest, ANewNameInAnotherCaseIsAccepted) {
    StartOn(kUpgradeTab);
    TypeInto(Edit("edtRenameNewDatabase"), "BATCH");
    ui::Choose(Combo("cboRenameDatabase"), 1);
    Databases({"master", "Batch"}, 2);
    ui::Click(Button("cmdRename"));
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(Statements().front(), "exec sp_helpdb");
    EXPECT_EQ(Statements().at(1), "use [Batch] exec sp_helpfile");
    EXPECT_EQ(LogLines().front().rfind("CUpgradeDbMgr::", 0), 0U) << "there are no files to rename";
    ExpectButtonBack("cmdRename");
}

TEST_F(UpgradeTabTest, UpgradeGoesFromTheSourceToTheTypedDestination) {
    StartOn(kUpgradeTab);
    Combo("cboUpgradeDatabaseDest").Text("New");
    ui::Choose(Combo("cboUpgradeDatabaseSource"), 1);
    for (const char* version : {"1", "2"}) {
        ado_.Answer(kVersionQuery, fakes::Rows({{version}}));
    }
    Databases({"master", "Batch"});
    ui::Click(Button("cmdUpgrade"));
    EXPECT_EQ(Connections(), (Lines{"NodeA Batch", "NodeA New", "NodeA master"})) << "refreshed at the end";
    EXPECT_EQ(Combo("cboUpgradeDatabaseDest").Text(), "New");
    ExpectButtonBack("cmdUpgrade");
}

TEST_F(UpgradeTabTest, TheErrorsOfTheCommandAreShownAfterThoseOfTheRefresh) {
    StartOn(kUpgradeTab);
    ado_.Answer("Open", fakes::Failing(-2147467259, "of the command"));
    ado_.Answer("Open", fakes::Failing(-2147467259, "of the refresh"));
    ui::Click(Button("cmdRemove"));
    ASSERT_EQ(Boxes().size(), 2U);
    EXPECT_NE(Boxes()[0].find("of the refresh"), std::string::npos);
    EXPECT_NE(Boxes()[1].find("of the command"), std::string::npos);
    ExpectButtonBack("cmdRemove");
}

TEST_F(UpgradeTabTest, TheCommandsWorkOnTheSelectedServer) {
    StartOn(kUpgradeTab);
    Databases({"ofB"});
    ui::Click(Option("optUpgradeCurrentServer", 1));
    EXPECT_EQ(Combo("cboRemoveDatabase").Text(), "ofB");
    ado_.calls.clear();
    ui::Click(Button("cmdRemove"));
    EXPECT_EQ(Connections(), (Lines{"NodeB master", "NodeB master"}));
}

TEST_F(ReplicationTabTest, OpeningShowsTheSettingTheListAndTheStatus) {
    Text(registry_locations::kCustomFunctionsKey, "UseTransactionalReplication", "true");
    Start();
    Databases({"master", "Batch"});
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ado_.Answer(kJobQuery, fakes::Rows({}));
    Open(kReplicationTab);
    EXPECT_EQ(Check("chkUseSQLServerReplication").Value(), 1);
    EXPECT_EQ(Combo("cboSQLReplicationDatabase").Text(), "master");
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").Caption(),
              "Transaction replication is not activated for the SQL Server database 'master'.");
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").ForeColor(), ui::kButtonText);
    EXPECT_TRUE(Button("cmdInstallReplication").Enabled());
    EXPECT_FALSE(Button("cmdUninstallReplication").Enabled());
    // Filling the combo box changes its text, which asks for the status once more.
    EXPECT_EQ(Connections(), (Lines{"NodeA master", "NodeA master", "NodeA master"}));
}

TEST_F(ReplicationTabTest, AServerWithAJobIsShownAsActivated) {
    StartOn(kReplicationTab);
    ado_.Answer(kJobQuery, fakes::Rows({{"job"}}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 1);
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").Caption(),
              "Transaction replication is activated for the SQL Server database 'Batch'.");
    EXPECT_FALSE(Button("cmdInstallReplication").Enabled());
    EXPECT_TRUE(Button("cmdUninstallReplication").Enabled());
}

TEST_F(ReplicationTabTest, AFailureIsRedAndShownForEachCharacter) {
    StartOn(kReplicationTab);
    ui::Edit(Combo("cboSQLReplicationDatabase"), "");
    screen_.calls.clear();
    for (int i = 0; i < 2; ++i) {
        ado_.Answer("Open", fakes::Failing(-2147467259, "Cannot open database"));
    }
    ui::Type(Combo("cboSQLReplicationDatabase"), "XY");
    EXPECT_EQ(Boxes().size(), 2U);
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").Caption(),
              "Replication status for database 'XY' could not be retieved from the SQL Server!");
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").ForeColor(), 255U);
    EXPECT_FALSE(Button("cmdInstallReplication").Enabled());
    EXPECT_FALSE(Button("cmdUninstallReplication").Enabled());
}

TEST_F(ReplicationTabTest, AListThatBecomesEmptyShowsTheStatusAsUnknown) {
    StartOn(kReplicationTab);
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 1);
    ASSERT_TRUE(Button("cmdInstallReplication").Enabled());
    ado_.Answer("Open", fakes::Failing(-2147467259, "Server B is down"));
    ado_.Answer("Open", fakes::Failing(-2147467259, "no database"));
    ui::Click(Option("optSQLReplCurrentServer", 1));
    EXPECT_EQ(Combo("cboSQLReplicationDatabase").Text(), "");
    EXPECT_EQ(Label("lblSQLServerReplicationStatus").Caption(),
              "Replication status for database '' could not be retieved from the SQL Server!");
    EXPECT_FALSE(Button("cmdInstallReplication").Enabled());
    EXPECT_FALSE(Button("cmdUninstallReplication").Enabled());
}

TEST_F(ReplicationTabTest, TheStatusIsThatOfTheUpgradeTabsServerAndTheListThatOfThisTabs) {
    StartOn(kReplicationTab);
    Databases({"ofB"});
    ui::Click(Option("optSQLReplCurrentServer", 1));
    EXPECT_EQ(Connections().front(), "NodeB master");
    EXPECT_EQ(Connections().back(), "NodeA ofB") << "the status comes from the Upgrade tab's server";
    Option("optUpgradeCurrentServer", 1).Value(true);
    ado_.calls.clear();
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 0);
    EXPECT_EQ(Connections(), Lines{"NodeB ofB"});
}

TEST_F(ReplicationTabTest, InstallAndUninstallAreFollowedByTheStatus) {
    StartOn(kReplicationTab);
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 1);
    ado_.calls.clear();
    ado_.Answer(kJobQuery, fakes::Rows({{"job"}}));
    ui::Click(Button("cmdInstallReplication"));
    EXPECT_EQ(Statements(), (Lines{"exec spInstallReplication", kJobQuery}));
    EXPECT_FALSE(Button("cmdInstallReplication").Enabled());
    ado_.calls.clear();
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Click(Button("cmdUninstallReplication"));
    EXPECT_EQ(Statements(), (Lines{"exec spUninstallReplication", kJobQuery}));
    EXPECT_TRUE(Button("cmdInstallReplication").Enabled());
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(ReplicationTabTest, AFailedInstallIsReportedAfterTheStatus) {
    StartOn(kReplicationTab);
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 1);
    ado_.Answer("exec spInstallReplication", fakes::Failing(-2147217900, "no such procedure"));
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Click(Button("cmdInstallReplication"));
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("no such procedure"), std::string::npos);
    EXPECT_TRUE(Button("cmdInstallReplication").Enabled());
}

TEST_F(ReplicationTabTest, TheSettingIsSavedAndShowsTheRegistryIfSavingFails) {
    StartOn(kReplicationTab);
    const auto stored = [this] {
        return registry_.TextOf(registry_locations::kHkeyLocalMachine,
                                registry_locations::kCustomFunctionsKey, "UseTransactionalReplication");
    };
    ui::Click(Check("chkUseSQLServerReplication"));
    EXPECT_EQ(stored(), "TRUE");
    ui::Click(Check("chkUseSQLServerReplication"));
    EXPECT_EQ(stored(), "FALSE");
    Check("chkUseSQLServerReplication").Value(2);
    Check("chkUseSQLServerReplication").on_click();
    EXPECT_EQ(stored(), "FALSE") << "only the value 1 is a tick";
    Check("chkUseSQLServerReplication").Value(0);
    registry_.Fail(fakes::RegistryCall::Set, 5);
    ui::Click(Check("chkUseSQLServerReplication"));
    EXPECT_EQ(Check("chkUseSQLServerReplication").Value(), 0);
    EXPECT_EQ(stored(), "FALSE");
    Text(registry_locations::kCustomFunctionsKey, "UseTransactionalReplication", "True");
    Check("chkUseSQLServerReplication").Value(1);
    ui::Click(Check("chkUseSQLServerReplication"));
    EXPECT_EQ(Check("chkUseSQLServerReplication").Value(), 1);
    EXPECT_EQ(stored(), "True");
}

} // namespace
} // namespace kv

// Tests failures that a working system does not have: the server is lost at any call of a command, and a
// handler's own code fails at each place where a failure is caught.
#include "console/console_fixture.h"
#include "console/procedures_form.h"

namespace kv {
namespace {

constexpr char kLostBox[] = "[exclamation] KVLSQLDbMgr: Error:\t-2147467259\r\n"
                            "Desc:\tCommunication link failure\r\n\t0\r\n\tSQL Server\r\n\t08S01\r\n";

ado::Parameter Input(const std::string& name) {
    ado::Parameter parameter;
    parameter.Name(name);
    parameter.Direction(ado::adParamInput);
    parameter.Type(200);
    return parameter;
}

/// Makes a change of a control's property fail once.
class BrokenControl final : public ui::Mirror {
  public:
    BrokenControl(ui::Form& form, const ui::Control& control, ui::Property property)
        : form_(form), control_(control), property_(property) {
        form_.Attach(this);
    }
    BrokenControl(const BrokenControl&) = delete;
    BrokenControl& operator=(const BrokenControl&) = delete;
    ~BrokenControl() { form_.Attach(nullptr); }
    void Changed(const ui::Control& control, ui::Property property) override {
        if (!broken_ && &control == &control_ && property == property_) {
            broken_ = true;
            throw ui::Refusal("broken");
        }
    }

  private:
    ui::Form& form_;
    const ui::Control& control_;
    ui::Property property_;
    bool broken_ = false;
};

class FailurePaths : public ConsoleTest {
  protected:
    FailurePaths() {
        RememberServer(0);
        RememberServer(1);
        SqlServerInstalled("TRUE");
    }
    /// Sets the answers that every command of these tests needs.
    void AnswerAll() {
        ado_.Forget();
        Databases({"master", "Batch"}, 4);
        ado_.Answer("use [master] exec sp_helpfile",
                    fakes::Rows({{"D", 1, "C:\\Data\\D.mdf"}, {"L", 2, "C:\\Data\\L.ldf"}}));
        ado_.Answer(kVersionQuery, fakes::Rows({{"1"}}));
        ado_.Answer(kVersionQuery, fakes::Rows({{"2"}}));
        for (int i = 0; i < 3; ++i) {
            ado_.Answer(kJobQuery, fakes::Rows({}));
            ado_.Answer("Refresh", Parameters());
        }
        ado_.Answer(kTableQuery, fakes::Rows({{"Lots"}}));
        HasData();
        fakes::AdoAnswer procedures = fakes::Rows({{"Batch", "spOne"}});
        procedures.fields = {"PROCEDURE_CATALOG", "PROCEDURE_NAME"};
        ado_.Answer("OpenSchema 16", procedures);
        ado_.Answer("sp_helptext 'spOne'", fakes::Rows({{"text"}}));
        ado_.Answer("call spOne", fakes::Rows({{1}}));
    }
    /// Sets the answers to reading the table "Lots".
    void HasData(const fakes::AdoAnswer& answer = fakes::Rows({{1}})) {
        ado_.Answer(IdentityQuery("Lots"), fakes::Rows({}));
        ado_.Answer("SELECT * FROM Lots", answer);
    }
    static fakes::AdoAnswer Parameters() {
        fakes::AdoAnswer answer;
        answer.parameters = {Input("@a"), Input("@b")};
        return answer;
    }
    void StartOn(MainTab tab) {
        Start();
        AnswerAll();
        Open(tab);
        Forget();
    }
    /// Drops the calls, boxes and log lines recorded so far, and sets all answers again.
    void Forget() {
        AnswerAll();
        screen_.calls.clear();
        ado_.calls.clear();
        files_.files.erase(fakes::FakeFiles::Plain(kLogFile));
    }
    /// Runs a command repeatedly. The server is lost after no call, then after one call and so on, until the
    /// command ends before the loss. Each time the form must stay usable, a message box must report the loss,
    /// and the same command must work when the server is back.
    void LoseTheServerAtEachCall(ui::Form& form, const std::function<void()>& press,
                                 const std::function<bool()>& usable) {
        std::size_t call = 0;
        for (bool missed = true; missed; ++call) {
            SCOPED_TRACE(call);
            Forget();
            ado_.missed = 0;
            ado_.LoseServerAfter(call);
            press();
            ado_.ServerIsBack();
            missed = ado_.missed != 0;
            EXPECT_TRUE(usable());
            EXPECT_FALSE(form.PaintingLocked());
            EXPECT_EQ(screen_.pointer, 0);
            EXPECT_EQ(ado_.connections, 0U);
            EXPECT_EQ(Boxes().empty(), !missed);
            for (const std::string& box : Boxes()) {
                EXPECT_EQ(box, kLostBox);
            }
            Forget();
            press();
            EXPECT_EQ(Boxes(), Lines{}) << "the next command works";
            EXPECT_TRUE(usable());
            ASSERT_LT(call, 60U) << "the command does not end";
        }
        EXPECT_GT(call, 2U) << "the command did not ask the server";
    }
    /// Does this for the command of a button, which must be enabled and have the focus each time.
    void PressAtEachLoss(MainTab tab, const char* button) {
        StartOn(tab);
        LoseTheServerAtEachCall(
            Form(),
            [&] {
                // The previous loss may have emptied the tab's lists.
                ASSERT_TRUE(Button(button).Enabled());
                ui::Click(Button(button));
            },
            [&] { return Button(button).Enabled() && Form().Focused() == &Button(button); });
    }
};

using LostServer = FailurePaths;

TEST_F(LostServer, WhileDatabasesAreSynchronized) {
    PressAtEachLoss(kSynchronizeTab, "cmdSynchronize");
}

TEST_F(LostServer, WhileADatabaseIsRenamed) {
    PressAtEachLoss(kUpgradeTab, "cmdRename");
}

TEST_F(LostServer, WhileADatabaseIsUpgraded) {
    PressAtEachLoss(kUpgradeTab, "cmdUpgrade");
}

TEST_F(LostServer, WhileADatabaseIsRemoved) {
    PressAtEachLoss(kUpgradeTab, "cmdRemove");
}

TEST_F(LostServer, WhileReplicationIsInstalledAndUninstalled) {
    StartOn(kReplicationTab);
    const std::pair<const char*, std::vector<fakes::AdoRow>> commands[] = {
        {"cmdInstallReplication", {}}, {"cmdUninstallReplication", {{"job"}}}};
    for (const auto& [button, jobs] : commands) {
        const char* const name = button;
        const auto status = [&, jobs = jobs] {
            ado_.Forget();
            ado_.Answer(kJobQuery, fakes::Rows(jobs));
            ado_.Answer(kJobQuery, fakes::Rows(jobs));
        };
        LoseTheServerAtEachCall(
            Form(),
            [&] {
                status();
                // A lost server has disabled both buttons; the next status enables them.
                Button(name).Enabled(true);
                ui::Click(Button(name));
            },
            [&] {
                const bool known = Label("lblSQLServerReplicationStatus").ForeColor() == ui::kButtonText;
                return Button(name).Enabled() == known;
            });
    }
}

TEST_F(LostServer, WhileATabIsOpened) {
    for (const MainTab tab : {kSynchronizeTab, kUpgradeTab, kReplicationTab, kViewDataTab, kStoredProcTab}) {
        SCOPED_TRACE(tab);
        Start();
        LoseTheServerAtEachCall(
            Form(),
            [&] {
                Open(kGeneralTab);
                Open(tab);
            },
            [&] { return Tabs().Tab() == tab && Form().Find("fraMainTab", tab)->Enabled(); });
    }
}

TEST_F(LostServer, WhileATableIsShown) {
    StartOn(kViewDataTab);
    LoseTheServerAtEachCall(
        Form(), [&] { ui::Choose(Combo("cboViewDataDatabase"), 1); },
        [&] {
            // If the tables cannot be read, the data of the previous database stay shown.
            const bool all_enabled =
                Form().Find("lstViewDataTables")->Enabled() && Form().Find("lvwViewData")->Enabled();
            return Combo("cboViewDataDatabase").Enabled() && all_enabled == Boxes().empty();
        });
}

TEST_F(LostServer, WhileAProcedureIsShown) {
    StartOn(kStoredProcTab);
    LoseTheServerAtEachCall(
        Form(), [&] { ui::Choose(Combo("cboStoredProcDatabase"), 1); },
        [&] { return Edit("edtStoredProcedure").Text() == "text" || !Boxes().empty(); });
}

TEST_F(LostServer, WhileAProcedureRuns) {
    CViewDataMgr manager;
    SelectServerA(manager);
    AnswerAll();
    frmStoredProcedures dialog;
    dialog.Init(manager, "Batch", "spOne");
    for (const char* button : {"cmdExecute", "cmdReload"}) {
        LoseTheServerAtEachCall(
            dialog.Form(), [&] { ui::Click(dialog.Form().Get<ui::CommandButton>(button)); },
            [&] { return dialog.Form().Find(button)->Enabled(); });
    }
    EXPECT_TRUE(dialog.Form().Find("lstParameters")->Enabled());
}

class BrokenHandler : public FailurePaths {
  protected:
    /// Runs the act with the control broken, and checks that the failure is logged under this name.
    void ExpectLogged(const std::string& tag, ui::Form& form, const ui::Control& control,
                      ui::Property property, const std::function<void()>& act) {
        Forget();
        {
            const BrokenControl broken(form, control, property);
            act();
        }
        EXPECT_EQ(LogLines(), Lines{tag});
        EXPECT_EQ(Boxes(), Lines{});
        EXPECT_EQ(screen_.pointer, 0);
        EXPECT_FALSE(form.PaintingLocked());
    }
};

TEST_F(BrokenHandler, OpeningATab) {
    const auto open = [this] {
        Open(kGeneralTab);
        Open(kUpgradeTab);
    };
    Start();
    ExpectLogged("frmMain::tabMain_Click", Form(), Option("optUpgradeCurrentServer", 0),
                 ui::Property::Caption, open);
    EXPECT_TRUE(ado_.calls.empty()) << "the handler ends at the failure";
    ExpectLogged("frmMain::UpdateTabStatus", Form(), *Form().Find("fraMainTab", 0), ui::Property::Enabled,
                 open);
    EXPECT_FALSE(ado_.calls.empty()) << "opening the tab continues";
    ExpectLogged("frmMain::UpdateDatabaseLists", Form(), Combo("cboRemoveDatabase"), ui::Property::Items,
                 open);
}

TEST_F(BrokenHandler, ACommandEnablesItsButtonAgain) {
    const std::tuple<MainTab, const char*, const char*> commands[] = {
        {kSynchronizeTab, "cmdSynchronize", "frmMain::cmdSynchronize_Click"},
        {kUpgradeTab, "cmdRename", "frmMain::cmdRename_Click"},
        {kUpgradeTab, "cmdUpgrade", "frmMain::cmdUpgrade_Click"},
        {kUpgradeTab, "cmdRemove", "frmMain::cmdRemove_Click"},
    };
    for (const auto& [tab, name, tag] : commands) {
        StartOn(tab);
        ui::CommandButton& button = Button(name);
        ExpectLogged(tag, Form(), button, ui::Property::Enabled, [&button] { ui::Click(button); });
        EXPECT_TRUE(button.Enabled()) << name;
        EXPECT_EQ(Form().Focused(), &button) << name;
        EXPECT_EQ(Label("lblStatus").Caption(), "");
        EXPECT_EQ(ado_.Statements(), tab == kUpgradeTab ? Lines{"exec sp_helpdb"} : Lines{})
            << "only the lists are read";
    }
}

TEST_F(BrokenHandler, TheStatusOfReplication) {
    StartOn(kReplicationTab);
    ExpectLogged("frmMain::UpdatedReplicationStatus", Form(), Label("lblSQLServerReplicationStatus"),
                 ui::Property::Caption, [this] { ui::Choose(Combo("cboSQLReplicationDatabase"), 1); });
}

TEST_F(BrokenHandler, AFailureAfterTheStatusOfReplicationIsCaughtByItsCaller) {
    StartOn(kReplicationTab);
    screen_.on_box = [] { throw ui::Refusal("no box"); };
    const std::pair<const char*, std::function<void()>> acts[] = {
        {"frmMain::cboSQLReplicationDatabase_Click",
         [this] { ui::Choose(Combo("cboSQLReplicationDatabase"), 1); }},
        {"frmMain::cboSQLReplicationDatabase_Change",
         [this] { ui::Type(Combo("cboSQLReplicationDatabase"), "X"); }},
        {"frmMain::cmdInstallReplication_Click", [this] { ui::Click(Button("cmdInstallReplication")); }},
        {"frmMain::cmdUninstallReplication_Click", [this] { ui::Click(Button("cmdUninstallReplication")); }},
    };
    for (const auto& [tag, act] : acts) {
        Forget();
        ado_.Forget();
        ado_.Answer(kJobQuery, fakes::Failing());
        Button("cmdInstallReplication").Enabled(true);
        Button("cmdUninstallReplication").Enabled(true);
        act();
        ASSERT_EQ(LogLines().size(), 2U) << tag;
        EXPECT_EQ(LogLines()[1], tag);
        EXPECT_EQ(screen_.pointer, 0);
    }
}

TEST_F(BrokenHandler, TheProceduresAndTheirText) {
    StartOn(kStoredProcTab);
    const auto choose = [this] { ui::Choose(Combo("cboStoredProcDatabase"), 1); };
    ExpectLogged("frmMain::loadStoredProcedures", Form(), Combo("cboStoredProcedure"), ui::Property::Items,
                 choose);
    ExpectLogged("frmMain::cboStoredProcedure_Click", Form(), Edit("edtStoredProcedure"), ui::Property::Text,
                 choose);
    EXPECT_TRUE(Combo("cboStoredProcedure").Enabled()) << "the outer handler continued";
    Forget();
    toolkit_.on_modal = [](ui::Form&) { throw ui::Refusal("no dialog"); };
    ui::Click(Button("cmdExecute"));
    EXPECT_EQ(LogLines(), Lines{"frmMain::cmdExecute_Click"});
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(BrokenHandler, TheDialog) {
    CViewDataMgr manager;
    SelectServerA(manager);
    AnswerAll();
    frmStoredProcedures dialog;
    dialog.Init(manager, "Batch", "spOne");
    ui::Form& form = dialog.Form();
    auto& list = form.Get<ui::ListBox>("lstParameters");
    ExpectLogged("frmStoredProcedures::loadParameters", form, list, ui::Property::Items,
                 [&form] { ui::Click(form.Get<ui::CommandButton>("cmdReload")); });
    Forget();
    ui::Click(form.Get<ui::CommandButton>("cmdReload"));
    auto& value = form.Get<ui::TextBox>("edtValue");
    value.Tag("no number");
    ui::Choose(list, 1);
    EXPECT_EQ(LogLines(), Lines{"frmStoredProcedures::lstParameters_Click - Save parameter"});
    EXPECT_EQ(value.Tag(), "2") << "the chosen parameter is loaded nevertheless";
}

TEST_F(BrokenHandler, MoreDatabasesThanTheCounterCanCount) {
    StartOn(kUpgradeTab);
    ado_.Forget();
    Databases(Lines(32'768, "D"));
    main_->UpdateDatabaseLists(kUpgradeTab, true);
    EXPECT_EQ(LogLines(), Lines{"frmMain::UpdateDatabaseLists"});
    Forget();
    ado_.Forget();
    Databases(Lines(32'768, "D"));
    Edit("edtRenameNewDatabase").Text("New");
    ui::Click(Button("cmdRename"));
    EXPECT_EQ(LogLines().front(), "frmMain::cmdRename_Click");
    EXPECT_TRUE(Button("cmdRename").Enabled());
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(FailurePaths, ALogThatCannotBeWrittenEndsTheCommand) {
    StartOn(kUpgradeTab);
    ado_.Forget();
    ado_.Answer("Open", fakes::LostConnection());
    // The operation's handler fails; the command's handler catches that failure and fails too.
    files_.FailNext("create folder", "C:\\Lotkeeper\\Server\\Data", platform::FileFault::AccessDenied);
    files_.FailNext("append", kLogFile, platform::FileFault::PathNotFound);
    try {
        ui::Click(Button("cmdRemove"));
        FAIL() << "the failure was not raised to the caller";
    } catch (...) {
        EXPECT_EQ(TranslateInFlight().Number(), run_time::kPathNotFound);
    }
    EXPECT_FALSE(Button("cmdRemove").Enabled()) << "the exit steps do not run";
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(FailurePaths, AResultWithoutAColumnLeavesTheWindowLockedAndTheListDisabled) {
    Start();
    AnswerAll();
    Open(kViewDataTab);
    ado_.Forget();
    ado_.Answer(kTableQuery, fakes::Rows({{"Lots"}}));
    HasData();
    ui::Choose(Combo("cboViewDataDatabase"), 1);
    ASSERT_TRUE(Form().Find("lvwViewData")->Enabled());
    fakes::AdoAnswer empty;
    empty.no_columns = true;
    HasData(empty);
    screen_.calls.clear();
    ui::Choose(Form().Get<ui::ListBox>("lstViewDataTables"), 0);
    EXPECT_EQ(Form().PaintingLocks(), 1);
    EXPECT_FALSE(Form().Find("lvwViewData")->Enabled());
    EXPECT_EQ(Form().Get<ui::ListView>("lvwViewData").ColumnCount(), 0);
    EXPECT_EQ(screen_.calls, (Lines{"pointer 11", "events", "events", "pointer 0"}));
    EXPECT_EQ(LogLines(), Lines{});
    HasData();
    ui::Choose(Form().Get<ui::ListBox>("lstViewDataTables"), 0);
    EXPECT_FALSE(Form().PaintingLocked()) << "the next table unlocks the window";
}

TEST_F(FailurePaths, AProceduresResultWithoutAColumnLeavesTheDialogLocked) {
    CViewDataMgr manager;
    SelectServerA(manager);
    AnswerAll();
    frmStoredProcedures dialog;
    dialog.Init(manager, "Batch", "spOne");
    Forget();
    ado_.Forget();
    fakes::AdoAnswer empty;
    empty.no_columns = true;
    // The server's message is not shown: showing it is one of the exit steps.
    empty.errors = {{0, "a message", "SQL Server", 0, "01000"}};
    ado_.Answer("call spOne", empty);
    ui::Click(dialog.Form().Get<ui::CommandButton>("cmdExecute"));
    EXPECT_TRUE(dialog.Form().PaintingLocked());
    EXPECT_FALSE(dialog.Form().Find("lvwViewData")->Enabled());
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(LogLines(), Lines{});
    EXPECT_EQ(screen_.pointer, 0);
    Forget();
    ui::Click(dialog.Form().Get<ui::CommandButton>("cmdExecute"));
    EXPECT_FALSE(dialog.Form().PaintingLocked());
    EXPECT_TRUE(dialog.Form().Find("lvwViewData")->Enabled());
}

TEST_F(FailurePaths, ASecondListThatFailsEmptiesTheDestinationOnly) {
    Start();
    Databases({"ofA"});
    Databases({"ofB"});
    Open(kSynchronizeTab);
    Databases({"ofA"});
    ado_.Answer("exec sp_helpdb", fakes::Failing());
    main_->UpdateDatabaseLists(kSynchronizeTab, true);
    EXPECT_EQ(ItemsOf(Combo("cboSynchronizeSourceDatabase")), Lines{"ofA"});
    EXPECT_EQ(ItemsOf(Combo("cboSynchronizeDestDatabase")), Lines{});
    EXPECT_EQ(Combo("cboSynchronizeDestDatabase").Text(), "");
}

} // namespace
} // namespace kv

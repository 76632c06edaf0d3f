// Tests the order of the steps that an operator can see. For each command and each choice this is the
// sequence of hourglass, buttons, requests to the server, lists, status line and message boxes.
#include <tuple>

#include "console/console_fixture.h"
#include "console/procedures_form.h"

namespace kv {
namespace {

/// While an object of this class exists, it adds the changes of a form as lines to the recorded calls of the
/// screen:
///   "lock", "unlock"                painting of the window is locked or unlocked
///   "NAME on", "NAME off"           a control is enabled or disabled
///   "NAME locked", "NAME unlocked"  a text box is made read-only or writable
///   "NAME colour", "NAME text", "NAME caption"
///   "NAME filled", "NAME sized"     a list changes; changes in a row are one line
///   "NAME painted"                  a control is painted at once
///   "status VALUE/MAX TEXT"         the status line is painted
///   "focus NAME"                    the program sets the focus
///   "server"                        a database was asked since the previous line
class Trace final : public ui::Mirror {
  public:
    Trace(ui::Form& form, fakes::FakeScreen& screen, const fakes::FakeAdo& ado)
        : form_(form), screen_(screen), ado_(ado), asked_(ado.calls.size()) {
        form_.Attach(this);
        screen_.on_box = [this] { AddServerLine(1); };
        screen_.calls.clear();
    }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    ~Trace() {
        form_.Attach(nullptr);
        screen_.on_box = nullptr;
    }

    void Changed(const ui::Control& control, ui::Property property) override {
        const std::string line = LineOf(control, property);
        if (line.empty()) {
            return;
        }
        AddServerLine(0);
        const bool of_a_list = control.Kind() == ui::Kind::ListView || control.Kind() == ui::Kind::ListBox ||
                               control.Kind() == ui::Kind::ComboBox;
        if (!of_a_list || screen_.calls.empty() || screen_.calls.back() != line) {
            screen_.calls.push_back(line);
        }
    }

  private:
    std::string LineOf(const ui::Control& control, ui::Property property) const {
        const std::string name = NameOf(control);
        switch (property) {
        case ui::Property::Painting:
            return form_.PaintingLocked() ? "lock" : "unlock";
        case ui::Property::Focus:
            return "focus " + NameOf(*form_.Focused());
        case ui::Property::Refresh:
            return control.Kind() == ui::Kind::Label ? Status() : name + " painted";
        case ui::Property::Enabled:
            return name + (control.Enabled() ? " on" : " off");
        case ui::Property::Locked:
            return name + (static_cast<const ui::TextBox&>(control).Locked() ? " locked" : " unlocked");
        case ui::Property::ForeColor:
        case ui::Property::BackColor:
            return name + " colour";
        case ui::Property::Text:
            return control.Kind() == ui::Kind::TextBox ? name + " text" : "";
        case ui::Property::Caption:
            return name == "lblStatus" ? "" : name + " caption";
        case ui::Property::Items:
        case ui::Property::Rows:
        case ui::Property::Columns:
        case ui::Property::Cells:
            return name + " filled";
        case ui::Property::ColumnSizes:
            return name + " sized";
        default:
            return "";
        }
    }
    static std::string NameOf(const ui::Control& control) {
        const auto index = control.Index();
        return control.Name() + (index ? "(" + std::to_string(*index) + ")" : std::string());
    }
    std::string Status() const {
        const auto& bar = form_.Get<ui::ProgressBar>("prbStatus");
        return "status " + std::to_string(static_cast<int>(bar.Value())) + "/" +
               std::to_string(static_cast<int>(bar.Max())) + " " +
               form_.Get<ui::Label>("lblStatus").Caption();
    }
    /// Adds the line "server" if a database was asked, before the last `lines` lines.
    void AddServerLine(int lines) {
        if (ado_.calls.size() != asked_) {
            screen_.calls.insert(screen_.calls.end() - lines, "server");
        }
        asked_ = ado_.calls.size();
    }

    ui::Form& form_;
    fakes::FakeScreen& screen_;
    const fakes::FakeAdo& ado_;
    std::size_t asked_;
};

std::string BoxOf(const std::string& description) {
    return "box [exclamation] KVLSQLDbMgr: Error:\t-2147467259\r\nDesc:\t" + description +
           "\r\n\t50000\r\n\tSQL Server\r\n\t42000\r\n";
}

/// Starts with a script folder and with all fields of both servers filled in.
class CommandOrder : public ConsoleTest {
  protected:
    CommandOrder() {
        files_.AddFolder("S:\\Scripts");
        Remember("edtScriptFolder", "S:\\Scripts");
        RememberServer(0);
        RememberServer(1);
        SqlServerInstalled("TRUE");
    }
    /// Loads the window and opens a tab, with two databases on each server.
    void StartOn(MainTab tab) {
        Start();
        Databases({"master", "Batch"}, 2);
        Open(tab);
        ado_.Forget();
    }
    /// Makes the next connection fail.
    void ServerFails(const std::string& description) {
        ado_.Answer("Open", fakes::Failing(-2147467259, description));
    }
    /// Runs the act and returns the lines recorded meanwhile.
    template <class Act>
    const Lines& Recorded(ui::Form& form, const Act& act) {
        const Trace trace(form, screen_, ado_);
        act();
        return screen_.calls;
    }
    const Lines& RecordedAtClick(const char* button) {
        return Recorded(Form(), [&] { EXPECT_TRUE(ui::Click(Button(button))); });
    }
};

TEST_F(CommandOrder, TheLoadOfTheWindow) {
    Remember("edtDomainName", "dom");
    Remember("edtSQLUNCReplDataPath0", "kept");
    Remember("edtCreateInstallScriptFile", "S:\\gone.sql");
    Remember("edtRenameNewDatabase", "New");
    registry_.Fail(fakes::RegistryCall::Open, 2); // the installation's key does not exist
    main_.emplace();
    EXPECT_EQ(Recorded(Form(), [this] { main_->Load(); }),
              (Lines{"pointer 11",
                     "events",
                     "frmMain caption",
                     "edtDomainName off",
                     "edtScriptFolder text",
                     "edtDomainName text",
                     "edtServerName(0) text",
                     "edtUserID(0) text",
                     "edtPassword(0) text",
                     "edtSQLDataPath(0) text",
                     "edtSQLUNCReplDataPath(0) text", // derived
                     "edtSQLUNCReplDataPath(0) text", // remembered
                     "edtServerName(1) text",
                     "edtUserID(1) text",
                     "edtPassword(1) text",
                     "edtSQLDataPath(1) text",
                     "edtSQLUNCReplDataPath(1) text",
                     "edtCreateInstallScriptFile text",
                     "chkCreateInstallScriptFile off",
                     "edtRenameNewDatabase text",
                     "fraMainTab(1) off",
                     "fraMainTab(2) off",
                     "fraMainTab(3) off",
                     "fraMainTab(4) off",
                     "fraMainTab(5) off",
                     "fraMainTab(6) off",
                     "pointer 0"}));
}

TEST_F(CommandOrder, OpeningATab) {
    Start();
    EXPECT_EQ(Recorded(Form(), [this] { Open(kViewDataTab); }),
              (Lines{"pointer 11", "events", "optViewDataCurrentServer(0) caption",
                     "optViewDataCurrentServer(1) caption", "fraMainTab(0) off", "fraMainTab(5) on", "events",
                     "server", "cboViewDataDatabase filled", "pointer 0"}));
}

TEST_F(CommandOrder, OpeningTheReplicationTab) {
    Start();
    ServerFails("of the list");
    ServerFails("of the status");
    const Lines& lines = Recorded(Form(), [this] { Open(kReplicationTab); });
    const auto filled = std::find(lines.begin(), lines.end(), "cboSQLReplicationDatabase filled");
    EXPECT_EQ(Lines(filled, lines.end()),
              (Lines{"cboSQLReplicationDatabase filled", BoxOf("of the list"), "server",
                     "cmdInstallReplication off", "cmdUninstallReplication off",
                     "lblSQLServerReplicationStatus colour", "lblSQLServerReplicationStatus caption",
                     BoxOf("of the status"), "pointer 0"}));
}

TEST_F(CommandOrder, ChoosingAServerFillsTheListsOfEachTab) {
    const std::tuple<MainTab, const char*, Lines> choices[] = {
        {kSynchronizeTab,
         "optSynchronizeSourceServer",
         {"cboSynchronizeSourceDatabase filled", "server", "cboSynchronizeDestDatabase filled"}},
        {kUpgradeTab,
         "optUpgradeCurrentServer",
         {"cboRenameDatabase filled", "cboUpgradeDatabaseDest filled", "cboUpgradeDatabaseSource filled",
          "cboRemoveDatabase filled"}},
        {kViewDataTab, "optViewDataCurrentServer", {"cboViewDataDatabase filled"}},
        {kStoredProcTab, "optStoredProcCurrentServer", {"cboStoredProcDatabase filled"}},
    };
    for (const auto& [tab, option, lists] : choices) {
        StartOn(tab);
        Lines expected = {"pointer 11", "events", "server"};
        expected.insert(expected.end(), lists.begin(), lists.end());
        expected.emplace_back("pointer 0");
        const char* const name = option;
        EXPECT_EQ(Recorded(Form(), [&] { ui::Click(Option(name, 1)); }), expected) << name;
    }
}

TEST_F(CommandOrder, ChoosingAServerOnTheReplicationTabEmptiesAndFillsItsComboBox) {
    StartOn(kReplicationTab);
    Databases({"ofB"});
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ado_.Answer(kJobQuery, fakes::Rows({{"job"}}));
    EXPECT_EQ(Recorded(Form(), [&] { ui::Click(Option("optSQLReplCurrentServer", 1)); }),
              (Lines{"pointer 11", "events", "server",
                     // the text changes to the empty text
                     "cboSQLReplicationDatabase filled", "pointer 11", "events", "server",
                     "cmdInstallReplication on", "lblSQLServerReplicationStatus colour",
                     "lblSQLServerReplicationStatus caption", "pointer 11",
                     // the text changes to the first name
                     "cboSQLReplicationDatabase filled", "pointer 11", "events", "server",
                     "cmdInstallReplication off", "cmdUninstallReplication on",
                     "lblSQLServerReplicationStatus caption", "pointer 11", "pointer 0"}));
}

TEST_F(CommandOrder, Synchronize) {
    StartOn(kSynchronizeTab);
    ServerFails("gone");
    EXPECT_EQ(RecordedAtClick("cmdSynchronize"),
              (Lines{"pointer 11", "events", "cmdSynchronize off", "status 0/2 Initializing...", "events",
                     "status 1/2 Synchronizing databases...", "events", "server",
                     "status 2/2 Synchronization completed...", "events", "cmdSynchronize on",
                     "focus cmdSynchronize", BoxOf("gone"), "status 0/1 ", "events", "pointer 0"}));
}

TEST_F(CommandOrder, SynchronizeRefused) {
    StartOn(kSynchronizeTab);
    Edit("edtServerName", 1).Text("NodeA");
    EXPECT_EQ(RecordedAtClick("cmdSynchronize"),
              (Lines{"pointer 11", "events", "cmdSynchronize off", "status 0/2 Initializing...", "events",
                     "box [exclamation] KVLSQLDbMgr: Different source and destination database must be "
                     "specified!",
                     "cmdSynchronize on", "focus cmdSynchronize", "status 0/1 ", "events", "pointer 0"}));
}

TEST_F(CommandOrder, RenameUpgradeAndRemove) {
    StartOn(kUpgradeTab);
    for (const std::string name : {"cmdRename", "cmdUpgrade", "cmdRemove"}) {
        if (name == "cmdRename") {
            ServerFails("of the names"); // not shown: the next operation drops the errors of this one
        }
        ServerFails("of the command");
        ServerFails("of the refresh");
        EXPECT_EQ(RecordedAtClick(name.c_str()),
                  (Lines{"pointer 11", "events", name + " off", "server", "cboRenameDatabase filled",
                         "cboUpgradeDatabaseDest filled", "cboUpgradeDatabaseSource filled",
                         "cboRemoveDatabase filled", BoxOf("of the refresh"), name + " on", "focus " + name,
                         BoxOf("of the command"), "pointer 0"}));
    }
}

TEST_F(CommandOrder, RenameRefused) {
    StartOn(kUpgradeTab);
    Edit("edtRenameNewDatabase").Text("Batch");
    Databases({"master", "Batch"});
    EXPECT_EQ(RecordedAtClick("cmdRename"),
              (Lines{"pointer 11", "events", "cmdRename off", "server",
                     "box [exclamation] KVLSQLDbMgr: The database 'Batch' already exist!", "cmdRename on",
                     "focus cmdRename", "pointer 0"}));
}

TEST_F(CommandOrder, TheStatusOfReplicationAtEachChange) {
    StartOn(kReplicationTab);
    ado_.Answer(kJobQuery, fakes::Rows({}));
    ui::Choose(Combo("cboSQLReplicationDatabase"), 0);
    ado_.Answer(kJobQuery, fakes::Rows({{"job"}}));
    EXPECT_EQ(Recorded(Form(), [this] { ui::Choose(Combo("cboSQLReplicationDatabase"), 1); }),
              (Lines{"pointer 11", "events", "server", "cmdInstallReplication off",
                     "cmdUninstallReplication on", "lblSQLServerReplicationStatus caption", "pointer 0"}));
    ado_.Answer(kJobQuery, fakes::Rows({}));
    EXPECT_EQ(Recorded(Form(), [this] { ui::Type(Combo("cboSQLReplicationDatabase"), "X"); }),
              (Lines{"pointer 11", "events", "server", "cmdInstallReplication on",
                     "cmdUninstallReplication off", "lblSQLServerReplicationStatus caption", "pointer 0"}));
}

TEST_F(CommandOrder, InstallAndUninstallReplication) {
    StartOn(kReplicationTab);
    for (const char* const name : {"cmdInstallReplication", "cmdUninstallReplication"}) {
        Button(name).Enabled(true);
        Label("lblSQLServerReplicationStatus").ForeColor(ui::kButtonText);
        Label("lblSQLServerReplicationStatus").Caption("");
        ServerFails("of the command");
        ServerFails("of the status");
        EXPECT_EQ(RecordedAtClick(name),
                  (Lines{"pointer 11", "events", "server", std::string(name) + " off",
                         "lblSQLServerReplicationStatus colour", "lblSQLServerReplicationStatus caption",
                         BoxOf("of the status"), BoxOf("of the command"), "pointer 0"}));
    }
}

class RunOrder : public CommandOrder {
  protected:
    void StartOnScripts() {
        Start();
        Open(kScriptTab);
        processes_.on_start = [this](const platform::ShellExecuteInfo&) {
            screen_.calls.emplace_back("tool");
            return true;
        };
    }
    void ExpectRefused(const std::string& max, const std::string& text, const Lines& between) {
        Lines expected = {"pointer 11", "events", "cmdCreateInstall off",
                          "status 0/" + max + " Initializing...", "events"};
        expected.insert(expected.end(), between.begin(), between.end());
        for (const std::string& line :
             {"box [exclamation] KVLSQLDbMgr: " + text, std::string("cmdCreateInstall on"),
              std::string("focus cmdCreateInstall"), std::string("status 0/1 "), std::string("events"),
              std::string("pointer 0")}) {
            expected.push_back(line);
        }
        EXPECT_EQ(RecordedAtClick("cmdCreateInstall"), expected);
    }
};

TEST_F(RunOrder, ARunOfScriptsAndPackages) {
    files_.AddFile("S:\\Scripts\\Create_Batch_Database.sql", "PRINT 1");
    StartOnScripts();
    Check("chkCreateInstallBatchDatabase").Value(1);
    Check("chkStandardSynchronize").Value(1);
    Option("optCreateInstallScriptFiles", 1).Value(true);
    EXPECT_EQ(RecordedAtClick("cmdCreateInstall"),
              (Lines{"pointer 11",
                     "events",
                     "cmdCreateInstall off",
                     "status 0/5 Initializing...",
                     "events",
                     "status 1/5 Create modified batch database script...",
                     "events",
                     "wait 2000",
                     "status 2/5 Install batch database...",
                     "events",
                     "tool",
                     "wait 2000",
                     "status 3/5 Install Standard Synchronize DTS package...",
                     "events",
                     "status 4/5 Installation completed...",
                     "events",
                     "wait 3000",
                     "cmdCreateInstall on",
                     "focus cmdCreateInstall",
                     "status 0/1 ",
                     "events",
                     "pointer 0"}));
}

TEST_F(RunOrder, RefusedWithNothingTicked) {
    StartOnScripts();
    EXPECT_EQ(RecordedAtClick("cmdCreateInstall"),
              (Lines{"pointer 11", "events", "cmdCreateInstall off", "status 0/2 Initializing...", "events",
                     "box [exclamation] KVLSQLDbMgr: No scripts or DTS packages selected!",
                     "cmdCreateInstall on", "focus cmdCreateInstall", "pointer 0"}));
}

TEST_F(RunOrder, RefusedLater) {
    StartOnScripts();
    Check("chkCreateInstallBatchDatabase").Value(1);
    ExpectRefused("3", "You must specify a script folder!", {});
    files_.AddFile("S:\\Scripts\\other.txt", "");
    const Lines created = {"status 1/3 Create modified batch database script...", "events", "wait 2000"};
    ExpectRefused("3", "No scripts or DTS packages were found in the script folder!", created);
    files_.AddFile("S:\\Scripts\\Create_Batch_Database.sql", "PRINT 1");
    files_.files.erase(fakes::FakeFiles::Plain(kTool));
    Option("optCreateInstallScriptFiles", 1).Value(true);
    ExpectRefused("4", "The query tool OSQL.EXE was not found!",
                  {"status 1/4 Create modified batch database script...", "events", "wait 2000"});
}

TEST_F(CommandOrder, ChoosingADatabaseShowsItsFirstTable) {
    StartOn(kViewDataTab);
    ado_.Answer(kTableQuery, fakes::Rows({{"Lots"}}));
    ado_.Answer(IdentityQuery("Lots"), fakes::Rows({}));
    ado_.Answer("SELECT * FROM Lots", fakes::Rows({{1, 2}, {3, 4}}));
    EXPECT_EQ(Recorded(Form(), [this] { ui::Choose(Combo("cboViewDataDatabase"), 1); }),
              (Lines{"pointer 11", "events", "lock", "lstViewDataTables filled", "lstViewDataTables off",
                     "server", "lstViewDataTables filled",
                     // The first table is chosen while the list is still disabled.
                     "pointer 11", "events", "lock", "lvwViewData filled", "lvwViewData painted",
                     "lvwViewData off", "events", "server", "lvwViewData filled", "lvwViewData sized",
                     "lvwViewData on", "unlock", "pointer 11",
                     // Painting is already unlocked.
                     "lstViewDataTables on", "unlock", "pointer 0"}));
}

TEST_F(CommandOrder, TheBoxOfTheInnerHandlerComesBeforeThatOfTheOuter) {
    StartOn(kViewDataTab);
    fakes::AdoAnswer tables = fakes::Rows({{"Lots"}});
    tables.errors = {{-2147467259, "of the tables", "SQL Server", 50000, "42000"}};
    ado_.Answer(kTableQuery, tables);
    ado_.Answer(IdentityQuery("Lots"), fakes::Rows({}));
    ado_.Answer("SELECT * FROM Lots", fakes::Failing(-2147467259, "of the data"));
    const Lines& lines = Recorded(Form(), [this] { ui::Choose(Combo("cboViewDataDatabase"), 1); });
    const auto inner = std::find(lines.begin(), lines.end(), "unlock");
    EXPECT_EQ(Lines(inner, lines.end()),
              (Lines{"unlock", BoxOf("of the data"), "pointer 11", "lstViewDataTables on", "unlock",
                     BoxOf("of the tables"), "pointer 0"}));
}

TEST_F(CommandOrder, ChoosingADatabaseShowsItsFirstProcedure) {
    StartOn(kStoredProcTab);
    fakes::AdoAnswer procedures = fakes::Rows({{"spOne"}});
    procedures.fields = {"PROCEDURE_NAME"};
    ado_.Answer("OpenSchema 16", procedures);
    ado_.Answer("sp_helptext 'spOne'", fakes::Rows({{"text"}}));
    EXPECT_EQ(Recorded(Form(), [this] { ui::Choose(Combo("cboStoredProcDatabase"), 1); }),
              (Lines{"pointer 11", "events", "cboStoredProcedure filled", "cboStoredProcedure off", "server",
                     "cboStoredProcedure filled", "pointer 11", "events", "server", "edtStoredProcedure text",
                     "pointer 11", "cboStoredProcedure on", "pointer 0"}));
}

TEST_F(CommandOrder, TheDialogIsFilledUnderTheHourglassAndShownWithoutIt) {
    StartOn(kStoredProcTab);
    screen_.calls.clear();
    ado_.Answer("Refresh", fakes::Failing(-2147467259, "no such procedure"));
    ui::Click(Button("cmdExecute"));
    EXPECT_EQ(screen_.calls,
              (Lines{"pointer 11", "events", "pointer 11", "events", BoxOf("no such procedure"), "pointer 11",
                     "pointer 0", "modal frmStoredProcedures over frmMain"}));
}

class DialogOrder : public CommandOrder {
  protected:
    DialogOrder() { SelectServerA(manager_); }
    void AnswerParameters(std::vector<ado::Parameter> parameters) {
        fakes::AdoAnswer answer;
        answer.parameters = std::move(parameters);
        ado_.Answer("Refresh", std::move(answer));
    }
    static ado::Parameter Named(const std::string& name, std::int32_t direction) {
        ado::Parameter parameter;
        parameter.Name(name);
        parameter.Direction(direction);
        parameter.Type(200);
        parameter.Value(name);
        return parameter;
    }
    const Lines& RecordedInDialog(const char* button) {
        ui::Form& form = dialog_.Form();
        return Recorded(form, [&] { EXPECT_TRUE(ui::Click(form.Get<ui::CommandButton>(button))); });
    }

    CViewDataMgr manager_;
    frmStoredProcedures dialog_;
};

TEST_F(DialogOrder, Reload) {
    AnswerParameters({Named("@a", ado::adParamInput), Named("@b", ado::adParamOutput)});
    dialog_.Init(manager_, "Batch", "spOne");
    AnswerParameters({Named("@c", ado::adParamInput)});
    EXPECT_EQ(
        RecordedInDialog("cmdReload"),
        (Lines{"pointer 11", "events", "lvwViewData filled", "lstParameters filled", "lstParameters off",
               "edtDataType text", "edtDirection text", "edtValue text", "server", "lstParameters filled",
               "edtDataType text", "edtDirection text", "edtValue text", "lstParameters on", "pointer 0"}));
    EXPECT_EQ(dialog_.Form().Get<ui::ListBox>("lstParameters").ListCount(), 1);
}

TEST_F(DialogOrder, AFailedReloadLeavesNoParameters) {
    AnswerParameters({Named("@a", ado::adParamInput)});
    dialog_.Init(manager_, "Batch", "spOne");
    ServerFails("gone");
    EXPECT_EQ(RecordedInDialog("cmdReload"),
              (Lines{"pointer 11", "events", "lvwViewData filled", "lstParameters filled",
                     "lstParameters off", "edtDataType text", "edtDirection text", "edtValue text", "server",
                     BoxOf("gone"), "pointer 0"}));
    EXPECT_EQ(dialog_.Form().Get<ui::ListBox>("lstParameters").ListCount(), 0);
    for (const char* name : {"edtDataType", "edtDirection", "edtValue"}) {
        EXPECT_EQ(dialog_.Form().Get<ui::TextBox>(name).Text(), "") << name;
    }
    EXPECT_EQ(dialog_.Form().Get<ui::TextBox>("edtValue").Tag(), "0");
}

TEST_F(DialogOrder, Execute) {
    AnswerParameters({});
    dialog_.Init(manager_, "Batch", "spOne");
    ado_.Answer("call spOne", fakes::Rows({{1, 2}}));
    EXPECT_EQ(RecordedInDialog("cmdExecute"),
              (Lines{"pointer 11", "events", "lock", "lvwViewData filled", "lvwViewData painted",
                     "lvwViewData off", "events", "server", "lvwViewData filled", "lvwViewData sized",
                     "lvwViewData on", "unlock", "pointer 0"}));
    ServerFails("gone");
    EXPECT_EQ(RecordedInDialog("cmdExecute"),
              (Lines{"pointer 11", "events", "lock", "lvwViewData filled", "lvwViewData painted",
                     "lvwViewData off", "events", "server", "unlock", BoxOf("gone"), "pointer 0"}));
}

TEST_F(DialogOrder, ChoosingAParameter) {
    AnswerParameters({Named("@a", ado::adParamInput), Named("@b", ado::adParamOutput)});
    dialog_.Init(manager_, "Batch", "spOne");
    auto& list = dialog_.Form().Get<ui::ListBox>("lstParameters");
    EXPECT_EQ(Recorded(dialog_.Form(), [&] { ui::Choose(list, 1); }),
              (Lines{"edtValue locked", "edtValue colour", "edtDirection text", "edtValue text"}))
        << "neither hourglass nor lock";
    EXPECT_EQ(Recorded(dialog_.Form(), [&] { ui::Choose(list, 0); }),
              (Lines{"edtValue colour", "edtValue unlocked", "edtDirection text", "edtValue text"}));
}

} // namespace
} // namespace kv

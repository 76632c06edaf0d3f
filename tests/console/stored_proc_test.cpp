// Tests the Stored Proc. tab and the dialog that runs a procedure.
#include "console/console_fixture.h"
#include "console/procedures_form.h"
#include "fakes/fake_locale.h"

namespace kv {
namespace {

using ado::Null;
using fakes::AdoAnswer;

/// A parameter as the server lists it, of the type VarChar.
ado::Parameter Listed(const std::string& name, std::int32_t direction = ado::adParamInput,
                      ado::Variant value = {}) {
    ado::Parameter parameter;
    parameter.Name(name);
    parameter.Direction(direction);
    parameter.Type(200);
    parameter.Value(std::move(value));
    return parameter;
}

AdoAnswer ParameterList(std::vector<ado::Parameter> parameters) {
    AdoAnswer answer;
    answer.parameters = std::move(parameters);
    return answer;
}

AdoAnswer Result(const std::vector<std::string>& fields, std::vector<fakes::AdoRow> rows) {
    AdoAnswer answer;
    answer.fields = fields;
    answer.rows = std::move(rows);
    return answer;
}

class StoredProc : public ConsoleTest {
  protected:
    StoredProc() { RememberLogin(0); }

    void StartOnTab() {
        Start();
        Databases({"master", "Batch"});
        Open(kStoredProcTab);
        screen_.calls.clear();
        ado_.calls.clear();
    }
    // Set the answers to reading a database's procedures and the text of one.
    void HasProcedures(const Lines& names) {
        AdoAnswer answer;
        answer.fields = {"PROCEDURE_CATALOG", "PROCEDURE_NAME"};
        for (const std::string& name : names) {
            answer.rows.push_back({"Batch", name});
        }
        ado_.Answer("OpenSchema 16", answer);
    }
    void HasText(const std::string& procedure, const std::string& text) {
        ado_.Answer("sp_helptext '" + procedure + "'", fakes::Rows({{text}}));
    }
};

TEST_F(StoredProc, ChoosingADatabaseListsItsProceduresAndShowsTheFirst) {
    StartOnTab();
    HasProcedures({"spOne;1", "spTwo;1"});
    HasText("spOne", "CREATE PROCEDURE spOne\r\n");
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    EXPECT_EQ(ItemsOf(Combo("cboStoredProcedure")), (Lines{"spOne", "spTwo"}));
    EXPECT_TRUE(Combo("cboStoredProcedure").Enabled());
    EXPECT_EQ(Edit("edtStoredProcedure").Text(), "CREATE PROCEDURE spOne\r\n");
    EXPECT_FALSE(Form().PaintingLocked());
    HasText("spTwo", "second");
    ui::Choose(Combo("cboStoredProcedure"), 1);
    EXPECT_EQ(Edit("edtStoredProcedure").Text(), "second");
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(StoredProc, ADatabaseWithoutProceduresHasAnEmptyListAndKeepsTheText) {
    StartOnTab();
    HasProcedures({"spOne"});
    HasText("spOne", "text");
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    HasProcedures({});
    ui::Choose(Combo("cboStoredProcDatabase"), 0);
    EXPECT_EQ(Combo("cboStoredProcedure").ListCount(), 0);
    EXPECT_TRUE(Combo("cboStoredProcedure").Enabled());
    EXPECT_EQ(Edit("edtStoredProcedure").Text(), "text");
}

TEST_F(StoredProc, IfTheProceduresCannotBeReadTheListIsDisabled) {
    StartOnTab();
    ado_.Answer("OpenSchema 16", fakes::Failing(-2147467259, "gone"));
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    EXPECT_FALSE(Combo("cboStoredProcedure").Enabled());
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(StoredProc, IfTheTextCannotBeReadTheBoxIsEmptied) {
    StartOnTab();
    HasProcedures({"spOne"});
    HasText("spOne", "text");
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    ado_.Answer("sp_helptext 'spOne'", fakes::Failing(-2147217900, "no text"));
    ui::Choose(Combo("cboStoredProcedure"), 0);
    EXPECT_EQ(Edit("edtStoredProcedure").Text(), "");
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(StoredProc, TheSelectedServerIsAskedEachTime) {
    RememberLogin(1);
    StartOnTab();
    Databases({"ofB"});
    ui::Click(Option("optStoredProcCurrentServer", 1));
    EXPECT_EQ(Combo("cboStoredProcDatabase").Text(), "ofB");
    EXPECT_EQ(Combo("cboStoredProcedure").ListCount(), 0)
        << "the procedures are read when a database is chosen";
    HasProcedures({"spOne"});
    HasText("spOne", "text");
    ui::Choose(Combo("cboStoredProcDatabase"), 0);
    ui::Click(Button("cmdExecute"));
    EXPECT_EQ(Connections(), (Lines{"NodeB master", "NodeB ofB", "NodeB ofB", "NodeB ofB"}));
}

TEST_F(StoredProc, ExecuteOpensTheDialogWithoutTheHourglass) {
    StartOnTab();
    HasProcedures({"spOne"});
    HasText("spOne", "text");
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    screen_.calls.clear();
    ado_.Answer("Refresh", ParameterList({Listed("@a")}));
    std::string caption;
    int parameters = 0;
    toolkit_.on_modal = [&](ui::Form& dialog) {
        caption = dialog.Caption();
        parameters = dialog.Get<ui::ListBox>("lstParameters").ListCount();
        EXPECT_EQ(screen_.pointer, 0);
        ui::Click(dialog.Get<ui::CommandButton>("cmdClose"));
        EXPECT_TRUE(dialog.Unloaded());
    };
    ui::Click(Button("cmdExecute"));
    EXPECT_EQ(caption, "Run spOne in [Batch]");
    EXPECT_EQ(parameters, 1);
    EXPECT_EQ(screen_.calls.back(), "modal frmStoredProcedures over frmMain");
}

TEST_F(StoredProc, WithoutAProcedureTheDialogOpensForTheEmptyName) {
    StartOnTab();
    ado_.Answer("Refresh", fakes::Failing(-2147217900, "Syntax error"));
    bool enabled = true;
    std::string caption;
    toolkit_.on_modal = [&](ui::Form& dialog) {
        caption = dialog.Caption();
        enabled = dialog.Get<ui::ListBox>("lstParameters").Enabled();
    };
    ui::Click(Button("cmdExecute"));
    EXPECT_EQ(caption, "Run  in [master]");
    EXPECT_FALSE(enabled);
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(StoredProc, With32768ProceduresTheListIsEmptyAndDisabled) {
    StartOnTab();
    HasProcedures(Lines(32'768, "spOne;1"));
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    EXPECT_EQ(Combo("cboStoredProcedure").ListCount(), 0);
    EXPECT_FALSE(Combo("cboStoredProcedure").Enabled());
    EXPECT_EQ(LogLines(), Lines{"frmMain::loadStoredProcedures"});
}

TEST_F(StoredProc, With32767ProceduresTheListIsFullAndDisabled) {
    StartOnTab();
    HasProcedures(Lines(32'767, "spOne;1"));
    ui::Choose(Combo("cboStoredProcDatabase"), 1);
    EXPECT_EQ(Combo("cboStoredProcedure").ListCount(), 32'767) << "the counter overflows after the last one";
    EXPECT_EQ(Combo("cboStoredProcedure").ListIndex(), -1);
    EXPECT_FALSE(Combo("cboStoredProcedure").Enabled());
    EXPECT_EQ(LogLines(), Lines{"frmMain::loadStoredProcedures"});
}

class ProcedureDialog : public ConsoleTest {
  protected:
    void OpenDialog(std::vector<ado::Parameter> parameters) {
        SelectServerA(manager_);
        ado_.Answer("Refresh", ParameterList(std::move(parameters)));
        dialog_.Init(manager_, "Batch", "spOne");
        screen_.calls.clear();
        ado_.calls.clear();
    }
    /// Sets the answers to one execution: the parameters before the call, the call, and the parameters after
    /// it.
    void Answers(const std::vector<ado::Parameter>& parameters, AdoAnswer answer) {
        ado_.Answer("Refresh", ParameterList(parameters));
        ado_.Answer("call spOne", std::move(answer));
        ado_.Answer("Refresh", ParameterList(parameters));
    }
    void Execute() { ASSERT_TRUE(ui::Click(dialog_.Form().Get<ui::CommandButton>("cmdExecute"))); }
    /// The recorded call of the procedure with its values.
    std::string Call() const {
        const auto found = std::find_if(ado_.calls.begin(), ado_.calls.end(), [](const std::string& call) {
            return call.rfind("call spOne", 0) == 0;
        });
        return found == ado_.calls.end() ? std::string() : *found;
    }
    ui::TextBox& Box(const char* name) { return dialog_.Form().Get<ui::TextBox>(name); }
    ui::ListBox& Parameters() { return dialog_.Form().Get<ui::ListBox>("lstParameters"); }
    ui::ListView& View() { return dialog_.Form().Get<ui::ListView>("lvwViewData"); }

    CViewDataMgr manager_;
    frmStoredProcedures dialog_;
};

TEST_F(ProcedureDialog, TheFirstParameterIsShownWhenItOpens) {
    OpenDialog({Listed("@RETURN_VALUE", ado::adParamReturnValue), Listed("@a", ado::adParamInput, "x")});
    EXPECT_EQ(dialog_.Form().Caption(), "Run spOne in [Batch]");
    EXPECT_EQ(Parameters().Text(), "@RETURN_VALUE");
    EXPECT_TRUE(Parameters().Enabled());
    EXPECT_EQ(Box("edtDataType").Text(), "VarChar");
    EXPECT_EQ(Box("edtDirection").Text(), "Return value");
    EXPECT_EQ(Box("edtValue").Text(), "");
    EXPECT_TRUE(Box("edtValue").Locked());
    EXPECT_EQ(Box("edtValue").BackColor(), 0x8000000FU);
    EXPECT_EQ(Box("edtValue").Tag(), "1");
    ui::Choose(Parameters(), 1);
    EXPECT_FALSE(Box("edtValue").Locked());
    EXPECT_EQ(Box("edtValue").BackColor(), 0x80000005U);
    EXPECT_EQ(Box("edtValue").Text(), "x");
    EXPECT_EQ(Box("edtValue").Tag(), "2");
}

TEST_F(ProcedureDialog, BeforeItsParametersAreReadItHasNone) {
    Box("edtValue").Tag("1");
    Parameters().AddItem("none");
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(LogLines(), Lines{"frmStoredProcedures::lstParameters_Click - Load parameter"})
        << "element 0 is not a parameter, and there is no element 1 to save";
}

TEST_F(ProcedureDialog, AProcedureWithoutParametersCanBeRun) {
    OpenDialog({});
    EXPECT_EQ(Parameters().ListCount(), 0);
    EXPECT_TRUE(Parameters().Enabled());
    EXPECT_EQ(Box("edtValue").Tag(), "0");
    Answers({}, Result({"A"}, {{1}}));
    Execute();
    EXPECT_EQ(View().RowCount(), 1);
    EXPECT_TRUE(View().Enabled());
    EXPECT_FALSE(dialog_.Form().PaintingLocked());
}

TEST_F(ProcedureDialog, ExecuteSavesTheLastParameterOnly) {
    const std::vector<ado::Parameter> list = {Listed("@a"), Listed("@b")};
    OpenDialog(list);
    ui::Type(Box("edtValue"), "lost");
    Answers(list, Result({"A"}, {}));
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @a=(Empty) @b=(Empty)");
    ado_.calls.clear();
    ui::Choose(Parameters(), 1);
    ui::Type(Box("edtValue"), "kept");
    Answers(list, Result({"A"}, {}));
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @a=lost @b=kept") << "choosing the second one has saved the first";
}

TEST_F(ProcedureDialog, AnEmptyBoxIsNoValueForAChoiceAndAnEmptyTextForExecute) {
    const std::vector<ado::Parameter> list = {Listed("@a", ado::adParamInput, "x"),
                                              Listed("@b", ado::adParamInput, "y")};
    OpenDialog(list);
    ui::Edit(Box("edtValue"), "");
    ui::Choose(Parameters(), 1);
    ui::Edit(Box("edtValue"), "");
    Answers(list, Result({"A"}, {}));
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @a=(Empty) @b=");
}

TEST_F(ProcedureDialog, ExecuteSavesTheLastParameterWhateverItsDirection) {
    const std::vector<ado::Parameter> list = {Listed("@a", ado::adParamOutput, "before")};
    OpenDialog(list);
    Box("edtValue").Text("written by the test");
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(Box("edtValue").Text(), "before") << "a choice does not save an output parameter";
    Box("edtValue").Text("saved");
    ado_.Answer("Refresh", ParameterList(list));
    ado_.Answer("call spOne", fakes::Failing());
    Execute();
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(Box("edtValue").Text(), "saved");
}

TEST_F(ProcedureDialog, AnInputOutputParameterCanBeEnteredAndIsSaved) {
    const std::vector<ado::Parameter> list = {Listed("@both", ado::adParamInputOutput, "x"), Listed("@b")};
    OpenDialog(list);
    EXPECT_FALSE(Box("edtValue").Locked());
    EXPECT_EQ(Box("edtDirection").Text(), "Input/Output");
    ui::Edit(Box("edtValue"), "typed");
    ui::Choose(Parameters(), 1);
    Answers(list, Result({"A"}, {}));
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @both=typed @b=");
}

TEST_F(ProcedureDialog, AParameterOfUnknownDirectionIsShownAndNotSaved) {
    OpenDialog({Listed("@odd", 9, "x"), Listed("@b")});
    EXPECT_TRUE(Box("edtValue").Locked());
    EXPECT_EQ(Box("edtDirection").Text(), "Unknown");
    Box("edtValue").Text("written by the test");
    ui::Choose(Parameters(), 1);
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(Box("edtValue").Text(), "x");
}

TEST_F(ProcedureDialog, ATagAfterTheLastParameterIsIgnoredByAChoiceAndFailsExecute) {
    OpenDialog({Listed("@a", ado::adParamInput, "x")});
    Box("edtValue").Tag("2");
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(LogLines(), Lines{});
    EXPECT_EQ(Box("edtValue").Tag(), "1");
    Box("edtValue").Tag("2");
    Execute();
    EXPECT_EQ(LogLines(), Lines{"frmStoredProcedures::cmdExecute_Click"});
    EXPECT_TRUE(ado_.calls.empty());
    EXPECT_FALSE(dialog_.Form().PaintingLocked());
}

TEST_F(ProcedureDialog, ChoosingAnEntryWithoutAParameterFails) {
    OpenDialog({Listed("@a", ado::adParamInput, "x")});
    for (const int index : {0, 2}) {
        Parameters().ItemData(0, index);
        ui::Choose(Parameters(), 0);
    }
    const std::string line = "frmStoredProcedures::lstParameters_Click - Load parameter";
    EXPECT_EQ(LogLines(), (Lines{line, line}));
    EXPECT_EQ(Box("edtValue").Text(), "x");
}

TEST_F(ProcedureDialog, AnOutputValueIsShownWhenItsParameterIsChosen) {
    const std::vector<ado::Parameter> list = {Listed("@both", ado::adParamInputOutput),
                                              Listed("@out", ado::adParamOutput)};
    OpenDialog(list);
    ui::Type(Box("edtValue"), "typed");
    AdoAnswer result = Result({"A"}, {});
    result.output = {{"@both", "back"}, {"@out", "out"}};
    Answers(list, result);
    Execute();
    ui::Choose(Parameters(), 1);
    EXPECT_EQ(Box("edtValue").Text(), "out");
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(Box("edtValue").Text(), "typed")
        << "choosing the other parameter has saved the box over the output value";
}

TEST_F(ProcedureDialog, ASecondRunUsesTheValuesOfTheFirstUntilReload) {
    const std::vector<ado::Parameter> list = {Listed("@RETURN_VALUE", ado::adParamReturnValue), Listed("@a"),
                                              Listed("@b")};
    OpenDialog(list);
    ui::Choose(Parameters(), 1);
    ui::Type(Box("edtValue"), "one");
    ui::Choose(Parameters(), 2);
    ui::Type(Box("edtValue"), "two");
    ui::Choose(Parameters(), 0);
    AdoAnswer result = Result({"A"}, {});
    result.output = {{"@RETURN_VALUE", 42}};
    Answers(list, result);
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @RETURN_VALUE=(Empty) @a=one @b=two");
    ado_.calls.clear();
    Answers(list, result);
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @RETURN_VALUE=42 @a=one @b=two");
    ui::Choose(Parameters(), 0);
    EXPECT_EQ(Box("edtValue").Text(), "42");
    ui::Choose(Parameters(), 1);
    EXPECT_EQ(Box("edtValue").Text(), "one");
    ado_.Answer("Refresh", ParameterList(list));
    ui::Click(dialog_.Form().Get<ui::CommandButton>("cmdReload"));
    ado_.calls.clear();
    Answers(list, result);
    Execute();
    EXPECT_EQ(Call(), "call spOne -1 @RETURN_VALUE=(Empty) @a=(Empty) @b=(Empty)");
}

TEST_F(ProcedureDialog, ARefusedValueIsReportedAndStaysInTheBox) {
    const std::vector<ado::Parameter> list = {Listed("@a")};
    OpenDialog(list);
    ui::Type(Box("edtValue"), "5.7");
    ado_.Answer("Refresh", ParameterList(list));
    ado_.Answer("call spOne",
                fakes::Failing(-2147217833, "The value '5.7' cannot be given to the parameter @a"));
    Execute();
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Box("edtValue").Text(), "5.7");
    EXPECT_FALSE(View().Enabled());
}

TEST_F(ProcedureDialog, ValuesAreShownInTheUsersLocale) {
    const fakes::FakeLocale german(fakes::German());
    OpenDialog({Listed("@out", ado::adParamOutput, 1.5),
                Listed("@when", ado::adParamOutput, ado::Date{2024, 2, 29, 14, 3, 5, 0}),
                Listed("@is", ado::adParamOutput, true)});
    EXPECT_EQ(Box("edtValue").Text(), "1,5");
    ui::Choose(Parameters(), 1);
    EXPECT_EQ(Box("edtValue").Text(), "29.02.2024 14:03:05");
    ui::Choose(Parameters(), 2);
    EXPECT_EQ(Box("edtValue").Text(), "Wahr");
}

TEST_F(ProcedureDialog, ChoosingAParameterWhoseValueIsNullFails) {
    OpenDialog({Listed("@a", ado::adParamInput, "x"), Listed("@b", ado::adParamOutput, Null{})});
    ui::Choose(Parameters(), 1);
    EXPECT_EQ(LogLines(), Lines{"frmStoredProcedures::lstParameters_Click - Load parameter"});
    EXPECT_EQ(Box("edtDirection").Text(), "Output");
    EXPECT_EQ(Box("edtValue").Text(), "x");
    EXPECT_EQ(Box("edtValue").Tag(), "1") << "the box still shows the previous parameter";
}

TEST_F(ProcedureDialog, ReloadClearsTypedTextAndRowsButNotColumns) {
    const std::vector<ado::Parameter> list = {Listed("@a")};
    OpenDialog(list);
    Answers(list, Result({"A"}, {{1}}));
    Execute();
    ui::Type(Box("edtValue"), "typed");
    ado_.Answer("Refresh", ParameterList(list));
    ui::Click(dialog_.Form().Get<ui::CommandButton>("cmdReload"));
    EXPECT_EQ(Box("edtValue").Text(), "");
    EXPECT_EQ(View().RowCount(), 0);
    EXPECT_EQ(View().ColumnCount(), 1);
}

TEST_F(ProcedureDialog, ColumnsWithEqualOrEmptyNamesHaveDifferentKeys) {
    OpenDialog({});
    Answers({}, Result({"Same", "Same", ""}, {{1, 2, 3}}));
    Execute();
    ASSERT_EQ(View().ColumnCount(), 3);
    EXPECT_EQ(View().ColumnAt(0).key, "1_Same");
    EXPECT_EQ(View().ColumnAt(1).key, "2_Same");
    EXPECT_EQ(View().ColumnAt(2).key, "3_");
    EXPECT_EQ(View().Cell(0, 2), "3");
    EXPECT_EQ(View().ExtendedStyle(), 0) << "neither row selection nor grid lines";
}

TEST_F(ProcedureDialog, AProcedureWithoutAResultLeavesTheListDisabled) {
    OpenDialog({});
    Answers({}, {.no_recordset = true});
    Execute();
    EXPECT_FALSE(View().Enabled());
    EXPECT_FALSE(dialog_.Form().PaintingLocked());
    EXPECT_TRUE(dialog_.Form().Get<ui::CommandButton>("cmdExecute").Enabled());
}

TEST_F(ProcedureDialog, AFailureIsReportedAndTheNextRunWorks) {
    OpenDialog({});
    ado_.Answer("Open", fakes::Failing(-2147467259, "no server"));
    Execute();
    EXPECT_EQ(Boxes().size(), 1U);
    Answers({}, Result({"A"}, {{1}}));
    Execute();
    EXPECT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(View().RowCount(), 1);
}

TEST_F(ProcedureDialog, With32768RowsTheListHasHeadersOnly) {
    OpenDialog({});
    Answers({}, Result({"A"}, std::vector<fakes::AdoRow>(32'768, {1})));
    Execute();
    EXPECT_EQ(View().ColumnCount(), 1);
    EXPECT_EQ(View().RowCount(), 0);
    EXPECT_FALSE(View().Enabled());
    EXPECT_EQ(LogLines(), Lines{"frmStoredProcedures::cmdExecute_Click"});
    EXPECT_FALSE(dialog_.Form().PaintingLocked());
}

TEST_F(ProcedureDialog, NamesOfTypesAndDirections) {
    const std::pair<std::int32_t, const char*> types[] = {{0, "Empty"},
                                                          {2, "SmallInt"},
                                                          {3, "Integer"},
                                                          {4, "Single"},
                                                          {5, "Double"},
                                                          {6, "Currency"},
                                                          {7, "Date"},
                                                          {8, "BSTR"},
                                                          {9, "IDispatch"},
                                                          {10, "Error"},
                                                          {11, "Boolean"},
                                                          {12, "Variant"},
                                                          {13, "IUnknown"},
                                                          {14, "Decimal"},
                                                          {16, "TinyInt"},
                                                          {17, "UnsignedTinyInt"},
                                                          {18, "UnsignedSmallInt"},
                                                          {19, "UnsignedInt"},
                                                          {20, "BigInt"},
                                                          {21, "UnsignedBigInt"},
                                                          {64, "FileTime"},
                                                          {72, "GUID"},
                                                          {128, "Binary"},
                                                          {129, "Char"},
                                                          {130, "WChar"},
                                                          {131, "Numeric"},
                                                          {132, "UserDefined"},
                                                          {133, "DBDate"},
                                                          {134, "DBTime"},
                                                          {135, "DBTimeStamp"},
                                                          {136, "Chapter"},
                                                          {138, "PropVariant"},
                                                          {139, "VarNumeric"},
                                                          {200, "VarChar"},
                                                          {201, "LongVarChar"},
                                                          {202, "VarWChar"},
                                                          {203, "LongVarWChar"},
                                                          {204, "VarBinary"},
                                                          {205, "LongVarBinary"},
                                                          {8192, "Array"},
                                                          {1, "Unknown"},
                                                          {15, "Unknown"},
                                                          {137, "Unknown"},
                                                          {-1, "Unknown"}};
    for (const auto& [number, name] : types) {
        EXPECT_EQ(GetDataTypeName(number), name) << number;
    }
    const char* const directions[] = {"Unknown",      "Input",        "Output",
                                      "Input/Output", "Return value", "Unknown"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(GetDirectionName(i), directions[i]);
    }
}

} // namespace
} // namespace kv

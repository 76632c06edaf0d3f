// Tests the View Data tab: choosing a database lists its tables and shows the first one. Also tests the
// failures of each step.
#include "console/console_fixture.h"

namespace kv {
namespace {

using ado::Null;
using ado::Variant;
using fakes::AdoAnswer;
using fakes::AdoRow;

class ViewData : public ConsoleTest {
  protected:
    ViewData() { RememberLogin(0); }

    void StartOnTab() {
        Start();
        Databases({"master", "Batch"});
        Open(kViewDataTab);
        screen_.calls.clear();
        ado_.calls.clear();
    }
    // Set the answers to reading a database's tables and the data of one.
    void HasTables(const Lines& tables) {
        std::vector<AdoRow> rows;
        for (const std::string& table : tables) {
            rows.push_back({table});
        }
        ado_.Answer(kTableQuery, fakes::Rows(rows));
    }
    void HasData(const std::string& table, const std::vector<std::string>& fields, std::vector<AdoRow> rows,
                 const std::string& identity = "") {
        ado_.Answer(IdentityQuery(table), identity.empty() ? fakes::Rows({}) : fakes::Rows({{identity}}));
        AdoAnswer answer;
        answer.fields = fields;
        answer.rows = std::move(rows);
        ado_.Answer("SELECT * FROM " + table, std::move(answer));
    }
    /// The data are two columns and `count` rows.
    void HasRows(const std::string& table, int count) {
        HasData(table, {"Id", "Name"}, std::vector<AdoRow>(static_cast<std::size_t>(count), {1, "n"}));
    }
    void ChooseBatch() { ASSERT_TRUE(ui::Choose(Combo("cboViewDataDatabase"), 1)); }

    ui::ListBox& TableList() { return Form().Get<ui::ListBox>("lstViewDataTables"); }
    ui::ListView& View() { return Form().Get<ui::ListView>("lvwViewData"); }
    Lines Headers() {
        Lines headers;
        for (int i = 0; i < View().ColumnCount(); ++i) {
            headers.push_back(View().ColumnAt(i).text);
        }
        return headers;
    }
    /// True if every column was sized to its content.
    bool Sized() {
        return std::count(View().AutoSized().begin(), View().AutoSized().end(), true) == View().ColumnCount();
    }
};

TEST_F(ViewData, OpeningTheTabOnlyListsTheDatabases) {
    Start();
    Databases({"master", "Batch"});
    Open(kViewDataTab);
    EXPECT_EQ(Combo("cboViewDataDatabase").Text(), "master");
    EXPECT_EQ(TableList().ListCount(), 0);
    EXPECT_EQ(Connections(), Lines{"NodeA master"});
}

TEST_F(ViewData, ChoosingADatabaseListsItsTablesAndShowsTheFirst) {
    StartOnTab();
    HasTables({"Lots", "Units"});
    HasData("Lots", {"Id", "Name", "At"}, {{1, "one", "x"}, {2, Null{}, "y"}}, "Id");
    ChooseBatch();
    EXPECT_EQ(TableList().ListCount(), 2);
    EXPECT_EQ(TableList().ListIndex(), 0);
    EXPECT_TRUE(TableList().Enabled());
    EXPECT_EQ(Headers(), (Lines{"Id *", "Name", "At"}));
    EXPECT_EQ(View().ColumnAt(0).key, "Id");
    EXPECT_EQ(View().RowCount(), 2);
    EXPECT_EQ(View().Cell(0, 0), "1");
    EXPECT_EQ(View().Cell(0, 2), "x");
    EXPECT_EQ(View().Cell(1, 1), "(Null)");
    EXPECT_EQ(View().RowKey(1), "row_2");
    EXPECT_TRUE(View().Enabled());
    EXPECT_TRUE(Sized());
    EXPECT_FALSE(Form().PaintingLocked());
    EXPECT_EQ(ado_.Statements(), (Lines{kTableQuery, IdentityQuery("Lots"), "SELECT * FROM Lots"}));
    EXPECT_EQ(Connections(), (Lines{"NodeA Batch", "NodeA Batch"}));
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(ViewData, ChoosingATableReadsItsDataOnly) {
    StartOnTab();
    HasTables({"Lots", "Units"});
    HasRows("Lots", 1);
    ChooseBatch();
    ado_.calls.clear();
    HasData("Units", {"Unit"}, {{Null{}}});
    ui::Choose(TableList(), 1);
    EXPECT_EQ(ado_.Statements(), (Lines{IdentityQuery("Units"), "SELECT * FROM Units"}));
    EXPECT_EQ(Headers(), Lines{"Unit"});
    EXPECT_EQ(View().Cell(0, 0), "(Null)");
}

TEST_F(ViewData, ATableWithoutRowsHasColumnsAndIsEnabled) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 0);
    ChooseBatch();
    EXPECT_EQ(Headers(), (Lines{"Id", "Name"}));
    EXPECT_EQ(View().RowCount(), 0);
    EXPECT_TRUE(View().Enabled());
    EXPECT_TRUE(Sized());
}

TEST_F(ViewData, ADatabaseWithoutTablesDisablesTheListAndKeepsTheData) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 3);
    ChooseBatch();
    HasTables({});
    ui::Choose(Combo("cboViewDataDatabase"), 0);
    EXPECT_EQ(TableList().ListCount(), 0);
    EXPECT_FALSE(TableList().Enabled());
    EXPECT_EQ(View().RowCount(), 3);
    EXPECT_FALSE(Form().PaintingLocked());
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ViewData, TablesThatCannotBeReadAreReportedOnce) {
    StartOnTab();
    ado_.Answer("Open", fakes::Failing(-2147217843, "Login failed for user"));
    ChooseBatch();
    EXPECT_FALSE(TableList().Enabled());
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("Login failed for user"), std::string::npos);
    EXPECT_FALSE(Form().PaintingLocked());
}

TEST_F(ViewData, DataThatCannotBeReadLeaveTheListEmptyAndDisabled) {
    StartOnTab();
    HasTables({"Lots"});
    ado_.Answer(IdentityQuery("Lots"), fakes::Rows({}));
    ado_.Answer("SELECT * FROM Lots", fakes::Failing(-2147217865, "Invalid object name"));
    ChooseBatch();
    EXPECT_FALSE(View().Enabled());
    EXPECT_EQ(View().ColumnCount(), 0);
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("Invalid object name"), std::string::npos);
    EXPECT_TRUE(TableList().Enabled()) << "the outer handler continued";
    EXPECT_FALSE(Form().PaintingLocked());
}

TEST_F(ViewData, WithoutASelectedTableTheWindowStaysLockedAndTheListDisabled) {
    StartOnTab();
    TableList().AddItem("Lots");
    TableList().ListIndex(-1);
    EXPECT_TRUE(Form().PaintingLocked());
    EXPECT_FALSE(View().Enabled());
    EXPECT_TRUE(ado_.calls.empty());
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(ViewData, TheEmptyListIsShownBeforeTheServerIsAsked) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 1);
    ChooseBatch();
    EXPECT_EQ(screen_.calls,
              (Lines{"pointer 11", "events", "pointer 11", "events", "events", "pointer 11", "pointer 0"}));
}

TEST_F(ViewData, TwoColumnsOfOneNameFail) {
    StartOnTab();
    HasTables({"Lots"});
    HasData("Lots", {"Same", "Same"}, {{1, 2}});
    ChooseBatch();
    EXPECT_EQ(LogLines(), Lines{"frmMain::lstViewDataTables_Click"});
    EXPECT_FALSE(View().Enabled());
    EXPECT_FALSE(Form().PaintingLocked());
}

TEST_F(ViewData, UpTo32766RowsAreShown) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 32'766);
    ChooseBatch();
    EXPECT_EQ(View().RowCount(), 32'766);
    EXPECT_TRUE(View().Enabled());
    EXPECT_TRUE(Sized());
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(ViewData, With32767RowsTheListIsFilledButNotSizedAndDisabled) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 32'767);
    ChooseBatch();
    EXPECT_EQ(View().RowCount(), 32'767);
    EXPECT_FALSE(View().Enabled());
    EXPECT_FALSE(Sized());
    EXPECT_EQ(LogLines(), Lines{"frmMain::lstViewDataTables_Click"});
    EXPECT_TRUE(Boxes().empty());
    EXPECT_FALSE(Form().PaintingLocked());
}

TEST_F(ViewData, With32768RowsTheListHasHeadersOnly) {
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 32'768);
    ChooseBatch();
    EXPECT_EQ(Headers(), (Lines{"Id", "Name"}));
    EXPECT_EQ(View().RowCount(), 0);
    EXPECT_FALSE(View().Enabled());
    EXPECT_EQ(LogLines(), Lines{"frmMain::lstViewDataTables_Click"});
}

TEST_F(ViewData, AFailureToListTheTablesIsLoggedAsAChangeEvent) {
    StartOnTab();
    HasTables(Lines(32'767, "T"));
    HasRows("T", 0);
    ChooseBatch();
    EXPECT_EQ(LogLines(), Lines{"frmMain::cboViewDataDatabase_Change"});
    EXPECT_FALSE(TableList().Enabled());
    EXPECT_FALSE(Form().PaintingLocked());
}

TEST_F(ViewData, AnEmptyColumnNameIsNotMarkedAsIdentity) {
    StartOnTab();
    HasTables({"Lots"});
    HasData("Lots", {"", "Id", "id"}, {{1, 2, 3}}, "Id");
    ChooseBatch();
    EXPECT_EQ(Headers(), (Lines{"", "Id *", "id"}));
}

TEST_F(ViewData, ChoosingAServerOnlyListsItsDatabases) {
    RememberLogin(1);
    StartOnTab();
    HasTables({"Lots"});
    HasRows("Lots", 1);
    ChooseBatch();
    ado_.calls.clear();
    Databases({"ofB"});
    ui::Click(Option("optViewDataCurrentServer", 1));
    EXPECT_EQ(Connections(), Lines{"NodeB master"});
    EXPECT_EQ(Combo("cboViewDataDatabase").Text(), "ofB");
    EXPECT_EQ(TableList().ListCount(), 1);
    EXPECT_EQ(View().RowCount(), 1);
    ado_.calls.clear();
    HasTables({"Lots"});
    HasRows("Lots", 1);
    ui::Choose(Combo("cboViewDataDatabase"), 0);
    EXPECT_EQ(Connections(), (Lines{"NodeB ofB", "NodeB ofB"}))
        << "the tables and the data are read from that server";
}

} // namespace
} // namespace kv

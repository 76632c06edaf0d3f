// CViewDataMgr's operations on tables, with a database in memory: the statements, the arrays and the
// failures.
#include "fakes/fake_locale.h"
#include "inspect/inspect_fixture.h"
#include "support/program_statements.h"

namespace kv {
namespace {

using ado::Null;
using fakes::AdoAnswer;
using fakes::Failing;
using fakes::Rows;
using fakes::WithErrors;
using support::IdentityQuery;
using support::kTableQuery;

constexpr char kSelect[] = "SELECT * FROM Lots";
constexpr char kGetTables[] = "CViewDataMgr::GetTables('Batch')";
constexpr char kGetData[] = "CViewDataMgr::GetData('Batch', 'Lots')";

class GetTables : public InspectTest {
  protected:
    Lines tables_ = {"left", "from", "before"};
};

TEST_F(GetTables, AsksTheDatabaseItselfWithinAMinute) {
    ado_.Answer(kTableQuery, Rows({{"Lots"}, {"LKConfig"}, {"ViewOfLots"}}));
    EXPECT_TRUE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(tables_, (Lines{"", "Lots", "LKConfig", "ViewOfLots"})); // the server's order
    EXPECT_EQ(ado_.calls, Calls(60, {std::string("Execute 1 ") + kTableQuery}));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(GetTables, AsksTheSelectedServer) {
    manager_.UseServerA(false);
    ado_.Answer(kTableQuery, Rows({{"Lots"}}));
    EXPECT_TRUE(manager_.GetTables("Other", tables_));
    EXPECT_EQ(ado_.calls.at(1), "ConnectionString " + ConnectionStringB("Other"));
}

TEST_F(GetTables, TheArrayIsEmptiedBeforeTheConnection) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(tables_, Lines{""});
    EXPECT_EQ(LogLines(), Lines{kGetTables});
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(GetTables, ADatabaseWithoutTablesIsAFailureWithoutAnError) {
    ado_.Answer(kTableQuery, Rows({}));
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(tables_, Lines{""});
    EXPECT_EQ(manager_.ErrorCount(), Int16(0));
    ExpectRaised("CViewDataMgr", "No tables could be retrieved from 'Batch' in the SQL Server!");
    EXPECT_EQ(LogLines(), Lines{kGetTables});
    manager_.ShowDbError();
    EXPECT_EQ(screen_.Count("box"), 0);
}

TEST_F(GetTables, AMissingRecordsetFails) {
    ado_.Answer(kTableQuery, {.no_recordset = true});
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    ExpectRaised("CViewDataMgr", "Table information could not be retrieved from the SQL Server!");
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(GetTables, AClosedRecordsetFailsWhenItIsRead) {
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(tables_, Lines{""});
    EXPECT_EQ(LogLines(), Lines{kGetTables});
}

TEST_F(GetTables, AFailingStatementKeepsTheServersErrors) {
    ado_.Answer(kTableQuery, Failing(-2147217865, "Invalid object name"));
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), Lines{kGetTables});
}

TEST_F(GetTables, ANameThatIsNullFailsAndLeavesAnEmptyElement) {
    ado_.Answer(kTableQuery, Rows({{"Lots"}, {Null()}}));
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(tables_, (Lines{"", "Lots", ""}));
    EXPECT_EQ(failure_.number, run_time::kInvalidUseOfNull);
}

TEST_F(GetTables, WarningsAreKeptAfterASuccess) {
    AdoAnswer answer = Rows({{"Lots"}});
    answer.errors = WithErrors({-5}).errors;
    ado_.Answer(kTableQuery, answer);
    EXPECT_TRUE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    manager_.ShowDbError();
    EXPECT_EQ(screen_.Count("box"), 1);
}

TEST_F(GetTables, AnEmptyResultWithAWarningCollectsTheWarningTwice) {
    AdoAnswer answer = Rows({});
    answer.errors = WithErrors({-5}).errors;
    ado_.Answer(kTableQuery, answer);
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(manager_.ErrorCount(), Int16(2));
}

TEST_F(GetTables, TheErrorsAreThoseOfTheLastCall) {
    ado_.Answer(kTableQuery, Rows({{"Lots"}}));
    EXPECT_TRUE(manager_.GetTables("Batch", tables_));
    ado_.Answer(kTableQuery, Failing());
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    ado_.Answer(kTableQuery, Failing());
    EXPECT_FALSE(manager_.GetTables("Batch", tables_));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

class GetData : public InspectTest {
  protected:
    GetData() {
        data_.ReDim(1);
        data_.SetName(1, "left from before");
    }
    bool Run(AdoAnswer identity, AdoAnswer rows) {
        ado_.Answer(IdentityQuery("Lots"), std::move(identity));
        ado_.Answer(kSelect, std::move(rows));
        return manager_.GetData("Batch", "Lots", identifiers_, data_);
    }
    static AdoAnswer Lots(std::vector<fakes::AdoRow> rows) {
        AdoAnswer answer;
        answer.fields = {"Id", "Name"};
        answer.rows = std::move(rows);
        return answer;
    }
    const Lines kBefore{"left", "from", "before"};
    const std::vector<Lines> kDataBefore{{"left from before"}};
    Lines identifiers_ = kBefore;
    TextTable data_;
};

TEST_F(GetData, AsksForTheIdentityColumnsAndThenForTheRows) {
    EXPECT_TRUE(Run(Rows({{"Id"}}), Lots({{1, "one"}, {2, "two"}})));
    EXPECT_EQ(ado_.calls,
              Calls(60, {"Execute 1 " + IdentityQuery("Lots"), std::string("Execute 1 ") + kSelect}));
    EXPECT_EQ(identifiers_, (Lines{"", "Id"}));
    EXPECT_EQ(Cells(data_), (std::vector<Lines>{{"Id", "Name"}, {"1", "one"}, {"2", "two"}}));
    EXPECT_EQ(data_.ColumnUpperBound(), 2);
    EXPECT_EQ(data_.RowUpperBound(), 2);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(GetData, NullIsShownAsATextAndAnEmptyTextIsEmpty) {
    EXPECT_TRUE(Run(Rows({}), Lots({{Null(), ""}, {"(Null)", Null()}})));
    EXPECT_EQ(Cells(data_), (std::vector<Lines>{{"Id", "Name"}, {"(Null)", ""}, {"(Null)", "(Null)"}}));
}

TEST_F(GetData, ValuesAreConvertedToTheirUsualText) {
    EXPECT_TRUE(Run(Rows({}), Lots({{true, 2.5},
                                    {ado::Decimal{"1.5000"}, ado::ByteArray{"\x01\xFF"}},
                                    {ado::Date{2006, 5, 12, 14, 3, 22, 0}, ado::Variant()}})));
    EXPECT_EQ(Cells(data_),
              (std::vector<Lines>{
                  {"Id", "Name"}, {"True", "2.5"}, {"1.5", "0x01FF"}, {"5/12/2006 2:03:22 PM", ""}}));
}

TEST_F(GetData, ATableWithoutRowsHasItsNamesOnly) {
    EXPECT_TRUE(Run(Rows({{"Id"}}), Lots({})));
    EXPECT_EQ(Cells(data_), (std::vector<Lines>{{"Id", "Name"}}));
}

TEST_F(GetData, ATableWithoutIdentityColumnHasNoIdentifier) {
    EXPECT_TRUE(Run(Rows({}), Lots({{1, "one"}})));
    EXPECT_EQ(identifiers_, Lines{""});
}

TEST_F(GetData, AMissingRecordsetOfIdentityColumnsIsNotAFailure) {
    EXPECT_TRUE(Run({.no_recordset = true}, Lots({{1, "one"}})));
    EXPECT_EQ(identifiers_, Lines{""});
    EXPECT_EQ(data_.RowUpperBound(), 1);
}

TEST_F(GetData, AMissingRecordsetOfRowsFails) {
    EXPECT_FALSE(Run(Rows({{"Id"}}), {.no_recordset = true}));
    ExpectRaised("CViewDataMgr", "Data could not be retrieved from the SQL Server!");
    EXPECT_EQ(identifiers_, (Lines{"", "Id"}));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(LogLines(), Lines{kGetData});
}

TEST_F(GetData, AConnectionThatFailsLeavesBothArraysUnchanged) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Run(Rows({{"Id"}}), Lots({})));
    EXPECT_EQ(identifiers_, kBefore);
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(LogLines(), Lines{kGetData});
}

TEST_F(GetData, AFailingIdentityQueryLeavesBothArraysUnchanged) {
    EXPECT_FALSE(Run(Failing(), Lots({})));
    EXPECT_EQ(identifiers_, kBefore);
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(ado_.Statements(), Lines{IdentityQuery("Lots")});
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(GetData, AFailingReadOfRowsKeepsTheIdentifiers) {
    EXPECT_FALSE(Run(Rows({{"Id"}}), Failing()));
    EXPECT_EQ(identifiers_, (Lines{"", "Id"}));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(GetData, AClosedRecordsetOfIdentityColumnsFailsWhenItIsRead) {
    EXPECT_FALSE(Run({}, Lots({})));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(identifiers_, Lines{""});
    EXPECT_EQ(Cells(data_), kDataBefore);
}

TEST_F(GetData, AClosedRecordsetOfRowsFailsWhenItIsRead) {
    EXPECT_FALSE(Run(Rows({}), {}));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(data_.ColumnUpperBound(), 0); // the table was sized for no fields
    EXPECT_EQ(data_.RowUpperBound(), 0);
}

TEST_F(GetData, TheErrorsOfBothStatementsAreCollected) {
    AdoAnswer identity = Rows({});
    identity.errors = WithErrors({-1}).errors;
    AdoAnswer rows = Lots({{1, "one"}});
    rows.errors = WithErrors({-2, -3}).errors;
    EXPECT_TRUE(Run(identity, rows));
    EXPECT_EQ(manager_.ErrorCount(), Int16(3));
}

TEST_F(GetData, TheNameIsPutIntoBothStatementsUnchanged) {
    manager_.GetData("Batch", "O'Neil Lots]", identifiers_, data_);
    EXPECT_EQ(ado_.Statements(), Lines{IdentityQuery("O'Neil Lots]")});
    ado_.calls.clear();
    ado_.Answer(IdentityQuery(""), Rows({}));
    manager_.GetData("Batch", "", identifiers_, data_);
    EXPECT_EQ(ado_.Statements().back(), "SELECT * FROM ");
    EXPECT_EQ(LogLines().back(), "CViewDataMgr::GetData('Batch', '')");
}

TEST_F(GetData, MoreFieldsThanASixteenBitCounterCanCountFail) {
    AdoAnswer wide;
    wide.fields.assign(32768, "f");
    EXPECT_FALSE(Run(Rows({}), wide));
    EXPECT_EQ(failure_.number, run_time::kOverflow);
    EXPECT_EQ(data_.ColumnUpperBound(), 32768);
    EXPECT_EQ(data_(1, 0), "");
    // The counter overflows when it is stepped after the last field: all names are already written.
    wide.fields.assign(32767, "f");
    failure_ = {};
    EXPECT_FALSE(Run(Rows({}), wide));
    EXPECT_EQ(failure_.number, run_time::kOverflow);
    EXPECT_EQ(data_(32767, 0), "f");
    wide.fields.assign(32766, "f");
    EXPECT_TRUE(Run(Rows({}), wide));
    EXPECT_EQ(data_(32766, 0), "f");
}

TEST_F(GetData, ValuesAreShownInTheUsersLocale) {
    const fakes::FakeLocale swedish(fakes::Swedish());
    const std::vector<ado::Variant> row = {0.5, ado::Decimal{"-1000.2500"}, true,
                                           ado::Date{2024, 2, 29, 14, 3, 5, 0}, 1234567};
    EXPECT_TRUE(Run(Rows({}), Rows({row})));
    EXPECT_EQ(Cells(data_).at(1), (Lines{"0,5", "-1000,25", "Sant", "2024-02-29 14:03:05", "1234567"}));
}

TEST_F(GetData, TwoFieldsOfOneNameAreTwoColumns) {
    AdoAnswer rows;
    rows.fields = {"same", "same", ""};
    rows.rows = {{1, 2, 3}};
    EXPECT_TRUE(Run(Rows({}), rows));
    EXPECT_EQ(Cells(data_), (std::vector<Lines>{{"same", "same", ""}, {"1", "2", "3"}}));
}

} // namespace
} // namespace kv

// Tests the connection with the fake driver manager (fakes/odbc_counting.h): the results and errors for each
// answer of the driver, and that no handle is left open whichever call fails.
#include "ado/connection.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "fakes/odbc_counting.h"

namespace ado {
namespace {

using fakes::Counting;
using fakes::OdbcRecord;
using fakes::OdbcResult;

// The diagnostic records of an ODBC driver. A record that comes from the server has a severity; one of the
// driver itself has none.
OdbcRecord ServerError(const std::string& state, std::int32_t native, const std::string& text) {
    return {.state = state, .native = native, .message = "[Fake][SQL Server]" + text, .severity = 16};
}
/// The driver FreeTDS gives its own records the line -1 and a severity without meaning.
OdbcRecord DriversError(const std::string& state, const std::string& text) {
    return {.state = state, .message = "[Fake]" + text, .line = 0xFFFF, .severity = 9};
}
/// A record that comes with success: 0 is the number of PRINT, messages that a procedure raises have 50000 or
/// more.
OdbcRecord Raised(std::int32_t native, const std::string& text) {
    return {.state = "01000", .native = native, .message = "[Fake][SQL Server]" + text, .severity = 10};
}
OdbcRecord Message(const std::string& text) {
    return {.state = "01000", .message = "[Fake][SQL Server]" + text};
}
OdbcResult Failed(std::vector<OdbcRecord> records) {
    return {.columns = false, .records = std::move(records), .fails = true};
}
OdbcResult Nothing(std::vector<OdbcRecord> records = {}) {
    return {.columns = false, .records = std::move(records)};
}

class AdoConnection : public ::testing::Test {
  protected:
    AdoConnection() { fakes::ResetCounting(); }
    ~AdoConnection() override {
        connection_ = Connection();
        EXPECT_EQ(Counting().open_handles, 0U);
        EXPECT_EQ(Counting().open_connections, 0U);
        EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
        fakes::ResetCounting();
    }

    void Open() {
        connection_.CursorLocation(adUseClient);
        connection_.ConnectionString("Driver={SQL Server};Server=x;");
        connection_.Open("", "", "", adOptionUnspecified);
    }
    std::unique_ptr<Recordset> Execute(std::vector<OdbcResult> results) {
        Counting().results = std::move(results);
        return connection_.Execute("run", affected_, adCmdText);
    }
    /// Runs a call that must fail with the first entry of Errors as its failure, and returns the failure's
    /// number.
    void ExpectFailure(std::vector<OdbcResult> results) {
        try {
            Execute(std::move(results));
            FAIL() << "succeeded";
        } catch (const CallError& error) {
            const Error& first = connection_.Errors().Item(0);
            EXPECT_EQ(error.Number(), first.Number);
            EXPECT_EQ(error.Source(), first.Source);
            EXPECT_EQ(error.what(), first.Description);
            EXPECT_NE(error.Number(), 0);
        }
        EXPECT_EQ(connection_.State(), adStateOpen);
    }
    /// Every entry of Errors as "number/native error".
    std::string Errors() const {
        std::string text;
        for (std::int16_t i = 0; i < connection_.Errors().Count(); ++i) {
            const Error& error = connection_.Errors().Item(i);
            text += std::to_string(error.Number) + "/" + std::to_string(error.NativeError) + " ";
        }
        return text;
    }

    std::int64_t affected_ = 0;
    Connection connection_;
};

TEST_F(AdoConnection, OpensWithTheStringAsItIs) {
    Open();
    EXPECT_EQ(Counting().last_connection_string, "Driver={SQL Server};Server=x;");
    EXPECT_EQ(connection_.State(), adStateOpen);
    EXPECT_EQ(connection_.Errors().Count(), 0);
    connection_.Close();
    EXPECT_EQ(connection_.State(), adStateClosed);
    EXPECT_EQ(Counting().open_handles, 0U);
}

TEST_F(AdoConnection, CanBeOpenedAgainOnAnotherDatabase) {
    Open();
    connection_.Close();
    connection_.ConnectionString("Database=two;");
    connection_.Open("", "", "", adOptionUnspecified);
    EXPECT_EQ(Counting().last_connection_string, "Database=two;");
    EXPECT_EQ(Counting().open_connections, 1U);
}

TEST_F(AdoConnection, AFirstResultWithColumnsIsTheRecordset) {
    Open();
    const auto rows = Execute({{.with_long_column = true, .rows = 2, .long_size = 100000}});
    EXPECT_EQ(Counting().last_statement, "run");
    ASSERT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(rows->Fields().Count(), 3);
    EXPECT_EQ(rows->Fields().Item(0).Name(), "column1");
    EXPECT_EQ(rows->Fields().Item(0).Value(), Variant(0));
    rows->MoveNext();
    EXPECT_EQ(rows->Fields().Item(1).Value(), Variant("row 1 \x80"));
    EXPECT_EQ(rows->Fields().Item(2).Value(), Variant(std::string(100000, 'x')));
    rows->MoveNext();
    EXPECT_TRUE(rows->Eof());
    EXPECT_EQ(Counting().open_handles, 2U); // the statement's handle is freed
}

TEST_F(AdoConnection, ARecordsetOutlivesItsConnection) {
    Open();
    const auto rows = Execute({{.rows = 1}});
    connection_.Close();
    EXPECT_EQ(rows->Fields().Item(0).Value(), Variant(0));
}

TEST_F(AdoConnection, AResultWithOnlyACountIsAClosedRecordset) {
    Open();
    EXPECT_EQ(Execute({{.columns = false, .row_count = 7}, {.rows = 3}})->State(), adStateClosed);
    EXPECT_EQ(affected_, 7);
}

TEST_F(AdoConnection, AStatementWithNeitherColumnsNorACountGivesNoResult) {
    Open();
    const auto rows = Execute({Nothing({Message("Changed database context to 'x'.")}), {.rows = 3}});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(affected_, -1);
    EXPECT_EQ(Errors(), "0/0 ");
    EXPECT_EQ(Execute({Nothing()})->State(), adStateClosed);
}

TEST_F(AdoConnection, TheFirstOfSeveralResultsIsTaken) {
    Open();
    const auto rows = Execute({{.rows = 2}, {.rows = 5}, {.columns = false, .row_count = 9}});
    int count = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        ++count;
    }
    EXPECT_EQ(count, 2);
    EXPECT_EQ(affected_, -1);
}

TEST_F(AdoConnection, EveryRecordOfEveryResultIsKeptErrorsBeforeMessages) {
    Open();
    const auto rows = Execute({Nothing({Message("one")}),
                               {.rows = 1, .records = {Message("two")}},
                               Failed({ServerError("42S02", 208, "gone"), Message("three")}),
                               {.columns = false, .row_count = 1, .records = {Message("four")}},
                               Failed({ServerError("23000", 547, "kept")})});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(Errors(), "-2147217865/208 -2147217873/547 0/0 0/0 0/0 0/0 ");
    EXPECT_EQ(connection_.Errors().Item(2).Description, "[Fake][SQL Server]one");
    EXPECT_EQ(connection_.Errors().Item(5).Description, "[Fake][SQL Server]four");
}

TEST_F(AdoConnection, AnErrorCarriesTheRecordsOwnFields) {
    Open();
    ExpectFailure({Failed({ServerError("42000", 50000, "[own] text")})});
    const Error& error = connection_.Errors().Item(0);
    EXPECT_EQ(error.Number, -2147217900);
    EXPECT_EQ(error.Description, "[Fake][SQL Server][own] text");
    EXPECT_EQ(error.Source, "SQL Server");
    EXPECT_EQ(error.NativeError, 50000);
    EXPECT_EQ(error.SQLState, "42000");
}

TEST_F(AdoConnection, ADriversOwnErrorHasTheDriverAsItsSource) {
    Open();
    ExpectFailure({Failed({{.state = "HY000", .message = "[Manager][Fake]broken"}})});
    EXPECT_EQ(connection_.Errors().Item(0).Source, "Fake");
    ExpectFailure({Failed({{.state = "HY000", .message = "broken"}})});
    EXPECT_EQ(connection_.Errors().Item(0).Source, "ODBC");
}

TEST_F(AdoConnection, AnErrorInPlaceOfTheFirstResultFails) {
    Open();
    ExpectFailure({Failed({ServerError("42000", 1, "no")})});
}

TEST_F(AdoConnection, AnErrorBeforeTheFirstResultFailsAndTheLaterResultsAreRead) {
    Open();
    ExpectFailure(
        {Failed({ServerError("42000", 1, "no")}), {.rows = 3}, Failed({ServerError("42000", 2, "nor")})});
    EXPECT_EQ(Errors(), "-2147217900/1 -2147217900/2 ");
}

TEST_F(AdoConnection, AnErrorAfterAResultWithoutColumnsFails) {
    Open();
    ExpectFailure({{.columns = false, .row_count = 3}, Failed({ServerError("42000", 1, "no")})});
    ExpectFailure({Nothing({Message("PRINT")}), Failed({ServerError("42000", 1, "no")}), {.rows = 1}});
}

TEST_F(AdoConnection, AnErrorAfterAResultWithColumnsStaysInErrors) {
    Open();
    const auto rows = Execute({{.rows = 1}, Failed({ServerError("42000", 1, "no")})});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_FALSE(rows->Eof());
    EXPECT_EQ(Errors(), "-2147217900/1 ");
}

TEST_F(AdoConnection, AnErrorThatComesWithSuccessFailsTheCall) {
    // A driver may report a batch in this way if the batch continued after a failed statement.
    Open();
    const OdbcRecord failed = ServerError("42000", 1, "no");
    ExpectFailure({{.columns = false, .row_count = 2, .records = {failed}}, {.rows = 1}});
    ExpectFailure({{.rows = 2, .records = {Message("one"), failed}}});
    ExpectFailure({Nothing({Message("one")}), {.rows = 2, .records = {failed}}});
    ExpectFailure({{.columns = false, .row_count = 2}, {.rows = 2, .records = {failed}}});
    EXPECT_EQ(Errors(), "-2147217900/1 ");
    const auto rows = Execute({{.rows = 2}, {.rows = 1, .records = {failed}}});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(Errors(), "-2147217900/1 ");
}

TEST_F(AdoConnection, WarningsOfTheDriverAreMessages) {
    Open();
    const auto rows = Execute({{.rows = 2,
                                .records = {{.state = "01S02", .message = "[Fake]Option value changed"},
                                            {.state = "00000", .message = "[Fake]fine"}},
                                .fetch_records = {{.state = "01003", .message = "[Fake]NULL eliminated"}}}});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(Errors(), "0/0 0/0 0/0 ");
}

TEST_F(AdoConnection, AStatementThatTouchesNoRowIsAClosedRecordsetWithACountOfZero) {
    Open();
    EXPECT_EQ(Execute({{.columns = false, .row_count = 0, .no_data = true}, {.rows = 1}})->State(),
              adStateClosed);
    EXPECT_EQ(affected_, 0);
    ExpectFailure(
        {{.columns = false, .row_count = 0, .no_data = true}, Failed({ServerError("42000", 1, "no")})});
}

TEST_F(AdoConnection, ABlockThatAnErrorHasCutShortFailsThoughTheDriverReportsSuccess) {
    Open();
    ExpectFailure({{.rows = 3, .fetch_records = {ServerError("22018", 245, "Conversion failed")}}});
    EXPECT_EQ(Errors(), "-2147217913/245 ");
}

TEST_F(AdoConnection, AnErrorAmongTheRowsFails) {
    Open();
    Counting().results = {{.rows = 600}};
    std::size_t at = Counting().calls;
    do {
        // Fails one call after the other until the failing call is a fetch.
        connection_ = Connection();
        fakes::ResetCounting();
        Counting().results = {{.rows = 600}};
        Counting().failing_call = 0;
        Open();
        Counting().failing_call = ++at;
        try {
            connection_.Execute("run", affected_, adCmdText);
        } catch (const CallError&) {
        }
    } while (Counting().failed_function != "SQLFetch");
    EXPECT_EQ(connection_.Errors().Count(), 1);
}

TEST_F(AdoConnection, ADriverThatFailsForEverEndsTheStatement) {
    Open();
    // After a failure that the server has not reported, the driver is not called again.
    ExpectFailure({Failed({{.state = "HYT00", .message = "[Fake]Timeout expired"}}), {.rows = 1}});
    EXPECT_EQ(Errors(), "-2147217871/0 ");
    ExpectFailure({Failed({DriversError("08S01", "gone")}), Failed({ServerError("42000", 1, "never")})});
    EXPECT_EQ(Errors(), "-2147467259/0 ");
}

TEST_F(AdoConnection, AfterAServersErrorOfClass08TheOtherResultsAreRead) {
    Open();
    const std::vector<OdbcResult> results = {{.rows = 1},
                                             Failed({ServerError("08004", 911, "no such database")}),
                                             Failed({ServerError("42000", 1, "and on")})};
    Execute(results);
    EXPECT_EQ(Errors(), "-2147467259/911 -2147217900/1 ");
    // With the same error on a dead connection no more results are read.
    Counting().connection_dead = true;
    Execute(results);
    EXPECT_EQ(Errors(), "-2147467259/911 ");
}

TEST_F(AdoConnection, ARaisedMessageHasANumberAndTheServersOwnHaveZero) {
    Open();
    const auto rows = Execute({Nothing({Message("PRINT")}),
                               {.rows = 1, .records = {Raised(5701, "Changed database context")}},
                               Nothing({Raised(50000, "first")}),
                               Nothing({Raised(49999, "below")}),
                               Nothing({Raised(2147483647, "second")})});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(Errors(), "265946/50000 265946/2147483647 0/0 0/5701 0/49999 ");
}

TEST_F(AdoConnection, TheErrorIsTheFirstEntryAlsoAfterARaisedMessage) {
    Open();
    ExpectFailure(
        {Nothing({Message("one"), Raised(50001, "two")}), Failed({ServerError("42000", 50000, "no")})});
    EXPECT_EQ(Errors(), "-2147217900/50000 265946/50001 0/0 ");
}

TEST_F(AdoConnection, TheMessagesOfALoginAreInErrors) {
    Counting().login_records = {Raised(5701, "Changed database context"),
                                Raised(50000, "Maintenance at noon")};
    Open();
    EXPECT_EQ(connection_.State(), adStateOpen);
    EXPECT_EQ(Errors(), "265946/50000 0/5701 ");
}

TEST_F(AdoConnection, ErrorsHasTheEntriesOfTheLastCall) {
    Open();
    ExpectFailure({Failed({ServerError("42000", 1, "no")})});
    Execute({{.rows = 1}});
    EXPECT_EQ(connection_.Errors().Count(), 0);
    ExpectFailure({Failed({ServerError("42000", 2, "no")})});
    connection_.Close();
    EXPECT_EQ(Errors(),
              "-2147217900/2 "); // the failure path reads Errors before it closes; closing changes nothing
}

TEST_F(AdoConnection, NumbersFollowTheSqlState) {
    Open();
    const std::vector<std::pair<std::string, std::int32_t>> numbers = {
        {"42000", -2147217900}, {"37000", -2147217900}, {"42S01", -2147217900}, {"42S22", -2147217900},
        {"21S01", -2147217900}, {"42S02", -2147217865}, {"S0002", -2147217865}, {"28000", -2147217843},
        {"HYT00", -2147217871}, {"23000", -2147217873}, {"22001", -2147217833}, {"22003", -2147217833},
        {"22005", -2147217913}, {"22007", -2147217913}, {"22008", -2147217913}, {"22018", -2147217913},
        {"08001", -2147467259}, {"08S01", -2147467259}, {"40001", -2147467259}, {"HY000", -2147467259},
        {"IM002", -2147467259}};
    for (const auto& [state, number] : numbers) {
        ExpectFailure({Failed({ServerError(state, 1, "no")})});
        EXPECT_EQ(connection_.Errors().Item(0).Number, number) << state;
    }
}

TEST_F(AdoConnection, ACallInTheWrongStateIsRefusedWithAdosNumbers) {
    const auto number = [](const std::function<void()>& call) {
        try {
            call();
        } catch (const CallError& error) {
            return error.Number();
        }
        return 0;
    };
    EXPECT_EQ(number([&] { Execute({}); }), kObjectClosed);
    EXPECT_EQ(number([&] { connection_.Close(); }), kObjectClosed);
    EXPECT_EQ(number([&] { connection_.Open("", "", "", adOptionUnspecified); }), kFeatureNotAvailable);
    EXPECT_EQ(number([&] { connection_.CursorLocation(adUseServer); }), kFeatureNotAvailable);
    connection_.CursorLocation(adUseClient);
    EXPECT_EQ(number([&] { connection_.Open("x", "sa", "", adOptionUnspecified); }), kFeatureNotAvailable);
    EXPECT_EQ(number([&] { connection_.Open("x", "", "", 16); }), kArgumentsInConflict);
    EXPECT_EQ(Counting().calls, 0U);
    Open();
    EXPECT_EQ(number([&] { Open(); }), kObjectOpen);
    EXPECT_EQ(number([&] { connection_.Open("", "", "", adOptionUnspecified); }), kObjectOpen);
    EXPECT_EQ(number([&] { connection_.Execute("run", affected_, 4); }), kArgumentsInConflict);
}

TEST_F(AdoConnection, NoHandleIsLostWhicheverCallFails) {
    const auto session = [&] {
        connection_ = Connection();
        Open();
        Execute(
            {{.with_long_column = true, .rows = 3, .long_size = 70000}, {.columns = false, .row_count = 2}});
        connection_.Close();
    };
    session();
    const std::size_t calls = Counting().calls;
    ASSERT_GT(calls, 25U);
    std::set<std::string> failed;
    for (std::size_t call = 1; call <= calls; ++call) {
        connection_ = Connection();
        fakes::ResetCounting();
        Counting().failing_call = call;
        bool thrown = false;
        try {
            session();
        } catch (const CallError& error) {
            thrown = true;
            EXPECT_NE(error.Number(), 0);
            EXPECT_GE(connection_.Errors().Count(), 1);
        }
        // A failure in clean-up is not reported, and a failure after the rows leaves the rows.
        const std::set<std::string> silent = {"SQLFreeStmt", "SQLSetStmtAttr", "SQLMoreResults",
                                              "SQLNumResultCols", "SQLRowCount"};
        EXPECT_TRUE(thrown || silent.contains(Counting().failed_function)) << Counting().failed_function;
        failed.insert(Counting().failed_function);
        connection_ = Connection();
        EXPECT_EQ(Counting().open_handles, 0U) << Counting().failed_function;
        EXPECT_EQ(Counting().open_connections, 0U);
        EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
    }
    EXPECT_TRUE(failed.contains("SQLDriverConnect") && failed.contains("SQLExecDirect") &&
                failed.contains("SQLFetch"));
}

} // namespace
} // namespace ado

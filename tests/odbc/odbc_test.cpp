// Tests the ODBC layer with the fake driver manager (fakes/odbc_counting.h): no handle stays open, whichever
// call fails, and every diagnostic record of the driver is kept.
#include "odbc/odbc.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>

#include "fakes/odbc_counting.h"
#include "odbc/odbc_rows.h"
#include "text/code_page.h"

namespace {

using namespace odbc;
using fakes::Counting;
using fakes::OdbcRecord;
using fakes::OdbcResult;

static_assert(!std::is_copy_constructible_v<Handle> && std::is_nothrow_move_constructible_v<Handle>);
static_assert(!std::is_copy_constructible_v<Connection> && std::is_nothrow_move_constructible_v<Connection>);
static_assert(!std::is_copy_constructible_v<Statement> && std::is_nothrow_move_constructible_v<Statement>);

class Odbc : public ::testing::Test {
  protected:
    Odbc() { fakes::ResetCounting(); }

    void ExpectNothingLeft() const {
        EXPECT_EQ(Counting().open_handles, 0U);
        EXPECT_EQ(Counting().open_connections, 0U);
        EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
    }
};

/// Runs a session that uses every function of the layer once.
void RunWholeSession() {
    Environment environment;
    Connection connection(environment);
    connection.SetPacketSize(4096);
    connection.DriverConnect("Driver={SQL Server};Server=x;", 10);
    connection.Info(6);
    {
        Statement statement(connection);
        statement.SetQueryTimeout(5);
        statement.ExecDirect("select");
        do {
            if (statement.ColumnCount() != 0) {
                RowReader reader(statement);
                std::vector<Value> row;
                while (reader.Next(row)) {
                }
            }
            statement.RowCount();
        } while (statement.MoreResults());
    }
    {
        Statement prepared(connection);
        prepared.Prepare("call ?");
        prepared.Bind(1, {.value = std::string("text")});
        prepared.Bind(2, {.type = SqlType::LongVarBinary, .value = Bytes{"data"}});
        prepared.Execute();
    }
    {
        Statement catalogue(connection);
        catalogue.Procedures();
        catalogue.ProcedureColumns("spOne");
    }
}

std::vector<OdbcResult> SessionResults() {
    return {{.with_long_column = true, .rows = 3, .long_size = 70000}, {.columns = false, .row_count = 2}};
}

TEST_F(Odbc, ASessionThatWorksFreesEveryHandleInOrder) {
    Counting().results = SessionResults();
    RunWholeSession();
    EXPECT_EQ(Counting().most_handles, 3U);
    ExpectNothingLeft();
}

TEST_F(Odbc, NoHandleIsLostWhicheverCallFails) {
    Counting().results = SessionResults();
    RunWholeSession();
    const std::size_t calls = Counting().calls;
    ASSERT_GT(calls, 50U);
    // Failures in clean-up are not reported.
    const std::set<std::string> silent = {"SQLFreeStmt", "SQLSetStmtAttr"};
    std::set<std::string> failed;
    for (std::size_t call = 1; call <= calls; ++call) {
        fakes::ResetCounting();
        Counting().results = SessionResults();
        Counting().failing_call = call;
        bool thrown = false;
        try {
            RunWholeSession();
        } catch (const OdbcError& error) {
            thrown = true;
            EXPECT_EQ(error.Function(), Counting().failed_function);
        }
        EXPECT_TRUE(thrown || silent.contains(Counting().failed_function)) << Counting().failed_function;
        failed.insert(Counting().failed_function);
        ExpectNothingLeft();
    }
    const std::set<std::string> every = {
        "SQLAllocHandle", "SQLBindCol",        "SQLBindParameter",    "SQLColAttribute",
        "SQLDescribeCol", "SQLDriverConnect",  "SQLExecDirect",       "SQLExecute",
        "SQLFetch",       "SQLFreeStmt",       "SQLGetData",          "SQLGetInfo",
        "SQLMoreResults", "SQLNumResultCols",  "SQLPrepare",          "SQLProcedures",
        "SQLRowCount",    "SQLSetConnectAttr", "SQLProcedureColumns", "SQLSetEnvAttr",
        "SQLSetStmtAttr",
    };
    EXPECT_EQ(failed, every);
}

TEST_F(Odbc, AMovedFromHandleFreesNothing) {
    Environment environment;
    Connection first(environment);
    first.DriverConnect("x", 0);
    Connection second(std::move(first));
    EXPECT_EQ(Counting().open_connections, 1U);
    Connection third(environment);
    third.DriverConnect("y", 0);
    third = std::move(second);
    EXPECT_EQ(Counting().open_connections, 1U);
    Statement one(third);
    Statement two(third);
    two = std::move(one);
    EXPECT_EQ(Counting().open_handles, 3U);
    EXPECT_TRUE(Counting().violations.empty());
}

TEST_F(Odbc, AMovedConnectionStillKnowsItsDriver) {
    Environment environment;
    Counting().driver_name = "libtdsodbc.so";
    Connection first(environment);
    first.DriverConnect("x", 0);
    Connection second(std::move(first));
    EXPECT_TRUE(second.UsesFreeTds());
    Connection third(environment);
    third = std::move(second);
    EXPECT_TRUE(third.UsesFreeTds());
}

/// Has a connection whose statement was run and returned `results`.
class OdbcStatement : public Odbc {
  protected:
    Statement Run(std::vector<OdbcResult> results) {
        Counting().results = std::move(results);
        connection_.DriverConnect("x", 0);
        Statement statement(connection_);
        statement.ExecDirect("run");
        return statement;
    }

    Environment environment_;
    Connection connection_{environment_};
};

TEST_F(OdbcStatement, RowsAreFetchedInBlocksUntilOneIsNotFull) {
    Statement statement = Run({{.rows = 1300}});
    std::vector<Value> row;
    std::size_t rows = 0;
    {
        RowReader reader(statement);
        while (reader.Next(row)) {
            ASSERT_EQ(std::get<std::int64_t>(row[0]), static_cast<std::int64_t>(rows));
            ASSERT_EQ(std::get<std::string>(row[1]), "row " + std::to_string(rows) + " \x80");
            ++rows;
        }
        EXPECT_FALSE(reader.Next(row));
    }
    EXPECT_EQ(rows, 1300U);
    EXPECT_EQ(Counting().fetches, 3U); // 512, 512 and 276 rows
}

TEST_F(OdbcStatement, AfterAFullLastBlockThereIsOneEmptyFetch) {
    Statement statement = Run({{.rows = 512}});
    RowReader reader(statement);
    std::vector<Value> row;
    std::size_t rows = 0;
    while (reader.Next(row)) {
        ++rows;
    }
    EXPECT_EQ(rows, 512U);
    EXPECT_EQ(Counting().fetches, 2U);
}

TEST_F(OdbcStatement, LongColumnsAreReadInPiecesFromSingleRows) {
    Statement statement = Run({{.with_long_column = true, .rows = 2, .long_size = 100000}});
    RowReader reader(statement);
    std::vector<Value> row;
    ASSERT_TRUE(reader.Next(row));
    EXPECT_EQ(std::get<std::string>(row[2]), std::string(100000, 'x'));
    ASSERT_TRUE(reader.Next(row));
    EXPECT_EQ(std::get<std::string>(row[2]).size(), 100000U);
    EXPECT_FALSE(reader.Next(row));
    EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
}

TEST_F(OdbcStatement, AnEmptyLongColumnIsAnEmptyText) {
    Statement statement = Run({{.with_long_column = true, .rows = 1, .long_size = 0}});
    RowReader reader(statement);
    std::vector<Value> row;
    ASSERT_TRUE(reader.Next(row));
    EXPECT_EQ(std::get<std::string>(row[2]), "");
}

TEST_F(OdbcStatement, MessagesOfSuccessfulCallsAreKeptUntilTheyAreTaken) {
    Statement statement = Run({{.columns = false, .records = {{.state = "01000", .message = "one"}}},
                               {.columns = false, .records = {{.state = "01000", .message = "two"}}}});
    EXPECT_TRUE(statement.MoreResults());
    EXPECT_FALSE(statement.MoreResults());
    const std::vector<Diagnostic> messages = statement.TakeMessages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].message, "one");
    EXPECT_FALSE(messages[0].error);
    EXPECT_EQ(messages[1].message, "two");
    EXPECT_TRUE(statement.TakeMessages().empty());
}

/// Runs a statement that fails and returns the records that the layer passes on.
class OdbcFailure : public OdbcStatement {
  protected:
    std::vector<Diagnostic> Fail(std::vector<OdbcRecord> records) {
        try {
            Run({{.records = std::move(records), .fails = true}});
        } catch (const OdbcError& error) {
            lost_ = error.ConnectionLost();
            return error.Diagnostics();
        }
        ADD_FAILURE() << "did not fail";
        return {};
    }

    bool lost_ = false;
};

TEST_F(OdbcFailure, EveryRecordIsKeptInOrderWithAllItsFields) {
    const auto records = Fail({{.state = "42S02",
                                .native = 208,
                                .message = "[D][SQL Server]Invalid object",
                                .server = "S",
                                .line = 3,
                                .severity = 16,
                                .server_state = 2},
                               {.state = "01000", .native = 5701, .message = "changed"}});
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].sql_state, "42S02");
    EXPECT_EQ(records[0].native_error, 208);
    EXPECT_EQ(records[0].message, "[D][SQL Server]Invalid object");
    EXPECT_EQ(records[0].server, "S");
    EXPECT_EQ(records[0].line, 3);
    EXPECT_EQ(records[0].severity, 16);
    EXPECT_EQ(records[0].state, 2);
    EXPECT_TRUE(records[0].error);
    EXPECT_FALSE(records[1].error);
    EXPECT_FALSE(lost_);
}

TEST_F(OdbcFailure, AMessageLongerThanTheBufferIsReadCompletely) {
    const std::string text(5000, '\xE4');
    EXPECT_EQ(Fail({{.message = text}}).front().message, text);
}

TEST_F(OdbcFailure, WithoutASeverityFieldTheStateFieldHasTheSeverity) {
    const auto records = Fail({{.state = "42000", .native = 50000, .server_state = 14}});
    EXPECT_EQ(records.front().severity, 14);
    EXPECT_FALSE(records.front().state.has_value());
}

TEST_F(OdbcFailure, AFailedCallWithOnlyAMessageReportsItAsTheError) {
    EXPECT_TRUE(Fail({{.state = "01000", .message = "Can't open lib"}}).front().error);
}

TEST_F(OdbcFailure, AFailureWithoutARecordNamesItsFunction) {
    const auto records = Fail({});
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records.front().sql_state, "HY000");
    EXPECT_NE(records.front().message.find("SQLExecDirect"), std::string::npos);
}

/// The parameter is an error number of FreeTDS for a broken connection.
class OdbcLostByNumber : public OdbcFailure, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(OdbcLostByNumber, IsAnErrorEvenIfTheDriverReturnsSuccess) {
    const OdbcRecord died = {
        .state = "01000", .native = GetParam(), .message = "gone", .line = 0xFFFF, .severity = 9};
    Statement statement = Run({{.columns = false}, {.columns = false, .records = {died}}});
    try {
        statement.MoreResults();
        FAIL() << "did not fail";
    } catch (const OdbcError& error) {
        EXPECT_TRUE(error.ConnectionLost());
        EXPECT_EQ(error.Diagnostics().front().sql_state, "08S01");
        EXPECT_FALSE(error.Diagnostics().front().line.has_value());
        EXPECT_FALSE(error.Diagnostics().front().severity.has_value());
    }
}

TEST_P(OdbcLostByNumber, IsNotALostConnectionInAMessageOfTheServer) {
    EXPECT_EQ(Fail({{.state = "42000", .native = GetParam(), .line = 4, .severity = 16}}).front().sql_state,
              "42000");
    EXPECT_FALSE(lost_);
}

INSTANTIATE_TEST_SUITE_P(FreeTds, OdbcLostByNumber, ::testing::Values(20004, 20006, 20017, 20047));

TEST_F(OdbcFailure, AnotherMessageOfTheDriverIsNotALostConnection) {
    const OdbcRecord notice = {.state = "01000", .native = 20018, .message = "see above", .line = 0xFFFF};
    Statement statement = Run({{.columns = false}, {.columns = false, .records = {notice}}});
    EXPECT_TRUE(statement.MoreResults());
}

TEST_F(OdbcFailure, OnlyTheDriversOwnRecordsOfClass08AreALostConnection) {
    EXPECT_EQ(Fail({{.state = "08004", .native = 911, .line = 1, .severity = 16}}).front().sql_state,
              "08004");
    EXPECT_FALSE(lost_);
    connection_ = Connection(environment_);
    Fail({{.state = "08S01", .native = 11, .message = "General network error"}});
    EXPECT_TRUE(lost_);
}

TEST_F(Odbc, AConnectionIsAskedWhetherItIsDead) {
    Environment environment;
    Connection connection(environment);
    connection.DriverConnect("x", 0);
    EXPECT_FALSE(connection.Dead());
    Counting().connection_dead = true;
    EXPECT_TRUE(connection.Dead());
}

TEST_F(Odbc, TextIsSentAndReturnedInCodePage1252) {
    Counting().results = {{.columns = false}};
    Environment environment;
    Connection connection(environment);
    connection.DriverConnect("Pwd=\x80\x9F\xFF;", 0);
    EXPECT_EQ(Counting().last_connection_string, "Pwd=\x80\x9F\xFF;");
    Statement statement(connection);
    const std::string sql = "PRINT '\x81\x8D\xE4'";
    statement.ExecDirect(sql);
    EXPECT_EQ(Counting().last_statement, sql);
}

TEST_F(Odbc, AnInputParameterKeepsItsValue) {
    Environment environment;
    Connection connection(environment);
    connection.DriverConnect("x", 0);
    Statement statement(connection);
    const Guid guid{0x01020304, 5, 6, {7, 8, 9, 10, 11, 12, 13, 14}};
    const std::vector<Value> values = {std::monostate(),
                                       true,
                                       std::int64_t{-7},
                                       2.5,
                                       std::string("t"),
                                       guid,
                                       Bytes{std::string("\0x", 2)},
                                       Timestamp{2004, 2, 29, 23, 59, 58, 123000000}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto position = static_cast<std::uint16_t>(i + 1);
        statement.Bind(position, {.value = values[i]});
        EXPECT_EQ(statement.ParameterValue(position), values[i]) << i;
    }
}

struct OriginCase {
    const char* message;
    const char* text;
};

class WithoutOriginTest : public ::testing::TestWithParam<OriginCase> {};

TEST_P(WithoutOriginTest, GivesTheServersOwnText) {
    EXPECT_EQ(WithoutOrigin(GetParam().message), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, WithoutOriginTest,
    ::testing::Values(OriginCase{"[FreeTDS][SQL Server]Invalid object", "Invalid object"},
                      OriginCase{"[Microsoft][ODBC SQL Server Driver][SQL Server][a] is no table",
                                 "[a] is no table"},
                      OriginCase{"[unixODBC][Driver Manager]Can't open lib", "Can't open lib"},
                      OriginCase{"plain", "plain"}, OriginCase{"", ""}, OriginCase{"[open", "[open"}));

TEST(CodePage, EveryByteRoundTrips) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    EXPECT_EQ(text::Narrow(text::Widen(bytes)), bytes);
    EXPECT_EQ(text::Widen("\x80\x9F\xE4"), u"\u20AC\u0178\u00E4");
}

TEST(CodePage, ACharacterOutsideTheCodePageBecomesOneQuestionMark) {
    EXPECT_EQ(text::Narrow(u"a\u0416\U0001F600b\u0080"), "a??b?");
}

} // namespace

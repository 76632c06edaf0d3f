// Tests the database layer with a development server and the system's ODBC driver manager and driver: every
// type, every diagnostic of every result, the numbers of errors, and time-outs that end statements and
// logins.
#include <gtest/gtest.h>

#include <chrono>

#include "ado/command.h"
#include "ado/connection.h"
#include "support/servers.h"

namespace ado {
namespace {

/// Every entry of the errors as "number/native error".
std::string ErrorsOf(const Errors& errors) {
    std::string text;
    for (std::int16_t i = 0; i < errors.Count(); ++i) {
        text +=
            std::to_string(errors.Item(i).Number) + "/" + std::to_string(errors.Item(i).NativeError) + " ";
    }
    return text;
}

class OnAServer : public ::testing::Test {
  protected:
    std::unique_ptr<Recordset> Execute(const std::string& statement) {
        return connection_.Execute(statement, affected_, adCmdText);
    }
    Variant Value(const std::string& expression) {
        const auto rows = Execute("SELECT " + expression);
        return rows->Fields().Item(0).Value();
    }
    /// Runs the statement and returns the number of its failure; 0 if it succeeds.
    std::int32_t NumberOf(const std::string& statement) {
        try {
            Execute(statement);
        } catch (const CallError& error) {
            return error.Number();
        }
        return 0;
    }
    std::string Errors() const { return ErrorsOf(connection_.Errors()); }

    std::int64_t affected_ = 0;
    Connection connection_ = support::Connect(support::ServerA(), "tempdb");
};

TEST_F(OnAServer, EveryTypeArrivesAsItsKind) {
    const std::vector<std::pair<const char*, Variant>> values = {
        {"CAST(1 AS bit)", true},
        {"CAST(255 AS tinyint)", 255},
        {"CAST(-32768 AS smallint)", -32768},
        {"CAST(-2147483648 AS int)", std::int64_t{-2147483648}},
        {"CAST(9223372036854775807 AS bigint)", std::int64_t{9223372036854775807}},
        {"CAST(1.5 AS real)", 1.5F},
        {"CAST(-0.1 AS float)", -0.1},
        {"CAST(-12345678901234567890.123 AS decimal(28, 3))", Decimal{"-12345678901234567890.123"}},
        {"CAST(1.50 AS numeric(5, 2))", Decimal{"1.50"}},
        {"CAST('20060512 14:03:22.123' AS datetime)", Date{2006, 5, 12, 14, 3, 22, 123000000}},
        {"CAST('20060512 14:03' AS smalldatetime)", Date{2006, 5, 12, 14, 3, 0, 0}},
        {"CAST('ab' AS char(4))", "ab  "},
        {"CAST('ab' AS varchar(4))", "ab"},
        {"CAST(N'a\x80' AS nchar(3))", "a\x80 "},
        {"CAST(N'\xE4\xF6\xFC\xDF' AS nvarchar(9))", "\xE4\xF6\xFC\xDF"},
        {"CAST('' AS varchar(4))", ""},
        {"CAST('long' AS text)", "long"},
        {"CAST(N'long\x80' AS ntext)", "long\x80"},
        {"CAST(0x0102 AS binary(4))", ByteArray{std::string("\1\2\0\0", 4)}},
        {"CAST(0x0100 AS varbinary(4))", ByteArray{std::string("\1\0", 2)}},
        {"CAST(0x00FF AS image)", ByteArray{std::string("\0\xFF", 2)}},
        {"CAST('6F9619FF-8B86-D011-B42D-00C04FC964FF' AS uniqueidentifier)",
         "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"},
    };
    for (const auto& [expression, value] : values) {
        const Variant arrived = Value(expression);
        EXPECT_EQ(arrived, value) << expression << " came as " << arrived.ToString();
    }
}

TEST_F(OnAServer, MoneyIsAnExactNumber) {
    for (const char* type : {"money", "smallmoney"}) {
        const Variant value = Value(std::string("CAST(-1.2345 AS ") + type + ")");
        ASSERT_TRUE(std::holds_alternative<Decimal>(value.Get())) << type;
        EXPECT_EQ(value.ToString(), "-1.2345");
    }
}

TEST_F(OnAServer, NullOfEveryTypeIsNull) {
    for (const char* type : {"bit",       "tinyint",
                             "smallint",  "int",
                             "bigint",    "real",
                             "float",     "decimal(9, 2)",
                             "money",     "smallmoney",
                             "datetime",  "smalldatetime",
                             "char(3)",   "varchar(3)",
                             "nchar(3)",  "nvarchar(3)",
                             "text",      "ntext",
                             "binary(3)", "varbinary(3)",
                             "image",     "uniqueidentifier"}) {
        EXPECT_TRUE(Value(std::string("CAST(NULL AS ") + type + ")").IsNull()) << type;
    }
}

TEST_F(OnAServer, LongTextAndManyRowsArriveWhole) {
    EXPECT_EQ(Value("CAST(REPLICATE(CAST('x' AS varchar(max)), 200000) AS text)").ToString(),
              std::string(200000, 'x'));
    Execute("CREATE TABLE #many (n int, t varchar(30))");
    Execute("DECLARE @n int SET @n = 0 WHILE @n < 1500 BEGIN INSERT #many VALUES (@n, 'row ' + CAST(@n AS "
            "varchar(9))) "
            "SET @n = @n + 1 END");
    const auto rows = Execute("SELECT n, t FROM #many ORDER BY n");
    std::int64_t count = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        ASSERT_EQ(rows->Fields().Item(0).Value(), Variant(count));
        ASSERT_EQ(rows->Fields().Item(1).Value().ToString(), "row " + std::to_string(count));
        ++count;
    }
    EXPECT_EQ(count, 1500);
}

TEST_F(OnAServer, AStatementWithoutColumnsGivesAClosedRecordsetAndItsCount) {
    EXPECT_EQ(Execute("CREATE TABLE #t (a int)")->State(), adStateClosed);
    EXPECT_EQ(Execute("INSERT #t SELECT 1 UNION ALL SELECT 2")->State(), adStateClosed);
    EXPECT_EQ(affected_, 2);
    EXPECT_EQ(Execute("USE master")->State(), adStateClosed);
    const auto none = Execute("SELECT a FROM tempdb..#t WHERE a = 9");
    EXPECT_TRUE(none->Eof() && none->Bof());
    EXPECT_EQ(Execute("USE tempdb SELECT 5")->Fields().Item(0).Value(), Variant(5)); // USE gives no result
}

TEST_F(OnAServer, EveryDiagnosticOfEveryResultIsKeptNumbersFirst) {
    const auto rows = Execute("PRINT 'one' SELECT 1 RAISERROR('two', 16, 1) PRINT 'three' SELECT 2 "
                              "RAISERROR('four', 9, 1) RAISERROR(50001, 16, 1)");
    EXPECT_EQ(rows->Fields().Item(0).Value(), Variant(1));
    std::string texts;
    for (std::int16_t i = 0; i < connection_.Errors().Count(); ++i) {
        const std::string& text = connection_.Errors().Item(i).Description;
        texts += text.substr(text.rfind(']') + 1) + ";";
    }
    EXPECT_TRUE(texts.starts_with("two;")) << texts;
    EXPECT_NE(texts.find(";four;one;three;"), std::string::npos) << texts; // "four" was raised
    EXPECT_EQ(connection_.Errors().Item(0).Number, -2147217900);
    EXPECT_EQ(connection_.Errors().Item(0).NativeError, 50000);
    EXPECT_EQ(connection_.Errors().Item(0).Source, "SQL Server");
    EXPECT_EQ(connection_.Errors().Item(0).SQLState, "42000");
    EXPECT_EQ(connection_.Errors().Item(2).Number, 265946);
    EXPECT_EQ(connection_.Errors().Item(3).Number, 0);
}

TEST_F(OnAServer, AnErrorFailsUnlessRowsCameBeforeIt) {
    EXPECT_EQ(NumberOf("RAISERROR('no', 16, 1)"), -2147217900);
    EXPECT_EQ(NumberOf("PRINT 'first' RAISERROR('no', 16, 1)"), -2147217900);
    EXPECT_EQ(NumberOf("RAISERROR('no', 16, 1) SELECT 1"), -2147217900);
    Execute("CREATE TABLE #t (a int)");
    EXPECT_EQ(NumberOf("INSERT #t VALUES (1) RAISERROR('no', 16, 1)"), -2147217900);
    EXPECT_EQ(Execute("SELECT COUNT(*) FROM #t")->Fields().Item(0).Value(), Variant(1));
    EXPECT_EQ(NumberOf("SELECT 1 RAISERROR('no', 16, 1)"), 0);
    EXPECT_EQ(Errors(), "-2147217900/50000 ");
}

TEST_F(OnAServer, AMessageThatAProcedureRaisesHasANumber) {
    EXPECT_EQ(NumberOf("RAISERROR('mere message', 10, 1)"), 0);
    EXPECT_EQ(Errors(), "265946/50000 ");
    EXPECT_EQ(NumberOf("PRINT 'said' SELECT 1 RAISERROR('mere message', 9, 1) PRINT 'said'"), 0);
    EXPECT_EQ(Errors(), "265946/50000 0/0 0/0 ");
}

TEST_F(OnAServer, AnUnknownDatabaseInABatchIsNotALostConnection) {
    const auto rows = Execute("SELECT 1 USE NoSuchDatabase");
    EXPECT_EQ(rows->Fields().Item(0).Value(), Variant(1));
    EXPECT_EQ(Errors(), "-2147467259/911 ");
    EXPECT_EQ(Value("7"), Variant(7));
}

TEST_F(OnAServer, AnErrorAmongTheRowsFailsAtEveryRow) {
    Execute("CREATE TABLE #numbers (n int, t varchar(9))");
    Execute(
        "DECLARE @n int SET @n = 0 WHILE @n < 1100 BEGIN INSERT #numbers VALUES (@n, CAST(@n AS varchar(9))) "
        "SET @n = @n + 1 END");
    // The error comes in the first row, after some rows, at the end of a block of rows, and in a later block.
    for (const char* row : {"0", "5", "511", "512", "1099"}) {
        Execute(std::string("UPDATE #numbers SET t = 'x' WHERE n = ") + row);
        EXPECT_NE(NumberOf("SELECT n, CAST(t AS int) FROM #numbers"), 0) << row;
        EXPECT_EQ(connection_.Errors().Item(0).NativeError, 245) << row;
        EXPECT_NE(NumberOf("SELECT n, CAST(t AS int), CAST('long' AS text) FROM #numbers"), 0) << row;
        // After a result with columns the error is kept in Errors, and the first result is returned.
        const auto first = Execute("SELECT 7 SELECT n, CAST(t AS int) FROM #numbers SELECT 8");
        EXPECT_EQ(first->Fields().Item(0).Value(), Variant(7)) << row;
        EXPECT_NE(Errors().find("/245 "), std::string::npos) << row << ": " << Errors();
        Execute(std::string("UPDATE #numbers SET t = '1' WHERE n = ") + row);
    }
    EXPECT_EQ(Value("COUNT(*) FROM #numbers WHERE CAST(t AS int) >= 0"), Variant(1100));
}

TEST_F(OnAServer, AStatementThatTouchesNoRowIsAResultWithACountOfZero) {
    Execute("CREATE TABLE #t (a int)");
    for (const char* statement : {"UPDATE #t SET a = 1 WHERE a = 9", "DELETE #t SELECT 5"}) {
        affected_ = -1;
        EXPECT_EQ(Execute(statement)->State(), adStateClosed) << statement;
        EXPECT_EQ(affected_, 0) << statement;
    }
    EXPECT_EQ(NumberOf("DELETE #t RAISERROR('after it', 16, 1)"), -2147217900);
}

struct OutputCase {
    const char* type;
    const char* value; ///< as T-SQL writes it
    Variant wanted;
};

const std::vector<OutputCase> kOutputCases = {
    {"bit", "1", true},
    {"tinyint", "255", 255},
    {"smallint", "-32768", -32768},
    {"int", "-2147483648", std::int64_t{-2147483648}},
    {"bigint", "9223372036854775807", std::int64_t{9223372036854775807}},
    {"decimal(20, 5)", "-123456789012345.54321", Decimal{"-123456789012345.54321"}},
    {"numeric(9, 2)", "1.50", Decimal{"1.50"}},
    {"money", "-922337203685477.5808", Decimal{"-922337203685477.5808"}},
    {"smallmoney", "214748.3647", Decimal{"214748.3647"}},
    {"real", "0.5", 0.5F},
    {"float", "-1.5E+100", -1.5E+100},
    {"datetime", "'2006-05-12 14:03:22'", Date{2006, 5, 12, 14, 3, 22, 0}},
    {"smalldatetime", "'2006-05-12 14:03'", Date{2006, 5, 12, 14, 3, 0, 0}},
    {"char(4)", "'ab'", "ab  "},
    {"varchar(8000)", "'\x80 of 9'", "\x80 of 9"},
    {"nchar(3)", "N'\xE4'", "\xE4  "},
    {"nvarchar(4000)", "N'\xFC\xDF'", "\xFC\xDF"},
    {"binary(4)", "0x0102", ByteArray{std::string("\1\2\0\0", 4)}},
    {"varbinary(8)", "0x00FF", ByteArray{std::string("\0\xFF", 2)}},
    {"uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'", "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"},
};

TEST_F(OnAServer, ParametersOfEveryTypeComeBack) {
    Execute("USE tempdb");
    for (const OutputCase& one : kOutputCases) {
        const std::string type = one.type;
        SCOPED_TRACE(type);
        NumberOf("DROP PROCEDURE spGives");
        Execute("CREATE PROCEDURE spGives @in " + type + ", @value " + type + " OUTPUT, @copy " + type +
                " OUTPUT, @none " + type + " OUTPUT AS SET @copy = @in SET @value = " + one.value +
                " SET @none = NULL SELECT 1 AS one RETURN -7");
        Command command;
        command.ActiveConnection(connection_);
        command.CommandText("spGives");
        command.CommandType(adCmdStoredProc);
        command.Parameters().Refresh();
        Parameters& parameters = command.Parameters();
        ASSERT_EQ(parameters.Count(), 5);
        parameters.Item(1).Value(one.wanted);
        parameters.Item(2).Value(Null());
        parameters.Item(3).Value(Null());
        parameters.Item(4).Value(one.wanted);
        const auto rows = command.Execute(affected_, adOptionUnspecified);
        EXPECT_EQ(rows->Fields().Item(0).Value(), Variant(1));
        EXPECT_EQ(parameters.Item(0).Value(), Variant(-7));
        EXPECT_EQ(parameters.Item(2).Value(), one.wanted) << parameters.Item(2).Value().ToString();
        EXPECT_EQ(parameters.Item(3).Value(), one.wanted) << parameters.Item(3).Value().ToString();
        EXPECT_TRUE(parameters.Item(4).Value().IsNull());
    }
    Execute("DROP PROCEDURE spGives");
}

TEST_F(OnAServer, ErrorsHaveTheNumbersOfTheirState) {
    Execute("CREATE TABLE #t (a int NOT NULL PRIMARY KEY, b varchar(2))");
    Execute("INSERT #t VALUES (1, 'x')");
    struct Case {
        const char* statement;
        std::int32_t number;
        std::int32_t native;
    };
    for (const Case& one :
         {Case{"SELECT * FROM NoSuchTable", -2147217865, 208},
          Case{"SELECT nothing FROM #t", -2147217900, 207}, Case{"SELEC 1", -2147217900, 2812},
          Case{"SELECT * FRM #t x y", -2147217900, 102}, Case{"EXEC NoSuchProcedure", -2147217900, 2812},
          Case{"CREATE TABLE #t (a int)", -2147217900, 2714},
          Case{"INSERT #t VALUES (1, 'y')", -2147217873, 2627},
          Case{"INSERT #t VALUES (NULL, 'y')", -2147217873, 515},
          Case{"INSERT #t VALUES (2, 'toolong')", -2147217833, 8152},
          Case{"INSERT #t VALUES (1, 2, 3)", -2147217900, 213},
          // The driver has no SQLSTATE for these two.
          Case{"DECLARE @i int SET @i = 2147483647 SET @i = @i + 1", -2147467259, 8115},
          Case{"USE NoSuchDatabase", -2147467259, 911}}) {
        SCOPED_TRACE(one.statement);
        EXPECT_EQ(NumberOf(one.statement), one.number);
        ASSERT_GE(connection_.Errors().Count(), 1);
        EXPECT_EQ(connection_.Errors().Item(0).NativeError, one.native)
            << connection_.Errors().Item(0).Description << " " << connection_.Errors().Item(0).SQLState;
    }
}

class Refused : public ::testing::Test {
  protected:
    /// Opens a connection with this string and returns the errors.
    static ado::Errors Open(const std::string& connection_string, std::int32_t seconds = 60) {
        Connection connection;
        connection.CursorLocation(adUseClient);
        connection.ConnectionTimeout(seconds);
        EXPECT_THROW(connection.Open(connection_string, "", "", adOptionUnspecified), CallError);
        EXPECT_EQ(connection.State(), adStateClosed);
        return connection.Errors();
    }
    static std::string String(const std::string& server, const std::string& database,
                              const std::string& password) {
        return "Driver={SQL Server};Server=" + server + ";Database=" + database +
               ";Uid=" + support::FromServers("KV_USER") + ";Pwd=" + password + ";";
    }
};

TEST_F(Refused, AWrongPasswordIsTheServersErrorFirst) {
    const ado::Errors errors = Open(String(support::ServerA(), "master", "wrong"));
    EXPECT_EQ(errors.Item(0).NativeError, 18456);
    EXPECT_NE(errors.Item(0).Number, 0);
    EXPECT_NE(errors.Item(0).Description.find("Login failed for user"), std::string::npos);
}

TEST_F(Refused, AnUnknownDatabaseAnUnknownDriverAndAnEmptyString) {
    const std::string password = support::FromServers("KV_PASSWORD");
    EXPECT_NE(ErrorsOf(Open(String(support::ServerA(), "NoSuch", password))).find("/4060 "),
              std::string::npos);
    EXPECT_EQ(Open("Driver={No such driver};Server=x;").Item(0).Number, -2147467259);
    EXPECT_EQ(Open("").Item(0).Number, -2147467259);
    EXPECT_EQ(Open(String("127.0.0.1,1", "master", password)).Item(0).Number, -2147467259);
}

class TimeOut : public OnAServer {
  protected:
    using Clock = std::chrono::steady_clock;
    /// A limit that is long enough for a slow machine and much shorter than the statement's wait.
    static constexpr std::chrono::seconds kSoon{120};
    /// Seconds, for all statements of the connection and for the answer to a cancel. Long enough for those
    /// that must not reach it.
    static constexpr std::int32_t kLimit = 5;
};

TEST_F(TimeOut, EndsAStatementThatHangsAndLeavesTheConnectionGood) {
    connection_.CommandTimeout(kLimit);
    const auto begin = Clock::now();
    EXPECT_EQ(NumberOf("WAITFOR DELAY '00:10:00'"), -2147217871);
    EXPECT_LT(Clock::now() - begin, kSoon);
    EXPECT_EQ(connection_.Errors().Item(0).SQLState, "HYT00");
    EXPECT_EQ(connection_.State(), adStateOpen);
    EXPECT_EQ(Value("7"), Variant(7));
}

TEST_F(TimeOut, RollsBackNothingThatWasDoneBefore) {
    Execute("CREATE TABLE #t (a int)");
    connection_.CommandTimeout(kLimit);
    EXPECT_EQ(NumberOf("INSERT #t VALUES (1) WAITFOR DELAY '00:10:00'"), -2147217871);
    EXPECT_EQ(Execute("SELECT COUNT(*) FROM #t")->Fields().Item(0).Value(), Variant(1));
}

TEST_F(TimeOut, EndsALoginToAServerThatAcceptsTheConnectionAndDoesNotAnswer) {
    Connection connection;
    connection.CursorLocation(adUseClient);
    connection.ConnectionTimeout(1);
    const auto begin = Clock::now();
    EXPECT_THROW(connection.Open("Driver={SQL Server};Server=" + support::FromServers("KV_SILENT") +
                                     ";Database=master;Uid=x;Pwd=y;",
                                 "", "", adOptionUnspecified),
                 CallError);
    EXPECT_LT(Clock::now() - begin, kSoon);
    EXPECT_EQ(connection.State(), adStateClosed);
    EXPECT_NE(connection.Errors().Item(0).Number, 0);
}

} // namespace
} // namespace ado

// Tests commands with the fake driver manager (fakes/odbc_counting.h): the parameters that are read from the
// catalogue, the calls of the driver, and the output values.
#include "ado/command.h"

#include <gtest/gtest.h>

#include <map>

#include "ado/ado_types.h"
#include "ado/procedure_name.h"
#include "fakes/fake_locale.h"
#include "fakes/odbc_counting.h"

namespace ado {
namespace {

using fakes::Counting;
using fakes::LaidOut;
using fakes::OdbcCell;
using fakes::OdbcResult;
using odbc::SqlType;

constexpr char kCatalogueKinds[] = "tttnnntnnnnn";

/// A row of the result of SQLProcedureColumns. `kind` is 1 for an input parameter, 2 for both directions, 3
/// for a column of a result, 4 for output, 5 for the return value.
std::vector<OdbcCell> Row(const std::string& procedure, const std::string& name, int kind, int type,
                          const std::string& type_name, int size = 0, int digits = 0, int nullable = 1,
                          const std::string& owner = "dbo") {
    // The fourth column is the name. The letters above say which columns are text ('t') and which numbers
    // ('n').
    return {"Batch",
            owner,
            procedure,
            name,
            std::to_string(kind),
            std::to_string(type),
            type_name,
            std::to_string(size),
            OdbcCell(),
            std::to_string(digits),
            OdbcCell(),
            std::to_string(nullable)};
}
OdbcResult Catalogue(std::vector<std::vector<OdbcCell>> rows) {
    std::string kinds = kCatalogueKinds;
    kinds[3] = 't';
    return LaidOut(kinds, std::move(rows));
}
std::vector<OdbcCell> ReturnValue(const std::string& procedure) {
    return Row(procedure, "@RETURN_VALUE", 5, 4, "int", 10, 0, 0);
}

class AdoCommand : public ::testing::Test {
  protected:
    AdoCommand() {
        fakes::ResetCounting();
        connection_.CursorLocation(adUseClient);
        connection_.ConnectionString("Driver={SQL Server};");
        connection_.Open("", "", "", adOptionUnspecified);
        command_.ActiveConnection(connection_);
        command_.CommandText("sp");
        command_.CommandType(adCmdStoredProc);
        command_.CommandTimeout(60);
    }
    ~AdoCommand() override {
        connection_ = Connection();
        EXPECT_EQ(Counting().open_handles, 0U);
        EXPECT_TRUE(Counting().violations.empty()) << Counting().violations.front();
        fakes::ResetCounting();
    }

    Parameters& Refresh(std::vector<std::vector<OdbcCell>> rows) {
        Counting().catalogue = {Catalogue(std::move(rows))};
        command_.Parameters().Refresh();
        return command_.Parameters();
    }
    std::unique_ptr<Recordset> Execute(std::vector<OdbcResult> results, std::vector<OdbcCell> output = {}) {
        Counting().results = std::move(results);
        Counting().output = std::move(output);
        return command_.Execute(affected_, adOptionUnspecified);
    }
    std::int32_t NumberOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const CallError& error) {
            return error.Number();
        }
        return 0;
    }
    /// Calls the procedure with these values ("-" is Empty) and returns the statement that was sent.
    std::string CallWith(const std::vector<std::string>& values) {
        std::vector<std::vector<OdbcCell>> rows = {ReturnValue("sp")};
        for (std::size_t i = 0; i < values.size(); ++i) {
            rows.push_back(Row("sp", "@p" + std::to_string(i), 1, 4, "int", 10));
        }
        Parameters& parameters = Refresh(std::move(rows));
        for (std::size_t i = 0; i < values.size(); ++i) {
            parameters.Item(static_cast<std::int32_t>(i) + 1)
                .Value(values[i] == "-" ? Variant() : Variant(values[i]));
        }
        Execute({});
        return Counting().last_statement;
    }

    std::int64_t affected_ = 0;
    Connection connection_;
    Command command_;
};

TEST_F(AdoCommand, AYearBefore1753IsPassedToADatetime2AndRefusedForADatetime) {
    constexpr int kTimestamp = 93;
    const auto call = [&](const std::string& type) {
        Refresh({ReturnValue("sp"), Row("sp", "@at", 1, kTimestamp, type, 23, 3)})
            .Item(1)
            .Value("1600-02-29");
        return NumberOf([&] { Execute({}); });
    };
    EXPECT_EQ(call("datetime2"), 0);
    EXPECT_NE(call("datetime"), 0);
}

TEST_F(AdoCommand, RefreshReadsTheProceduresRowsOfTheCatalogue) {
    Parameters& parameters =
        Refresh({ReturnValue("sp;1"), Row("sp;1", "@n", 1, 3, "decimal", 12, 4),
                 Row("sp;1", "@t", 2, 12, "varchar", 30), Row("sp;1", "@o", 4, 4, "int", 10),
                 Row("sp;1", "column", 3, 4, "int"), // a column of a result
                 Row("sp;2", "@other number", 1, 4, "int"), Row("spx;1", "@other name", 1, 4, "int")});
    EXPECT_EQ(Counting().last_catalogue, "sp");
    ASSERT_EQ(parameters.Count(), 4);
    const Parameter& result = parameters.Item(0);
    EXPECT_EQ(result.Name(), "@RETURN_VALUE");
    EXPECT_EQ(result.Direction(), adParamReturnValue);
    EXPECT_EQ(result.Type(), adInteger);
    EXPECT_EQ(result.Precision(), 10);
    EXPECT_EQ(result.Attributes(), adParamSigned);
    const Parameter& number = parameters.Item(1);
    EXPECT_EQ(number.Type(), adNumeric);
    EXPECT_EQ(number.Direction(), adParamInput);
    EXPECT_EQ(number.Precision(), 12);
    EXPECT_EQ(number.NumericScale(), 4);
    EXPECT_EQ(number.Size(), 0);
    EXPECT_EQ(number.Attributes(), adParamSigned | adParamNullable);
    const Parameter& text = parameters.Item(2);
    EXPECT_EQ(text.Type(), adVarChar);
    EXPECT_EQ(text.Direction(), adParamInputOutput);
    EXPECT_EQ(text.Size(), 30);
    EXPECT_EQ(text.Precision(), 0);
    EXPECT_EQ(text.Attributes(), adParamNullable);
    EXPECT_EQ(parameters.Item(3).Direction(), adParamOutput);
    EXPECT_EQ(NumberOf([&] { parameters.Item(4); }), kItemNotFound);
    EXPECT_EQ(NumberOf([&] { parameters.Item(-1); }), kItemNotFound);
}

TEST_F(AdoCommand, RefreshKeepsValuesByNameUnlessTheProcedureIsAnother) {
    Parameters& parameters =
        Refresh({ReturnValue("sp"), Row("sp", "@n", 1, 4, "int"), Row("sp", "@gone", 1, 4, "int")});
    EXPECT_TRUE(parameters.Item(1).Value().IsEmpty());
    parameters.Item(0).Value(42);
    parameters.Item(1).Value("5");
    parameters.Item(2).Value("6");
    Refresh({Row("sp", "@new", 1, 4, "int"), Row("sp", "@n", 1, 5, "smallint"), ReturnValue("sp")});
    ASSERT_EQ(parameters.Count(), 3);
    EXPECT_TRUE(parameters.Item(0).Value().IsEmpty());
    EXPECT_EQ(parameters.Item(1).Value(), Variant("5"));
    EXPECT_EQ(parameters.Item(1).Type(), adSmallInt);
    EXPECT_EQ(parameters.Item(2).Value(), Variant(42));
    command_.CommandText("sp2");
    EXPECT_TRUE(Refresh({Row("sp2", "@n", 1, 4, "int")}).Item(0).Value().IsEmpty());
}

TEST_F(AdoCommand, AfterARefreshThatFailsThereAreNoParameters) {
    Refresh({Row("sp", "@n", 1, 4, "int")}).Item(0).Value("5");
    Counting().catalogue = {{.columns = false,
                             .records = {{.state = "42000", .native = 7, .message = "no", .severity = 16}},
                             .fails = true}};
    EXPECT_EQ(NumberOf([&] { command_.Parameters().Refresh(); }), -2147217900);
    EXPECT_EQ(command_.Parameters().Count(), 0);
    EXPECT_EQ(connection_.Errors().Item(0).NativeError, 7);
}

TEST_F(AdoCommand, OfSeveralOwnersTheServerSaysWhichOneACallFinds) {
    const std::vector<std::vector<OdbcCell>> rows = {Row("s]p';1", "@first", 1, 4, "int", 10, 0, 1, "aa"),
                                                     Row("s]p';1", "@second", 1, 4, "int")};
    command_.CommandText("[s]]p']");
    Counting().results = {LaidOut("n", {{"1"}})};
    EXPECT_EQ(Refresh(rows).Item(0).Name(), "@second");
    EXPECT_EQ(Counting().last_statement,
              "SELECT CASE OBJECT_ID(N'[s]]p'']') WHEN OBJECT_ID(N'[aa].[s]]p'']') "
              "THEN 0 WHEN OBJECT_ID(N'[dbo].[s]]p'']') THEN 1 END");
    Counting().results = {LaidOut("n", {{"0"}})};
    EXPECT_EQ(Refresh(rows).Item(0).Name(), "@first");
    for (const OdbcCell& other : {OdbcCell(), OdbcCell("2"), OdbcCell("-1")}) {
        Counting().results = {LaidOut("n", {{other}})};
        EXPECT_EQ(Refresh(rows).Item(0).Name(), "@first") << "the server finds neither of the two";
    }
    Counting().last_statement.clear();
    command_.CommandText("dbo.[s]]p']");
    EXPECT_EQ(Refresh(rows).Item(0).Name(), "@second");
    EXPECT_EQ(Counting().last_statement, "") << "a name with an owner needs no question";
}

TEST_F(AdoCommand, TheNameIsSplitForTheCatalogueAndUnchangedInTheCall) {
    command_.CommandText("[guest].[a_b%c];2");
    const Parameters& parameters = Refresh({Row("a_b%c;2", "@mine", 1, 4, "int", 10, 0, 1, "Guest"),
                                            Row("a_b%c;2", "@dbos", 1, 4, "int"),
                                            Row("a_b%c;1", "@first", 1, 4, "int", 10, 0, 1, "guest")});
    EXPECT_EQ(Counting().last_catalogue, "a_b_c");
    EXPECT_EQ(parameters.Count(), 1);
    Execute({});
    EXPECT_EQ(Counting().last_statement, "{call [guest].[a_b%c];2}");
}

TEST_F(AdoCommand, AFunctionHasTheNumberZero) {
    Parameters& parameters = Refresh({ReturnValue("sp;0"), Row("sp;0", "@n", 1, 4, "int", 10)});
    ASSERT_EQ(parameters.Count(), 2);
    EXPECT_EQ(parameters.Item(1).Name(), "@n");
}

TEST_F(AdoCommand, EmptyValuesAtTheEndAreLeftOutOfTheCall) {
    EXPECT_EQ(CallWith({}), "{? = call sp}");
    EXPECT_EQ(CallWith({"1", "2"}), "{? = call sp(?,?)}");
    EXPECT_EQ(CallWith({"1", "-"}), "{? = call sp(?)}");
    EXPECT_EQ(CallWith({"1", "2", "-", "-"}), "{? = call sp(?,?)}");
    EXPECT_EQ(CallWith({"-", "-"}), "{? = call sp}");
}

TEST_F(AdoCommand, AnEmptyValueBeforeAnotherOneMakesACallByName) {
    Parameters& parameters =
        Refresh({ReturnValue("sp"), Row("sp", "@a", 1, 4, "int", 10), Row("sp", "@b", 1, 12, "varchar", 30),
                 Row("sp", "@c", 1, 3, "decimal", 12, 4), Row("sp", "@d", 2, 4, "int", 10),
                 Row("sp", "@e", 1, 4, "int", 10)});
    parameters.Item(2).Value("text");
    Execute({}, {OdbcCell(), OdbcCell(), "42", OdbcCell(), "7"});
    EXPECT_EQ(Counting().last_statement, "{call sp_executesql(?,?,?,?,?)}");
    const auto& bound = Counting().parameters;
    ASSERT_EQ(bound.size(), 5U);
    EXPECT_EQ(bound[0].value, "exec @p1 = sp @b = @p2, @d = @p3 output");
    EXPECT_EQ(bound[1].value, "@p1 int output, @p2 varchar(30), @p3 int output");
    EXPECT_EQ(bound[3].value, "text");
    EXPECT_FALSE(bound[4].value) << "an empty output parameter is NULL";
    EXPECT_EQ(parameters.Item(0).Value(), Variant(42));
    EXPECT_TRUE(parameters.Item(1).Value().IsEmpty());
    EXPECT_EQ(parameters.Item(4).Value(), Variant(7));
}

TEST_F(AdoCommand, ACallByNameNeedsNoReturnValue) {
    Parameters& parameters = Refresh({Row("sp", "@a", 1, 4, "int", 10), Row("sp", "@b", 1, 4, "int", 10)});
    parameters.Item(1).Value("2");
    Execute({});
    EXPECT_EQ(Counting().parameters.at(0).value, "exec sp @b = @p1");
    EXPECT_EQ(Counting().parameters.at(1).value, "@p1 int");
}

TEST_F(AdoCommand, AnEmptyParameterOfBothDirectionsIsSentAsNull) {
    Refresh({ReturnValue("sp"), Row("sp", "@both", 2, 4, "int", 10)});
    Execute({}, {"0", "7"});
    EXPECT_EQ(Counting().last_statement, "{? = call sp(?)}");
    EXPECT_FALSE(Counting().parameters.at(1).value);
    EXPECT_EQ(command_.Parameters().Item(1).Value(), Variant(7));
}

TEST_F(AdoCommand, ValuesThatDoNotFitAreRefusedBeforeAnythingRuns) {
    Parameters& parameters =
        Refresh({ReturnValue("sp"), Row("sp", "@n", 1, 4, "int", 10), Row("sp", "@t", 1, 12, "varchar", 5),
                 Row("sp", "@ok", 1, 4, "int", 10), Row("sp", "@d", 2, 93, "datetime", 23, 3)});
    parameters.Item(0).Value("is not asked for");
    parameters.Item(1).Value("5.7");
    parameters.Item(2).Value("abcdef");
    parameters.Item(3).Value("1");
    parameters.Item(4).Value("2024-02-30");
    Counting().last_statement.clear();
    constexpr std::int32_t kOverflow = -2147217833;
    EXPECT_EQ(NumberOf([&] { Execute({}); }), kOverflow);
    EXPECT_EQ(Counting().last_statement, "");
    ASSERT_EQ(connection_.Errors().Count(), 3);
    const Error& first = connection_.Errors().Item(0);
    EXPECT_EQ(first.Number, kOverflow);
    EXPECT_EQ(first.Source, "ADODB.Command");
    EXPECT_EQ(first.SQLState, "22003");
    EXPECT_EQ(first.Description,
              "The value '5.7' cannot be given to the parameter @n of the type int: it has a fraction.");
    EXPECT_EQ(connection_.Errors().Item(1).SQLState, "22001");
    EXPECT_EQ(connection_.Errors().Item(2).SQLState, "22007");
    parameters.Item(1).Value("5");
    parameters.Item(2).Value("abcde");
    parameters.Item(4).Value("2024-02-29");
    EXPECT_EQ(NumberOf([&] { Execute({}); }), 0);
    EXPECT_EQ(connection_.Errors().Count(), 0);
}

TEST_F(AdoCommand, ValuesAreReadInTheUsersLocale) {
    const fakes::FakeLocale german(fakes::German());
    Refresh({Row("sp", "@n", 1, 3, "decimal", 12, 4)}).Item(0).Value("1.000,5");
    Execute({});
    EXPECT_EQ(Counting().parameters.at(0).value, "1000.5");
}

TEST_F(AdoCommand, ValuesAreBoundByTypeDirectionAndSize) {
    Parameters& parameters = Refresh({ReturnValue("sp"), Row("sp", "@n", 1, 3, "decimal", 12, 4),
                                      Row("sp", "@t", 2, 12, "varchar", 30), Row("sp", "@i", 1, 4, "int", 10),
                                      Row("sp", "@o", 4, 4, "int", 10)});
    parameters.Item(1).Value("1.5");
    parameters.Item(2).Value(Null());
    parameters.Item(3).Value(7);
    parameters.Item(4).Value("is not asked for");
    Execute({});
    EXPECT_EQ(Counting().last_statement, "{? = call sp(?,?,?,?)}");
    const auto& bound = Counting().parameters;
    ASSERT_EQ(bound.size(), 5U);
    constexpr int kInput = 1;
    constexpr int kInputOutput = 2;
    constexpr int kOutput = 4;
    EXPECT_EQ(bound[0].direction, kOutput);
    EXPECT_EQ(bound[0].sql_type, 4);
    EXPECT_EQ(bound[1].direction, kInput);
    EXPECT_EQ(bound[1].sql_type, 2);
    EXPECT_EQ(bound[1].size, 12U);
    EXPECT_EQ(bound[1].digits, 4);
    EXPECT_EQ(bound[1].value, "1.5"); // exact digits are text
    EXPECT_EQ(bound[2].direction, kInputOutput);
    EXPECT_EQ(bound[2].size, 30U);
    EXPECT_FALSE(bound[2].value);
    EXPECT_EQ(bound[3].value, "7");
    EXPECT_EQ(bound[4].direction, kOutput);
    EXPECT_FALSE(bound[4].value);
}

TEST_F(AdoCommand, OutputIsReadAfterTheLastResult) {
    Parameters& parameters =
        Refresh({ReturnValue("sp"), Row("sp", "@in", 1, 12, "varchar", 5),
                 Row("sp", "@both", 2, 12, "varchar", 5), Row("sp", "@out", 4, 12, "varchar", 5)});
    parameters.Item(1).Value("stays");
    parameters.Item(2).Value("goes");
    const auto rows =
        Execute({{.rows = 1}, {.columns = false, .row_count = 2}}, {"42", "x", "two", OdbcCell()});
    EXPECT_EQ(rows->State(), adStateOpen);
    EXPECT_EQ(parameters.Item(0).Value(), Variant(42));
    EXPECT_EQ(parameters.Item(1).Value(), Variant("stays"));
    EXPECT_EQ(parameters.Item(2).Value(), Variant("two"));
    EXPECT_TRUE(parameters.Item(3).Value().IsNull());
}

TEST_F(AdoCommand, AValueLongerThanItsDescriptionIsAnError) {
    Refresh({Row("sp", "@out", 4, 12, "varchar", 5)});
    EXPECT_NE(NumberOf([&] { Execute({}, {std::string(500, 'x')}); }), 0);
    EXPECT_EQ(connection_.Errors().Item(0).SQLState, "01004");
}

TEST_F(AdoCommand, ACallThatFailsReturnsNoOutput) {
    Refresh({ReturnValue("sp")});
    EXPECT_NE(NumberOf([&] {
                  Execute({{.columns = false,
                            .records = {{.state = "42000", .native = 1, .message = "no", .severity = 16}},
                            .fails = true}},
                          {"42"});
              }),
              0);
    EXPECT_TRUE(command_.Parameters().Item(0).Value().IsEmpty());
    EXPECT_EQ(connection_.Errors().Count(), 1);
}

TEST_F(AdoCommand, AWrongCallIsRefusedWithItsNumber) {
    EXPECT_EQ(NumberOf([&] { command_.CommandType(1); }), kFeatureNotAvailable);
    EXPECT_EQ(NumberOf([&] { command_.Execute(affected_, adCmdText); }), kArgumentsInConflict);
    Command fresh;
    EXPECT_EQ(NumberOf([&] { fresh.Execute(affected_, adOptionUnspecified); }), kInvalidConnection);
    fresh.ActiveConnection(connection_);
    EXPECT_EQ(NumberOf([&] { fresh.Execute(affected_, adOptionUnspecified); }), kFeatureNotAvailable);
    fresh.CommandType(adCmdStoredProc);
    EXPECT_EQ(NumberOf([&] { fresh.Parameters().Refresh(); }), -2147217908);
    EXPECT_EQ(connection_.Errors().Item(0).Description, "Command text was not set for the command object.");
    fresh.CommandText("Other..sp");
    EXPECT_EQ(NumberOf([&] { fresh.Parameters().Refresh(); }), kFeatureNotAvailable);
    connection_.Close();
    EXPECT_EQ(NumberOf([&] { command_.Parameters().Refresh(); }), kInvalidConnection);
}

TEST_F(AdoCommand, TheSchemaOfProceduresHasItsNames) {
    Counting().catalogue = {
        LaidOut("tttn", {{"Batch", "dbo", "spOne;1", "-1"}, {"Batch", OdbcCell(), "spTwo;1", "-1"}})};
    const auto rows = connection_.OpenSchema(adSchemaProcedures);
    EXPECT_EQ(rows->Fields().Item("procedure_name").Value(), Variant("spOne;1"));
    EXPECT_EQ(rows->Fields().Item("PROCEDURE_SCHEMA").Value(), Variant("dbo"));
    rows->MoveNext();
    EXPECT_TRUE(rows->Fields().Item(1).Value().IsNull());
    EXPECT_EQ(rows->Fields().Count(), 3);
    EXPECT_EQ(NumberOf([&] { rows->Fields().Item("PROCEDURE_TYPE"); }), kItemNotFound);
    EXPECT_EQ(NumberOf([&] { connection_.OpenSchema(20); }), kFeatureNotAvailable);
    connection_.Close();
    EXPECT_EQ(NumberOf([&] { connection_.OpenSchema(adSchemaProcedures); }), kObjectClosed);
}

TEST_F(AdoCommand, NoHandleIsLostWhicheverCallFails) {
    connection_ = Connection();
    const auto session = [&] {
        Connection connection;
        connection.CursorLocation(adUseClient);
        connection.Open("Driver={SQL Server};", "", "", adOptionUnspecified);
        Command command;
        command.ActiveConnection(connection);
        command.CommandText("sp");
        command.CommandType(adCmdStoredProc);
        command.Parameters().Refresh();
        if (command.Parameters().Count() == 2) {
            command.Parameters().Item(1).Value("5");
        }
        command.Execute(affected_, adOptionUnspecified);
        connection.OpenSchema(adSchemaProcedures);
    };
    std::size_t calls = 0;
    for (std::size_t failing = 0; failing <= calls; ++failing) {
        fakes::ResetCounting();
        Counting().catalogue = {Catalogue({ReturnValue("sp"), Row("sp", "@n", 2, 4, "int", 10)})};
        Counting().results = {{.rows = 3}};
        Counting().output = {"1", "2"};
        Counting().failing_call = failing;
        NumberOf(session);
        calls = failing == 0 ? Counting().calls : calls;
        ASSERT_EQ(Counting().open_handles, 0U) << Counting().failed_function;
        ASSERT_EQ(Counting().open_connections, 0U);
        ASSERT_TRUE(Counting().violations.empty()) << Counting().violations.front();
    }
    EXPECT_GT(calls, 60U);
}

TEST(AdoTypes, EveryTypeOfADriverHasAdosNumber) {
    const std::map<SqlType, std::int32_t> numbers = {{SqlType::Bit, 11},
                                                     {SqlType::TinyInt, 17},
                                                     {SqlType::SmallInt, 2},
                                                     {SqlType::Integer, 3},
                                                     {SqlType::BigInt, 20},
                                                     {SqlType::Real, 4},
                                                     {SqlType::Float, 5},
                                                     {SqlType::Double, 5},
                                                     {SqlType::Numeric, 131},
                                                     {SqlType::Decimal, 131},
                                                     {SqlType::Char, 129},
                                                     {SqlType::VarChar, 200},
                                                     {SqlType::LongVarChar, 201},
                                                     {SqlType::WChar, 130},
                                                     {SqlType::WVarChar, 202},
                                                     {SqlType::WLongVarChar, 203},
                                                     {SqlType::Binary, 128},
                                                     {SqlType::VarBinary, 204},
                                                     {SqlType::LongVarBinary, 205},
                                                     {SqlType::Timestamp, 135},
                                                     {SqlType::Date, 133},
                                                     {SqlType::Time, 134},
                                                     {SqlType::Guid, 72},
                                                     {SqlType::Variant, 12},
                                                     {static_cast<SqlType>(9), 133},
                                                     {static_cast<SqlType>(10), 134},
                                                     {static_cast<SqlType>(11), 135},
                                                     {static_cast<SqlType>(-152), 203}};
    for (const auto& [type, number] : numbers) {
        EXPECT_EQ(AdoTypeOf(type, "").number, number) << static_cast<int>(type);
        EXPECT_EQ(AdoTypeOf(number).number, number);
    }
    EXPECT_EQ(AdoTypeOf(SqlType::Decimal, "money").number, 6);
    EXPECT_EQ(AdoTypeOf(SqlType::Decimal, "smallmoney").number, 6);
    EXPECT_EQ(AdoTypeOf(6).sql_type, SqlType::Decimal);
}

TEST(AdoTypes, ATypeWithoutARowIsText) {
    EXPECT_EQ(AdoTypeOf(SqlType::Unknown, "").sql_type, SqlType::WVarChar);
    EXPECT_EQ(AdoTypeOf(9999).sql_type, SqlType::WVarChar);
}

TEST(ProcedureName, IsSplitIntoItsParts) {
    const auto parts = [](const char* text) {
        const ProcedureName name = ParseProcedureName(text);
        return name.database + "|" + name.owner + "|" + name.name + "|" + name.number;
    };
    EXPECT_EQ(parts("sp"), "||sp|1");
    EXPECT_EQ(parts("dbo.sp;3"), "|dbo|sp|3");
    EXPECT_EQ(parts("Batch..sp"), "Batch||sp|1");
    EXPECT_EQ(parts("Batch.dbo.sp"), "Batch|dbo|sp|1");
    EXPECT_EQ(parts("[a.b].[c]]d;2]"), "|a.b|c]d;2|1");
    EXPECT_EQ(parts("\"a\"\"b\".c"), "|a\"b|c|1");
    EXPECT_EQ(parts("[open"), "||open|1");
    EXPECT_EQ(parts(";1"), "|||1");
    EXPECT_EQ(parts(""), "|||1");
}

TEST(ProcedureName, PatternsMatchTheName) {
    EXPECT_EQ(CataloguePattern("a%b[c]d\\e'f_g"), "a_b_c_d_e_f_g");
}

} // namespace
} // namespace ado

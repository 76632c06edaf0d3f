// Running stored procedures on a server: the values of their parameters, their results, output values and
// errors.
#include <gmock/gmock.h>

#include "inspect/server_fixture.h"

namespace kv {
namespace {

using ado::Null;
using ado::Variant;

class ServerCalls : public ServerTest {};

TEST_F(ServerCalls, TextIsConvertedToEveryType) {
    Do("CREATE PROC spEcho @bit bit, @tinyint tinyint, @smallint smallint, @int int, @bigint bigint, "
       "@decimal "
       "decimal(20, 5), @money money, @real real, @float float, @datetime datetime, @char char(7), @varchar "
       "varchar(8000), @nvarchar nvarchar(4000), @text text, @binary binary(4), @varbinary varbinary(9), "
       "@guid "
       "uniqueidentifier AS SELECT @bit a, @tinyint b, @smallint c, @int d, @bigint e, @decimal f, @money g, "
       "@real "
       "h, @float i, @datetime j, @char k, @varchar l, @nvarchar m, @text n, @binary o, @varbinary p, @guid "
       "q");
    EXPECT_TRUE(
        Call("spEcho", {"1", "255", "-32768", "-2147483648", "9223372036854775807", "-123456789012345.54321",
                        "-922337203685477.5808", "0.5", "-1.5E+100", "2006-05-12 14:03:22", "abc", "b'c \x80",
                        "\xFC\x8A", "long", "01FF", "00", "6F9619FF-8B86-D011-B42D-00C04FC964FF"}))
        << manager_.Reported().front();
    EXPECT_EQ(Rows().back(),
              "True|255|-32768|-2147483648|9223372036854775807|-123456789012345.54321|"
              "-922337203685477.5808|0.5|-1.5E+100|5/12/2006 2:03:22 PM|abc    |b'c \x80|\xFC\x8A|long|"
              "0x01FF0000|0x00|{6F9619FF-8B86-D011-B42D-00C04FC964FF}");
    const std::vector<Variant> nulls(17, Null());
    EXPECT_TRUE(Call("spEcho", nulls));
    std::string wanted = "(Null)";
    for (int i = 1; i < 17; ++i) {
        wanted += "|(Null)";
    }
    EXPECT_EQ(Rows().back(), wanted);
}

TEST_F(ServerCalls, AShownValueCanBePassedAgain) {
    Do("CREATE PROC spAgain @bit bit, @int int, @decimal decimal(20, 5), @money money, @smallmoney "
       "smallmoney, "
       "@real real, @float float, @datetime datetime, @smalldatetime smalldatetime, @char char(7), "
       "@varbinary "
       "varbinary(9), @guid uniqueidentifier AS SELECT @bit a, @int b, @decimal c, @money d, @smallmoney e, "
       "@real f, "
       "@float g, @datetime h, @smalldatetime i, @char j, @varbinary k, @guid l");
    std::vector<Variant> values = {"1",
                                   "1E3",
                                   "1,000.50",
                                   "$5",
                                   "-$.25",
                                   "0.1",
                                   "-1.5E+100",
                                   "2024-02-29T12:34:57",
                                   "2/29/2024 12:34 PM",
                                   "abc",
                                   "01FF",
                                   "6F9619FF-8B86-D011-B42D-00C04FC964FF"};
    EXPECT_TRUE(Call("spAgain", values)) << manager_.Reported().front();
    const std::string shown = Rows().back();
    EXPECT_EQ(
        shown,
        "True|1000|1000.5|5|-0.25|0.1|-1.5E+100|2/29/2024 12:34:57 PM|2/29/2024 12:34:00 PM|abc    |0x01FF|"
        "{6F9619FF-8B86-D011-B42D-00C04FC964FF}");
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = data_(static_cast<std::int32_t>(i) + 1, 1);
    }
    EXPECT_TRUE(Call("spAgain", values)) << manager_.Reported().front();
    EXPECT_EQ(Rows().back(), shown);
}

TEST_F(ServerCalls, AValueThatDoesNotFitIsRefusedAndNothingRuns) {
    Do("CREATE TABLE Ran (a int)");
    Do("CREATE PROC spStrict @bit bit = 0, @int int = 0, @decimal decimal(5, 2) = 0, @datetime datetime = "
       "NULL, "
       "@smalldatetime smalldatetime = NULL, @varchar varchar(5) = '', @varbinary varbinary(2) = 0x, @guid "
       "uniqueidentifier = NULL AS SET NOCOUNT ON INSERT Ran VALUES (1) SELECT 1 AS one");
    const std::vector<std::vector<const char*>> refused = {
        {"0.5", "2", ""},
        {"5.7", "99999999999", "twelve", "", "1,5"},
        {"1.234", "1000", ""},
        {"31.12.2024", "2024-13-01", "2024-02-30", "", "1752-12-31"},
        {"2080-01-01", "2024-02-29 12:34:57"},
        {"abcdef"},
        {"010203", "0x1", ""},
        {"6F9619FF"},
    };
    std::size_t calls = 0;
    for (std::size_t i = 0; i < refused.size(); ++i) {
        for (const char* const text : refused[i]) {
            std::vector<Variant> values(refused.size());
            values[i] = text;
            EXPECT_FALSE(Call("spStrict", values)) << text;
            ASSERT_EQ(manager_.Reported().size(), 1U) << text;
            EXPECT_THAT(manager_.Reported().front(),
                        ::testing::HasSubstr("The value '" + std::string(text) + "'"));
            ++calls;
        }
    }
    EXPECT_EQ(LoggedFailures(), calls);
    EXPECT_EQ(Rows(Data("Ran")), Lines{"a"});
}

TEST_F(ServerCalls, TheLastDateIsNotRoundedToTheNextYear) {
    Do("CREATE PROC spLast AS SELECT CAST('9999-12-31 23:59:59.997' AS datetime) AS last");
    EXPECT_TRUE(Call("spLast"));
    EXPECT_EQ(Rows().back(), "12/31/9999 11:59:59 PM");
}

TEST_F(ServerCalls, AnEmptyValueUsesTheDefault) {
    Do("CREATE PROC spDefaults @a int = 1, @b varchar(10) = 'two', @c int = NULL, @d int = 4 AS SELECT @a AS "
       "a, @b AS "
       "b, @c AS c, @d AS d");
    EXPECT_TRUE(Call("spDefaults"));
    EXPECT_EQ(Rows(), (Lines{"a|b|c|d", "1|two|(Null)|4"}));
    EXPECT_TRUE(Call("spDefaults", {"9", Variant(), "8", Variant()}));
    EXPECT_EQ(Rows().back(), "9|two|8|4");
    EXPECT_TRUE(Call("spDefaults", {Variant(), "text"}));
    EXPECT_EQ(Rows().back(), "1|text|(Null)|4");
    EXPECT_TRUE(Call("spDefaults", {Null(), "", Null(), Null()}));
    EXPECT_EQ(Rows().back(), "(Null)||(Null)|(Null)");
}

TEST_F(ServerCalls, ADefaultBeforeAnotherValueLosesNoOutput) {
    Do("CREATE PROC spGap @a int = 1, @b decimal(9, 2) = 2.5, @c nvarchar(10) = N'three', @d datetime = NULL "
       "OUTPUT, "
       "@e money = 5 AS SELECT @a AS a, @b AS b, @c AS c, @d AS d, @e AS e SET @d = '2024-02-29' RETURN 42");
    EXPECT_TRUE(Call("spGap", {Variant(), "7.25", Variant(), "2006-05-12", "$9"}))
        << manager_.Reported().front();
    EXPECT_EQ(Rows().back(), "1|7.25|three|5/12/2006|9");
    EXPECT_EQ(parameters_[1]->Value(), Variant(42));
    EXPECT_EQ(parameters_[5]->Value().ToString(), "2/29/2024");
    EXPECT_TRUE(Call("spGap", {Variant(), Variant(), "\x80\xFC"})) << manager_.Reported().front();
    EXPECT_EQ(Rows().back(), "1|2.5|\x80\xFC|(Null)|5");
    EXPECT_EQ(parameters_[1]->Value(), Variant(42));
    EXPECT_EQ(parameters_[5]->Value().ToString(), "2/29/2024");
    Do("CREATE PROC spGapFails @a int = 1, @b int = 2 AS RAISERROR('inside', 16, 1) SELECT 1 AS one");
    EXPECT_FALSE(Call("spGapFails", {Variant(), "7"}));
    EXPECT_EQ(manager_.Reported(), Lines{"50000 inside"});
}

TEST_F(ServerCalls, AnEmptyOutputParameterIsNull) {
    Do("CREATE PROC spOutput @out int OUTPUT, @text varchar(20) OUTPUT AS SELECT @out AS o, @text AS t SET "
       "@out = 7 SET "
       "@text = 'given'");
    EXPECT_TRUE(Call("spOutput")) << manager_.Reported().front();
    EXPECT_EQ(Rows().back(), "(Null)|(Null)");
    EXPECT_EQ(parameters_[2]->Value(), Variant(7));
    EXPECT_EQ(parameters_[3]->Value(), Variant("given"));
}

TEST_F(ServerCalls, WithTwoOwnersTheParametersAreThoseOfTheProcedureThatRuns) {
    Do("CREATE SCHEMA aaa");
    Do("CREATE PROC aaa.spShared @first int AS SELECT 'aaa' AS owner");
    Do("CREATE PROC dbo.spShared @second varchar(5) AS SELECT 'dbo' AS owner, @second AS second");
    EXPECT_TRUE(Call("spShared", {"text"})) << manager_.Reported().front();
    EXPECT_EQ(Rows().back(), "dbo|text");
    EXPECT_EQ(parameters_.at(2)->Name(), "@second");
    EXPECT_TRUE(Call("aaa.spShared", {"1"}));
    EXPECT_EQ(Rows().back(), "aaa");
    Do("DROP PROC dbo.spShared");
    EXPECT_FALSE(Call("spShared", {"1"})) << "the name without an owner finds no procedure";
}

TEST_F(ServerCalls, AnEmptyValueWithoutADefaultIsTheServersError) {
    Do("CREATE PROC spNeeds @needed int AS SELECT @needed AS needed");
    EXPECT_FALSE(Call("spNeeds"));
    EXPECT_EQ(
        manager_.Reported(),
        Lines{"201 Procedure or function 'spNeeds' expects parameter '@needed', which was not supplied."});
}

TEST_F(ServerCalls, ParametersOfEveryDirectionReturnTheirValues) {
    Do("CREATE PROC spBack @in int, @both varchar(20) OUTPUT, @out int = 0 OUTPUT AS SELECT @in AS i, @both "
       "AS b, @out "
       "AS o SET @both = @both + '!' SET @out = 7 RETURN 42");
    EXPECT_TRUE(Call("spBack", {"1", "two", "3"})) << manager_.Reported().front();
    EXPECT_EQ(Rows(), (Lines{"i|b|o", "1|two|3"}));
    EXPECT_EQ(parameters_[1]->Value(), Variant(42));
    EXPECT_EQ(parameters_[2]->Value(), Variant("1"));
    EXPECT_EQ(parameters_[3]->Value(), Variant("two!"));
    EXPECT_EQ(parameters_[4]->Value(), Variant(7));
    EXPECT_TRUE(manager_.ExecuteStoredProcedure(kDatabase, "spBack", parameters_, data_));
    EXPECT_EQ(Rows(), (Lines{"i|b|o", "1|two!|7"})) << "values stay from run to run";
}

TEST_F(ServerCalls, AProcedureWithoutParametersRuns) {
    Do("CREATE PROC spPlain AS SELECT 1 AS one");
    EXPECT_TRUE(Call("spPlain"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
}

TEST_F(ServerCalls, AProcedureWithoutAResultFailsAndHasRun) {
    Do("CREATE TABLE Effects (a int)");
    Do("CREATE PROC spEffect @a int AS SET NOCOUNT ON INSERT Effects VALUES (@a)");
    Do("CREATE PROC spCounted @a int AS INSERT Effects VALUES (@a)");
    EXPECT_FALSE(Call("spEffect", {"1"}));
    EXPECT_EQ(manager_.Reported(), Lines{});
    EXPECT_EQ(data_.ColumnUpperBound(), 0);
    EXPECT_EQ(data_.RowUpperBound(), 0);
    EXPECT_EQ(parameters_[2]->Value(), Variant("1"));
    EXPECT_FALSE(Call("spCounted", {"2"}));
    EXPECT_EQ(LoggedFailures(), 2U);
    EXPECT_EQ(Rows(Data("Effects")), (Lines{"a", "1", "2"}));
}

TEST_F(ServerCalls, AResultWithoutRowsHasItsNames) {
    Do("CREATE PROC spNoRows AS SELECT 1 AS a, 2 AS a, 3 WHERE 1 = 0");
    EXPECT_TRUE(Call("spNoRows"));
    EXPECT_EQ(Rows(), Lines{"a|a|"});
}

TEST_F(ServerCalls, TheFirstOfSeveralResultsIsShown) {
    Do("CREATE PROC spSeveral AS SELECT 1 AS first SELECT 2 AS second, 3 AS more SELECT 4 AS third RETURN 5");
    EXPECT_TRUE(Call("spSeveral"));
    EXPECT_EQ(Rows(), (Lines{"first", "1"}));
}

TEST_F(ServerCalls, AnErrorBeforeTheResultFails) {
    Do("CREATE PROC spErrorFirst AS RAISERROR('before', 16, 1) SELECT 1 AS one");
    EXPECT_FALSE(Call("spErrorFirst"));
    EXPECT_EQ(manager_.Reported(), Lines{"50000 before"});
    EXPECT_EQ(LoggedFailures(), 1U);
}

TEST_F(ServerCalls, AnErrorBetweenResultsIsReportedWithTheFirst) {
    Do("CREATE PROC spErrorBetween AS SELECT 1 AS one RAISERROR('between', 16, 1) SELECT 2 AS two "
       "RAISERROR('after', 11, "
       "1)");
    EXPECT_TRUE(Call("spErrorBetween"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
    EXPECT_EQ(manager_.Reported(), (Lines{"50000 between", "50000 after"}));
    EXPECT_EQ(LoggedFailures(), 0U);
}

TEST_F(ServerCalls, AnErrorAfterACountFails) {
    Do("CREATE TABLE Counted (a int)");
    Do("CREATE PROC spErrorAfterCount AS INSERT Counted VALUES (1) RAISERROR('after', 16, 1)");
    EXPECT_FALSE(Call("spErrorAfterCount"));
    EXPECT_EQ(manager_.Reported(), Lines{"50000 after"});
}

TEST_F(ServerCalls, APrintedTextIsNotAnError) {
    Do("CREATE PROC spPrints AS PRINT 'one' SELECT 1 AS one PRINT 'two'");
    EXPECT_TRUE(Call("spPrints"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
    EXPECT_EQ(manager_.Reported(), Lines{});
    Do("CREATE PROC spPrintsOnly AS PRINT 'alone'");
    EXPECT_FALSE(Call("spPrintsOnly"));
    EXPECT_EQ(manager_.Reported(), Lines{});
}

TEST_F(ServerCalls, ARaisedErrorIsReportedWhateverItsSeverity) {
    constexpr std::int32_t kRaisedMessage = 265946;
    constexpr std::int32_t kError = -2147217900;
    constexpr int kLoggedFrom = 19;
    for (int severity = 0; severity <= kLoggedFrom; ++severity) {
        const std::string number = std::to_string(severity);
        Do("CREATE PROC spSeverity" + number + " AS SELECT 1 AS one RAISERROR('severity " + number + "', " +
           number + ", 1)" + (severity >= kLoggedFrom ? " WITH LOG" : ""));
        EXPECT_TRUE(Call("spSeverity" + number)) << severity;
        EXPECT_EQ(Rows(), (Lines{"one", "1"}));
        EXPECT_EQ(manager_.Reported(), Lines{"50000 severity " + number});
        EXPECT_EQ(manager_.Numbers(), std::vector{severity <= 10 ? kRaisedMessage : kError}) << severity;
    }
    EXPECT_EQ(LoggedFailures(), 0U);
}

TEST_F(ServerCalls, ARaisedMessageIsShownInABoxAfterASuccess) {
    Do("CREATE PROC spWarns AS PRINT 'not this' SELECT 1 AS one RAISERROR('Tank %d is low', 10, 1, 7)");
    EXPECT_TRUE(Call("spWarns"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
    const std::string box = ShownErrors();
    EXPECT_NE(box.find("Error:\t265946\r\n"), std::string::npos) << box;
    EXPECT_NE(box.find("Tank 7 is low"), std::string::npos) << box;
    EXPECT_EQ(box.find("not this"), std::string::npos) << box;
}

TEST_F(ServerCalls, ASeverityThatEndsTheConnectionFails) {
    std::size_t failures = 0;
    for (int severity = 20; severity <= 25; ++severity) {
        const std::string number = std::to_string(severity);
        Do("CREATE PROC spFatal" + number + " AS SELECT 1 AS one RAISERROR('fatal', " + number +
           ", 1) WITH LOG");
        EXPECT_FALSE(Call("spFatal" + number)) << severity;
        EXPECT_FALSE(manager_.Reported().empty()) << severity;
        EXPECT_EQ(LoggedFailures(), ++failures);
    }
    Do("SELECT 1"); // the server still answers
}

TEST_F(ServerCalls, AMissingProcedureIsReported) {
    EXPECT_FALSE(Call("spGone"));
    EXPECT_EQ(manager_.Reported(), Lines{"2812 Could not find stored procedure 'spGone'."});
}

} // namespace
} // namespace kv

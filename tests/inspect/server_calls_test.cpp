// Stored procedures as they run on a server: what goes in, what comes of it.
#include "inspect/server_fixture.h"

namespace kv {
namespace {

using ado::Null;
using ado::Variant;

class ServerCalls : public ServerTest {};

TEST_F(ServerCalls, TextBecomesAValueOfEveryType) {
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

TEST_F(ServerCalls, WhatCannotBeConvertedIsAnError) {
    Do("CREATE PROC spNumber @n int AS SELECT @n AS n");
    EXPECT_FALSE(Call("spNumber", {"twelve"}));
    EXPECT_EQ(manager_.Reported().size(), 1U);
    EXPECT_FALSE(Call("spNumber", {"99999999999"}));
    EXPECT_EQ(manager_.Reported().size(), 1U);
    EXPECT_EQ(LoggedFailures(), 2U);
}

TEST_F(ServerCalls, AnEmptyValueIsTheDefault) {
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

TEST_F(ServerCalls, AnEmptyValueWithoutADefaultIsTheServersError) {
    Do("CREATE PROC spNeeds @needed int AS SELECT @needed AS needed");
    EXPECT_FALSE(Call("spNeeds"));
    EXPECT_EQ(
        manager_.Reported(),
        Lines{"201 Procedure or function 'spNeeds' expects parameter '@needed', which was not supplied."});
}

TEST_F(ServerCalls, ParametersGoInInEveryDirectionAndComeBackEmpty) {
    Do("CREATE PROC spBack @in int, @both varchar(20) OUTPUT, @out int = 0 OUTPUT AS SELECT @in AS i, @both "
       "AS b, @out "
       "AS o SET @both = 'changed' SET @out = 7 RETURN 42");
    EXPECT_TRUE(Call("spBack", {"1", "two", "3"})) << manager_.Reported().front();
    EXPECT_EQ(Rows(), (Lines{"i|b|o", "1|two|3"}));
    for (std::size_t i = 1; i < parameters_.size(); ++i) {
        EXPECT_TRUE(parameters_[i]->Value().IsEmpty()) << parameters_[i]->Name();
    }
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
    EXPECT_TRUE(parameters_[2]->Value().IsEmpty());
    EXPECT_FALSE(Call("spCounted", {"2"}));
    EXPECT_EQ(LoggedFailures(), 2U);
    EXPECT_EQ(Rows(Data("Effects")), (Lines{"a", "1", "2"}));
}

TEST_F(ServerCalls, AResultWithoutRowsIsItsNames) {
    Do("CREATE PROC spNoRows AS SELECT 1 AS a, 2 AS a, 3 WHERE 1 = 0");
    EXPECT_TRUE(Call("spNoRows"));
    EXPECT_EQ(Rows(), Lines{"a|a|"});
}

TEST_F(ServerCalls, OfSeveralResultsTheFirstIsShown) {
    Do("CREATE PROC spSeveral AS SELECT 1 AS first SELECT 2 AS second, 3 AS more SELECT 4 AS third RETURN 5");
    EXPECT_TRUE(Call("spSeveral"));
    EXPECT_EQ(Rows(), (Lines{"first", "1"}));
}

TEST_F(ServerCalls, AnErrorInFrontOfTheResultFails) {
    Do("CREATE PROC spErrorFirst AS RAISERROR('before', 16, 1) SELECT 1 AS one");
    EXPECT_FALSE(Call("spErrorFirst"));
    EXPECT_EQ(manager_.Reported(), Lines{"50000 before"});
    EXPECT_EQ(LoggedFailures(), 1U);
}

TEST_F(ServerCalls, AnErrorBetweenResultsIsShownBesideTheFirst) {
    Do("CREATE PROC spErrorBetween AS SELECT 1 AS one RAISERROR('between', 16, 1) SELECT 2 AS two "
       "RAISERROR('behind', 11, "
       "1)");
    EXPECT_TRUE(Call("spErrorBetween"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
    EXPECT_EQ(manager_.Reported(), (Lines{"50000 between", "50000 behind"}));
    EXPECT_EQ(LoggedFailures(), 0U);
}

TEST_F(ServerCalls, AnErrorBehindACountFails) {
    Do("CREATE TABLE Counted (a int)");
    Do("CREATE PROC spErrorBehindCount AS INSERT Counted VALUES (1) RAISERROR('behind', 16, 1)");
    EXPECT_FALSE(Call("spErrorBehindCount"));
    EXPECT_EQ(manager_.Reported(), Lines{"50000 behind"});
}

TEST_F(ServerCalls, WhatIsPrintedIsNoError) {
    Do("CREATE PROC spPrints AS PRINT 'one' SELECT 1 AS one PRINT 'two'");
    EXPECT_TRUE(Call("spPrints"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
    EXPECT_EQ(manager_.Reported(), Lines{});
    Do("CREATE PROC spPrintsOnly AS PRINT 'alone'");
    EXPECT_FALSE(Call("spPrintsOnly"));
    EXPECT_EQ(manager_.Reported(), Lines{});
}

TEST_F(ServerCalls, EverySeverityUpToTenIsAMessageAndAboveAnError) {
    constexpr int kLoggedFrom = 19;
    for (int severity = 0; severity <= kLoggedFrom; ++severity) {
        const std::string number = std::to_string(severity);
        Do("CREATE PROC spSeverity" + number + " AS SELECT 1 AS one RAISERROR('severity " + number + "', " +
           number + ", 1)" + (severity >= kLoggedFrom ? " WITH LOG" : ""));
        EXPECT_TRUE(Call("spSeverity" + number)) << severity;
        EXPECT_EQ(Rows(), (Lines{"one", "1"}));
        EXPECT_EQ(manager_.Reported(), severity <= 10 ? Lines{} : Lines{"50000 severity " + number})
            << severity;
    }
    EXPECT_EQ(LoggedFailures(), 0U);
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
    Do("SELECT 1"); // the server is there
}

TEST_F(ServerCalls, AProcedureThatIsNotThereIsReported) {
    EXPECT_FALSE(Call("spGone"));
    EXPECT_EQ(manager_.Reported(), Lines{"2812 Could not find stored procedure 'spGone'."});
}

} // namespace
} // namespace kv

// Listing stored procedures of a running server, and reading their texts and parameters.
#include <algorithm>

#include "inspect/server_fixture.h"

namespace kv {
namespace {

class ServerProcedures : public ServerTest {
  protected:
    /// "name type direction size precision scale attributes" of every parameter.
    Lines Described(const std::string& procedure) {
        EXPECT_TRUE(manager_.GetStoredProcedureParameters(kDatabase, procedure, parameters_)) << procedure;
        EXPECT_EQ(parameters_.front(), nullptr);
        Lines lines;
        for (std::size_t i = 1; i < parameters_.size(); ++i) {
            const ado::Parameter& one = *parameters_[i];
            EXPECT_TRUE(one.Value().IsEmpty());
            lines.push_back(one.Name());
            for (const std::int32_t number :
                 {one.Type(), one.Direction(), one.Size(), std::int32_t{one.Precision()},
                  std::int32_t{one.NumericScale()}, one.Attributes()}) {
                lines.back() += " " + std::to_string(number);
            }
        }
        return lines;
    }
    static constexpr char kReturn[] = "@RETURN_VALUE 3 4 0 10 0 16";
};

TEST_F(ServerProcedures, AreListedWithoutTheirNumbers) {
    Do("CREATE PROC spListed AS SELECT 1 AS one");
    Do("CREATE PROC [odd;name] AS SELECT 1 AS one");
    Lines procedures;
    ASSERT_TRUE(manager_.GetStoredProcedures(kDatabase, procedures));
    EXPECT_EQ(procedures.front(), "");
    EXPECT_EQ(std::ranges::count(procedures, "spListed"), 1);
    EXPECT_EQ(std::ranges::count(procedures, "odd"), 1);
    // The cut name "odd" is not the name of a procedure.
    EXPECT_EQ(Described("odd"), Lines{});
    EXPECT_FALSE(Call("odd"));
    EXPECT_EQ(manager_.Reported(), Lines{"2812 Could not find stored procedure 'odd'."});
    EXPECT_TRUE(Call("[odd;name]"));
    EXPECT_EQ(Rows(), (Lines{"one", "1"}));
}

TEST_F(ServerProcedures, ADatabaseWithoutProceduresIsNotAFailure) {
    Lines procedures = {"left"};
    EXPECT_TRUE(manager_.GetStoredProcedures("Bare", procedures));
    EXPECT_EQ(procedures, Lines{""});
    EXPECT_EQ(LoggedFailures(), 0U);
}

TEST_F(ServerProcedures, TheTextIsReadByteForByte) {
    const std::string text =
        "CREATE PROC spText @a int AS\r\n-- \x80 und \xFC\r\n\tSELECT @a AS a,\r\n\r\n  'x' AS b\r\n";
    Do(text);
    EXPECT_EQ(manager_.GetStoredProcedure(kDatabase, "spText"), text);
}

TEST_F(ServerProcedures, ATextOfTwoMegabytesIsReadWhole) {
    std::string text = "CREATE PROC spLong AS\r\n";
    for (int line = 0; text.size() < 2'000'000; ++line) {
        text += "-- line " + std::to_string(line) + std::string(static_cast<std::size_t>(line % 100), '.') +
                "\r\n";
    }
    text += "SELECT 1 AS one\r\n";
    Do(text);
    const std::string read = manager_.GetStoredProcedure(kDatabase, "spLong");
    EXPECT_EQ(read.size(), text.size());
    EXPECT_TRUE(read == text);
}

TEST_F(ServerProcedures, AnEncryptedTextIsNotShown) {
    Do("CREATE PROC spSecret @a int WITH ENCRYPTION AS SELECT @a AS a");
    EXPECT_EQ(manager_.GetStoredProcedure(kDatabase, "spSecret"), "");
    EXPECT_EQ(LoggedFailures(), 1U);
    EXPECT_EQ(Described("spSecret"), (Lines{kReturn, "@a 3 1 0 10 0 80"}));
    EXPECT_TRUE(Call("spSecret", {"4"}));
    EXPECT_EQ(Rows(), (Lines{"a", "4"}));
}

TEST_F(ServerProcedures, ATextThatCannotBeReadIsReported) {
    EXPECT_EQ(manager_.GetStoredProcedure(kDatabase, "spNone"), "");
    EXPECT_EQ(manager_.Reported().size(), 1U);
    EXPECT_EQ(manager_.Reported().front().substr(0, 6), "15009 ");
    EXPECT_EQ(manager_.GetStoredProcedure(kDatabase, "sp'None"), "");
    EXPECT_FALSE(manager_.Reported().empty());
    EXPECT_EQ(LoggedFailures(), 2U);
}

TEST_F(ServerProcedures, ParametersOfEveryType) {
    Do("CREATE PROC spTypes @bit bit, @tinyint tinyint, @smallint smallint, @int int, @bigint bigint, "
       "@decimal "
       "decimal(20, 5), @numeric numeric(9, 2), @money money, @smallmoney smallmoney, @real real, @float "
       "float, "
       "@datetime datetime, @smalldatetime smalldatetime, @char char(7), @varchar varchar(8000), @nchar "
       "nchar(7), "
       "@nvarchar nvarchar(4000), @text text, @ntext ntext, @binary binary(8), @varbinary varbinary(9), "
       "@image "
       "image, @guid uniqueidentifier AS SELECT 1 AS one");
    EXPECT_EQ(Described("spTypes"), (Lines{kReturn,
                                           "@bit 11 1 0 0 0 64",
                                           "@tinyint 17 1 0 3 0 64",
                                           "@smallint 2 1 0 5 0 80",
                                           "@int 3 1 0 10 0 80",
                                           "@bigint 20 1 0 19 0 80",
                                           "@decimal 131 1 0 20 5 80",
                                           "@numeric 131 1 0 9 2 80",
                                           "@money 6 1 0 19 4 80",
                                           "@smallmoney 6 1 0 10 4 80",
                                           "@real 4 1 0 7 0 80",
                                           "@float 5 1 0 15 0 80",
                                           "@datetime 135 1 0 23 3 64",
                                           "@smalldatetime 135 1 0 16 0 64",
                                           "@char 129 1 7 0 0 64",
                                           "@varchar 200 1 8000 0 0 64",
                                           "@nchar 130 1 7 0 0 64",
                                           "@nvarchar 202 1 4000 0 0 64",
                                           "@text 201 1 2147483647 0 0 192",
                                           "@ntext 203 1 1073741823 0 0 192",
                                           "@binary 128 1 8 0 0 64",
                                           "@varbinary 204 1 9 0 0 64",
                                           "@image 205 1 2147483647 0 0 192",
                                           "@guid 72 1 0 0 0 64"}));
}

TEST_F(ServerProcedures, DirectionsAreAsTheServerListsThem) {
    Do("CREATE PROC spDirections @in int, @out int OUTPUT, @default varchar(5) = 'x' AS RETURN 0");
    EXPECT_EQ(Described("spDirections"),
              (Lines{kReturn, "@in 3 1 0 10 0 80", "@out 3 3 0 10 0 80", "@default 200 1 5 0 0 64"}));
}

TEST_F(ServerProcedures, AProcedureWithoutParametersHasAReturnValue) {
    Do("CREATE PROC spNothing AS RETURN 0");
    EXPECT_EQ(Described("spNothing"), Lines{kReturn});
}

TEST_F(ServerProcedures, WildcardsInANameMatchThemselvesOnly) {
    Do("CREATE PROC sp_Like @one int AS RETURN 0");
    Do("CREATE PROC spXLike @two int AS RETURN 0");
    Do("CREATE PROC [sp%Like] @three int AS RETURN 0");
    Do("CREATE PROC [sp[X]]Like] @four int AS RETURN 0");
    Do("CREATE PROC [sp'Like] @five int AS RETURN 0");
    EXPECT_EQ(Described("sp_Like").back().substr(0, 4), "@one");
    EXPECT_EQ(Described("SPXLIKE").back().substr(0, 4), "@two");
    EXPECT_EQ(Described("[sp%Like]").back().substr(0, 6), "@three");
    EXPECT_EQ(Described("dbo.[sp[X]]Like]").back().substr(0, 5), "@four");
    EXPECT_EQ(Described("\"sp'Like\"").back().substr(0, 5), "@five");
    EXPECT_EQ(Described("dbo.sp_Like;1").size(), 2U);
    EXPECT_EQ(Described("sp_Like;2"), Lines{});
    EXPECT_EQ(Described("guest.sp_Like"), Lines{});
}

TEST_F(ServerProcedures, WithTwoOwnersTheProcedureIsTheOneThatACallFinds) {
    Do("CREATE SCHEMA aa");
    Do("CREATE PROC aa.spOwned @first int AS RETURN 0");
    Do("CREATE PROC dbo.spOwned @second int AS RETURN 0");
    EXPECT_EQ(Described("dbo.spOwned").back().substr(0, 7), "@second");
    EXPECT_EQ(Described("aa.spOwned").back().substr(0, 6), "@first");
    EXPECT_EQ(Described("spOwned").back().substr(0, 7), "@second");
}

TEST_F(ServerProcedures, AnEmptyNameFails) {
    EXPECT_FALSE(manager_.GetStoredProcedureParameters(kDatabase, "", parameters_));
    EXPECT_EQ(parameters_.size(), 1U);
    EXPECT_EQ(manager_.Reported(), Lines{"0 Command text was not set for the command object."});
    EXPECT_EQ(LoggedFailures(), 1U);
}

} // namespace
} // namespace kv

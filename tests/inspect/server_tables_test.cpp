// Listing tables and views of a running server, and reading values of every type from them.
#include <algorithm>

#include "inspect/server_fixture.h"

namespace kv {
namespace {

class ServerTables : public ServerTest {};

TEST_F(ServerTables, ListsTablesAndViews) {
    Do("CREATE TABLE Listed (a int)");
    Do("CREATE VIEW ListedView AS SELECT a FROM Listed");
    Do("CREATE TABLE [order by] (a int)");
    Lines tables;
    ASSERT_TRUE(manager_.GetTables(kDatabase, tables));
    EXPECT_EQ(tables.front(), "");
    for (const char* name : {"Listed", "ListedView", "order by"}) {
        EXPECT_EQ(std::ranges::count(tables, name), 1) << name;
    }
}

TEST_F(ServerTables, ADatabaseWithoutTablesIsAFailureWithoutAnError) {
    Lines tables;
    EXPECT_FALSE(manager_.GetTables("Bare", tables));
    EXPECT_EQ(tables, Lines{""});
    EXPECT_EQ(manager_.Reported(), Lines{});
    EXPECT_EQ(LoggedFailures(), 1U);
}

TEST_F(ServerTables, AWrongPasswordIsReported) {
    manager_.PasswordA("wrong");
    Lines tables;
    EXPECT_FALSE(manager_.GetTables(kDatabase, tables));
    ASSERT_FALSE(manager_.Reported().empty());
    EXPECT_EQ(manager_.Reported().front().substr(0, 18), "18456 Login failed");
}

TEST_F(ServerTables, AMissingDatabaseIsReported) {
    Lines tables;
    EXPECT_FALSE(manager_.GetTables("NoSuchDatabase", tables));
    EXPECT_FALSE(manager_.Reported().empty());
}

TEST_F(ServerTables, WholeNumbersAndBits) {
    Do("CREATE TABLE Whole (b bit, t tinyint, s smallint, i int, l bigint)");
    Do("INSERT Whole VALUES (0, 0, -32768, -2147483648, -9223372036854775808)");
    Do("INSERT Whole VALUES (1, 255, 32767, 2147483647, 9223372036854775807)");
    Do("INSERT Whole VALUES (NULL, NULL, NULL, NULL, NULL)");
    EXPECT_EQ(Rows(Data("Whole")),
              (Lines{"b|t|s|i|l", "False|0|-32768|-2147483648|-9223372036854775808",
                     "True|255|32767|2147483647|9223372036854775807", "(Null)|(Null)|(Null)|(Null)|(Null)"}));
}

TEST_F(ServerTables, ExactNumbersAndMoney) {
    Do("CREATE TABLE Exact (d decimal(38, 10), n numeric(18, 0), m money, s smallmoney)");
    Do("INSERT Exact VALUES (-9999999999999999999999999999.9999999999, -999999999999999999, "
       "-922337203685477.5808, -214748.3648)");
    Do("INSERT Exact VALUES (9999999999999999999999999999.9999999999, 999999999999999999, "
       "922337203685477.5807, 214748.3647)");
    Do("INSERT Exact VALUES (0, 0, 0, 0)");
    Do("INSERT Exact VALUES (0.0000000001, -1, 0.5, -0.25)");
    Do("INSERT Exact VALUES (NULL, NULL, NULL, NULL)");
    EXPECT_EQ(Rows(Data("Exact")),
              (Lines{"d|n|m|s",
                     "-9999999999999999999999999999.9999999999|-999999999999999999|-922337203685477.5808|"
                     "-214748.3648",
                     "9999999999999999999999999999.9999999999|999999999999999999|922337203685477.5807|"
                     "214748.3647",
                     "0|0|0|0", "0.0000000001|-1|0.5|-0.25", "(Null)|(Null)|(Null)|(Null)"}));
}

TEST_F(ServerTables, ApproximateNumbers) {
    Do("CREATE TABLE Approximate (r real, f float)");
    Do("INSERT Approximate VALUES (-3.40E+38, -1.79E+308)");
    Do("INSERT Approximate VALUES (3.40E+38, 1.79E+308)");
    Do("INSERT Approximate VALUES (1.18E-38, 2.23E-308)");
    Do("INSERT Approximate VALUES (0.1, 0.1)");
    Do("INSERT Approximate VALUES (0, 0)");
    Do("INSERT Approximate VALUES (NULL, NULL)");
    EXPECT_EQ(Rows(Data("Approximate")), (Lines{"r|f", "-3.4E+38|-1.79E+308", "3.4E+38|1.79E+308",
                                                "1.18E-38|2.23E-308", "0.1|0.1", "0|0", "(Null)|(Null)"}));
}

TEST_F(ServerTables, Dates) {
    Do("CREATE TABLE Dates (d datetime, s smalldatetime)");
    Do("INSERT Dates VALUES ('1753-01-01', '1900-01-01')");
    Do("INSERT Dates VALUES ('9999-12-31 23:59:59', '2079-06-06 23:59')");
    Do("INSERT Dates VALUES ('2006-05-12 14:03:22', '2006-05-12 14:03')");
    Do("INSERT Dates VALUES ('2006-05-12 14:03:22.497', '2006-05-12')");
    Do("INSERT Dates VALUES (NULL, NULL)");
    EXPECT_EQ(Rows(Data("Dates")),
              (Lines{"d|s", "1/1/1753|1/1/1900", "12/31/9999 11:59:59 PM|6/6/2079 11:59:00 PM",
                     "5/12/2006 2:03:22 PM|5/12/2006 2:03:00 PM", "5/12/2006 2:03:22 PM|5/12/2006",
                     "(Null)|(Null)"}));
}

TEST_F(ServerTables, Texts) {
    Do("CREATE TABLE Texts (c char(3), v varchar(8000), n nchar(2), w nvarchar(4000), t text, x ntext)");
    Do("INSERT Texts VALUES ('', '', '', '', '', '')");
    Do("INSERT Texts VALUES ('a', 'b ', 'c', 'd', 'e', 'f')");
    Do("INSERT Texts VALUES ('\x80\xE9', '\xFC\xDF', N'\x80', N'\x8A\xE4', '\x93\x94', N'\x99')");
    Do("INSERT Texts VALUES (NULL, NULL, NULL, NULL, NULL, NULL)");
    EXPECT_EQ(Rows(Data("Texts")), (Lines{"c|v|n|w|t|x", "   ||  |||", "a  |b |c |d|e|f",
                                          "\x80\xE9 |\xFC\xDF|\x80 |\x8A\xE4|\x93\x94|\x99",
                                          "(Null)|(Null)|(Null)|(Null)|(Null)|(Null)"}));
}

TEST_F(ServerTables, TextsOfTheGreatestLength) {
    Do("CREATE TABLE LongTexts (v varchar(8000), w nvarchar(4000), t text, m varchar(max))");
    Do("INSERT LongTexts VALUES (REPLICATE('v', 8000), REPLICATE(N'w', 4000), REPLICATE(CAST('t' AS "
       "varchar(max)), "
       "300000), REPLICATE(CAST('m' AS varchar(max)), 500000))");
    const TextTable data = Data("LongTexts");
    ASSERT_EQ(data.RowUpperBound(), 1);
    EXPECT_EQ(data(1, 1), std::string(8000, 'v'));
    EXPECT_EQ(data(2, 1), std::string(4000, 'w'));
    EXPECT_EQ(data(3, 1), std::string(300000, 't'));
    EXPECT_EQ(data(4, 1), std::string(500000, 'm'));
}

TEST_F(ServerTables, BytesAndIdentifiers) {
    Do("CREATE TABLE Bytes (b binary(4), v varbinary(8000), i image, g uniqueidentifier)");
    Do("INSERT Bytes VALUES (0x, 0x, 0x, '00000000-0000-0000-0000-000000000000')");
    Do("INSERT Bytes VALUES (0x01FF, 0x00, 0xFF00, '6F9619FF-8B86-D011-B42D-00C04FC964FF')");
    Do("INSERT Bytes VALUES (NULL, NULL, NULL, NULL)");
    EXPECT_EQ(Rows(Data("Bytes")),
              (Lines{"b|v|i|g", "0x00000000|0x|0x|{00000000-0000-0000-0000-000000000000}",
                     "0x01FF0000|0x00|0xFF00|{6F9619FF-8B86-D011-B42D-00C04FC964FF}",
                     "(Null)|(Null)|(Null)|(Null)"}));
}

TEST_F(ServerTables, IdentityColumnsAreNamed) {
    Do("CREATE TABLE WithIdentity (a int, Number int IDENTITY(5, 5), b int)");
    Do("INSERT WithIdentity (a, b) VALUES (1, 2)");
    EXPECT_EQ(Rows(Data("WithIdentity")), (Lines{"a|Number|b", "1|5|2"}));
    EXPECT_EQ(identifiers_, (Lines{"", "Number"}));
    Do("CREATE TABLE WithoutIdentity (a int)");
    EXPECT_EQ(Rows(Data("WithoutIdentity")), Lines{"a"}); // it has no rows either
    EXPECT_EQ(identifiers_, Lines{""});
}

TEST_F(ServerTables, AViewIsReadLikeATable) {
    Do("CREATE TABLE Viewed (a int, b varchar(10))");
    Do("INSERT Viewed VALUES (1, 'one')");
    Do("CREATE VIEW OnViewed AS SELECT b, a + 1 AS more FROM Viewed");
    EXPECT_EQ(Rows(Data("OnViewed")), (Lines{"b|more", "one|2"}));
    EXPECT_EQ(identifiers_, Lines{""});
}

TEST_F(ServerTables, AThousandColumns) {
    std::string columns;
    std::string names;
    std::string values;
    for (int i = 1; i <= 1000; ++i) {
        const std::string comma = i == 1 ? "" : ",";
        const std::string number = std::to_string(i);
        columns += comma + "c" + number + " int";
        names += (i == 1 ? "" : "|") + ("c" + number);
        values += comma + number;
    }
    Do("CREATE TABLE Broad (" + columns + ")");
    Do("INSERT Broad VALUES (" + values + ")");
    std::ranges::replace(values, ',', '|');
    EXPECT_EQ(Rows(Data("Broad")), (Lines{names, values}));
}

TEST_F(ServerTables, AHundredThousandRows) {
    Do("CREATE TABLE Many (n int, t varchar(20))");
    // One row is doubled 17 times, and the rows over 100,000 are deleted.
    Do("SET NOCOUNT ON INSERT Many VALUES (1, 'row 1') DECLARE @n int SET @n = 1 WHILE @n < 131072 BEGIN "
       "INSERT Many "
       "SELECT n + @n, 'row ' + CONVERT(varchar(20), n + @n) FROM Many SET @n = @n * 2 END DELETE Many WHERE "
       "n > "
       "100000");
    const TextTable data = Data("Many");
    ASSERT_EQ(data.RowUpperBound(), 100000);
    std::int64_t sum = 0;
    for (std::int32_t row = 1; row <= data.RowUpperBound(); ++row) {
        const std::string number = data(1, row);
        ASSERT_EQ(data(2, row), "row " + number);
        sum += std::stoll(number);
    }
    EXPECT_EQ(sum, 5000050000);
}

TEST_F(ServerTables, ReservedWordsAndBlanksInANameFailOnTheServer) {
    Do("CREATE TABLE [select] (a int)");
    Do("CREATE TABLE [two words] (a int)");
    for (const char* name : {"select", "two words"}) {
        EXPECT_FALSE(manager_.GetData(kDatabase, name, identifiers_, data_)) << name;
        EXPECT_EQ(manager_.Reported().size(), 1U) << name;
    }
    EXPECT_EQ(LoggedFailures(), 2U);
    EXPECT_EQ(Rows(Data("[select]")), Lines{"a"}); // it works if the caller puts the name in brackets
}

TEST_F(ServerTables, AnApostropheInANameBreaksTheFirstStatement) {
    Do("CREATE TABLE [O'Neil] (a int)");
    identifiers_ = {"left"};
    EXPECT_FALSE(manager_.GetData(kDatabase, "O'Neil", identifiers_, data_));
    EXPECT_FALSE(manager_.Reported().empty());
    EXPECT_EQ(identifiers_, Lines{"left"});
}

TEST_F(ServerTables, AMissingTableIsReportedOnce) {
    EXPECT_FALSE(manager_.GetData(kDatabase, "NoSuchTable", identifiers_, data_));
    EXPECT_EQ(manager_.Reported(), Lines{"208 Invalid object name 'NoSuchTable'."});
    EXPECT_EQ(identifiers_, Lines{""});
}

TEST_F(ServerTables, EachCallReadsTheCurrentRows) {
    Do("CREATE TABLE Changing (a int)");
    EXPECT_EQ(Rows(Data("Changing")), Lines{"a"});
    Do("INSERT Changing VALUES (1)");
    EXPECT_EQ(Rows(Data("Changing")), (Lines{"a", "1"}));
}

} // namespace
} // namespace kv

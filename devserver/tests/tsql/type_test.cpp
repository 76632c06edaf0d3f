// Every type preserves NULL and its lowest and highest values: in columns, in variables, in parameters.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

struct TypeCase {
    const char* type;
    const char* low;      ///< as written in T-SQL
    const char* high;     ///< as written in T-SQL
    const char* low_text; ///< as the transcript shows it
    const char* high_text;
};

constexpr TypeCase kTypes[] = {
    {"bit", "0", "1", "0", "1"},
    {"tinyint", "0", "255", "0", "255"},
    {"smallint", "-32768", "32767", "-32768", "32767"},
    {"int", "-2147483648", "2147483647", "-2147483648", "2147483647"},
    {"bigint", "-9223372036854775808", "9223372036854775807", "-9223372036854775808", "9223372036854775807"},
    {"decimal(38,0)", "-99999999999999999999999999999999999999", "99999999999999999999999999999999999999",
     "-99999999999999999999999999999999999999", "99999999999999999999999999999999999999"},
    {"numeric(38,38)", "-0.99999999999999999999999999999999999999",
     "0.00000000000000000000000000000000000001", "-0.99999999999999999999999999999999999999",
     "0.00000000000000000000000000000000000001"},
    {"decimal(18,4)", "-99999999999999.9999", "99999999999999.9999", "-99999999999999.9999",
     "99999999999999.9999"},
    {"money", "-922337203685477.5808", "922337203685477.5807", "-922337203685477.5808",
     "922337203685477.5807"},
    {"smallmoney", "-214748.3648", "214748.3647", "-214748.3648", "214748.3647"},
    {"real", "-3.40282e+038", "1.17549e-038", "-3.40282e+038", "1.17549e-038"},
    {"float", "-1.79769e+308", "2.22507e-308", "-1.79769e+308", "2.22507e-308"},
    {"datetime", "'17530101'", "'9999-12-31T23:59:59.997'", "1753-01-01 00:00:00.000",
     "9999-12-31 23:59:59.997"},
    {"smalldatetime", "'19000101'", "'2079-06-06T23:59:00'", "1900-01-01 00:00:00.000",
     "2079-06-06 23:59:00.000"},
    {"date", "'17530101'", "'99991231'", "1753-01-01", "9999-12-31"},
    {"char(3)", "''", "'abc'", "   ", "abc"},
    {"varchar(3)", "''", "'\xE2\x82\xAC\xC3\xBF!'", "", "\xE2\x82\xAC\xC3\xBF!"},
    {"nchar(2)", "N''", "N'\xD0\x96\xE6\xBC\xA2'", "  ", "\xD0\x96\xE6\xBC\xA2"},
    {"nvarchar(2)", "N''", "N'\xD0\x96\xE6\xBC\xA2'", "", "\xD0\x96\xE6\xBC\xA2"},
    {"varchar(max)", "''", "'long'", "", "long"},
    {"nvarchar(max)", "N''", "N'\xD0\x96'", "", "\xD0\x96"},
    {"binary(2)", "0x", "0xFFFF", "0x0000", "0xFFFF"},
    {"varbinary(2)", "0x", "0xFFFF", "0x", "0xFFFF"},
    {"varbinary(max)", "0x", "0x00", "0x", "0x00"},
    {"uniqueidentifier", "'00000000-0000-0000-0000-000000000000'", "'ffffffff-ffff-ffff-ffff-ffffffffffff'",
     "00000000-0000-0000-0000-000000000000", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"},
};

/// Types that variables can't have.
constexpr TypeCase kLongTypes[] = {
    {"text", "''", "'abc'", "", "abc"},
    {"ntext", "N''", "N'\xD0\x96'", "", "\xD0\x96"},
    {"image", "0x", "0x00FF", "0x", "0x00FF"},
};

class Types : public TsqlTest {
  protected:
    static std::string Column(const TypeCase& type, const std::string& name) {
        return std::string("\n") + name + "\nNULL\n" + type.low_text + "\n" + type.high_text + "\n(3)\n";
    }
    /// A table with NULL, the lowest and the highest value of the type.
    void Fill(const TypeCase& type) {
        const std::string name(type.type);
        ASSERT_EQ(Run("create table t (n int identity, v " + name + " null)\ninsert t (v) values (null)\n" +
                      "insert t (v) values (" + type.low + ")\ninsert t (v) values (" + type.high + ")"),
                  "\n(1)\n(1)\n(1)\n")
            << name;
    }
};

TEST_F(Types, KeepNullAndExtremesInColumns) {
    for (const TypeCase& type : kTypes) {
        Fill(type);
        EXPECT_EQ(Run("select v from t order by n"), Column(type, "v")) << type.type;
        Run("drop table t");
    }
    for (const TypeCase& type : kLongTypes) {
        Fill(type);
        EXPECT_EQ(Run("select v from t order by n"), Column(type, "v")) << type.type;
        Run("drop table t");
    }
}

TEST_F(Types, KeepNullAndExtremesInVariables) {
    for (const TypeCase& type : kTypes) {
        const std::string name(type.type);
        EXPECT_EQ(
            Run("declare @a " + name + ", @b " + name + ", @c " + name + "\nset @b = " + type.low +
                "\nset @c = " + type.high +
                "\nselect v from (select 1 as n, @a as v union all select 2, @b union all select 3, @c) x "
                "order by n"),
            Column(type, "v"))
            << type.type;
    }
}

TEST_F(Types, KeepNullAndExtremesThroughParameters) {
    for (const TypeCase& type : kTypes) {
        const std::string name(type.type);
        Run("create procedure p @in " + name + ", @out " + name + " = null output as set @out = @in");
        EXPECT_EQ(
            Run("declare @a " + name + ", @b " + name + ", @c " + name + "\nexec p null, @a output\nexec p " +
                type.low + ", @b output\nexec p " + type.high + ", @c output\n" +
                "select v from (select 1 as n, @a as v union all select 2, @b union all select 3, @c) x "
                "order by n"),
            Column(type, "v"))
            << type.type;
        Run("drop procedure p");
    }
}

TEST_F(Types, RefuseValuesBeyondTheirExtremes) {
    constexpr std::pair<const char*, int> kBeyond[] = {
        {"tinyint = 256", 220},
        {"tinyint = -1", 220},
        {"smallint = 32768", 220},
        {"int = 2147483648", 8115},
        {"bigint = 9223372036854775808", 8115},
        {"decimal(3,1) = 100", 8115},
        {"money = 922337203685477.5808", 8115},
        {"smallmoney = 214748.3648", 8115},
        {"datetime = '17521231'", 242},
        {"smalldatetime = '20790607'", 242},
        {"date = '20210229'", 241},
        {"uniqueidentifier = '00000000-0000-0000-0000'", 8169},
    };
    for (const auto& [declaration, number] : kBeyond) {
        client.Run(std::string("declare @v ") + declaration);
        ASSERT_FALSE(client.messages.empty()) << declaration;
        EXPECT_EQ(client.messages[0].number, number) << declaration << ": " << client.messages[0].text;
    }
}

TEST_F(Types, OfDateHaveNoTime) {
    EXPECT_EQ(Run(R"(
declare @d date = '20200229 10:11:12'
select @d as d, convert(varchar(30), @d) as text, convert(varchar(30), @d, 103) as british, convert(varchar(30), @d, 120) as odbc
select cast(@d as datetime) as midnight, dateadd(month, 12, @d) as later, datediff(day, @d, '20200301 23:00') as days
select cast(0x5E2F0B00 as date) as scripted, eomonth('20200210') as last, datefromparts(2021, 2, 28) as parts
select case when @d < getdate() then 'before' end as compared
select dateadd(hour, 1, @d)
GO
select cast('20200101' as date) + 1
GO
select datefromparts(2021, 2, 29))"),
              R"(
d|text|british|odbc
2020-02-29|2020-02-29|29/02/2020|2020-02-29
(1)
midnight|later|days
2020-02-29 00:00:00.000|2021-02-28|1
(1)
scripted|last|parts
2007-12-13|2020-02-29|2021-02-28
(1)
compared
before
(1)

Msg 9810.16.1 L7: The datepart hour is not supported by date function dateadd for data type date.
Msg 206.16.1 L1: Operand type clash: int is incompatible with date

Msg 289.16.1 L1: Cannot construct data type date, some of the arguments have values which are not valid.
)");
}

TEST_F(Types, OfTimestampChangeWithEveryWriteAlsoInTemporaryTables) {
    EXPECT_EQ(Run(R"(
create table #t (a int, t timestamp)
insert #t (a) values (1)
declare @before binary(8)
select @before = t from #t
update #t set a = 2
select a, datalength(t), case when t > @before then 'newer' end from #t)"),
              R"(
(1)
(1)
a||
2|8|newer
(1)
)");
}

} // namespace
} // namespace devsql::test

// SELECT: rows, types and orders of results.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Select : public TsqlTest {
  protected:
    Select() {
        client.Run(R"(
create table unit (id int not null primary key, name varchar(20) not null, volume decimal(10,2) null)
insert unit values (1, 'Mixer', 12.5)
insert unit values (2, 'tank', 100)
insert unit values (3, 'Über', null)
create table batch (id int not null primary key, unit_id int null, started datetime null, cost money null)
insert batch values (10, 1, '20240131 10:00', 5)
insert batch values (11, 1, '20240201', 7.25)
insert batch values (12, 2, null, null)
insert batch values (13, null, '20231224', 1)
)");
    }
};

TEST_F(Select, GivesColumnsNamesAndRowCount) {
    EXPECT_EQ(Run("select id, name as label, upper(name) big, x = id * 2 from unit where id < 3"), R"(
id|label|big|x
1|Mixer|MIXER|2
2|tank|TANK|4
(2)
)");
}

TEST_F(Select, ComparesTextWithoutCaseAndTrailingBlanksButWithAccents) {
    EXPECT_EQ(Run(R"(
select id from unit where name = 'MIXER   '
select id from unit where name = 'uber'
select id from unit where name in ('TANK', 'ÜBER')
select id from unit where name like 'm_x%'
select distinct upper(left(name, 1)) from unit where 'a' = 'A')"),
              R"(
id
1
(1)
id
(0)
id
2
3
(2)
id
1
(1)

M
T
Ü
(3)
)");
}

TEST_F(Select, FoldsTheCaseOfTheCodePagesLettersEverywhere) {
    Run("CREATE TABLE Šatna(œuvre varchar(10) PRIMARY KEY); INSERT Šatna VALUES('Žižka Ÿ')");
    EXPECT_EQ(Run("DECLARE @Š int SET @š = 1 SELECT ŒUVRE, @š FROM šATNA WHERE Œuvre = 'žiŽKA ÿ'"),
              "\nŒUVRE|\nŽižka Ÿ|1\n(1)\n");
    EXPECT_EQ(Run("INSERT šATNA VALUES('žiŽKA ÿ')").substr(0, 9), "\nMsg 2627");
    EXPECT_EQ(Run("SELECT UPPER('šœžÿ'), LOWER(N'ŠŒŽŸ'), CHARINDEX('Œ', 'aœ'), REPLACE('aš', 'Š', 'b') "
                  "WHERE 'šœ' LIKE 'Š[Œ]' AND 'š' <> 's' AND 'œ' <> 'oe'"),
              "\n|||\nŠŒŽŸ|šœžÿ|2|ab\n(1)\n");
}

TEST_F(Select, SortsTextAsTheCollationAndNullsFirst) {
    EXPECT_EQ(Run("select name, volume from unit order by volume desc, name\n"
                  "select name from unit order by name\nselect volume v from unit order by v"),
              R"(
name|volume
tank|100.00
Mixer|12.50
Über|NULL
(3)
name
Mixer
tank
Über
(3)
v
NULL
12.50
100.00
(3)
)");
}

TEST_F(Select, JoinsOfEveryKind) {
    EXPECT_EQ(Run(R"(
select b.id, u.name from batch b inner join unit u on u.id = b.unit_id order by b.id
select b.id, u.name from batch b left outer join unit u on u.id = b.unit_id order by b.id
select b.id, u.name from batch b right join unit u on u.id = b.unit_id order by u.id, b.id
select b.id, u.id from batch b full join unit u on u.id = b.unit_id order by isnull(b.id, 99), u.id
select count(*) from batch cross join unit
select count(*) from batch, unit where batch.unit_id = unit.id)"),
              R"(
id|name
10|Mixer
11|Mixer
12|tank
(3)
id|name
10|Mixer
11|Mixer
12|tank
13|NULL
(4)
id|name
10|Mixer
11|Mixer
12|tank
NULL|Über
(4)
id|id
10|1
11|1
12|2
13|NULL
NULL|3
(5)

12
(1)

3
(1)
)");
}

TEST_F(Select, NestedJoinsKeepTheirParentheses) {
    EXPECT_EQ(
        Run("select u.id, b.id, c.id from unit u left join batch b inner join batch c on c.id = b.id + 1 "
            "on b.unit_id = u.id order by u.id, b.id"),
        R"(
id|id|id
1|10|11
1|11|12
2|12|13
3|NULL|NULL
(4)
)");
}

TEST_F(Select, GroupsWithAggregatesOfEachType) {
    EXPECT_EQ(Run(R"(
select unit_id, count(*) n, sum(cost) s, avg(cost) a, min(started) first, max(id) last
from batch group by unit_id having count(*) > 0 order by unit_id
select sum(unit.id), avg(unit.id), sum(volume), avg(volume), count(volume), count(distinct unit_id) from unit, batch
select sum(volume) from unit where id > 99)"),
              R"(
unit_id|n|s|a|first|last
NULL|1|1.0000|1.0000|2023-12-24 00:00:00.000|13
1|2|12.2500|6.1250|2024-01-31 10:00:00.000|11
2|1|NULL|NULL|NULL|12
(3)
|||||
24|2|450.00|56.250000|8|2
(1)

NULL
(1)
)");
}

TEST_F(Select, GroupsByAnExpression) {
    EXPECT_EQ(Run("select year(started) y, month(started) m, count(*) from batch where started is not null "
                  "group by year(started), month(started) order by y, m"),
              R"(
y|m|
2023|12|1
2024|1|1
2024|2|1
(3)
)");
}

TEST_F(Select, SubqueriesOfEveryKind) {
    EXPECT_EQ(Run(R"(
select id, (select count(*) from batch b where b.unit_id = u.id) from unit u
select id from unit u where exists (select * from batch b where b.unit_id = u.id)
select id from unit where id not in (select unit_id from batch where unit_id is not null)
select id from unit where id not in (select unit_id from batch)
select q.n from (select count(*) as n from unit) q)"),
              R"(
id|
1|2
2|1
3|0
(3)
id
1
2
(2)
id
3
(1)
id
(0)
n
3
(1)
)");
}

TEST_F(Select, SetOperationsUnifyTypes) {
    EXPECT_EQ(Run(R"(
select id from unit union select 2 union select 7 order by 1
select 1 union all select 1
select 1.5 union all select 2
select id from unit except select 2
select id from unit intersect select 2
select count(*) from (select 'A' a union select 'a ') q)"),
              R"(
id
1
2
3
7
(4)

1
1
(2)

1.5
2.0
(2)
id
1
3
(2)
id
2
(1)

1
(1)
)");
}

TEST_F(Select, CommonTableExpressionsAlsoRecursive) {
    EXPECT_EQ(Run(R"(
with q as (select id, name from unit), r (n) as (select count(*) from q) select q.id, r.n from q, r where q.id = 1
;with n (i) as (select 1 union all select i + 1 from n where i < 10) select sum(i), max(i) from n)"),
              R"(
id|n
1|3
(1)
|
55|10
(1)
)");
}

TEST_F(Select, TopAndPercentAndRowcount) {
    EXPECT_EQ(Run(R"(
select top 1 id from batch order by id desc
select top (2) id from batch order by id
select top 50 percent id from batch order by id
set rowcount 1
select id from unit
set rowcount 0)"),
              R"(
id
13
(1)
id
10
11
(2)
id
10
11
(2)
id
1
(1)
)");
}

TEST_F(Select, CaseAndTheFunctionsThatChoose) {
    EXPECT_EQ(Run(R"(
select case id when 1 then 'one' when 2 then 'two' end, case when volume > 50 then 'big' else 'small' end from unit
select isnull(null, 'x'), coalesce(null, null, 3), nullif(1, 1), iif(1 = 2, 'y', 'n'), case when null = null then 1 end
select isnull(convert(varchar(2), null), 'abc')
select case when 1 = 1 then 1 else 1 / 0 end)"),
              R"(
|
one|small
two|big
NULL|small
(3)
||||
x|3|NULL|n|NULL
(1)

ab
(1)

1
(1)
)");
}

TEST_F(Select, WindowFunctionsNumberRows) {
    EXPECT_EQ(Run("select id, row_number() over (partition by unit_id order by id desc) r, count(*) over () "
                  "n from batch "
                  "order by id"),
              R"(
id|r|n
10|2|4
11|1|4
12|1|4
13|1|4
(4)
)");
}

TEST_F(Select, ArithmeticHasTheTypesOfTheLanguage) {
    EXPECT_EQ(Run("select 7 / 2, 7 % 2, 7 / 2.0, 'a' + 'b', 1 + '2', $1.5 * 2, 2e0 * 3, 5 & 3, ~5, -id from "
                  "unit where id = 1"),
              R"(
|||||||||
3|1|3.500000|ab|3|3.0000|6|1|-6|-1
(1)
)");
}

TEST_F(Select, DatesComputeAndConvert) {
    EXPECT_EQ(Run(R"(
select dateadd(month, 1, started), datediff(day, started, '20240301'), datename(month, started), datepart(yy, started)
from batch where id = 10
select convert(varchar(10), started, 104), convert(char(8), started, 112), cast(started as smalldatetime), started + 1
from batch where id = 10)"),
              R"(
|||
2024-02-29 10:00:00.000|30|January|2024
(1)
|||
31.01.2024|20240131|2024-01-31 10:00:00.000|2024-02-01 10:00:00.000
(1)
)");
}

TEST_F(Select, LongDecimalsSortAndAddExactly) {
    EXPECT_EQ(Run(R"(
create table big (n decimal(38, 5) null)
insert big values (12345678901234567890123456789012.12345)
insert big values (-12345678901234567890123456789012.12345)
insert big values (0.00001)
select n from big order by n
select sum(n), max(n) from big
select count(*) from big where n > 0)"),
              R"(
(1)
(1)
(1)
n
-12345678901234567890123456789012.12345
0.00001
12345678901234567890123456789012.12345
(3)
|
0.00001|12345678901234567890123456789012.12345
(1)

2
(1)
)");
}

TEST_F(Select, ValuesAsATable) {
    EXPECT_EQ(Run("select b, a from (values (1, 'x'), (2, 'y')) v (a, b) order by a desc"), R"(
b|a
y|2
x|1
(2)
)");
}

TEST_F(Select, AViewIsItsQuery) {
    EXPECT_EQ(Run(R"(
create view overview as select u.id, u.name, b.id as batch from unit u left join batch b on b.unit_id = u.id
GO
select name, count(batch) n from overview group by name order by n desc, name
select o.id from overview o join unit on unit.id = o.id where o.batch = 12)"),
              R"(
name|n
Mixer|2
tank|1
Über|0
(3)
id
2
(1)
)");
}

TEST_F(Select, AListMayBeLong) {
    std::string numbers;
    std::string words;
    for (int i = 1; i <= 5000; ++i) {
        numbers += std::to_string(-i) + ", ";
        words += "'it''s " + std::to_string(i) + "', ";
    }
    client.Run("create table w (i bigint, d decimal(9,2), a varchar(20))\n"
               "insert w values (-5000, 2, 'IT''S 7'), (7, -3, 'other')");
    EXPECT_EQ(Run("select i from w where i in (" + numbers + "-9223372036854775807)"), "\ni\n-5000\n(1)\n");
    EXPECT_EQ(Run("select d from w where d in (" + numbers + "0.5)"), "\nd\n-3.00\n(1)\n");
    EXPECT_EQ(Run("select a from w where a in (" + words + "N'x')"), "\na\nIT'S 7\n(1)\n");
    EXPECT_EQ(Run("select i from w where i not in (" + numbers + "null)"), "\ni\n(0)\n");
}

TEST_F(Select, GroupingErrorsNameTheColumn) {
    EXPECT_EQ(
        Run("select u.name, count(*) from unit u"),
        "\nMsg 8120.16.1 L1: Column 'u.name' is invalid in the select list because it is not contained in "
        "either an aggregate function or the GROUP BY clause.\n");
    EXPECT_EQ(Run("select name, id from unit group by name"),
              "\nMsg 8120.16.1 L1: Column 'unit.id' is invalid in the select list because it is not "
              "contained in either "
              "an aggregate function or the GROUP BY clause.\n");
}

TEST_F(Select, AScalarSubqueryWithTwoRowsIsAnError) {
    Run("select (select id from unit)");
    EXPECT_EQ(client.messages.at(0).number, 512);
}

TEST_F(Select, OffsetAndFetchTakeAPage) {
    EXPECT_EQ(Run(R"(
create table t (id int)
insert t values (1), (2), (3), (4), (5)
declare @page int = 1
select id from t order by id desc offset @page * 2 rows fetch next 2 rows only
select id from t order by id offset 4 rows
select id from t where id < 2 union all select 9 order by id offset 1 row fetch first 1 row only
GO
select id from t order by id offset -1 rows
GO
select top 1 id from t order by id offset 1 rows)"),
              R"(
(5)
id
3
2
(2)
id
5
(1)
id
9
(1)
Msg 10742.15.1 L1: The offset specified in a OFFSET clause may not be negative.
Msg 10741.15.1 L1: A TOP can not be used in the same query or sub-query as a OFFSET.
)");
}

TEST_F(Select, RollupAddsTheTotals) {
    EXPECT_EQ(Run(R"(
create table t (kind varchar(3), colour varchar(3), n int)
insert t values ('a', 'red', 1), ('a', 'red', 2), ('a', 'tan', 4), ('b', 'red', 8)
select kind, colour, sum(n) as n, grouping(colour) as g from t group by kind, colour with rollup order by n
select isnull(kind, 'all') as kind, count(*) as rows from t group by rollup (kind) having count(*) > 1 order by kind
select grouping(n) from t group by kind with rollup)"),
              R"(
(4)
kind|colour|n|g
a|red|3|0
a|tan|4|0
a|NULL|7|1
b|red|8|0
b|NULL|8|1
NULL|NULL|15|1
(6)
kind|rows
a|3
all|4
(2)
Msg 8161.15.1 L6: Argument 1 of the GROUPING function does not match any of the expressions in the GROUP BY clause.
)");
}

TEST_F(Select, RefusesByNameWhatNoScriptAsksFor) {
    for (const auto& [sql, name] : std::initializer_list<std::pair<const char*, const char*>>{
             {"select 1 where 1 >= all (select 1)", "ALL (subquery)"},
             {"select 1 where 1 = any (select 1)", "ANY (subquery)"},
             {"select 1 where 1 = some (select 1)", "SOME (subquery)"},
             {"select top 1 with ties id from unit order by id", "WITH TIES"},
             {"select id from unit group by id with cube", "CUBE"},
             {"select id from unit group by cube (id)", "CUBE"},
             {"select id from unit group by grouping sets ((id))", "GROUPING"},
             {"select ntile(2) over (order by id) from unit", "NTILE"},
             {"alter database Master add filegroup g", "ADD FILEGROUP"},
             {"alter database Master add log file (name = x, filename = 'x')", "ADD LOG"}}) {
        EXPECT_EQ(Run(sql), std::string("\nMsg 40517.16.1 L1: Keyword or statement option '") + name +
                                "' is not supported in this version of SQL Server.\n");
    }
}

TEST_F(Select, ANullTakesTheTypeOfTheOthersInAUnion) {
    EXPECT_EQ(Run("select null as v union all select 'text' union all select null order by v"),
              "\nv\nNULL\nNULL\ntext\n(3)\n");
}

TEST_F(Select, AMoneyLiteralEndsAtTheCommaThatGroupsNothing) {
    EXPECT_EQ(Run("select $1,000.50, $19.00,17, $5,2"), "\n||||\n1000.5000|19.0000|17|5.0000|2\n(1)\n");
}

TEST_F(Select, RowsOfATableWithAClusteredKeyComeInItsOrder) {
    EXPECT_EQ(Run(R"(
set nocount on
create table keyed (a int, b varchar(5), c int, constraint pk_keyed primary key (b, a desc))
create table plain (a int primary key nonclustered, b varchar(5))
insert keyed values (1, 'b', 0) insert keyed values (2, 'a', 0) insert keyed values (3, 'b', 1)
insert plain values (2, 'x') insert plain values (1, 'y')
set nocount off
declare @all varchar(20) set @all = ''
select @all = @all + b + str(a, 1) from keyed
select @all seen
select * from keyed select top 1 a from keyed where c = 0 select count(*) n from keyed select distinct c from keyed order by c
select * from plain
declare k cursor for select a from keyed open k fetch k close k deallocate k)"),
              R"(
seen
a2b3b1
(1)
a|b|c
2|a|0
3|b|1
1|b|0
(3)
a
2
(1)
n
3
(1)
c
0
1
(2)
a|b
2|x
1|y
(2)
a
2
(1)
)");
}

TEST_F(Select, StringAggIsRefusedByName) {
    for (const char* call : {"string_agg(name, ',')", "STRING_AGG(name, ',') within group (order by name)"}) {
        EXPECT_EQ(Run(std::string("select ") + call + " from sysobjects"),
                  "\nMsg 40517.16.1 L1: Keyword or statement option 'STRING_AGG' is not supported in this "
                  "version of "
                  "SQL Server.\n");
    }
}

} // namespace
} // namespace devsql::test

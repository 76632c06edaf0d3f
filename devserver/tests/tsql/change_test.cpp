// INSERT, UPDATE, DELETE: rows, identities, counts.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

using Change = TsqlTest;

TEST_F(Change, InsertFillsDefaultsIdentitiesAndNulls) {
    EXPECT_EQ(Run(R"(
create table t (id int identity(100, 10), a varchar(5) null, b int not null default (7), c as a + '!')
insert t (a) values ('x')
insert t default values
insert into t (b, a) values (default, 'y'), (9, null)
select * from t
select @@identity, scope_identity(), ident_current('t'), @@rowcount)"),
              R"(
(1)
(1)
(2)
id|a|b|c
100|x|7|x!
110|NULL|7|NULL
120|y|7|y!
130|NULL|9|NULL
(4)
|||
130|130|130|4
(1)
)");
}

TEST_F(Change, IdentityInsertStoresTheGivenValueAndContinuesFromIt) {
    EXPECT_EQ(Run(R"(
create table t (id int identity, a int)
set identity_insert t on
insert t (id, a) values (50, 1)
insert t (a) values (1)
GO
set identity_insert t off
insert t (a) values (2)
insert t (id, a) values (1, 1)
GO
select id from t)"),
              R"(
(1)
Msg 545.16.1 L5: Explicit value must be specified for identity column in table 't' either when IDENTITY_INSERT is set to ON or when a replication user is inserting into a NOT FOR REPLICATION identity column.
(1)
Msg 544.16.1 L3: Cannot insert explicit value for identity column in table 't' when IDENTITY_INSERT is set to OFF.
id
50
51
(2)
)");
}

TEST_F(Change, AnIdentityIsNotGivenTwiceAfterARollback) {
    EXPECT_EQ(Run(R"(
create table t (id int identity, a int not null)
insert t values (1)
insert t values (null)
begin tran
insert t values (2)
rollback
insert t values (3)
select id from t)"),
              R"(
(1)
Msg 515.16.2 L4: Cannot insert the value NULL into column 'a', table 'tempdb.dbo.t'; column does not allow nulls. INSERT fails.
> The statement has been terminated.
(1)
(1)
id
1
4
(2)
)");
}

TEST_F(Change, InsertFromSelectAndFromAProcedure) {
    EXPECT_EQ(Run(R"(
create table t (a int, b varchar(10))
insert t select 1, 'x' union all select 2, 'y'
insert t (b, a) select b, a + 10 from t
GO
create procedure p as select 7, 'z' select 8, 'w'
GO
insert t exec p
insert t exec ('select 9, ''v''')
select * from t order by a)"),
              R"(
(2)
(2)
(2)
(1)
a|b
1|x
2|y
7|z
8|w
9|v
11|x
12|y
(7)
)");
}

TEST_F(Change, UpdateFromAJoinChangesEachRowOnce) {
    EXPECT_EQ(Run(R"(
create table t (id int, n int)
create table s (id int, n int)
insert t values (1, 0), (2, 0), (3, 0)
insert s values (1, 5), (1, 6), (2, 7)
update t set n = s.n from t join s on s.id = t.id
update x set n = n + 1 from t x where x.id = 3
select id, case when n > 0 then 'yes' end from t)"),
              R"(
(3)
(3)
(2)
(1)
id|
1|yes
2|yes
3|yes
(3)
)");
}

TEST_F(Change, UpdateMayShiftAKeyOverItsNeighbours) {
    EXPECT_EQ(Run(R"(
create table t (id int primary key)
insert t values (1), (2), (3)
update t set id = id + 1
select id from t order by id)"),
              R"(
(3)
(3)
id
2
3
4
(3)
)");
}

TEST_F(Change, UpdateAssignsVariables) {
    EXPECT_EQ(Run(R"(
create table counter (n int)
insert counter values (41)
declare @old int, @new int
update counter set @old = n, @new = n = n + 1
select @old, @new, n from counter)"),
              R"(
(1)
(1)
||n
41|42|42
(1)
)");
}

TEST_F(Change, DeleteWithJoinTopAndExists) {
    EXPECT_EQ(Run(R"(
create table t (id int)
insert t values (1), (2), (3), (4), (5)
delete from t where id = 1
delete x from t x join (select 2 as id) y on y.id = x.id
delete top (1) from t
delete t where exists (select * from t z where z.id > t.id)
select id from t
delete t
select @@rowcount)"),
              R"(
(5)
(1)
(1)
(1)
(1)
id
5
(1)
(1)

1
(1)
)");
}

TEST_F(Change, TruncateStartsTheIdentityAnew) {
    EXPECT_EQ(Run(R"(
create table t (id int identity(5, 1), a int)
insert t values (1), (2)
truncate table t
insert t values (3)
select * from t)"),
              R"(
(2)
(1)
id|a
5|3
(1)
)");
}

TEST_F(Change, SelectIntoMakesTheTable) {
    EXPECT_EQ(Run(R"(
create table t (id int identity, name varchar(10) not null, price money null)
insert t values ('a', 1.5)
select id, name, price * 2 as twice into copy from t
insert copy (name) values ('b')
select * from copy
select column_name, data_type, is_nullable from information_schema.columns where table_name = 'copy')"),
              R"(
(1)
(1)
(1)
id|name|twice
1|a|3.0000
2|b|NULL
(2)
column_name|data_type|is_nullable
id|int|NO
name|varchar|NO
twice|money|YES
(3)
)");
}

TEST_F(Change, TimestampsRiseWithEveryChange) {
    EXPECT_EQ(Run(R"(
create table t (id int, stamp timestamp)
insert t values (1, default), (2, null)
declare @before binary(8), @after binary(8)
select @before = stamp from t where id = 1
update t set id = 1 where id = 1
select @after = stamp from t where id = 1
select case when @after > @before then 'later' end, (select count(distinct stamp) from t)
insert t values (1, 0x01))"),
              R"(
(2)
(1)
|
later|2
(1)
Msg 273.16.1 L9: Cannot insert an explicit value into a timestamp column. Use INSERT with a column list to exclude the timestamp column, or insert a DEFAULT into the timestamp column.
)");
}

TEST_F(Change, ValuesOfEveryTypeAreReadAsTheyWereWritten) {
    EXPECT_EQ(Run(R"(
create table t (a bit, b tinyint, c smallint, d bigint, e decimal(5,2), f money, g smallmoney, h real, i float, j datetime,
    k smalldatetime, l char(4), m varchar(4), n nchar(4), o nvarchar(4), p text, q ntext, r binary(3), s varbinary(3),
    u image, v uniqueidentifier, w varchar(max))
insert t values (1, 255, -32768, 9223372036854775807, 999.99, -922337203685477.5808, 1.5, 0.5, 1e100, '99991231 23:59:59.997',
    '2079-06-06', 'ab', 'ab', N'äöü', N'€', 'text', N'Ω', 0x01, 0x0102, 0xFF, '6F9619FF-8B86-D011-B42D-00C04FC964FF', 'x')
insert t default values
select * from t)"),
              R"(
(1)
(1)
a|b|c|d|e|f|g|h|i|j|k|l|m|n|o|p|q|r|s|u|v|w
1|255|-32768|9223372036854775807|999.99|-922337203685477.5808|1.5000|0.5|1e+100|9999-12-31 23:59:59.997|2079-06-06 00:00:00.000|ab  |ab|äöü |€|text|Ω|0x010000|0x0102|0xFF|6F9619FF-8B86-D011-B42D-00C04FC964FF|x
NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL
(2)
)");
}

TEST_F(Change, ATooLongTextIsRefusedAndBlanksAreCut) {
    EXPECT_EQ(Run(R"(
create table t (a varchar(3))
insert t values ('abc  ')
insert t values ('abcd')
update t set a = 'wxyz'
select a + '|' from t)"),
              R"(
(1)
Msg 8152.16.1 L4: String or binary data would be truncated.
> The statement has been terminated.
Msg 8152.16.1 L5: String or binary data would be truncated.
> The statement has been terminated.

abc|
(1)
)");
}

TEST_F(Change, OutputGivesTheRowsBeforeAndAfter) {
    EXPECT_EQ(Run(R"(
create table t (id int identity, a varchar(9) not null default 'x', twice as a + a)
insert t (a) output inserted.*, len(inserted.twice) as length values ('p'), ('qq')
insert t output inserted.id default values
update t set a = a + '!' output deleted.a as was, inserted.a, inserted.id * 10 where id < 3
update top (1) t set a = 'first' output inserted.id from t join t u on u.id = t.id
delete t output deleted.* where id > 1
delete t output deleted.id where id > 1)"),
              R"(
id|a|twice|length
1|p|pp|2
2|qq|qqqq|4
(2)
id
3
(1)
was|a|
p|p!|10
qq|qq!|20
(2)
id
1
(1)
id|a|twice
2|qq!|qq!qq!
3|x|xx
(2)
id
(0)
)");
}

TEST_F(Change, OutputIntoKeepsTheRows) {
    EXPECT_EQ(Run(R"(
create table t (id int identity, a int)
create table kept (n int identity, id int, how varchar(9))
declare @new table (id int, a int)
insert t output inserted.id, inserted.a into @new values (7), (8)
delete t output deleted.id, 'gone' into kept (id, how) output deleted.a where a = 7
select * from @new
select * from kept
insert t output inserted.a into kept (id) select 1 / 0
select count(*) from t
select count(*) from kept)"),
              R"(
(2)
a
7
(1)
id|a
1|7
2|8
(2)
n|id|how
1|1|gone
(1)
Msg 8134.16.1 L9: Divide by zero error encountered.
> The statement has been terminated.

1
(1)

1
(1)
)");
}

TEST_F(Change, OutputRefusesInsertedAndDeletedWhereThereAreNoSuchRows) {
    EXPECT_EQ(Run(R"(
create table t (id int)
GO
insert t output deleted.id values (1)
GO
update t set id = 1 output inserted.nosuch
GO
delete t output (select 1)
GO
delete t output *)"),
              R"(
Msg 4104.16.1 L1: The multi-part identifier "deleted.id" could not be bound.
Msg 207.16.1 L1: Invalid column name 'nosuch'.
Msg 10705.16.1 L1: Subqueries are not allowed in the OUTPUT clause.
Msg 107.15.1 L1: The column prefix '*' does not match with a table name or alias name used in the query.
)");
}

TEST_F(Change, CheckIdentReportsAndSetsTheCounter) {
    EXPECT_EQ(Run(R"(
create table t (id int identity(1, 2), a int)
create table u (a int)
dbcc checkident('t', reseed, 100) with no_infomsgs
insert t values (1)
insert t values (1)
delete t where id = 102
dbcc checkident('dbo.t', noreseed)
dbcc checkident(t, reseed, 30)
insert t values (1)
set identity_insert t on
insert t (id, a) values (40, 1)
set identity_insert t off
dbcc checkident('t')
insert t values (1)
select id from t
dbcc checkident('u')
dbcc checkident('nosuch'))"),
              R"(
(1)
(1)
(1)
> Checking identity information: current identity value '102', current column value '100'.
> DBCC execution completed. If DBCC printed error messages, contact your system administrator.
> Checking identity information: current identity value '102', current column value '30'.
> DBCC execution completed. If DBCC printed error messages, contact your system administrator.
(1)
(1)
> Checking identity information: current identity value '40', current column value '100'.
> DBCC execution completed. If DBCC printed error messages, contact your system administrator.
(1)
id
100
32
40
102
(4)
Msg 7997.16.1 L17: 'u' does not contain an identity column.
Msg 2501.16.45 L18: Cannot find a table or object with the name "nosuch". Check the system catalog.
)");
}

} // namespace
} // namespace devsql::test

// CREATE, ALTER and DROP of tables and indexes; temporary tables, table variables, user types.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

using Tables = TsqlTest;

TEST_F(Tables, AlterTableAddsChangesAndDropsColumns) {
    EXPECT_EQ(Run(R"(
create table t (id int not null, a varchar(5))
insert t values (1, '12'), (2, '34')
alter table t add b int null, c int not null default 9, n int identity
select * from t
alter table t alter column a int
select a + 1 from t
alter table t drop column b
select * from t)"),
              R"(
(2)
id|a|b|c|n
1|12|NULL|9|1
2|34|NULL|9|2
(2)

13
35
(2)
id|a|c|n
1|12|9|1
2|34|9|2
(2)
)");
}

TEST_F(Tables, AlterTableRefusesWhatTheRowsContradict) {
    EXPECT_EQ(Run(R"(
create table t (id int null)
insert t values (null)
GO
alter table t alter column id int not null
GO
alter table t add b int not null
GO
alter table t alter column nosuch int
GO
alter table nosuch add x int)"),
              R"(
(1)
Msg 515.16.2 L1: Cannot insert the value NULL into column 'id', table 'tempdb.dbo.t'; column does not allow nulls. ALTER TABLE fails.
Msg 4901.16.1 L1: ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition specified, or the column being added is an identity or timestamp column, or alternatively if none of the previous conditions are satisfied the table must be empty to allow addition of this column. Column 'b' cannot be added to non-empty table 't' because it does not satisfy these conditions.
Msg 4924.16.1 L1: ALTER TABLE ALTER COLUMN failed because column 'nosuch' does not exist in table 't'.
Msg 4902.16.1 L1: Cannot find the object "nosuch" because it does not exist or you do not have permissions.
)");
}

TEST_F(Tables, NewColumnsAreFilledInExistingRows) {
    EXPECT_EQ(Run(R"(
set nocount on
create table t (id int)
insert t values (3), (4)
alter table t add a int null constraint df_a default 5 with values, b int null default 6, c int not null default 7,
    d as (id * 2), e int identity(10, 5), f timestamp
GO
select id, a, b, c, d, e, datalength(f) from t
insert t (id) values (5)
select a, b, d, e from t where id = 5)"),
              R"(
id|a|b|c|d|e|
3|5|NULL|7|6|10|8
4|5|NULL|7|8|15|8
a|b|d|e
5|6|10|20
)");
}

TEST_F(Tables, AUniqueIndexOverDuplicatesIsRefused) {
    EXPECT_EQ(Run(R"(
create table t (a varchar(5))
insert t values ('x'), ('X')
create unique index ix on t (a))"),
              R"(
(2)
Msg 1505.16.1 L4: The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo.t' and the index name 'ix'. The duplicate key value is (x).
)");
}

TEST_F(Tables, DefinitionErrorsHaveTheirNumbers) {
    client.Run("create table t (id int primary key, c varchar(10) not null)\nGO\ncreate index ci on t (c)");
    const std::pair<const char*, int> cases[] = {
        {"create table t (id int)", 2714},
        {"create table x (a int, A int)", 2705},
        {"create table x (a nosuchtype)", 2715},
        {"create table x (a int identity, b int identity)", 2744},
        {"create table x (a varchar(10) identity)", 2749},
        {"create table x (a int primary key, b int primary key)", 8110},
        {"create table x (a varchar(9000))", 131},
        {"create table nosuch.x (a int)", 2760},
        {"alter table t add constraint pk2 primary key (c)", 1779},
        {"create clustered index ci2 on t (c)", 1902},
        {"create index ci on t (id)", 1913},
        {"create index i on t (nosuch)", 1911},
        {"create index i on nosuch (a)", 1088},
        {"drop index t.nosuch", 3701},
        {"drop table nosuch", 3701},
        {"drop view t", 3705},
        {"exec sp_addtype 'int', 'int'", 219},
    };
    for (const auto& [sql, number] : cases) {
        client.Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.at(0).number, number) << sql << ": " << client.messages.at(0).text;
    }
}

TEST_F(Tables, TemporaryTablesBelongToTheirSession) {
    EXPECT_EQ(
        Run("create table #t (a int)\ninsert #t values (1)\nGO\nselect * from #t\nselect a into #u from #t"),
        R"(
(1)
a
1
(1)
(1)
)");
    Client other = server.Login("tempdb");
    EXPECT_EQ(other.Run("select * from #t"), "Msg 208.16.1 L1: Invalid object name '#t'.\n");
    EXPECT_EQ(other.Run("create table #t (b int) select * from #t"), "b\n(0)\n");
    EXPECT_EQ(Run("drop table #t\nselect object_id('tempdb..#t')\nselect * from #u"),
              "\n\nNULL\n(1)\na\n1\n(1)\n");
}

TEST_F(Tables, TableVariablesKeepTheirRowsThroughARollback) {
    EXPECT_EQ(Run(R"(
declare @log table (id int identity primary key, text varchar(20) default 'none')
insert @log (text) values ('before')
begin tran
insert @log default values
rollback
select * from @log
GO
select * from @log)"),
              R"(
(1)
(1)
id|text
1|before
2|none
(2)
Msg 1087.15.1 L1: Must declare the table variable "@log".
)");
}

TEST_F(Tables, ATemporaryTableMadeInATransactionGoesWithIt) {
    EXPECT_EQ(Run("begin tran\ncreate table #t (a int)\nrollback\nselect * from #t"),
              "\nMsg 208.16.1 L4: Invalid object name '#t'.\n");
}

TEST_F(Tables, UserTypesServeColumnsAndVariables) {
    EXPECT_EQ(Run(R"(
exec sp_addtype 'label', 'nvarchar(5)', 'NOT NULL'
create table t (id int, a label, b dbo.label null)
declare @x label
set @x = N'abcdefgh'
insert t values (1, @x, null)
select * from t
insert t values (2, null, null)
GO
exec sp_droptype 'label'
drop table t
exec sp_droptype 'label')"),
              R"(
(1)
id|a|b
1|abcde|NULL
(1)
Msg 515.16.2 L8: Cannot insert the value NULL into column 'a', table 'tempdb.dbo.t'; column does not allow nulls. INSERT fails.
> The statement has been terminated.
Msg 3732.16.1 sp_droptype L1: Cannot drop type 'label' because it is being referenced by object 't'. There may be other objects that reference this type.
return 1
)");
}

TEST_F(Tables, SpRenameRenamesTablesColumnsAndIndexes) {
    EXPECT_EQ(Run(R"(
create table t (a int constraint pk_t primary key)
insert t values (1)
exec sp_rename 't', 'u'
exec sp_rename 'u.a', 'b', 'COLUMN'
select b from u
insert u values (1)
GO
select * from t)"),
              R"(
(1)
> Caution: Changing any part of an object name could break scripts and stored procedures.
> Caution: Changing any part of an object name could break scripts and stored procedures.
b
1
(1)
Msg 2627.14.1 L7: Violation of PRIMARY KEY constraint 'pk_t'. Cannot insert duplicate key in object 'dbo.u'. The duplicate key value is (1).
> The statement has been terminated.
Msg 208.16.1 L1: Invalid object name 't'.
)");
}

TEST_F(Tables, NamesWithBlanksQuotesAndReservedWordsWork) {
    EXPECT_EQ(Run(R"(
create table [my "odd" table] ([select] int, [a b] int, [rowid] int, [c]]d] int)
insert [my "odd" table] values (1, 2, 3, 4)
update [my "odd" table] set [a b] = [select] + 5
select [a b], "rowid", [c]]d] from dbo.[MY "ODD" TABLE]
create table sqlite_master (x int)
insert sqlite_master values (1)
select x from sqlite_master
create table devsql_objects (y int)
select count(*) from devsql_objects)"),
              R"(
(1)
(1)
a b|rowid|c]d
6|3|4
(1)
(1)
x
1
(1)

0
(1)
)");
}

TEST_F(Tables, WithTwoNumberSignsAreSharedUntilTheirSessionEnds) {
    Client other = server.Login("master");
    EXPECT_EQ(Run("create table ##shared (id int identity, a int)\ninsert ##shared values (5)"), "\n(1)\n");
    EXPECT_EQ(other.Run("update ##shared set a = a + 1\nselect * from tempdb..##shared\n"
                        "select case when object_id('tempdb..##shared') is null then 0 else 1 end"),
              "(1)\nid|a\n1|6\n(1)\n\n1\n(1)\n");
    EXPECT_EQ(other.Run("create table ##shared (id int)").substr(0, 12), "Msg 2714.16.");
    EXPECT_EQ(other.Run("select 1 as n into ##made"), "(1)\n");
    client.Leave();
    EXPECT_EQ(other.Run("select * from ##shared"), "Msg 208.16.1 L1: Invalid object name '##shared'.\n");
    EXPECT_EQ(other.Run("drop table ##made"), "");
}

TEST_F(Tables, ATemporaryTableOfAProcedureGoesWithItAndHidesItsCallers) {
    EXPECT_EQ(Run(R"(
create procedure inner_one as begin create table #t (j int) insert #t values (7) select j from #t end
GO
create procedure outer_one as
begin
    create table #t (i int)
    insert #t values (1)
    exec inner_one
    exec ('insert #t select i + 1 from #t create table #of_text (i int)')
    select i, object_id('tempdb..#of_text') id from #t
end
GO
set nocount on
exec outer_one
begin transaction
exec outer_one
rollback
select * from #t)"),
              R"(
j
7
i|id
1|NULL
2|NULL
j
7
i|id
1|NULL
2|NULL
Msg 208.16.1 L6: Invalid object name '#t'.
)");
}

TEST_F(Tables, ATemporaryTableOfACallThatEndedDoesNotComeBackByARollback) {
    EXPECT_EQ(Run(R"(
create procedure begins as begin create table #t (i int) begin transaction end
GO
set nocount on
exec begins
rollback
select object_id('tempdb..#t') t)"),
              R"(
Msg 266.16.2 begins L0: Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. Previous count = 0, current count = 1.
t
NULL
)");
}

} // namespace
} // namespace devsql::test

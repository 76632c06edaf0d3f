// Variables, control flow, messages, TRY and CATCH, cursors.
#include <chrono>

#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

using Control = TsqlTest;

TEST_F(Control, VariablesTakeTheirTypeAndAreCut) {
    EXPECT_EQ(Run(R"(
declare @a int, @b varchar(3), @c decimal(5,1), @d datetime
select @a, @b
set @b = 'abcdef'
select @a = 7, @c = 1.26, @d = '20240229'
select @a, @b, @c, @d
declare @e int = 5
set @e += 3
print @e)"),
              R"(
|
NULL|NULL
(1)
|||
7|abc|1.3|2024-02-29 00:00:00.000
(1)
> 8
)");
}

TEST_F(Control, SelectAssignsRowByRow) {
    EXPECT_EQ(Run(R"(
create table t (n int)
insert t values (1), (2), (3)
declare @all varchar(20), @last int
set @all = ''
select @all = @all + convert(varchar, n) + ',', @last = n from t order by n
print @all
print @last
select @last = n from t where n > 9
print @last
print @@rowcount)"),
              R"(
(3)
> 1,2,3,
> 3
> 3
> 0
)");
}

TEST_F(Control, IfWhileBreakContinueGotoReturn) {
    EXPECT_EQ(Run(R"(
declare @i int
set @i = 0
while @i < 9
begin
    set @i = @i + 1
    if @i = 2 continue
    if @i > 4 break
    print @i
end
if @i = 5 print 'five' else print 'other'
if exists (select * from sysobjects where 1 = 0) print 'no'
else if not exists (select * from sysobjects where 1 = 0) print 'none'
goto there
print 'skipped'
there:
print 'there'
return
print 'never')"),
              R"(
> 1
> 3
> 4
> five
> none
> there
)");
}

TEST_F(Control, CatchReadsTheErrorAndRethrowsIt) {
    EXPECT_EQ(Run(R"(
begin try
    print 'try'
    select 1 / 0 as x
    print 'not reached'
end try
begin catch
    select error_number() n, error_severity() s, error_state() t, error_line() l, error_message() m, error_procedure() p
    begin try raiserror('inner %d', 15, 3, 7) end try
    begin catch print error_message() end catch
    print error_number()
end catch
print isnull(error_message(), 'none')
begin try throw 50123, 'thrown', 9 end try begin catch throw end catch
print 'ended')"),
              R"(
> try
x
n|s|t|l|m|p
8134|16|1|4|Divide by zero error encountered.|NULL
(1)
> inner 7
> 8134
> none
Msg 50123.16.9 L14: thrown
)");
}

TEST_F(Control, AMissingNameIsCaughtOnlyByACaller) {
    EXPECT_EQ(Run(R"(
create procedure broken as select * from nosuch
GO
begin try select * from nosuch end try begin catch print 'wrong' end catch
GO
begin try exec broken end try begin catch print 'caught ' + error_message() end catch
GO
exec broken
print 'goes on')"),
              R"(
Msg 208.16.1 L1: Invalid object name 'nosuch'.
> caught Invalid object name 'nosuch'.
Msg 208.16.1 broken L2: Invalid object name 'nosuch'.
return -6
> goes on
)");
}

TEST_F(Control, RaiserrorFormatsAndSetsError) {
    EXPECT_EQ(Run(R"(
raiserror('%s has %d of %5d|%-5s|', 16, 2, 'Unit', 3, 4, 'x')
print @@error
raiserror('only told', 10, 1) with nowait
print @@error
raiserror(14262, 16, 1, '@name', 'value')
raiserror('too severe', 20, 1))"),
              R"(
Msg 50000.16.2 L2: Unit has 3 of     4|x    |
> 50000
> only told
> 0
Msg 14262.16.1 L6: The specified @name ('value') does not exist.
Msg 2754.16.1 L7: Error severity levels greater than 18 can only be specified by members of the sysadmin role, using the WITH LOG option.
)");
}

TEST_F(Control, CursorsFetchForwardAndScroll) {
    EXPECT_EQ(Run(R"(
create table t (id int, name varchar(5))
insert t values (1, 'a'), (2, 'b'), (3, 'c')
declare c cursor local static for select id, name from t order by id
declare @id int, @name varchar(5)
open c
fetch next from c into @id, @name
while @@fetch_status = 0
begin
    print convert(varchar, @id) + @name
    fetch c into @id, @name
end
fetch last from c into @id, @name print @id
fetch prior from c into @id, @name print @id
fetch first from c into @id, @name print @id
fetch absolute 2 from c into @id, @name print @id
fetch relative -1 from c
close c
fetch next from c
deallocate c
open c)"),
              R"(
(3)
> 1a
> 2b
> 3c
> 3
> 2
> 1
> 2
id|name
1|a
(1)
Msg 16917.16.1 L19: Cursor is not open.
Msg 16916.16.1 L21: A cursor with the name 'c' does not exist.
)");
}

TEST_F(Control, WhereCurrentOfChangesTheRowOfTheCursor) {
    EXPECT_EQ(Run(R"(
create table t (id int, n int)
insert t values (1, 0), (2, 0), (3, 0)
declare c cursor for select id from t for update of n
declare @id int
open c
fetch next from c into @id
fetch next from c into @id
update t set n = 5 where current of c
fetch next from c into @id
delete t where current of c
close c deallocate c
select * from t)"),
              R"(
(3)
(1)
(1)
id|n
1|0
2|5
(2)
)");
}

TEST_F(Control, AGlobalCursorOutlivesItsBatchAndALocalOneDoesNot) {
    EXPECT_EQ(Run(R"(
declare g cursor for select 1 as one
declare l cursor local for select 2 as two
GO
open g
fetch next from g
deallocate g
GO
open l)"),
              R"(
one
1
(1)
Msg 16916.16.1 L1: A cursor with the name 'l' does not exist.
)");
}

TEST_F(Control, SetOptionsAreKnownOrRefused) {
    EXPECT_EQ(Run("set nocount on\nselect 1\nset nocount off\nset ansi_warnings, arithabort on\nset "
                  "concat_null_yields_null on"),
              "\n\n1\n");
    const std::pair<const char*, int> cases[] = {{"set nosuchoption on", 195},
                                                 {"set showplan_text on", 40517},
                                                 {"set dateformat dym", 40517},
                                                 {"set language German", 40517}};
    for (const auto& [sql, number] : cases) {
        client.Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.at(0).number, number) << sql;
    }
}

TEST_F(Control, NoexecCompilesAndRunsNothing) {
    EXPECT_EQ(Run(R"(
set noexec on
GO
print 'silent'
select * from nosuch
GO
set noexec off
GO
print 'loud')"),
              "\n> loud\n");
}

TEST_F(Control, QuotedIdentifierDecidesWhatDoubleQuotesMean) {
    EXPECT_EQ(Run("set quoted_identifier off\nselect \"a text\"\nGO\nselect \"still\"\nGO\nset "
                  "quoted_identifier on\nGO\n"
                  "select \"a text\""),
              "\n\na text\n(1)\n\nstill\n(1)\nMsg 207.16.1 L1: Invalid column name 'a text'.\n");
}

TEST_F(Control, WaitforWaits) {
    const auto begin = std::chrono::steady_clock::now();
    Run("waitfor delay '00:00:00.120'");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(115));
}

} // namespace
} // namespace devsql::test

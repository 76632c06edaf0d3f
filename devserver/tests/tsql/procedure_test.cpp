// Procedures: parameters, results, dynamic SQL, calls from the client.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

using Procedure = TsqlTest;

RpcParameter Input(std::string name, const Type& type, Value value) {
    return {std::move(name), type, std::move(value), false, false};
}

constexpr Type kInt{TypeId::Int, 0, 0, 0};
constexpr Type kNText{TypeId::NVarChar, 4000, 0, 0};

TEST_F(Procedure, ParametersByPositionByNameWithDefaultsAndOutput) {
    EXPECT_EQ(Run(R"(
create procedure p @a int, @b varchar(10) = 'def', @c int = null output as
select @a as a, @b as b
set @c = @a * 2
return @a + 1
GO
declare @c int, @r int
exec @r = p 1
exec @r = p 2, 'x', @c output
select @r, @c
exec @r = p @c = @c output, @a = 5
select @r, @c
exec p 3, default)"),
              R"(
a|b
1|def
(1)
return 2
a|b
2|x
(1)
return 3
|
3|4
(1)
a|b
5|def
(1)
return 6
|
6|10
(1)
a|b
3|def
(1)
return 4
)");
}

TEST_F(Procedure, WrongArgumentsHaveTheirNumbersAndTheBatchGoesOn) {
    client.Run("create procedure p @a int as return 0\nGO\ncreate procedure q as return 0");
    const std::pair<const char*, int> cases[] = {{"exec p", 201},
                                                 {"exec p 1, 2", 8144},
                                                 {"exec p @b = 1", 8145},
                                                 {"exec q 1", 8146},
                                                 {"exec p @a = 1, @a = 2", 8143},
                                                 {"exec p @a = 1, 2", 119},
                                                 {"exec p 'x'", 8114},
                                                 {"declare @x int exec p @x output", 8162},
                                                 {"exec nosuch", 2812},
                                                 {"exec nosuch..p", 911}};
    for (const auto& [sql, number] : cases) {
        const std::string text = client.Run(std::string(sql) + "\nprint 'on'");
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.at(0).number, number) << sql << ": " << client.messages.at(0).text;
        if (number != 911) {
            EXPECT_TRUE(text.ends_with("> on\n")) << sql;
        }
    }
}

TEST_F(Procedure, ErrorsNameTheProcedureAndTheLineInIt) {
    EXPECT_EQ(Run(R"(create procedure p as

    select 1 / 0
GO
print 'x'
exec p)"),
              R"(
> x

Msg 8134.16.1 p L3: Divide by zero error encountered.
)");
}

TEST_F(Procedure, NamesAreFoundWhenItRuns) {
    EXPECT_EQ(Run(R"(
create procedure late as select * from comes_later
GO
exec late
GO
create table comes_later (a int)
insert comes_later values (1)
GO
exec late)"),
              R"(
Msg 208.16.1 late L2: Invalid object name 'comes_later'.
return -6
(1)
a
1
(1)
)");
}

TEST_F(Procedure, AlterDropAndCreateAgain) {
    EXPECT_EQ(Run(R"(
create procedure p as print 'one'
GO
alter procedure p @x int = 2 as print @x
GO
exec p
GO
create procedure p as print 'three'
GO
drop procedure p
GO
alter procedure p as print 'four'
GO
create procedure p as print 'five'
GO
p)"),
              R"(
> 2
Msg 2714.16.3 L1: There is already an object named 'p' in the database.
Msg 208.16.6 L1: Invalid object name 'p'.
> five
)");
}

TEST_F(Procedure, OptionsOfAProcedureEndWithIt) {
    EXPECT_EQ(Run(R"(
create procedure p as set nocount on select 1 as x
GO
exec p
select 2 as y)"),
              R"(
x
1
y
2
(1)
)");
}

TEST_F(Procedure, ATemporaryTableOfTheCallerIsSeen) {
    EXPECT_EQ(Run(R"(
create procedure p as insert #t values (5)
GO
create table #t (a int)
exec p
select * from #t)"),
              R"(
(1)
a
5
(1)
)");
}

TEST_F(Procedure, NestingEndsAtThirtyTwo) {
    Run("create procedure p as exec p\nGO\nexec p");
    ASSERT_EQ(client.messages.size(), 1U);
    EXPECT_EQ(client.messages.at(0).number, 217);
}

TEST_F(Procedure, ExecuteOfAStringHasItsOwnVariablesAndDatabase) {
    EXPECT_EQ(Run(R"(
declare @t varchar(20)
set @t = 'sysdatabases'
exec ('select count(*) from master..' + @t + ' where dbid = 1')
exec ('use master print db_name()')
print db_name()
exec ('print @t'))"),
              R"(

1
(1)
> master
> tempdb
Msg 137.15.2 L1: Must declare the scalar variable "@t".
)");
}

TEST_F(Procedure, SpExecutesqlTakesAndGivesParameters) {
    EXPECT_EQ(Run(R"(
declare @n int
exec sp_executesql N'select @b = @a * 2', N'@a int, @b int output', @a = 21, @b = @n output
print @n
exec sp_executesql N'select @x as x', N'@x varchar(5)', 'abc'
exec sp_executesql 'select 1')"),
              R"(
> 42
x
abc
(1)
Msg 214.16.2 sp_executesql L6: Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'.
return 1
)");
}

TEST_F(Procedure, ACallFromTheClientGivesStatusAndOutputParameters) {
    Run("create procedure p @a int, @b int output, @c nvarchar(10) = N'dé' as select @c as c set @b = @a + 1 "
        "return 3");
    RpcCall call;
    call.procedure = "dbo.p;1";
    call.parameters = {Input("@a", kInt, std::int64_t{4}), {"@b", kInt, {}, true, false}};
    EXPECT_EQ(client.Call(call), "c\ndé\n(1)\nreturn 3\n@b = 5\n");
}

TEST_F(Procedure, PreparedStatementsRunByHandle) {
    RpcCall prepare;
    prepare.procedure = "sp_prepare";
    prepare.parameters = {{"", kInt, {}, true, false},
                          Input("", kNText, std::string("@p int")),
                          Input("", kNText, std::string("select @p + 1 as n")),
                          Input("", kInt, std::int64_t{1})};
    EXPECT_EQ(client.Call(prepare), " = 1\n");
    RpcCall execute;
    execute.procedure = "sp_execute";
    execute.parameters = {Input("", kInt, std::int64_t{1}), Input("", kInt, std::int64_t{41})};
    EXPECT_EQ(client.Call(execute), "n\n42\n(1)\n");
    RpcCall unprepare;
    unprepare.procedure = "sp_unprepare";
    unprepare.parameters = {Input("", kInt, std::int64_t{1})};
    EXPECT_EQ(client.Call(unprepare), "");
    client.Call(execute);
    EXPECT_EQ(client.messages.at(0).number, 8179);
}

TEST_F(Procedure, SpPrepexecDoesBoth) {
    RpcCall call;
    call.procedure = "sp_prepexec";
    call.parameters = {{"", kInt, {}, true, false},
                       Input("", kNText, std::string("@p nvarchar(10)")),
                       Input("", kNText, std::string("select @p as t")),
                       Input("", kNText, std::string("x"))};
    EXPECT_EQ(client.Call(call), "t\nx\n(1)\n = 1\n");
}

TEST_F(Procedure, AnUnknownProcedureIsRefusedByNumber) {
    RpcCall call;
    call.procedure = "nosuch";
    client.Call(call);
    EXPECT_EQ(client.messages.at(0).number, 2812);
}

TEST_F(Procedure, SpHelptextGivesTheTextInPiecesOf255WithTheirLineEnds) {
    const std::string line = "-- " + std::string(300, 'x') + "\r\n";
    const std::string text = "create procedure p as\r\n" + line + "print 1";
    Client fresh = server.Login("tempdb");
    Transcript sink;
    fresh.session().ExecuteBatch(text, sink);
    Transcript help;
    fresh.session().ExecuteBatch("exec sp_helptext 'p'", help);
    const std::string expected = "Text\ncreate procedure p as\r\n\n" + line.substr(0, 255) + "\n" +
                                 line.substr(255) + "\nprint 1\n(4)\n";
    EXPECT_EQ(help.text, expected);
}

} // namespace
} // namespace devsql::test

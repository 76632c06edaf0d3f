// Scalar functions of users: where they may be called, which errors end them, and how the catalogue shows
// them.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class UserFunction : public TsqlTest {
  protected:
    UserFunction() {
        client.Run(R"(
create table rate (id int primary key, factor decimal(5, 2))
insert rate values (1, 1.19) insert rate values (2, 0.5)
GO
create function net (@amount money, @id int = 1) returns decimal(12, 3) as
begin
    declare @factor decimal(5, 2)
    select @factor = factor from rate where id = @id
    if @factor is null return -1
    return @amount * @factor
end
GO
create function dbo.factorial (@n int) returns bigint with schemabinding
begin
    declare @i int, @product bigint select @i = 1, @product = 1
    while @i < @n begin set @i = @i + 1 set @product = @product * @i end
    return @product
end
)");
    }
};

TEST_F(UserFunction, IsComputedForEachRowAndWhereverAValueIsAllowed) {
    EXPECT_EQ(Run(R"(
select id, dbo.net(10, id) net, dbo.factorial(id + 1) f from rate where dbo.net(100, id) > 1 order by dbo.net(1, id)
declare @v varchar(20) set @v = dbo.net($2, 9)
if dbo.factorial(5) = 120 print 'factorial: ' + @v
select dbo.net(null, 1) a, dbo.factorial('4') b, tempdb.dbo.factorial(dbo.factorial(3)) c
update rate set factor = dbo.net(factor, 2) where id = dbo.factorial(2)
select sum(dbo.factorial(id)) s, count(*) n from rate group by dbo.factorial(0 * id) having max(dbo.factorial(id)) = 2)"),
              R"(
id|net|f
2|5.000|6
1|11.900|2
(2)
> factorial: -1.000
a|b|c
NULL|24|720
(1)
(1)
s|n
3|2
(1)
)");
}

TEST_F(UserFunction, CanBeUsedInDefaultsChecksComputedColumnsAndViews) {
    EXPECT_EQ(Run(R"(
create table made (a int constraint ck_a check (dbo.factorial(a) < 100), b as dbo.factorial(a), c bigint default dbo.factorial(3))
GO
create view seen as select a, dbo.factorial(a) f from made
GO
insert made (a) values (4)
insert made (a) values (5)
use master
select m.a, m.b, m.c, s.f from tempdb..made m join tempdb..seen s on s.a = m.a)"),
              R"(
(1)
Msg 547.16.0 L2: The INSERT statement conflicted with the CHECK constraint "ck_a". The conflict occurred in database "tempdb", table "dbo.made", column 'a'.
> The statement has been terminated.
a|b|c|f
4|24|6|24
(1)
)");
}

TEST_F(UserFunction, AnErrorInItIsOneOfTheStatementThatCallsIt) {
    EXPECT_EQ(Run(R"(
create function broken (@n int) returns int begin set @n = 1 / @n return @n end
GO
create function endless (@n int) returns int begin return dbo.endless(@n) end
GO
select dbo.broken(id - 1) from rate
select 'next' n
begin try select dbo.broken(0) x end try begin catch select error_number() e end catch
select @@error e, @@rowcount r
select dbo.endless(1))"),
              R"(

Msg 8134.16.1 L1: Divide by zero error encountered.
n
next
(1)
x
e
8134
(1)
e|r
0|1
(1)

Msg 217.16.1 L5: Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).
)");
}

TEST_F(UserFunction, MayReturnWhateverAValueBeginsWith) {
    const std::pair<const char*, const char*> values[] = {{"left('abc', 1)", "a"},
                                                          {"right('abc', 1)", "c"},
                                                          {"nullif('a', 'b')", "a"},
                                                          {"dbo.net(2, 2)", "1.000"},
                                                          {"(select max(id) from rate)", "2"},
                                                          {"null", "NULL"},
                                                          {"case when 1 = 1 then 'x' end", "x"},
                                                          {"coalesce(null, 'y')", "y"},
                                                          {"-5", "-5"},
                                                          {"'text that is cut'", "text t"}};
    for (const auto& [value, text] : values) {
        client.Run("drop function if exists f\nGO\ncreate function f () returns varchar(6) begin return " +
                   std::string(value) + " end");
        EXPECT_EQ(Run("select dbo.f() v"), "\nv\n" + std::string(text) + "\n(1)\n") << value;
    }
}

TEST_F(UserFunction, ACallOfAnUnknownFunctionOrWithWrongArgumentsIsRefused) {
    EXPECT_EQ(
        Run("select dbo.nothing(1)"),
        "\nMsg 4121.16.1 L1: Cannot find either column \"dbo\" or the user-defined function or aggregate "
        "\"dbo.nothing\", or the name is ambiguous.\n");
    EXPECT_EQ(Run("select dbo.rate(1)").substr(0, 9), "\nMsg 4121");
    EXPECT_EQ(
        Run("select dbo.net(1)"),
        "\nMsg 313.16.2 L1: An insufficient number of arguments were supplied for the procedure or function "
        "dbo.net.\n");
    EXPECT_EQ(Run("select dbo.net(1, 2, 3)"),
              "\nMsg 8144.16.2 L1: Procedure or function dbo.net has too many arguments specified.\n");
    EXPECT_EQ(Run("select net(1, 2)"), "\nMsg 195.15.1 L1: 'net' is not a recognized function name.\n");
}

TEST_F(UserFunction, ABodyThatChangesOrSendsSomethingIsRefused) {
    const auto number = [&](const std::string& body) {
        client.Run("create function f (@n int) returns int as begin " + body + " end");
        return client.messages.empty() ? 0 : client.messages.at(0).number;
    };
    for (const char* body :
         {"insert rate values (1, 1) return 1", "if @n = 1 update rate set id = 1 return 1",
          "while 1 = 1 begin delete rate end return 1", "print 'x' return 1", "exec sp_who return 1",
          "begin try set @n = 1 end try begin catch end catch return 1", "create table x (a int) return 1",
          "set nocount on return 1"}) {
        EXPECT_EQ(number(body), 443) << body;
    }
    EXPECT_EQ(number("select * from rate return 1"), 444);
    EXPECT_EQ(number("if @n = 1 return 1"), 455);
    EXPECT_EQ(number("declare @t table (a int) return 1"), 40517);
    EXPECT_EQ(Run("create function t () returns table as return select 1 a").substr(0, 10), "\nMsg 40517");
    EXPECT_EQ(Run("select 1\ncreate function t () returns int begin return 1 end").substr(0, 8), "\nMsg 111");
    EXPECT_EQ(Run("create function t () returns int begin return 1 end select 1").substr(0, 8), "\nMsg 156");
    EXPECT_EQ(Run("select id from rate where 1 = 0"), "\nid\n(0)\n");
}

TEST_F(UserFunction, TheCatalogueListsIt) {
    EXPECT_EQ(Run(R"(
select name, xtype, objectproperty(id, 'IsScalarFunction') f from sysobjects where name = 'net'
select type, type_desc from sys.objects where name = 'net'
select parameter_id, name, type_name(user_type_id) type, is_output from sys.parameters where object_id = object_id('net')
order by parameter_id
select routine_type, data_type from information_schema.routines where routine_name = 'net'
select ordinal_position, parameter_mode, is_result, data_type from information_schema.parameters
where specific_name = 'factorial' order by 1
drop procedure net
GO
alter function net () returns int as begin return 7 end
GO
select dbo.net() n
create table net (a int)
GO
create function net () returns int begin return 1 end
GO
drop function net, dbo.factorial
drop function net
drop function if exists net
select count(*) n from syscolumns where id not in (select id from sysobjects))"),
              R"(
name|xtype|f
net|FN|1
(1)
type|type_desc
FN|SQL_SCALAR_FUNCTION
(1)
parameter_id|name|type|is_output
0||decimal|1
1|@amount|money|0
2|@id|int|0
(3)
routine_type|data_type
FUNCTION|decimal
(1)
ordinal_position|parameter_mode|is_result|data_type
0|OUT|YES|bigint
1|IN|NO|int
(2)
Msg 3705.16.1 L9: Cannot use DROP PROCEDURE with 'net' because 'net' is a function. Use DROP FUNCTION.
n
7
(1)
Msg 2714.16.6 L2: There is already an object named 'net' in the database.
Msg 2714.16.3 L1: There is already an object named 'net' in the database.
Msg 3701.11.5 L2: Cannot drop the function 'net', because it does not exist or you do not have permission.
n
0
(1)
)");
}

} // namespace
} // namespace devsql::test

// Common mistakes and their error numbers, and the statements that are refused by name.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Mistakes : public TsqlTest {
  protected:
    Mistakes() {
        client.Run(R"(
create table t (id int not null constraint pk_t primary key, name varchar(5) null, g uniqueidentifier null)
create table u (id int not null)
insert t values (1, 'a', null)
)");
    }

    void Expect(std::initializer_list<std::pair<const char*, int>> cases) {
        for (const auto& [sql, number] : cases) {
            client.Run(sql);
            ASSERT_FALSE(client.messages.empty()) << sql << ": no message, expected " << number;
            EXPECT_EQ(client.messages.at(0).number, number) << sql << ": " << client.messages.at(0).text;
        }
    }
};

TEST_F(Mistakes, OfSyntax) {
    Expect({{"select 1 from", 102},
            {"select * from t where", 102},
            {"select * form t", 102},
            {"select from t", 156},
            {"select id id2 id3 from t", 102},
            {"select 'abc", 105},
            {"select [abc", 105},
            {"/* never ends", 113},
            {"select * from t where id", 4145},
            {"if 1 print 'x'", 4145},
            {"begin end", 156},
            {"print @x", 137},
            {"declare @x int, @X int", 134},
            {"break", 135},
            {"continue", 136},
            {"select 1 create procedure p as print 1", 111},
            {"create nonsense x", 343}});
}

TEST_F(Mistakes, OfNames) {
    Expect({{"select * from nosuch", 208},
            {"select nosuch from t", 207},
            {"select x.id from t", 4104},
            {"select id from t, u", 209},
            {"select * from t, t", 1013},
            {"select * from t a, u a", 1011},
            {"insert nosuch values (1)", 208},
            {"insert t (nosuch) values (1)", 207},
            {"update t set nosuch = 1", 207},
            {"delete nosuch", 208},
            {"use nosuch", 911},
            {"select * from nosuch..t", 911},
            {"select * from server.db.dbo.t", 7202},
            {"exec nosuch", 2812},
            {"select nosuch(1)", 195},
            {"select @@nosuch", 137},
            {"drop table nosuch", 3701},
            {"exec sp_helptext nosuch", 15009},
            {"exec sp_help nosuch", 15009}});
}

TEST_F(Mistakes, OfTypesAndValues) {
    Expect({{"select convert(int, 'abc')", 245},
            {"select convert(datetime, 'abc')", 241},
            {"select convert(datetime, '20241301')", 242},
            {"select convert(uniqueidentifier, 'abc')", 8169},
            {"select convert(decimal(5,2), 'abc')", 8114},
            {"select convert(tinyint, 256)", 220},
            {"select 2147483647 + 1", 8115},
            {"select 1 / 0", 8134},
            {"select convert(int, g) from t", 529},
            {"select * from t where g = 1", 206},
            {"select left('a')", 174},
            {"select 1 union select 1, 2", 205},
            {"select 1 union select g from t", 206},
            {"insert t values (1)", 213},
            {"insert t (id) values (1, 2)", 110},
            {"insert t (id, name) values (1)", 109},
            {"insert t (id) select 1, 2", 121},
            {"insert t (id, name) select 1", 120},
            {"insert t (id, id) values (1, 1)", 264},
            {"insert t values (1, 'b', null)", 2627},
            {"insert t values (null, 'b', null)", 515},
            {"insert t values (2, 'too long', null)", 8152},
            {"select (select 1 union select 2)", 512},
            {"select * from t where id in (select id, name from t)", 116},
            {"select * from t where count(*) = 1", 147},
            {"select max(count(*)) from t", 130},
            {"select top 1 id, case when 1 = 1 then null else null end from t", 8133},
            {"create table x (a text, primary key (a))", 1919},
            {"declare @x text", 2739},
            {"return 5", 178},
            {"commit", 3902},
            {"rollback", 3903},
            {"create database master", 1801},
            {"drop database master", 3708},
            {"drop database nosuch", 3701},
            {"kill 9999", 6106}});
}

TEST_F(Mistakes, AFunctionTakesNoText) {
    Expect({{"select upper(cast('x' as text))", 8116},
            {"select len(cast(N'x' as ntext))", 8116},
            {"select replicate(cast('x' as text), 2)", 8116}});
    EXPECT_EQ(Run("select substring(cast('abc' as text), 2, 1) as part"), "\npart\nb\n(1)\n");
}

TEST_F(Mistakes, WhatIsNotSupportedIsRefusedByName) {
    Expect({{"create trigger x on t instead of insert as print 1", 40517},
            {"backup database master to disk = 'x'", 40510},
            {"restore database master from disk = 'x'", 40510},
            {"bulk insert t from 'x'", 40510},
            {"merge t using u on 1 = 1 when matched then delete", 40510},
            {"create rule r as @x > 1", 40510},
            {"exec sp_bindefault 'd', 't.id'", 40510},
            {"exec sp_depends 't'", 40510},
            {"exec sp_lock", 40510},
            {"exec sp_attach_single_file_db 'x', 'y'", 40510},
            {"exec sp_helplinkedsrvlogin", 40510},
            {"exec sp_password 'a', 'b'", 40510},
            {"exec sp_testlinkedserver x", 40510},
            {"exec sp_dboption", 40517},
            {"exec sp_dboption 'master', 'autoshrink'", 40517},
            {"exec sp_droparticle 'p', 'a'", 40510},
            {"exec sp_dropsubscriber 's'", 40510},
            {"exec sp_dropdistpublisher 'p'", 40510},
            {"exec sp_dropdistributiondb 'd'", 40510},
            {"exec sp_addlogreader_agent", 40510},
            {"exec sp_addpushsubscription_agent 'p'", 40510},
            {"exec sp_changedistributor_password 'p'", 40510},
            {"select rand(), sqrt(4), square(2), power(2, 3)", 40517},
            {"select formatmessage(50001)", 40517},
            {"select index_col('t', 1, 1)", 40517},
            {"select indexproperty(1, 'pk', 'IsUnique')", 40517},
            {"select objectproperty(object_id('t'), 'TableHasInsertTrigger')", 40517},
            {"select @@cursor_rows", 137},
            {"select hashbytes('md5', 'x')", 40517},
            {"select checksum(newid())", 40517},
            {"select binary_checksum(*) from sysobjects", 40517},
            {"select checksum_agg(id) from sysobjects", 40517},
            {"select soundex('Smith')", 40517},
            {"select difference('Smith', 'Smythe')", 40517},
            {"select stdev(id), varp(id) from sysobjects", 40517},
            {"select sin(0), log10(10), pi()", 40517},
            {"select parsename('a.b', 1)", 40517},
            {"select sessionproperty('ANSI_NULLS')", 40517},
            {"select cursor_status('global', 'c')", 40517},
            {"select convert(varbinary(30), 1.5)", 529},
            {"select convert(money, 0x01)", 529},
            {"exec sp_helppublication", 40510},
            {"exec sp_helparticle", 40510},
            {"exec sp_helpsubscription", 40510},
            {"exec sp_helpdistributor", 40510},
            {"exec sp_get_distributor", 40510},
            {"exec sp_removedbreplication", 40510},
            {"select len(*) from sysobjects", 102},
            {"dbcc useroptions", 40517},
            {"set dateformat ydm", 40517},
            {"select * from openquery(x, 'y')", 40517},
            {"select * from t for xml auto", 40517},
            {"select * from t cross apply u", 40517},
            {"create function f () returns table as return select 1 a", 40517},
            {"alter database tempdb set read_only", 40517},
            {"begin distributed transaction", 40517},
            {"declare @x xml", 2715},
            {"declare @x time", 2715},
            {"select * from t with (nosuchhint)", 321}});
}

TEST_F(Mistakes, OfDefinitionsAndOptions) {
    std::string columns = "create table w (c0 int";
    for (int i = 1; i <= 1024; ++i) {
        columns += ", c" + std::to_string(i) + " int";
    }
    columns += ")";
    Expect({{columns.c_str(), 1702},
            {"create view v as select id, id from t", 4506},
            {"select * from (select id, id from t) x", 8156},
            {"with x as (select id, id from t) select * from x", 8156},
            {"select * from t, u where t.id *= u.id", 4147},
            {"select * from t, u where t.id =* u.id", 4147},
            {"select id, count(*) from t", 8120},
            {"truncate table nosuch", 4701},
            {"set identity_insert nosuch on", 1088},
            {"set datefirst 8", 2742},
            {"set dateformat xyz", 2741},
            {"alter table t enable trigger nosuch", 4920},
            {"dbcc nosuch", 2526},
            {"select 1 option (maxrecursion 32768)", 310},
            {"exec sp_who 'nobody'", 15007},
            {"exec sp_dbcmptlevel 'tempdb', 5", 15048}});
}

TEST_F(Mistakes, OfArgumentsAreReportedInTheNameOfTheProcedure) {
    client.Run("create procedure p @a int as print @a\nGO\ncreate procedure none as print 1");
    EXPECT_EQ(Run("print ''\nexec p"), "\n>  \nMsg 201.16.4 p L0: Procedure or function 'p' expects "
                                       "parameter '@a', which was not supplied.\n");
    EXPECT_EQ(Run("exec p 'abc'"), "\nMsg 8114.16.5 p L0: Error converting data type varchar to int.\n");
    EXPECT_EQ(Run("exec p 1, 2"),
              "\nMsg 8144.16.2 p L0: Procedure or function p has too many arguments specified.\n");
    EXPECT_EQ(Run("exec p @b = 1"), "\nMsg 8145.16.2 p L0: @b is not a parameter for procedure p.\n");
    EXPECT_EQ(Run("exec none 1").substr(0, 24), "\nMsg 8146.16.2 none L0: ");
    EXPECT_EQ(Run("begin try exec p end try begin catch print error_procedure() end catch"), "\n> p\n");
}

TEST_F(Mistakes, OfStatementsThatExceedALimitAreErrors) {
    Expect({{"declare @s varchar(max) set @s = replicate(cast('x' as varchar(max)), 100000)\n"
             "print len(replace(@s, 'x', @s))",
             7119},
            {"with x as (select 1 n union all select n + 1 from x) select count(*) from x", 530}});
}

TEST_F(Mistakes, OfSyntaxAreReportedBeforeAnythingRuns) {
    EXPECT_EQ(Run("print 'first'\nselect * form t"), "\nMsg 102.15.1 L2: Incorrect syntax near 'form'.\n");
}

TEST_F(Mistakes, NameTheirLine) {
    EXPECT_EQ(Run("print 'a'\n\nselect *\nfrom nosuch"),
              "\n> a\nMsg 208.16.1 L3: Invalid object name 'nosuch'.\n");
}

TEST_F(Mistakes, TheBatchEndsWhereSqlServerEndsIt) {
    EXPECT_EQ(
        Run("insert t values (1, '', null) print 'goes on'"),
        "\nMsg 2627.14.1 L1: Violation of PRIMARY KEY constraint 'pk_t'. Cannot insert duplicate "
        "key in "
        "object 'dbo.t'. The duplicate key value is (1).\n> The statement has been terminated.\n> goes on\n");
    EXPECT_EQ(Run("select * from nosuch print 'not'"), "\nMsg 208.16.1 L1: Invalid object name 'nosuch'.\n");
    EXPECT_EQ(Run("exec nosuch print 'goes on'").substr(0, 4), "\nMsg");
}

TEST_F(Mistakes, TextsNestedTooDeeplyEndInAnError) {
    constexpr std::size_t kDeep = 400; // The parser stops at 250.
    client.Run("select " + std::string(kDeep, '(') + "1" + std::string(kDeep, ')'));
    EXPECT_EQ(client.messages.at(0).number, 191);
    std::string blocks;
    for (std::size_t i = 0; i < kDeep; ++i) {
        blocks += "begin ";
    }
    client.Run(blocks);
    EXPECT_EQ(client.messages.at(0).number, 191);
}

/// A chain of one operator is as deep as it is long, in the parser's tree and in SQLite's.
TEST_F(Mistakes, TextsLongerThanTheyMayBeEndInAnError) {
    constexpr int kLong = 20000;
    for (const auto& [begin, link] :
         {std::pair("select 1", " + 1"), std::pair("select 1 where 1 = 0", " or 1 = 0"),
          std::pair("select 1", " union all select 1")}) {
        std::string chain = begin;
        for (int i = 0; i < kLong; ++i) {
            chain += link;
        }
        client.Run(chain);
        ASSERT_FALSE(client.messages.empty()) << begin << link;
        EXPECT_TRUE(client.messages[0].number == 191 || client.messages[0].number == 8623)
            << link << ": " << client.messages[0].number;
    }
    client.Run("print 'alive'");
    EXPECT_EQ(client.messages.at(0).text, "alive");
}

TEST_F(Mistakes, RaisedWithASeverityAbove18RequireWithLog) {
    EXPECT_EQ(Run("raiserror('x', 19, 1)").substr(0, 10), "\nMsg 2754.");
    EXPECT_EQ(Run("raiserror('severe', 19, 3) with log, nowait\nprint 'goes on'"),
              "\nMsg 50000.19.3 L1: severe\n> goes on\n");
    EXPECT_EQ(Run("raiserror 50001 'as of old'"), "\nMsg 50001.16.1 L1: as of old\n");
    EXPECT_EQ(Run("raiserror('quiet', 10, 1)"), "\n> quiet\n");
    EXPECT_EQ(client.messages[0].severity, 0);
}

TEST_F(Mistakes, OfSeverity20EndTheConnectionAndItsTransaction) {
    Client other = server.Login("tempdb");
    EXPECT_EQ(Run("begin tran\ninsert u values (1)\nbegin try raiserror('over', 20, 1) with log end try\n"
                  "begin catch print 'not caught' end catch\nprint 'not reached'"),
              "\n(1)\nMsg 50000.20.1 L3: over\n");
    EXPECT_TRUE(client.session().Ended());
    EXPECT_EQ(other.Run("set lock_timeout 0\nselect count(*) from u\ninsert u values (2)"),
              "\n0\n(1)\n(1)\n");
}

TEST_F(Mistakes, InMessagesByNumberAreReportedAndUsersMessagesAreFormatted) {
    EXPECT_EQ(Run(R"(
exec sp_addmessage 50010, 16, N'%s has %d'
raiserror (50010, -1, 2, 'it', 5)
exec sp_dropmessage 50010
raiserror (50010, 16, 1)
goto nowhere)"),
              R"(
Msg 50010.16.2 L3: it has 5
Msg 18054.16.1 L5: Error 50010, severity 16, state 1 was raised, but no message with that error number was found in sys.messages.
Msg 133.15.1 L6: A GOTO statement references the label 'nowhere' but the label has not been declared.
)");
}

} // namespace
} // namespace devsql::test

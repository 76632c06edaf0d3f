// Features that administrative scripts and scripts for SQL Server 2000 use: messages by number, properties,
// ties, settings of dates and NULL, procedures that list sessions.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class OldScripts : public TsqlTest {
  protected:
    OldScripts() {
        client.Run(R"(
create database Shop
GO
use Shop
create table t (id int identity constraint pk_t primary key, a varchar(5) null, b int)
create unique index ux on t (b desc, a)
insert t (a, b) values ('x', 1), ('y', 1), ('z', 2), (null, 3)
set nocount on)");
    }
};

TEST_F(OldScripts, FindMessagesByNumber) {
    EXPECT_EQ(Run(R"(
exec sp_addmessage 50001, 16, 'Hello %s'
raiserror(50001, 0, 1, 'you')
select error, severity, description from master.dbo.sysmessages where error in (208, 50001) order by error
exec sp_dropmessage 50001
select count(*) from sys.messages where message_id in (102, 208, 50001))"),
              R"(
> Hello you
error|severity|description
208|16|Invalid object name '%ls'.
50001|16|Hello %s

2
)");
}

TEST_F(OldScripts, LimitTheDepthOfARecursion) {
    EXPECT_EQ(Run(R"(
with x as (select 1 as n union all select n + 1 from x where n < 101) select max(n) from x
GO
with x as (select 1 as n union all select n + 1 from x where n < 102) select max(n) from x
GO
with x as (select 1 as n union all select n + 1 from x where n < 150) select max(n) from x option (maxrecursion 0))"),
              R"(

101

Msg 530.16.1 L1: The statement terminated. The maximum recursion 100 has been exhausted before statement completion.

150
)");
}

TEST_F(OldScripts, SetWhetherNullEqualsNull) {
    EXPECT_EQ(Run(R"(
declare @v int
set ansi_nulls off
select count(*) from t where a = null
select count(*) from t where a <> null
select count(*) from t where b = @v
select count(*) from t x join t y on x.a = y.a
set ansi_nulls on
select count(*) from t where a = null
set concat_null_yields_null off
select a + '!' from t where b > 1 order by id
set concat_null_yields_null on
select null + 'x')"),
              R"(

1

3

0

3

0

z!
!

NULL
)");
}

TEST_F(OldScripts, SetHowDatesAreReadAndWeeksCounted) {
    EXPECT_EQ(Run(R"(
set dateformat dmy
select cast('31/12/2001' as datetime), convert(datetime, '12/31/2001', 101)
exec('set dateformat ymd select cast(''01/12/31'' as datetime)')
select cast('1/2/2001' as datetime)
set datefirst 1
select @@datefirst, datepart(dw, '20240101'), datepart(week, '20240107'), datepart(iso_week, '20240101'))"),
              R"(
|
2001-12-31 00:00:00.000|2001-12-31 00:00:00.000

2001-12-31 00:00:00.000

2001-02-01 00:00:00.000
|||
1|1|1|1
)");
    EXPECT_EQ(server.Login("tempdb").Run("select datepart(dw, '20240101'), cast('1/2/2001' as datetime)"),
              "|\n2|2001-01-02 00:00:00.000\n(1)\n");
}

TEST_F(OldScripts, ListSessionsAndTheCompatibilityLevel) {
    Client other = server.Login("master");
    EXPECT_EQ(
        Run("create table #who (spid int, ecid int, status nchar(30), loginame sysname, hostname nchar(128), "
            "blk char(5), dbname sysname, cmd nchar(16))\n"
            "insert #who exec sp_who 'sa'\nselect count(*) from #who\n"
            "delete #who\ninsert #who exec sp_who 'active'\nselect dbname from #who\n"
            "exec sp_dbcmptlevel 'Shop', 90\nexec sp_dbcmptlevel 'Shop'"),
        "\n\n2\ndbname\nShop\n> The current compatibility level is 140.\n");
}

TEST_F(OldScripts, RunMaintenanceStatementsWithoutEffect) {
    EXPECT_EQ(Run(R"(
dbcc checkdb
dbcc traceon (3604) with no_infomsgs
create statistics s on t (a) with fullscan
update statistics t ux with sample 50 percent, norecompute
drop statistics t.s
alter index all on t rebuild with (fillfactor = 80)
alter table t disable trigger all
exec sp_tableoption 't', 'text in row', 'off'
exec sp_autostats 't', 'off'
print 'done')"),
              R"(
> DBCC execution completed. If DBCC printed error messages, contact your system administrator.
> done
)");
    EXPECT_EQ(Run("throw 50001, 'first of its batch', 3"), "\nMsg 50001.16.3 L1: first of its batch\n");
}

} // namespace
} // namespace devsql::test

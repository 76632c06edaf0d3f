// The package store of msdb and its tables of jobs.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Msdb : public TsqlTest {
  protected:
    Msdb() {
        client.Run(R"(
exec msdb.dbo.sp_add_dtspackage 'one', '11111111-0000-0000-0000-000000000000', '11111111-0000-0000-0000-000000000001',
    'first', null, 'sa', 0x0102, 0
waitfor delay '00:00:00.010'
exec msdb..sp_add_dtspackage 'one', '11111111-0000-0000-0000-000000000000', '11111111-0000-0000-0000-000000000002',
    'second', null, 'sa', 0x010203
exec msdb..sp_add_dtspackage 'two', '22222222-0000-0000-0000-000000000000', '22222222-0000-0000-0000-000000000001',
    null, null, null, null
)");
    }
};

constexpr const char* kList =
    "create table #p (name sysname, id uniqueidentifier, versionid uniqueidentifier, description "
    "nvarchar(255), createdate datetime, owner sysname, size int, packagedata image, isowner int, "
    "packagetype int)\ninsert #p exec msdb.dbo.sp_enum_dtspackages ";
constexpr const char* kShow =
    "\nselect name, right(convert(varchar(36), versionid), 1) v, description, owner, size, "
    "packagedata, isowner, packagetype from #p\ndrop table #p";

TEST_F(Msdb, EveryVersionIsListedTheNewestFirst) {
    EXPECT_EQ(Run(kList + std::string() + kShow), R"(
(3)
name|v|description|owner|size|packagedata|isowner|packagetype
one|2|second|sa|3|0x010203|1|0
one|1|first|sa|2|0x0102|1|0
two|1|NULL|sa|NULL|NULL|1|0
(3)
)");
}

TEST_F(Msdb, FlagOneListsTheLatestAndFiltersNarrow) {
    EXPECT_EQ(Run(kList + std::string("'o%', '%', null, 1") + kShow), R"(
(1)
name|v|description|owner|size|packagedata|isowner|packagetype
one|2|second|sa|3|0x010203|1|0
(1)
)");
}

TEST_F(Msdb, ARemovalByNameRemovesTheMostRecentVersion) {
    EXPECT_EQ(
        Run("exec msdb..sp_drop_dtspackage 'one', null, null\n" + (kList + std::string("'one'") + kShow)), R"(
(1)
name|v|description|owner|size|packagedata|isowner|packagetype
one|1|first|sa|2|0x0102|1|0
(1)
)");
}

TEST_F(Msdb, AMissingPackageIsError14262) {
    EXPECT_EQ(Run("exec msdb..sp_drop_dtspackage 'nosuch', null, null"),
              "\nMsg 14262.16.1 sp_drop_dtspackage L19: The specified DTS Package ('nosuch') does not "
              "exist.\nreturn 1\n");
    client.Run("exec msdb..sp_get_dtspackage 'nosuch', null, null");
    EXPECT_EQ(client.messages.at(0).number, 14262);
}

TEST_F(Msdb, AVersionIsNotStoredTwice) {
    client.Run("exec msdb.dbo.sp_add_dtspackage 'one', '11111111-0000-0000-0000-000000000000', "
               "'11111111-0000-0000-0000-000000000001', '', null, 'sa', 0x01");
    EXPECT_EQ(client.messages.at(0).number, 14590);
}

TEST_F(Msdb, TheReplicationJobsAreAskedForAsTheConsoleDoes) {
    const std::string question = "select [job_id] from msdb.dbo.sysjobs where category_id = (select "
                                 "category_id From msdb.dbo.syscategories Where "
                                 "(category_class = 1) AND ([name] = 'REPL-Distribution'))";
    EXPECT_EQ(Run(question), "\njob_id\n(0)\n");
    EXPECT_EQ(Run("exec msdb..sp_add_job @job_name = 'a job', @category_name = 'REPL-Distribution'"), "\n");
    client.Run(question);
    EXPECT_EQ(client.last_row.size(), 1U);
    EXPECT_EQ(Run("exec msdb..sp_delete_job @job_name = 'a job'\n" + question), "\njob_id\n(0)\n");
}

} // namespace
} // namespace devsql::test

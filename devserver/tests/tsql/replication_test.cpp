// The procedures of replication: what they store, the jobs that they make and remove, and what they refuse.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

constexpr const char* kJobs =
    "select j.name, c.name category, c.category_id, j.enabled from msdb.dbo.sysjobs j join "
    "msdb.dbo.syscategories c on c.category_id = j.category_id order by j.name";

class Replication : public TsqlTest {
  protected:
    Replication() {
        client.Run(R"(
create database Batch
GO
use Batch
create table Lots (id int primary key, name varchar(20))
create table Units (id int primary key)
create table Loose (id int)
)");
    }
    /// The server as its own distributor, Batch published to the server OTHER.
    void Publish() {
        EXPECT_EQ(Run(R"(
exec master.dbo.sp_adddistributor @distributor = @@servername, @password = N'x'
exec master.dbo.sp_adddistributiondb @database = N'distribution'
exec master.dbo.sp_adddistpublisher @publisher = N'TESTSERVER\KV_BATCH', @distribution_db = N'distribution',
    @working_directory = N'\\host\share'
exec sp_addsubscriber @subscriber = N'OTHER', @login = N'sa', @password = N'secret', @security_mode = 0
exec sp_replicationdboption @dbname = N'Batch', @optname = N'publish', @value = N'true'
exec sp_addpublication @publication = N'pub', @description = N'Lots', @repl_freq = N'continuous', @status = N'active'
exec sp_addpublication_snapshot @publication = N'pub'
exec sp_addarticle @publication = N'pub', @article = N'Lots', @source_owner = N'dbo', @source_object = N'Lots'
exec sp_addarticle @publication = N'pub', @article = N'Units', @source_owner = N'dbo', @source_object = N'Units'
)"),
                  "\n");
    }
};

TEST_F(Replication, ASubscriptionMakesTheDistributionAgentsJobAndItsEndRemovesIt) {
    Publish();
    EXPECT_EQ(Run("exec sp_addsubscription @publication = N'pub', @article = N'all', @subscriber = N'OTHER', "
                  "@destination_db = N'Batch', @sync_type = N'automatic', @subscription_type = N'push'\n" +
                  std::string(kJobs)),
              R"(
name|category|category_id|enabled
Agent history clean up: distribution|REPL-History Cleanup|12|1
Distribution clean up: distribution|REPL-Distribution Cleanup|11|1
TESTSERVER\KV_BATCH-Batch|REPL-LogReader|13|1
TESTSERVER\KV_BATCH-Batch-pub|REPL-Snapshot|15|1
TESTSERVER\KV_BATCH-Batch-pub-OTHER|REPL-Distribution|10|1
(5)
)");
    EXPECT_EQ(Run("exec sp_dropsubscription @publication = N'pub', @article = N'all', @subscriber = N'all'\n"
                  "exec sp_droppublication @publication = N'pub'\n"
                  "exec sp_replicationdboption N'Batch', N'publish', N'false'\n" +
                  std::string(kJobs)),
              R"(
name|category|category_id|enabled
Agent history clean up: distribution|REPL-History Cleanup|12|1
Distribution clean up: distribution|REPL-Distribution Cleanup|11|1
(2)
)");
}

TEST_F(Replication, TheTablesListWhatIsPublishedToWhom) {
    Publish();
    client.Run("exec sp_addsubscription N'pub', N'Lots', N'OTHER', N'Copy'");
    EXPECT_EQ(Run("select p.name, p.description, p.status, p.repl_freq, a.name, object_name(a.objid), "
                  "a.dest_table, "
                  "v.srvname, s.dest_db, s.subscription_type from syspublications p join sysarticles a on "
                  "a.pubid = "
                  "p.pubid left join syssubscriptions s on s.artid = a.artid left join master..sysservers v "
                  "on v.srvid "
                  "= s.srvid order by a.name\n"
                  "select databasepropertyex('Batch', 'IsPublished'), category & 1 from master..sysdatabases "
                  "where name "
                  "= 'Batch'\n"
                  "select srvname, pub, sub, dist from master..sysservers order by srvname"),
              R"(
name|description|status|repl_freq|name||dest_table|srvname|dest_db|subscription_type
pub|Lots|1|0|Lots|Lots|Lots|OTHER|Copy|0
pub|Lots|1|0|Units|Units|Units|NULL|NULL|NULL
(2)
|
1|1
(1)
srvname|pub|sub|dist
OTHER|0|1|0
repl_distributor|0|0|1
TESTSERVER\KV_BATCH|1|0|0
(3)
)");
}

TEST_F(Replication, ObjectsInUseAreNotDropped) {
    Publish();
    client.Run("exec sp_addsubscription N'pub', N'all', N'OTHER', N'Copy'");
    const std::pair<const char*, int> refused[] = {
        {"exec sp_droppublication N'pub'", 14005},
        {"exec sp_dropdistributor", 14121},
        {"exec sp_dropserver N'OTHER', 'droplogins'", 20584},
        {"use master\ndrop database Batch", 3724},
        {"use master\nexec sp_detach_db 'Batch'", 3724},
    };
    for (const auto& [statement, number] : refused) {
        client.Run(statement);
        ASSERT_FALSE(client.messages.empty()) << statement;
        EXPECT_EQ(client.messages[0].number, number) << statement;
    }
}

TEST_F(Replication, MistakesAreReportedByTheirNumbers) {
    const auto number = [&](const std::string& statement) {
        client.Run(statement);
        return client.messages.empty() ? 0 : client.messages[0].number;
    };
    EXPECT_EQ(number("exec sp_addpublication N'p'"), 14013);
    EXPECT_EQ(number("exec sp_dropsubscription N'p', N'all', N'all'"), 14013);
    EXPECT_EQ(number("exec sp_replicationdboption N'Batch', N'publish', N'true'"), 20028);
    EXPECT_EQ(number("exec sp_adddistributiondb N'distribution'"), 14071);
    EXPECT_EQ(number("exec sp_dropdistributor"), 14114);
    Publish();
    EXPECT_EQ(number("exec sp_adddistributor N'X'"), 14099);
    EXPECT_EQ(number("exec sp_adddistributiondb N'distribution'"), 14119);
    EXPECT_EQ(number("exec sp_adddistpublisher N'X', N'master'"), 14117);
    EXPECT_EQ(number("exec sp_addpublication N'pub', @status = N'active'"), 14016);
    EXPECT_EQ(number("exec sp_addpublication N'all'"), 14034);
    EXPECT_EQ(number("exec sp_addarticle N'nosuch', N'Lots', @source_object = N'Lots'"), 20026);
    EXPECT_EQ(number("exec sp_addarticle N'pub', N'Lots', @source_object = N'Lots'"), 14030);
    EXPECT_EQ(number("exec sp_addarticle N'pub', N'x', @source_object = N'x'"), 14027);
    EXPECT_EQ(number("exec sp_addarticle N'pub', N'Loose', @source_object = N'Loose'"), 14088);
    EXPECT_EQ(number("exec sp_addsubscription N'pub', N'all', N'STRANGER'"), 14010);
    EXPECT_EQ(number("exec sp_addsubscription N'pub', N'x', N'OTHER'"), 20027);
    EXPECT_EQ(number("exec sp_addsubscription N'pub', N'all', N'OTHER'"), 0);
    EXPECT_EQ(number("exec sp_addsubscription N'pub', N'all', N'OTHER'"), 14058);
    EXPECT_EQ(number("exec sp_dropsubscription N'pub', N'all', N'STRANGER'"), 14055);
    EXPECT_EQ(number("exec sp_addsubscriber N'OTHER'"), 14040);
    EXPECT_EQ(number("exec sp_replicationdboption N'Batch', N'merge publish', N'true'"), 40517);
    EXPECT_EQ(number("exec sp_replicationdboption N'nosuch', N'publish', N'true'"), 15010);
}

TEST_F(Replication, TheDistributorIsDroppedWithAllItsPublicationsIfForced) {
    Publish();
    client.Run("exec sp_addsubscription N'pub', N'all', N'OTHER', N'Copy'");
    EXPECT_EQ(Run("use master\nexec sp_dropdistributor @no_checks = 1\n" + std::string(kJobs) +
                  "\nselect srvname from sysservers order by srvname\nselect db_id('distribution')"),
              R"(
name|category|category_id|enabled
(0)
srvname
OTHER
TESTSERVER\KV_BATCH
(2)

NULL
(1)
)");
}

TEST_F(Replication, ItOutlivesARestart) {
    Publish();
    client.Run("exec sp_addsubscription N'pub', N'all', N'OTHER', N'Copy'");
    client.Leave();
    server.Start();
    client = server.Login("Batch");
    EXPECT_EQ(Run("select v.srvname, a.name, s.dest_db from syssubscriptions s join sysarticles a on a.artid "
                  "= s.artid "
                  "join master.dbo.sysservers v on v.srvid = s.srvid order by a.name"),
              R"(
srvname|name|dest_db
OTHER|Lots|Copy
OTHER|Units|Copy
(2)
)");
}

} // namespace
} // namespace devsql::test

// Databases as files: creating, listing, renaming, detaching, copying, attaching, dropping them, and use by a
// single user.
#include <fstream>
#include <thread>

#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Database : public TsqlTest {
  protected:
    Database() {
        client = server.Login("master");
        Make("Batch", "Batch_data", "Batch_log");
    }

    void Make(const std::string& name, const std::string& data, const std::string& log) {
        client.Run("create database [" + name + "] on primary (name = N'" + data + "', filename = N'D:\\" +
                   data + ".mdf', size = 20MB, maxsize = unlimited, filegrowth = 10%) log on (name = N'" +
                   log + "', filename = N'D:\\" + log +
                   ".ldf', size = 10MB, filegrowth = 5MB) collate Latin1_General_CI_AS");
    }
    std::filesystem::path Drive(const std::string& file) const {
        return server.folder.path() / "drive" / file;
    }
};

TEST_F(Database, LiesInTheFilesThatTheStatementNames) {
    EXPECT_TRUE(std::filesystem::exists(Drive("Batch_data.mdf")));
    EXPECT_GT(std::filesystem::file_size(Drive("Batch_log.ldf")), 0U);
    EXPECT_EQ(Run("use Batch exec sp_helpfile"), R"(
name|fileid|filename|filegroup|size|maxsize|growth|usage
Batch_data|1|D:\Batch_data.mdf|PRIMARY|20480 KB|Unlimited|10%|data only
Batch_log|2|D:\Batch_log.ldf|NULL|10240 KB|Unlimited|5120 KB|log only
(2)
)");
}

TEST_F(Database, WithoutFilesLiesBelowTheRoot) {
    client.Run("create database Plain");
    EXPECT_TRUE(std::filesystem::exists(server.folder.path() / "root" / "Plain.mdf"));
    EXPECT_TRUE(std::filesystem::exists(server.folder.path() / "root" / "Plain_log.ldf"));
}

TEST_F(Database, FoldersAndDrivesThatAreNotThereAreRefused) {
    EXPECT_EQ(Run(R"(create database X on (name = x, filename = 'E:\x.mdf'))"),
              "\nMsg 5133.16.1 L1: Directory lookup for the file \"E:\\x.mdf\" failed with the operating "
              "system error "
              "2(The system cannot find the file specified.).\nMsg 1802.16.4 L1: CREATE DATABASE failed. "
              "Some file names "
              "listed could not be created. Check related errors.\n");
    client.Run(R"(create database X on (name = x, filename = 'D:\nosuch\x.mdf'))");
    EXPECT_EQ(client.messages.at(0).number, 5133);
    client.Run(R"(create database X on (name = x, filename = 'D:\Batch_data.mdf'))");
    EXPECT_EQ(client.messages.at(0).number, 5170);
    EXPECT_EQ(Run("select count(*) from sysdatabases where name = 'X'"), "\n\n0\n(1)\n");
}

TEST_F(Database, SpHelpdbListsAllByName) {
    client.Run("exec sp_helpdb");
    EXPECT_EQ(Run("select name, dbid from sysdatabases order by dbid"), R"(
name|dbid
master|1
tempdb|2
model|3
msdb|4
Batch|5
(5)
)");
    EXPECT_EQ(Run("exec sp_helpdb nosuch").substr(0, 14), "\nMsg 15010.16.");
}

TEST_F(Database, IsRenamedDetachedMovedAndAttachedElsewhere) {
    client.Run("use Batch\ncreate table t (id int identity primary key, name nvarchar(20))\ninsert t values "
               "(N'äöü€')\nGO\n"
               "create procedure p as select name from t\nGO\nuse master");
    EXPECT_EQ(Run(R"(
ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE
ALTER DATABASE [Batch] SET MULTI_USER
ALTER DATABASE Batch MODIFY NAME = Old
ALTER DATABASE Old MODIFY FILE (NAME=Batch_data, NEWNAME=Old_data)
ALTER DATABASE Old MODIFY FILE (NAME=Batch_log, NEWNAME=Old_log)
exec sp_detach_db N'Old', N'true')"),
              R"(
> The database name 'Old' has been set.
> The file name 'Old_data' has been set.
> The file name 'Old_log' has been set.
)");
    EXPECT_FALSE(std::filesystem::exists(Drive("Batch_data.mdf-wal")));
    std::filesystem::copy_file(Drive("Batch_data.mdf"), Drive("Old_data.mdf"));
    std::filesystem::copy_file(Drive("Batch_log.ldf"), Drive("Old_log.ldf"));
    std::filesystem::remove(Drive("Batch_data.mdf"));
    std::filesystem::remove(Drive("Batch_log.ldf"));
    EXPECT_EQ(Run(R"(
exec sp_attach_db N'Old', N'D:\Old_data.mdf', N'D:\Old_log.ldf'
exec Old..p
insert Old..t values (N'two')
select id from Old.dbo.t)"),
              R"(
name
äöü€
(1)
(1)
id
1
2
(2)
)");
}

TEST_F(Database, CannotBeDroppedOrDetachedWhileAnotherSessionUsesIt) {
    Client other = server.Login("Batch");
    EXPECT_EQ(Run("drop database Batch"),
              "\nMsg 3702.16.1 L1: Cannot drop database \"Batch\" because it is currently in use.\n");
    EXPECT_EQ(Run("exec sp_detach_db 'Batch'"), "\nMsg 3703.16.1 sp_detach_db L1: Cannot detach the database "
                                                "'Batch' because it is currently in use.\nreturn 1\n");
    other.Run("use master");
    EXPECT_EQ(Run("drop database Batch"), "\n");
    EXPECT_FALSE(std::filesystem::exists(Drive("Batch_data.mdf")));
    EXPECT_FALSE(std::filesystem::exists(Drive("Batch_log.ldf")));
}

TEST_F(Database, SingleUserWithRollbackImmediateEndsOtherSessions) {
    client.Run("use Batch create table t (a int) use master");
    Client idle = server.Login("Batch");
    Client busy = server.Login("Batch");
    idle.Run("begin tran insert t values (1)");
    std::string told;
    std::thread running([&] {
        told = busy.Run(
            "begin try waitfor delay '00:00:30' print 'done' end try begin catch print 'caught' end catch");
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(Run("alter database Batch set single_user with rollback immediate"), "\n");
    running.join();
    EXPECT_TRUE(idle.session().Ended());
    EXPECT_TRUE(busy.session().Ended());
    EXPECT_EQ(told,
              "Msg 596.21.1 L1: Cannot continue the execution because the session is in the kill state.\n");
    idle.Run("select 1");
    EXPECT_EQ(idle.messages.at(0).number, 596);
    EXPECT_EQ(Run("use Batch select count(*) from t"), "\n\n0\n(1)\n");
    Client refused = server.Login("Batch");
    EXPECT_EQ(server.login_text.substr(0, 9), "Msg 4060.");
    EXPECT_EQ(Run("alter database Batch set multi_user"), "\n");
    EXPECT_EQ(server.Login("Batch").Run("print db_name()"), "> Batch\n");
}

TEST_F(Database, RollbackImmediateEndsAStatementThatWaitsForALock) {
    client.Run("use Batch create table t (a int) use master");
    Client holder = server.Login("Batch");
    Client waiter = server.Login("Batch");
    holder.Run("begin tran insert t values (1)");
    std::string told;
    std::thread waiting([&] { told = waiter.Run("insert t values (2) print 'done'"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    client.Run("kill " + std::to_string(waiter.session().Id()));
    waiting.join();
    EXPECT_EQ(told,
              "Msg 596.21.1 L1: Cannot continue the execution because the session is in the kill state.\n");
    EXPECT_EQ(holder.Run("commit select count(*) from t"), "\n1\n(1)\n");
}

TEST_F(Database, TheSessionsDatabaseCannotBeDroppedByAProcedureInAnotherOne) {
    client.Run("create procedure drop_it as drop database Batch\nGO\nuse Batch");
    EXPECT_EQ(Run("exec master..drop_it"), "\nMsg 3702.16.1 drop_it L1: Cannot drop database \"Batch\" "
                                           "because it is currently in use.\n");
    EXPECT_EQ(Run("print db_name()"), "\n> Batch\n");
}

TEST_F(Database, CreatedAgainStartsItsIdentitiesAgain) {
    const std::string make =
        "create database Again\nGO\ncreate table Again..t (id int identity, a int)\ninsert "
        "Again..t values (1)\nselect id from Again..t";
    EXPECT_EQ(Run(make), "\n(1)\nid\n1\n(1)\n");
    client.Run("drop database Again");
    EXPECT_EQ(Run(make), "\n(1)\nid\n1\n(1)\n");
}

TEST_F(Database, WithAMissingFileIsNotCreatedByUsingIt) {
    client.Run("create database Gone on (name = g, filename = 'D:\\gone.mdf')");
    std::filesystem::remove(Drive("gone.mdf"));
    client.Run("use Gone");
    EXPECT_EQ(client.messages.at(0).number, 5120);
    EXPECT_FALSE(std::filesystem::exists(Drive("gone.mdf")));
}

TEST_F(Database, AFileThatIsInUseIsNotAttachedUnderAnotherName) {
    Run(R"(exec sp_attach_db 'Twice', 'D:\Batch_data.mdf')");
    EXPECT_EQ(client.messages.at(0).number, 5104);
}

TEST_F(Database, ItsOptionsAreNotSetInATransaction) {
    Run("begin tran exec sp_dboption 'Batch', 'single user', 'true'");
    EXPECT_EQ(client.messages.at(0).number, 226);
    client.Run("rollback");
}

TEST_F(Database, ConditionalDropOfAMissingDatabaseSucceedsSilently) {
    const std::string guard = "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'NoSuch') ";
    EXPECT_EQ(Run(guard + "ALTER DATABASE [NoSuch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE\nGO\n" + guard +
                  "ALTER DATABASE [NoSuch] SET MULTI_USER\nGO\n" + guard + "DROP DATABASE [NoSuch]"),
              "\n");
}

TEST_F(Database, SurvivesARestartOfTheServer) {
    client.Run("use Batch create table t (a int) insert t values (7)");
    client.Leave();
    server.Start();
    client = server.Login("Batch");
    EXPECT_EQ(Run("select a from t\nselect name from master..sysdatabases where dbid > 4"),
              "\na\n7\n(1)\nname\nBatch\n(1)\n");
}

TEST_F(Database, ReachesOthersByThreePartNames) {
    client.Run("create database Other\nGO\nuse Other create table o (id int, name varchar(10)) insert o "
               "values (1, 'x')");
    EXPECT_EQ(Run(R"(
use Batch
create table b (id int)
insert b select id from Other.dbo.o
update Other..o set name = 'y' where id in (select id from b)
select o.name from b join Other.dbo.o o on o.id = b.id
begin tran
delete b
delete Other..o
rollback
select (select count(*) from b), (select count(*) from Other..o))"),
              R"(
(1)
(1)
name
y
(1)
(1)
(1)
|
1|1
(1)
)");
}

TEST_F(Database, MoreDatabasesThanSqliteAttachesAreReachedInTurn) {
    for (int i = 0; i < 14; ++i) {
        const std::string name = "Db" + std::to_string(i);
        client.Run("create database " + name + "\nGO\nuse " + name +
                   "\ncreate table t (n int)\ninsert t values (" + std::to_string(i) + ")\nuse master");
    }
    std::string batch;
    for (int i = 0; i < 14; ++i) {
        batch +=
            "if (select n from Db" + std::to_string(i) + "..t) <> " + std::to_string(i) + " print 'wrong'\n";
    }
    EXPECT_EQ(Run(batch + "print 'all'"), "\n> all\n");
}

TEST_F(Database, OptionsAreKeptAndShown) {
    EXPECT_EQ(Run(R"(
alter database Batch set recovery simple
alter database Batch set auto_shrink off
select databasepropertyex('Batch', 'Recovery'), databasepropertyex('Batch', 'UserAccess'), databasepropertyex('nosuch', 'Recovery')
exec sp_dboption 'Batch', 'trunc. log on chkpt.', 'false'
select databasepropertyex('Batch', 'Recovery')
exec sp_dboption 'Batch', 'nosuch', 'true')"),
              R"(
||
SIMPLE|MULTI_USER|NULL
(1)

FULL
(1)
Msg 40517.16.1 sp_dboption L7: Keyword or statement option 'sp_dboption 'nosuch'' is not supported in this version of SQL Server.
return 1
)");
}

TEST_F(Database, CannotBeCreatedInATransaction) {
    Run("begin tran create database X");
    EXPECT_EQ(client.messages.at(0).number, 226);
    client.Run("rollback");
}

TEST_F(Database, AttachOfAFileThatIsNoDatabaseIsRefused) {
    std::ofstream(Drive("text.mdf")) << "not a database";
    Run(R"(exec sp_attach_db 'X', 'D:\text.mdf')");
    EXPECT_EQ(client.messages.at(0).number, 1813);
    Run(R"(exec sp_attach_db 'X', 'D:\nosuch.mdf')");
    EXPECT_EQ(client.messages.at(0).number, 5120);
}

TEST_F(Database, KeepsTheNamesOfItsFilesWhenItIsAttachedElsewhere) {
    EXPECT_EQ(Run(R"(
create database Kept on (name = first, filename = 'D:\kept.mdf') log on (name = second, filename = 'D:\kept.ldf')
exec sp_detach_db 'Kept'
exec sp_attach_db 'Again', 'D:\kept.mdf', 'D:\kept.ldf'
select rtrim(name) as name, groupid, rtrim(filename) as filename from Again..sysfiles
exec sp_dboption 'Again', 'autoshrink', 'true'
select databasepropertyex('Again', 'IsAutoShrink'), databasepropertyex('Again', 'IsAutoClose')
alter database Again set offline with rollback immediate
select state_desc, databasepropertyex('Again', 'Status') status from sys.databases where name = 'Again'
GO
use Again
GO
alter database Again set online
drop database Again)"),
              R"(
name|groupid|filename
first|1|D:\kept.mdf
second|0|D:\kept.ldf
(2)
|
1|0
(1)
state_desc|status
OFFLINE|OFFLINE
(1)
Msg 942.14.1 L1: Database 'Again' cannot be opened because it is offline.
)");
}

} // namespace
} // namespace devsql::test

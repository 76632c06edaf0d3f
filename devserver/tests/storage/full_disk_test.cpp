// A full disk, at a commit and before it: the client gets an error, and can find out whether its transaction
// is still open.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "devserver/tests/storage/full_disk.h"
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class FullDiskTest : public ::testing::Test {
  protected:
    FullDiskTest() {
        client.Run("create table t (a int not null, filler varchar(8000))\ninsert t values (1, '')");
    }

    /// The state of the client's transaction, and the rows of the table.
    std::string State() { return Run("print @@trancount print xact_state() select a from t order by a"); }

    std::string Run(std::string_view sql) { return "\n" + client.Run(sql); }

    const std::string full =
        "Msg 9002.17.1 L1: The transaction log for database 'tempdb' is full due to 'NOTHING'.\n";
    FullDisk disk; // Constructed before the server: it only affects files that are opened later.
    TestServer server;
    Client client = server.Login("tempdb");
};

TEST_F(FullDiskTest, ACommitThatFailsRollsTheTransactionBackAndEndsTheBatch) {
    client.Run("begin tran insert t values (2, '') create table #made (b int)");
    disk.Fill();
    EXPECT_EQ(Run("commit print 'not reached'"), "\n" + full);
    disk.Free();
    EXPECT_EQ(State(), "\n> 0\n> 0\na\n1\n(1)\n");
    EXPECT_EQ(Run("select object_id('tempdb..#made')"), "\n\nNULL\n(1)\n");
    EXPECT_EQ(Run("begin tran insert t values (3, '') commit select count(*) from t"), "\n(1)\n\n2\n(1)\n");
}

TEST_F(FullDiskTest, ACommitThatFailsInATryBlockLeavesATransactionThatCanOnlyBeRolledBack) {
    client.Run("begin tran insert t values (2, '')");
    disk.Fill();
    EXPECT_EQ(Run(R"(
begin try
  commit
end try
begin catch
  print error_number()
  print xact_state()
  print @@trancount
  rollback
  print @@trancount
end catch)"),
              "\n> 9002\n> -1\n> 1\n> 0\n");
    disk.Free();
    EXPECT_EQ(State(), "\n> 0\n> 0\na\n1\n(1)\n");
}

TEST_F(FullDiskTest, ANestedCommitWritesNothingAndSucceeds) {
    client.Run("begin tran begin tran insert t values (2, '')");
    disk.Fill();
    EXPECT_EQ(Run("commit print @@trancount"), "\n> 1\n");
    disk.Free();
    EXPECT_EQ(Run("commit select count(*) from t"), "\n\n2\n(1)\n");
}

TEST_F(FullDiskTest, AStatementOutsideATransactionFailsAndChangesNothing) {
    disk.Fill();
    client.Run("insert t values (2, '')");
    disk.Free();
    EXPECT_EQ(client.messages.at(0).number, 1105);
    EXPECT_EQ(State(), "\n> 0\n> 0\na\n1\n(1)\n");
}

/// While an object of this class exists, SQLite has hardly any memory, so that its cache is full at once.
class LittleMemory {
  public:
    LittleMemory() : before_(sqlite3_soft_heap_limit64(1)) {}
    ~LittleMemory() { sqlite3_soft_heap_limit64(before_); }
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;

  private:
    sqlite3_int64 before_;
};

/// SQLite writes before the commit if its cache is full. If that write fails, SQLite may roll back the whole
/// transaction; then the statements after it must not run as if the transaction were still open.
TEST_F(FullDiskTest, AStatementThatLosesTheTransactionEndsTheBatch) {
    const LittleMemory little;
    client.Run("begin tran insert t values (2, '')");
    disk.Fill();
    client.Run("declare @i int set @i = 0 while @i < 2000 begin insert t select 3, replicate('x', 8000) set "
               "@i = @i + 1 end insert t values (4, '')");
    disk.Free();
    ASSERT_EQ(client.messages.size(),
              1U); // Every statement that ran after the failed one would report it again.
    EXPECT_EQ(client.messages.at(0).number, 1105);
    EXPECT_EQ(State(), "\n> 0\n> 0\na\n1\n(1)\n");
}

TEST_F(FullDiskTest, ATableVariableOfTheTransactionCanStillBeUsedInTheCatchBlock) {
    client.Run("begin tran insert t values (2, '')");
    disk.Fill();
    EXPECT_EQ(Run(R"(
declare @log table (text varchar(20))
insert @log values ('before')
begin try
  commit
end try
begin catch
  rollback
  insert @log values ('after')
  select text from @log
end catch)"),
              "\n(1)\n(1)\ntext\nafter\n(1)\n");
    disk.Free();
}

} // namespace
} // namespace devsql::test

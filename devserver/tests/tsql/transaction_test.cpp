// Transactions, savepoints, the effect of errors on them, and concurrent sessions.
#include <atomic>
#include <chrono>
#include <thread>

#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Transaction : public TsqlTest {
  protected:
    Transaction() { client.Run("create table t (a int not null)\ninsert t values (1)"); }
};

TEST_F(Transaction, CommitKeepsAndRollbackUndoesDataAndDefinitions) {
    EXPECT_EQ(Run(R"(
begin tran
insert t values (2)
create table u (b int)
print @@trancount
rollback
select count(*) from t
select object_id('u')
begin tran
begin tran
insert t values (3)
commit
print @@trancount
commit
select count(*) from t)"),
              R"(
(1)
> 1

1
(1)

NULL
(1)
(1)
> 1

2
(1)
)");
}

TEST_F(Transaction, SnapshotIsRefusedBeforeAnythingOfTheBatchRuns) {
    EXPECT_EQ(
        Run("insert t values (2)\nset transaction isolation level snapshot\nbegin tran"),
        "\nMsg 40517.16.1 L2: Keyword or statement option 'SNAPSHOT' is not supported in this version of SQL "
        "Server.\n");
    EXPECT_EQ(Run("print @@trancount select count(*) from t"), "\n> 0\n\n1\n(1)\n");
}

TEST_F(Transaction, SavepointsUndoAPart) {
    EXPECT_EQ(Run(R"(
begin transaction outermost
insert t values (2)
save transaction here
insert t values (3)
rollback transaction here
print @@trancount
insert t values (4)
rollback transaction nosuch
commit
select a from t)"),
              R"(
(1)
(1)
> 1
(1)
Msg 6401.16.1 L9: Cannot roll back nosuch. No transaction or savepoint of that name was found.
a
1
2
4
(3)
)");
}

TEST_F(Transaction, XactAbortRollsBackAndEndsTheBatch) {
    EXPECT_EQ(Run(R"(
set xact_abort on
begin tran
insert t values (2)
insert t values (null)
print 'not reached'
GO
print @@trancount
select count(*) from t)"),
              R"(
(1)
Msg 515.16.2 L5: Cannot insert the value NULL into column 'a', table 'tempdb.dbo.t'; column does not allow nulls. INSERT fails.
> 0

1
(1)
)");
}

TEST_F(Transaction, AConversionErrorEndsTheBatchAndRollsBack) {
    EXPECT_EQ(Run(R"(
begin tran
insert t values (2)
select convert(int, 'x')
print 'not reached'
GO
print @@trancount)"),
              R"(
(1)

Msg 245.16.1 L4: Conversion failed when converting the varchar value 'x' to data type int.
> 0
)");
}

TEST_F(Transaction, AProcedureThatLeavesATransactionOpenIsReported) {
    EXPECT_EQ(Run(R"(
create procedure p as begin tran
GO
exec p
print @@trancount
rollback)"),
              R"(
Msg 266.16.2 p L0: Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. Previous count = 0, current count = 1.
> 1
)");
}

TEST_F(Transaction, ADoomedTransactionAcceptsOnlyARollback) {
    EXPECT_EQ(Run(R"(
set xact_abort on
begin tran
begin try select 1 / 0 end try
begin catch
    print xact_state()
    begin try insert t values (5) end try begin catch print error_number() end catch
    rollback
    print xact_state()
end catch)"),
              R"(

> -1
> 3930
> 0
)");
}

TEST_F(Transaction, OthersReadTheLastCommitWhileItRuns) {
    Client other = server.Login("tempdb");
    Run("begin tran\nupdate t set a = 99");
    EXPECT_EQ(other.Run("select a from t"), "a\n1\n(1)\n");
    Run("commit");
    EXPECT_EQ(other.Run("select a from t"), "a\n99\n(1)\n");
}

TEST_F(Transaction, AWriterWaitsForAWriterUpToItsLockTimeout) {
    Client other = server.Login("tempdb");
    Run("begin tran\nupdate t set a = 99");
    EXPECT_EQ(other.Run("set lock_timeout 60\nupdate t set a = 5"),
              "Msg 1222.16.51 L2: Lock request time out period exceeded.\n");
    std::thread waiting(
        [&] { EXPECT_EQ(other.Run("set lock_timeout -1\nupdate t set a = a + 1"), "(1)\n"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    Run("commit");
    waiting.join();
    EXPECT_EQ(Run("select a from t"), "\na\n100\n(1)\n");
}

TEST_F(Transaction, WritersOfTwoDatabasesDoNotMeet) {
    Client other = server.Login("master");
    other.Run("create database One\nGO\nuse One\ncreate table t (a int)");
    Run("begin tran\nupdate t set a = 2");
    EXPECT_EQ(other.Run("set lock_timeout 0\ninsert t values (1)"), "(1)\n");
    Run("commit");
}

TEST_F(Transaction, ImplicitTransactionsBeginByThemselves) {
    EXPECT_EQ(Run("set implicit_transactions on\ninsert t values (2)\nprint @@trancount\nrollback\nselect "
                  "count(*) from t\n"
                  "commit\nset implicit_transactions off"),
              "\n(1)\n> 1\n\n1\n(1)\n");
}

TEST_F(Transaction, ASessionThatEndsRollsBack) {
    {
        Client other = server.Login("tempdb");
        other.Run("begin tran\ndelete t");
    }
    EXPECT_EQ(Run("select count(*) from t"), "\n\n1\n(1)\n");
}

TEST_F(Transaction, CancelEndsALongStatementAndTheSessionLives) {
    std::atomic<bool> over = false;
    // A cancelling that comes before the statement begins has no effect, so it is repeated. The statement
    // itself has no end: if cancelling has no effect at all, the whole program's time ends.
    std::thread cancelling([&] {
        while (!over) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            client.session().Cancel();
        }
    });
    Run("declare @i int set @i = 0 while 1 = 1 set @i = (@i + 1) % 1000");
    over = true;
    cancelling.join();
    EXPECT_EQ(Run("print 'alive'"), "\n> alive\n");
}

} // namespace
} // namespace devsql::test

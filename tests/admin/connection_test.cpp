// What the managers share: the connection string, the open sequence, and the failure path.
#include <algorithm>
#include <functional>

#include "admin/manager_fixture.h"
#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "base/failure.h"

namespace kv {
namespace {

using fakes::Failing;
using fakes::Rows;
using fakes::WithErrors;

class ConnectionOfManagers : public ManagerTest {
  protected:
    /// The connection string that an operation in the database "Batch" sets.
    std::string StringOf(CSQLReplicationMgr& manager) {
        ado_.calls.clear();
        manager.InstallReplication("Batch");
        const std::string head = "ConnectionString ";
        return ado_.calls.at(1).substr(head.size());
    }
};

TEST_F(ConnectionOfManagers, TheStringNamesDriverServerDatabaseUserAndPassword) {
    CSQLReplicationMgr manager;
    FillPair(manager);
    EXPECT_EQ(StringOf(manager), ConnectionStringA("Batch"));
    manager.UseServerA(false);
    EXPECT_EQ(StringOf(manager), ConnectionStringB("Batch"));
}

TEST_F(ConnectionOfManagers, WithoutServerOrUserTheStringIsEmptyAndOpenFails) {
    CSQLReplicationMgr no_server;
    FillPair(no_server, false);
    no_server.ServerB("");
    EXPECT_EQ(StringOf(no_server), "");
    EXPECT_FALSE(no_server.InstallReplication("Batch"));
    CSQLReplicationMgr no_user;
    FillPair(no_user, false);
    no_user.UserB("");
    EXPECT_EQ(StringOf(no_user), "");
    EXPECT_TRUE(ado_.Statements().empty());
    EXPECT_EQ(ado_.calls.back(), "Open '' '' '' -1"); // the empty string is set and opened
    EXPECT_EQ(LogLines(), (Lines(3, "CSQLReplicationMgr::InstallReplication('Batch')")));
}

TEST_F(ConnectionOfManagers, AnEmptyPasswordIsValid) {
    CSQLReplicationMgr manager;
    FillPair(manager);
    manager.PasswordA("");
    const std::string text = StringOf(manager);
    EXPECT_TRUE(text.ends_with(";Pwd=;")) << text;
    EXPECT_TRUE(manager.InstallReplication("Batch"));
}

TEST_F(ConnectionOfManagers, ANumberSignInTheServersNameShiftsEveryLaterValue) {
    CSQLReplicationMgr manager;
    FillPair(manager);
    manager.ServerA("No#de");
    EXPECT_EQ(StringOf(manager), "Driver={SQL Server};Server=NoBatchde;Database=saA;Uid=pwA;Pwd=#;");
}

TEST_F(ConnectionOfManagers, ANumberSignInThePasswordIsKept) {
    CSQLReplicationMgr manager;
    FillPair(manager);
    manager.PasswordA("a#b");
    EXPECT_EQ(StringOf(manager),
              "Driver={SQL Server};Server=NodeA\\KV_BATCH;Database=Batch;Uid=saA;Pwd=a#b;");
}

TEST_F(ConnectionOfManagers, ASemicolonInThePasswordIsNotProtected) {
    CSQLReplicationMgr manager;
    FillPair(manager);
    manager.PasswordA("a;Database=x");
    EXPECT_TRUE(StringOf(manager).ends_with("Pwd=a;Database=x;"));
}

/// An operation, its name in the log, and the database that it opens.
struct OperationCase {
    const char* source;
    const char* database;
    std::function<bool()> run;
    std::function<Int16()> error_count;
    std::function<void()> show_db_error;
};

template <class Manager>
OperationCase Case(const char* source, const char* database, Manager& manager, bool (*run)(Manager&)) {
    return {source, database, [&manager, run] { return run(manager); },
            [&manager] { return manager.ErrorCount(); }, [&manager] { manager.ShowDbError(); }};
}

class EveryOperation : public ManagerTest {
  protected:
    EveryOperation() {
        FillPair(upgrade_);
        FillPair(synchronize_);
        FillPair(replication_);
    }

    std::vector<OperationCase> Cases() {
        return {
            Case<CUpgradeDbMgr>("CUpgradeDbMgr::GetDatabases", "master", upgrade_,
                                [](CUpgradeDbMgr& manager) {
                                    std::vector<std::string> names;
                                    return manager.GetDatabases(names);
                                }),
            Case<CUpgradeDbMgr>("CUpgradeDbMgr::GetDatabaseInfo('One')", "master", upgrade_,
                                [](CUpgradeDbMgr& manager) {
                                    std::string a, b, c, d;
                                    return manager.GetDatabaseInfo("One", a, b, c, d);
                                }),
            Case<CUpgradeDbMgr>("CUpgradeDbMgr::RemoveDatabase('One')", "master", upgrade_,
                                [](CUpgradeDbMgr& manager) { return manager.RemoveDatabase("One"); }),
            Case<CUpgradeDbMgr>("CUpgradeDbMgr::UpgradeDatabase('One', 'Two')", "Two", upgrade_,
                                [](CUpgradeDbMgr& manager) { return manager.UpgradeDatabase("One", "Two"); }),
            Case<CSynchronizeDbMgr>("CSynchronizeDbMgr::GetDatabases", "master", synchronize_,
                                    [](CSynchronizeDbMgr& manager) {
                                        std::vector<std::string> names;
                                        return manager.GetDatabases(names);
                                    }),
            Case<CSynchronizeDbMgr>("CSynchronizeDbMgr::GetDatabaseInfo('One')", "master", synchronize_,
                                    [](CSynchronizeDbMgr& manager) {
                                        std::string a, b, c, d;
                                        return manager.GetDatabaseInfo("One", a, b, c, d);
                                    }),
            Case<CSynchronizeDbMgr>(
                "CSynchronizeDbMgr::Synchronize('One', 'Two')", "One", synchronize_,
                [](CSynchronizeDbMgr& manager) { return manager.Synchronize("One", "Two"); }),
            Case<CSQLReplicationMgr>("CSQLReplicationMgr::IsReplicationInstalled('One')", "One", replication_,
                                     [](CSQLReplicationMgr& manager) {
                                         bool installed = true;
                                         const bool result = manager.IsReplicationInstalled("One", installed);
                                         EXPECT_FALSE(installed);
                                         return result;
                                     }),
            Case<CSQLReplicationMgr>(
                "CSQLReplicationMgr::InstallReplication('One')", "One", replication_,
                [](CSQLReplicationMgr& manager) { return manager.InstallReplication("One"); }),
            Case<CSQLReplicationMgr>(
                "CSQLReplicationMgr::UninstallReplication('One')", "One", replication_,
                [](CSQLReplicationMgr& manager) { return manager.UninstallReplication("One"); }),
        };
    }

    CUpgradeDbMgr upgrade_;
    CSynchronizeDbMgr synchronize_;
    CSQLReplicationMgr replication_;
};

TEST_F(EveryOperation, OpensByTheStandardSequenceWithBothTimeOuts) {
    for (const OperationCase& one : Cases()) {
        SCOPED_TRACE(one.source);
        ado_.calls.clear();
        ado_.Answer("Open", Failing());
        one.run();
        Lines sorted = ado_.calls;
        std::ranges::sort(sorted);
        Lines wanted = {"CommandTimeout 300", "ConnectionString " + ConnectionStringA(one.database),
                        "ConnectionTimeout 300", "CursorLocation 3", "Open '' '' '' -1"};
        EXPECT_EQ(sorted, wanted);
        EXPECT_EQ(ado_.calls.front(), "CursorLocation 3");
        EXPECT_EQ(ado_.calls.back(), "Open '' '' '' -1");
    }
}

TEST_F(EveryOperation, KeepsTheErrorAndLogsOneLineIfItCannotOpen) {
    for (const OperationCase& one : Cases()) {
        SCOPED_TRACE(one.source);
        ForgetLog();
        ado_.Answer("Open", Failing(-2147467259, "no server"));
        EXPECT_FALSE(one.run());
        EXPECT_EQ(LogLines(), Lines{one.source});
        EXPECT_EQ(one.error_count(), Int16(1));
        EXPECT_TRUE(ado_.Statements().empty());
        EXPECT_EQ(ado_.connections, 0U);
        screen_.calls.clear();
        one.show_db_error();
        ASSERT_EQ(screen_.Count("box"), 1);
        EXPECT_NE(screen_.calls.front().find("Error:\t-2147467259\r\nDesc:\tno server\r\n"),
                  std::string::npos);
    }
}

TEST_F(EveryOperation, LeavesNoCurrentError) {
    for (const OperationCase& one : Cases()) {
        ado_.Answer("Open", Failing());
        one.run();
        EXPECT_EQ(CurrentError().number, 0) << one.source;
    }
}

TEST_F(EveryOperation, DropsTheErrorsOfThePreviousOperation) {
    for (const OperationCase& one : Cases()) {
        SCOPED_TRACE(one.source);
        for (int run = 0; run < 2; ++run) {
            ado_.Answer("Open", Failing());
            one.run();
            EXPECT_EQ(one.error_count(), Int16(1));
        }
    }
}

TEST_F(EveryOperation, RaisesAFailureToItsCallerIfTheLogCannotBeWritten) {
    for (const OperationCase& one : Cases()) {
        SCOPED_TRACE(one.source);
        ado_.Answer("Open", Failing());
        files_.FailNext("append", kLogFile, platform::FileFault::AccessDenied);
        EXPECT_THROW(one.run(), platform::FileError);
        EXPECT_EQ(ado_.connections, 0U);
    }
}

class CollectedErrors : public ManagerTest {
  protected:
    CollectedErrors() { FillPair(manager_); }
    static constexpr char kInstall[] = "exec spInstallReplication";
    CSQLReplicationMgr manager_;
};

TEST_F(CollectedErrors, AreKeptAfterASuccessToo) {
    ado_.Answer(kInstall, WithErrors({-5, -6}));
    EXPECT_TRUE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(2));
    EXPECT_TRUE(LogLines().empty());
    manager_.ShowDbError();
    EXPECT_EQ(screen_.Count("box"), 1);
}

TEST_F(CollectedErrors, MessagesWithoutANumberAreLeftOut) {
    ado_.Answer(kInstall, WithErrors({0, 0}));
    EXPECT_TRUE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(0));
    manager_.ShowDbError();
    EXPECT_EQ(screen_.Count("box"), 0);
}

TEST_F(CollectedErrors, AnErrorBeforeAMessageIsKept) {
    ado_.Answer(kInstall, WithErrors({-5, 0}));
    EXPECT_TRUE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(CollectedErrors, AMessageBeforeAnErrorFailsTheOperationAndThenItsCaller) {
    // Collecting the errors fails. The failure path collects them again, and that failure is raised to the
    // caller.
    ado_.Answer(kInstall, WithErrors({0, -5}));
    try {
        manager_.InstallReplication("Batch");
        FAIL() << "did not fail";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), run_time::kSubscriptOutOfRange);
    }
    EXPECT_TRUE(LogLines().empty()); // the line would be logged after the collecting
    EXPECT_EQ(ado_.calls.back(), "Execute 1 exec spInstallReplication");
    EXPECT_EQ(ado_.destroyed_while_open, 1U);
    EXPECT_EQ(ado_.connections, 0U);
}

TEST_F(CollectedErrors, TheSameOrderWithAFailingStatementFailsTheCallerToo) {
    fakes::AdoAnswer answer = WithErrors({0, -5});
    answer.fails = true;
    ado_.Answer(kInstall, answer);
    EXPECT_THROW(manager_.InstallReplication("Batch"), Failure);
    EXPECT_TRUE(LogLines().empty());
    EXPECT_EQ(ado_.connections, 0U);
}

TEST_F(CollectedErrors, AFailureThatTheOperationRaisesCollectsTheLastStatementsErrorsTwice) {
    // The connection still has them when the failure path collects.
    std::vector<std::string> names;
    CUpgradeDbMgr manager;
    FillPair(manager);
    fakes::AdoAnswer answer = Rows({});
    answer.errors = WithErrors({-7}).errors;
    ado_.Answer("exec sp_helpdb", answer);
    EXPECT_FALSE(manager.GetDatabases(names));
    EXPECT_EQ(manager.ErrorCount(), Int16(2));
}

TEST_F(CollectedErrors, AConnectionThatCannotBeClosedFailsTheOperation) {
    ado_.Answer("Close", Failing());
    EXPECT_FALSE(manager_.InstallReplication("Batch"));
    EXPECT_EQ(LogLines(), Lines{"CSQLReplicationMgr::InstallReplication('Batch')"});
    const Lines closes(ado_.calls.end() - 2, ado_.calls.end());
    EXPECT_EQ(closes, (Lines{"Close", "Close"})); // once at the operation's end, once on the failure path
}

TEST_F(CollectedErrors, ANewManagerHasNone) {
    EXPECT_EQ(manager_.ErrorCount(), Int16(0));
    EXPECT_THROW(manager_.DbErrorAt(Int16(1)), Failure);
}

} // namespace
} // namespace kv

// Logins, and several sessions at once.
#include <mutex>
#include <thread>

#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class SessionTest : public ::testing::Test {
  protected:
    TestServer server;
};

TEST_F(SessionTest, ALoginReportsDatabaseAndLanguage) {
    Transcript transcript;
    LoginRequest request;
    request.user = "SA";
    request.password = "secret";
    const std::unique_ptr<Session> session = server.engine().Login(request, transcript);
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->Database(), "master");
    ASSERT_EQ(transcript.changes.size(), 1U);
}

TEST_F(SessionTest, AWrongPasswordOrNameIs18456) {
    for (const auto& [user, password] :
         {std::pair("sa", "wrong"), {"sa", "Secret"}, {"nobody", "secret"}, {"", ""}}) {
        server.Login("", user, password);
        EXPECT_EQ(server.login_text,
                  "Msg 18456.14.1 L1: Login failed for user '" + std::string(user) + "'.\n");
    }
}

TEST_F(SessionTest, AnUnknownDatabaseIs4060And18456) {
    server.Login("nosuch");
    EXPECT_EQ(server.login_text,
              "Msg 4060.11.1 L1: Cannot open database \"nosuch\" requested by the login. The login "
              "failed.\nMsg 18456.14.1 L1: Login failed for user 'sa'.\n");
}

TEST_F(SessionTest, ALoginThatWasAddedLogsInToItsDatabase) {
    Client admin = server.Login();
    admin.Run("create database Shop\nGO\nexec sp_addlogin 'bob', 'pw1', 'Shop'");
    EXPECT_EQ(server.Login("", "bob", "pw1").Run("print db_name() + ' ' + suser_name()"), "> Shop bob\n");
    server.Login("", "bob", "pw2");
    EXPECT_EQ(server.login_text.substr(0, 10), "Msg 18456.");
    admin.Run("exec sp_droplogin 'bob'");
    server.Login("", "bob", "pw1");
    EXPECT_EQ(server.login_text.substr(0, 10), "Msg 18456.");
}

TEST_F(SessionTest, PasswordsOfAddedLoginsAreNotKeptInTheClear) {
    Client admin = server.Login();
    admin.Run("exec sp_addlogin 'bob', 'VerySecretWord'");
    admin.Run("checkpoint");
    for (const auto& entry : std::filesystem::directory_iterator(server.folder.path() / "root")) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_EQ(content.find("VerySecretWord"), std::string::npos) << entry.path();
    }
}

TEST_F(SessionTest, EachSessionHasANumberADatabaseAndOptions) {
    Client a = server.Login();
    Client b = server.Login();
    EXPECT_NE(a.session().Id(), b.session().Id());
    EXPECT_GT(a.session().Id(), 50);
    a.Run("use msdb set nocount on");
    EXPECT_EQ(a.session().Database(), "msdb");
    EXPECT_EQ(b.Run("select db_name()"), "\nmaster\n(1)\n");
    EXPECT_EQ(a.Run("select db_name()"), "\nmsdb\n");
}

TEST_F(SessionTest, KillEndsAnotherSession) {
    Client a = server.Login();
    Client b = server.Login();
    a.Run("kill " + std::to_string(b.session().Id()));
    EXPECT_TRUE(b.session().Ended());
    a.Run("kill " + std::to_string(a.session().Id()));
    EXPECT_EQ(a.messages.at(0).number, 6104);
}

TEST_F(SessionTest, AStatementThatIsKilledFailsAndIsUndone) {
    Client a = server.Login();
    Client b = server.Login("tempdb");
    a.Run("create table tempdb..t (n int)");
    std::string told;
    std::thread running(
        [&] { told = b.Run("begin tran insert t values (1) while 1 = 1 update t set n = n % 1000 + 1"); });
    // As soon as the transaction has written, nobody else can.
    const auto is_locked = [&] {
        a.Run("set lock_timeout 0 delete tempdb..t");
        return !a.messages.empty() && a.messages.at(0).number == 1222;
    };
    constexpr int kTries = 6000;
    int tries = 0;
    while (!is_locked() && ++tries < kTries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_LT(tries, kTries) << "the statement does not run";
    a.Run("kill " + std::to_string(b.session().Id()));
    running.join();
    const std::string end =
        "Msg 596.21.1 L1: Cannot continue the execution because the session is in the kill state.\n";
    EXPECT_TRUE(told.ends_with(end)) << told.substr(told.size() - std::min(told.size(), end.size()));
    EXPECT_EQ(a.Run("select count(*) from tempdb..t"), "\n0\n(1)\n");
}

TEST_F(SessionTest, ManyAtOnceWriteIntoOneTable) {
    Client first = server.Login("tempdb");
    first.Run("create table t (id int identity primary key, who int, n int)");
    std::vector<std::thread> threads;
    for (int who = 0; who < 8; ++who) {
        threads.emplace_back([&, who] {
            Client client = [&] {
                static std::mutex mutex;
                const std::lock_guard lock(mutex);
                return server.Login("tempdb");
            }();
            for (int n = 0; n < 25; ++n) {
                client.Run("begin tran insert t (who, n) values (" + std::to_string(who) + ", " +
                           std::to_string(n) + ") commit select count(*) from t");
                EXPECT_TRUE(client.messages.empty()) << client.messages.at(0).text;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(first.Run("select count(*), count(distinct id), count(distinct who) from t"),
              "||\n200|200|8\n(1)\n");
}

TEST_F(SessionTest, ADeadlockEndsOneOfTheTwo) {
    Client a = server.Login();
    a.Run("create database One\nGO\ncreate database Two\nGO\ncreate table One..t (n int)\ncreate table "
          "Two..t (n int)\n"
          "insert One..t values (0)\ninsert Two..t values (0)");
    Client b = server.Login();
    // The first session has a lock timeout, so that the test does not wait for twenty seconds; the second one
    // succeeds.
    a.Run("begin tran update One..t set n = 1");
    b.Run("begin tran update Two..t set n = 2");
    std::thread crossing([&] { b.Run("update One..t set n = 2 commit"); });
    a.Run("set lock_timeout 100 update Two..t set n = 1");
    const auto told = a.messages;
    a.Run("rollback");
    crossing.join();
    ASSERT_EQ(b.messages.size(), 0U) << b.messages.at(0).number << b.messages.at(0).text;
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told.at(0).number, 1222);
    EXPECT_EQ(a.Run("select (select n from One..t), (select n from Two..t)"), "|\n2|2\n(1)\n");
}

TEST_F(SessionTest, TheIsolationLevelIsShownAsEachSessionHasSetIt) {
    Client client = server.Login("tempdb");
    Client other = server.Login();
    other.Run("set transaction isolation level repeatable read");
    EXPECT_EQ("\n" + client.Run(R"(
create procedure careful as
set transaction isolation level serializable
select transaction_isolation_level level from sys.dm_exec_sessions where session_id = @@spid
GO
set transaction isolation level read uncommitted
exec careful
select transaction_isolation_level level from sys.dm_exec_sessions order by session_id)"),
              R"(
level
4
(1)
level
1
3
(2)
)");
    EXPECT_EQ("\n" + client.Run("set transaction isolation level chaos"),
              "\nMsg 102.15.1 L1: Incorrect syntax near 'chaos'.\n");
}

} // namespace
} // namespace devsql::test

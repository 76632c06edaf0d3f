// A server killed at any moment comes back with every row whose commit it has told of.
#include <csignal>
#include <sys/wait.h>

#include <chrono>
#include <random>
#include <thread>

#include "devserver/tsql_test_database.h"

namespace devsql::test {
namespace {

/// In a process of its own: opens the server below `root`, inserts 1, 2, 3, … and writes each number into the
/// pipe once its commit is done.
[[noreturn]] void InsertForever(const std::filesystem::path& root, int pipe) {
    EngineOptions options;
    options.root = root;
    options.logins = {{"sa", "secret"}};
    const std::unique_ptr<Engine> engine = OpenEngine(options);
    Transcript sink;
    LoginRequest request;
    request.user = "sa";
    request.password = "secret";
    request.database = "Crash";
    const std::unique_ptr<Session> session = engine->Login(request, sink);
    session->ExecuteBatch("declare @last int select @last = isnull(max(id), 0) from t", sink);
    for (;;) {
        Transcript row;
        session->ExecuteBatch(
            "insert t select isnull(max(id), 0) + 1, replicate('x', 500) from t select max(id) from t", row);
        const auto number = static_cast<std::int32_t>(std::get<std::int64_t>(row.last_row.at(0)));
        if (write(pipe, &number, sizeof number) != sizeof number) {
            _exit(1);
        }
    }
}

TEST(Crash, EveryCommittedRowIsThereAfterAKill) {
    TestServer server;
    const std::filesystem::path root = server.folder.path() / "crash";
    {
        EngineOptions options;
        options.root = root;
        options.logins = {{"sa", "secret"}};
        const std::unique_ptr<Engine> engine = OpenEngine(options);
        Transcript sink;
        LoginRequest request;
        request.user = "sa";
        request.password = "secret";
        Client client(engine->Login(request, sink));
        client.Run("create database Crash\nGO\nuse Crash\ncreate table t (id int primary key, filler "
                   "varchar(1000))");
    }
    std::mt19937 random{std::random_device{}()};
    std::int32_t committed = 0;
    for (int round = 0; round < 12; ++round) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            InsertForever(root, ends[1]);
        }
        close(ends[1]);
        std::int32_t number = 0;
        ASSERT_EQ(read(ends[0], &number, sizeof number), static_cast<ssize_t>(sizeof number));
        committed = number;
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 40));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (read(ends[0], &number, sizeof number) == static_cast<ssize_t>(sizeof number)) {
            committed = number;
        }
        close(ends[0]);
    }
    EngineOptions options;
    options.root = root;
    options.logins = {{"sa", "secret"}};
    const std::unique_ptr<Engine> engine = OpenEngine(options);
    Transcript sink;
    LoginRequest request;
    request.user = "sa";
    request.password = "secret";
    request.database = "Crash";
    Client client(engine->Login(request, sink));
    client.Run("select max(id), count(*) from t");
    const std::int64_t highest = std::get<std::int64_t>(client.last_row.at(0));
    EXPECT_GE(highest, committed);
    EXPECT_LE(highest, committed + 1); // One may have been committed and not yet told.
    EXPECT_EQ(std::get<std::int64_t>(client.last_row.at(1)), highest);
}

} // namespace
} // namespace devsql::test

// A server killed at any moment comes back with every row whose commit it has told of.
#include <csignal>
#include <sys/wait.h>

#include <chrono>
#include <random>
#include <thread>

#include "devserver/tests/tsql/test_database.h"
#include "support/temp_folder.h"

namespace devsql::test {
namespace {

constexpr int kKills = 100;

/// A server on the files below `root` and a client in the database Crash, or in master.
struct OpenServer {
    explicit OpenServer(const std::filesystem::path& root, const std::string& database = "Crash") {
        EngineOptions options;
        options.root = root;
        options.logins = {{"sa", "secret"}};
        engine = OpenEngine(options);
        LoginRequest request;
        request.user = "sa";
        request.password = "secret";
        request.database = database;
        Transcript sink;
        session = engine->Login(request, sink);
    }

    std::unique_ptr<Engine> engine;
    std::unique_ptr<Session> session;
};

/// What a server found when it came back, and then the number of each row that it committed.
struct Report {
    std::int32_t number;
    std::int32_t found; ///< rows that were there, -1 once they were told
};

/// In a process of its own: opens the server below `root`, tells what it found, inserts the next numbers and
/// writes each into the pipe once its commit is done.
[[noreturn]] void InsertForever(const std::filesystem::path& root, int pipe) {
    const OpenServer server(root);
    const auto tell = [pipe](const Transcript& row, std::int32_t found) {
        const auto number = static_cast<std::int32_t>(std::get<std::int64_t>(row.last_row.at(0)));
        const Report report{number, found};
        if (write(pipe, &report, sizeof report) != sizeof report) {
            _exit(1);
        }
    };
    Transcript found;
    server.session->ExecuteBatch("select isnull(max(id), 0), count(*) from t", found);
    tell(found, static_cast<std::int32_t>(std::get<std::int64_t>(found.last_row.at(1))));
    for (;;) {
        Transcript row;
        server.session->ExecuteBatch(
            "insert t select isnull(max(id), 0) + 1, replicate('x', 500) from t select max(id) from t", row);
        tell(row, -1);
    }
}

bool Read(int pipe, Report& report) {
    return read(pipe, &report, sizeof report) == static_cast<ssize_t>(sizeof report);
}

/// Starts the process that inserts, kills it at some moment, and gives the last number that it told of. What
/// it found at its start must be all that was told of before, and at most one row more, which was committed
/// and not yet told.
std::int32_t RunAndKill(const std::filesystem::path& root, std::int32_t committed,
                        std::chrono::microseconds life) {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        InsertForever(root, ends[1]);
    }
    close(ends[1]);
    Report report{};
    EXPECT_TRUE(Read(ends[0], report)) << "the server did not come back";
    EXPECT_GE(report.number, committed);
    EXPECT_LE(report.number, committed + 1);
    EXPECT_EQ(report.found, report.number) << "a row is missing";
    committed = report.number;
    std::this_thread::sleep_for(life);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (Read(ends[0], report)) {
        committed = report.number;
    }
    close(ends[0]);
    return committed;
}

TEST(Crash, EveryCommittedRowIsThereAfterEachOfAHundredKills) {
    const support::TempFolder folder;
    const std::filesystem::path root = folder.Path();
    {
        Transcript sink;
        OpenServer(root, "master")
            .session->ExecuteBatch(
                "create database Crash exec('use Crash create table t (id int primary key, filler "
                "varchar(1000))')",
                sink);
    }
    std::mt19937 random{std::random_device{}()};
    std::int32_t committed = 0;
    for (int round = 0; round < kKills && !HasFailure(); ++round) {
        committed = RunAndKill(root, committed, std::chrono::microseconds(random() % 20000));
    }
    EXPECT_GT(committed, 0) << "the kills came before anything was written";
}

} // namespace
} // namespace devsql::test

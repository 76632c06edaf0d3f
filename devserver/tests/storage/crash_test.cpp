// A server that is killed at any moment starts again with every row whose commit it has reported.
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

/// A server with the files below `root`, and a session in the given database.
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

/// The first report has the rows that a server found when it started; each later one has a committed row.
struct Report {
    std::int32_t number; ///< the highest number found, or the number of the committed row
    std::int32_t found;  ///< the count of rows found; -1 in later reports
};

/// Runs in a child process: opens the server below `root`, reports the rows that it found, inserts rows with
/// the next numbers, and reports each after its commit.
[[noreturn]] void InsertForever(const std::filesystem::path& root, int pipe) {
    const OpenServer server(root);
    const auto report_row = [pipe](const Transcript& row, std::int32_t found) {
        const auto number = static_cast<std::int32_t>(std::get<std::int64_t>(row.last_row.at(0)));
        const Report report{number, found};
        if (write(pipe, &report, sizeof report) != sizeof report) {
            _exit(1);
        }
    };
    Transcript found;
    server.session->ExecuteBatch("select isnull(max(id), 0), count(*) from t", found);
    report_row(found, static_cast<std::int32_t>(std::get<std::int64_t>(found.last_row.at(1))));
    for (;;) {
        Transcript row;
        server.session->ExecuteBatch(
            "insert t select isnull(max(id), 0) + 1, replicate('x', 500) from t select max(id) from t", row);
        report_row(row, -1);
    }
}

bool Read(int pipe, Report& report) {
    return read(pipe, &report, sizeof report) == static_cast<ssize_t>(sizeof report);
}

/// Starts the process that inserts, kills it after `life`, and returns the last number that it reported. At
/// its start it must find all rows reported before, and at most one more, which was committed but not yet
/// reported. If `to_commit`, its life begins with its first commit, however slow the disk is.
std::int32_t RunAndKill(const std::filesystem::path& root, std::int32_t committed,
                        std::chrono::microseconds life, bool to_commit) {
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
    EXPECT_TRUE(Read(ends[0], report)) << "the server did not start again";
    EXPECT_GE(report.number, committed);
    EXPECT_LE(report.number, committed + 1);
    EXPECT_EQ(report.found, report.number) << "a row is missing";
    committed = report.number;
    if (to_commit) {
        EXPECT_TRUE(Read(ends[0], report)) << "the server inserted nothing";
        committed = report.number;
    }
    std::this_thread::sleep_for(life);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (Read(ends[0], report)) {
        committed = report.number;
    }
    close(ends[0]);
    return committed;
}

TEST(Crash, NoCommittedRowIsLostInAHundredKills) {
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
        committed = RunAndKill(root, committed, std::chrono::microseconds(random() % 20000), round % 10 == 0);
    }
}

} // namespace
} // namespace devsql::test

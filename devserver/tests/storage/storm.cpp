// Several clients write to a database while another one detaches, moves, attaches, renames, closes and drops
// it. At the end the database must have every row whose insert succeeded, and no file may be left that
// belongs to no database.
//
//   devserver_storm [ROUNDS]
//
// Prints the counts. Exits with 1 if a row is missing, a file is left over or a statement failed with an
// unexpected error. A writer's statement may fail because the database is unavailable; its row is not
// counted.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>

#include "devserver/tests/tsql/transcript.h"

namespace devsql::test {
namespace {

using std::chrono::steady_clock;

constexpr int kWriters = 4;
/// The pause between two rounds, in which clients whose connection was ended connect again and write.
constexpr std::chrono::milliseconds kCalm{20};
/// Writer n inserts the numbers from n times this number on, so that no two writers insert the same.
constexpr int kNumbersOfAWriter = 10'000'000;
/// Far more than a round takes: only a server that hangs reaches it.
constexpr std::chrono::seconds kLongestRound{60};

/// The errors that a writer may get while the database is unavailable: it is unknown, in transition, in
/// single-user mode or offline; the session was ended; the login was refused for one of these reasons.
constexpr std::array<std::int32_t, 8> kAway = {911, 952, 924, 942, 596, 4060, 18456, 208};

/// Counts the failures and prints the first ones. Used by all threads.
class Failures {
  public:
    void Add(const std::string& text) {
        const std::lock_guard lock(mutex_);
        if (++count_ <= kShown) {
            std::printf("FAILED: %s\n", text.c_str());
        }
    }
    int count() const { return count_; }

  private:
    static constexpr int kShown = 20;
    std::mutex mutex_;
    std::atomic<int> count_ = 0;
};

/// A client that writes in its own thread.
class Writer {
  public:
    Writer(TestServer& server, int number, std::atomic<bool>& stop, Failures& failures)
        : server_(server), number_(number), stop_(stop), failures_(failures) {}

    void Run() {
        std::mt19937 random(static_cast<unsigned>(number_));
        std::unique_ptr<Session> session;
        while (!stop_) {
            if (session == nullptr || session->Ended()) {
                session = LogIn(random() % 2 == 0 ? "Storm" : "master");
            }
            // By a name of three parts and by USE. Rows of the third way go to Scratch and are not counted.
            const std::string row = "t values (" + std::to_string(next_) + ")";
            const std::array<std::string, 3> ways = {"insert Storm.dbo." + row,
                                                     "use Storm insert dbo." + row + " use master",
                                                     "insert Scratch.dbo." + row};
            const std::size_t way = random() % ways.size();
            if (session != nullptr && Insert(*session, ways.at(way)) && way < 2) {
                written.push_back(next_);
            }
            ++next_;
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 1500));
        }
    }

    std::vector<int> written; ///< the rows whose insert succeeded

  private:
    std::unique_ptr<Session> LogIn(const std::string& database) {
        LoginRequest request;
        request.user = "sa";
        request.password = "secret";
        request.database = database;
        Transcript sink;
        std::unique_ptr<Session> session = server_.engine().Login(request, sink);
        Check(sink);
        return session;
    }

    /// Returns true if the insert has succeeded.
    bool Insert(Session& session, const std::string& text) {
        Transcript sink;
        session.ExecuteBatch(text, sink);
        return Check(sink) && sink.text.find("(1)\n") != std::string::npos;
    }

    /// Returns false if there was an error. An error that is not in kAway is a failure of the run.
    bool Check(const Transcript& sink) {
        bool good = true;
        for (const Message& message : sink.messages) {
            if (message.severity <= 10) {
                continue;
            }
            good = false;
            if (std::ranges::find(kAway, message.number) == kAway.end()) {
                failures_.Add("a writer got the error " + std::to_string(message.number) + " " +
                              message.text);
            }
        }
        return good;
    }

    TestServer& server_;
    const int number_;
    std::atomic<bool>& stop_;
    Failures& failures_;
    int next_ = number_ * kNumbersOfAWriter;
};

/// The client that moves, renames and drops the databases.
class Storm {
  public:
    Storm(TestServer& server, Failures& failures)
        : server_(server), failures_(failures), client_(server.Login("master")) {
        Must("create database Storm on (name = a, filename = 'D:\\storm0.mdf') log on (name = b, filename = "
             "'D:\\storm0.ldf')");
        Must("create table Storm.dbo.t (n int primary key)");
        MakeScratch();
    }

    void Round(int round) {
        switch (round % 5) {
        case 0:
            Move(false);
            break;
        case 1:
            Rename();
            break;
        case 2:
            Move(true);
            break;
        case 3:
            Offline();
            break;
        default:
            Must("alter database Scratch set single_user with rollback immediate");
            Must("drop database Scratch");
            CheckGone(Drive("scratch"));
            MakeScratch();
        }
    }

    std::set<int> Rows() {
        std::set<int> rows;
        Transcript sink;
        for (bool more = true; more;) { // In portions of 1000, so that the transcripts stay short.
            Client reader = server_.Login("Storm");
            more = false;
            const std::string text =
                reader.Run("set nocount on select top 1000 n from t where n > " +
                           std::to_string(rows.empty() ? -1 : *rows.rbegin()) + " order by n");
            for (std::size_t at = text.find('\n') + 1; at < text.size(); at = text.find('\n', at) + 1) {
                rows.insert(std::stoi(text.substr(at)));
                more = true;
            }
        }
        return rows;
    }

    void CheckNothingLeft() {
        client_.Leave();
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(server_.folder.path() / "drive")) {
            found.insert(entry.path().filename().string());
        }
        const std::string data = "storm" + std::to_string(place_);
        for (const std::string& name : found) {
            if (name != data + ".mdf" && name != data + ".ldf" && name != "scratch.mdf" &&
                name != "scratch.ldf") {
                failures_.Add("left over at the end: " + name);
            }
        }
    }

    int waits = 0; ///< statements that were refused because the database was in use

  private:
    std::filesystem::path Drive(const std::string& stem) const {
        return server_.folder.path() / "drive" / stem;
    }

    void MakeScratch() {
        Must("create database Scratch on (name = a, filename = 'D:\\scratch.mdf') log on (name = b, filename "
             "= "
             "'D:\\scratch.ldf')");
        Must("create table Scratch.dbo.t (n int)");
    }

    /// Repeats the statement as long as it is refused because the database is in use (3702, 3703, 5030,
    /// 5070).
    void Must(const std::string& text) {
        const auto end = steady_clock::now() + kLongestRound;
        for (;;) {
            client_.Run(text);
            const auto error = std::ranges::find_if(
                client_.messages, [](const Message& message) { return message.severity > 10; });
            if (error == client_.messages.end()) {
                return;
            }
            constexpr std::array<std::int32_t, 4> kInUse = {3702, 3703, 5030, 5070};
            if (std::ranges::find(kInUse, error->number) == kInUse.end() || steady_clock::now() > end) {
                failures_.Add(text + ": " + std::to_string(error->number) + " " + error->text);
                throw std::runtime_error("the storm cannot continue");
            }
            ++waits;
        }
    }

    /// Checks that a detached file has no write-ahead log.
    void CheckSettled(const std::filesystem::path& stem) {
        for (const char* companion : {".mdf-wal", ".mdf-shm", ".mdf-journal"}) {
            if (std::filesystem::exists(stem.string() + companion)) {
                failures_.Add("left over after a detach: " + stem.filename().string() + companion);
            }
        }
    }

    void CheckGone(const std::filesystem::path& stem) {
        CheckSettled(stem);
        for (const char* file : {".mdf", ".ldf"}) {
            if (std::filesystem::exists(stem.string() + file)) {
                failures_.Add("left over after a drop or a move: " + stem.filename().string() + file);
            }
        }
    }

    /// Detaches the database, moves its files and attaches it, as an upgrade does.
    void Move(bool throw_out) {
        if (throw_out) {
            Must("alter database Storm set single_user with rollback immediate");
            Must("alter database Storm set multi_user");
        }
        Must("exec sp_detach_db 'Storm', 'true'");
        const std::filesystem::path from = Drive("storm" + std::to_string(place_));
        const std::string to = "storm" + std::to_string(++place_);
        CheckSettled(from);
        for (const char* file : {".mdf", ".ldf"}) {
            std::filesystem::copy_file(from.string() + file, Drive(to).string() + file);
            std::filesystem::remove(from.string() + file);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        Must("exec sp_attach_db 'Storm', 'D:\\" + to + ".mdf', 'D:\\" + to + ".ldf'");
        CheckGone(from);
    }

    void Rename() {
        Must("alter database Storm modify name = Calm");
        Must("exec sp_renamedb 'Calm', 'Storm'");
    }

    void Offline() {
        Must("alter database Storm set offline with rollback immediate");
        CheckSettled(Drive("storm" + std::to_string(place_)));
        Must("alter database Storm set online");
    }

    TestServer& server_;
    Failures& failures_;
    Client client_;
    int place_ = 0; ///< the number in the names of the database's files; each move raises it
};

int Run(int rounds) {
    TestServer server;
    Failures failures;
    Storm storm(server, failures);
    std::atomic<bool> stop = false;
    std::vector<Writer> writers;
    for (int i = 0; i < kWriters; ++i) {
        writers.emplace_back(server, i, stop, failures);
    }
    std::vector<std::thread> threads;
    for (Writer& writer : writers) {
        threads.emplace_back([&writer] { writer.Run(); });
    }
    int done = 0;
    try {
        for (; done < rounds; ++done) {
            storm.Round(done);
            std::this_thread::sleep_for(kCalm);
        }
    } catch (const std::exception& error) {
        failures.Add(error.what());
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::set<int> rows = storm.Rows();
    std::size_t written = 0;
    std::size_t missing = 0;
    for (const Writer& writer : writers) {
        written += writer.written.size();
        missing += static_cast<std::size_t>(
            std::ranges::count_if(writer.written, [&](int row) { return !rows.contains(row); }));
    }
    if (written == 0) {
        failures.Add("no row was written");
    }
    if (missing > 0) {
        failures.Add(std::to_string(missing) + " rows are missing");
    }
    storm.CheckNothingLeft();
    std::printf(
        "%d rounds, %zu rows written, %zu missing, %d statements refused because of use, %d failures\n", done,
        written, missing, storm.waits, failures.count());
    return failures.count() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace devsql::test

int main(int count, char** arguments) {
    const int rounds = count > 1 ? std::atoi(arguments[1]) : 40;
    return rounds > 0 ? devsql::test::Run(rounds) : EXIT_FAILURE;
}

// A server for the tests of OSQL.EXE: it has the development server's protocol, and its batches consist of
// directives, one on each line, which return exactly the results and errors that a test needs, or end the
// server. Prints its port and runs until it is killed.
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>

#include "devserver/engine/engine.h"
#include "devserver/tds/server.h"

namespace {

using namespace devsql;

class DirectiveSession : public Session {
  public:
    void ExecuteBatch(std::string_view sql, ResultSink& sink) override {
        cancelled_ = false;
        if (batches_.size() < kBatchesKept) {
            batches_.append(sql.substr(0, kBatchesKept)).push_back(';');
        }
        std::istringstream lines{std::string(sql)};
        for (std::string line; std::getline(lines, line) && !cancelled_;) {
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            const std::size_t blank = line.find(' ');
            const auto found = Directives().find(line.substr(0, blank));
            if (found != Directives().end()) {
                found->second(*this, {blank == std::string::npos ? "" : line.substr(blank + 1), sql}, sink);
            }
        }
    }
    void ExecuteProcedure(const RpcCall&, ResultSink&) override {}
    void LoadRows(BulkRows&, ResultSink&) override {}
    void Cancel() override { cancelled_ = true; }
    std::string Database() const override { return "master"; }
    std::int32_t Id() const override { return 51; }
    bool Ended() const override { return false; }
    std::int32_t TransactionCount() const override { return 0; }

  private:
    /// A line of a batch without its first word, and the whole batch.
    struct Text {
        std::string argument;
        std::string_view batch;
        std::int64_t Number() const { return std::stoll(argument); }
    };
    using Directive = void (*)(DirectiveSession&, const Text&, ResultSink&);

    static const std::map<std::string, Directive>& Directives() {
        static const std::map<std::string, Directive> directives = {
            {"batches", ReportBatches}, {"die", Die},         {"error", Error},
            {"length", ReportLength},   {"print", Print},     {"PRINT", Blank},
            {"raise", Raise},           {"rows", SelectRows}, {"stuck", Hang},
            {"touched", Count},         {"wait", Wait},
        };
        return directives;
    }

    /// Ends a statement that has no count of rows.
    static void Done(ResultSink& sink) { sink.StatementDone(Command::None, std::nullopt, false); }

    static void SendRows(std::int64_t count, ResultSink& sink) {
        sink.Columns({{"id", {TypeId::Int}}, {"name", {TypeId::VarChar, 12}}});
        for (std::int64_t i = 1; i <= count; ++i) {
            sink.Row({i, i % 2 == 0 ? Value() : Value("row " + std::to_string(i))});
        }
    }

    static void SelectRows(DirectiveSession&, const Text& text, ResultSink& sink) {
        SendRows(text.Number(), sink);
        sink.StatementDone(Command::Select, text.Number(), false);
    }

    static void Error(DirectiveSession&, const Text& text, ResultSink& sink) {
        sink.Send({static_cast<std::int32_t>(text.Number()), 16, 1, "Made to fail.", {}, 1});
        Done(sink);
    }

    /// Sends a message with severity, state and text, and does not end the statement.
    static void Raise(DirectiveSession&, const Text& text, ResultSink& sink) {
        std::istringstream words(text.argument);
        Message message{50000, 0, 0, {}, {}, 1};
        int severity = 0;
        int state = 0;
        words >> severity >> state >> std::ws;
        message.severity = static_cast<decltype(message.severity)>(severity);
        message.state = static_cast<decltype(message.state)>(state);
        std::getline(words, message.text);
        sink.Send(message);
    }

    static void Print(DirectiveSession&, const Text& text, ResultSink& sink) {
        sink.Send({0, 0, 1, text.argument, {}, 1});
        Done(sink);
    }

    /// The statement that the ODBC layer sends before a batch (odbc::Statement::KeepResultsAfterError).
    static void Blank(DirectiveSession&, const Text&, ResultSink& sink) {
        sink.Send({0, 0, 1, " ", {}, 1});
        Done(sink);
    }

    /// Reports the first batches that this session has received.
    static void ReportBatches(DirectiveSession& session, const Text&, ResultSink& sink) {
        sink.Send({0, 0, 1, session.batches_, {}, 1});
        Done(sink);
    }

    static void ReportLength(DirectiveSession&, const Text& text, ResultSink& sink) {
        sink.Columns({{"length", {TypeId::Int}}});
        sink.Row({static_cast<std::int64_t>(text.batch.size())});
        sink.StatementDone(Command::Select, 1, false);
    }

    /// An insert of that many rows.
    static void Count(DirectiveSession&, const Text& text, ResultSink& sink) {
        sink.StatementDone(Command::Insert, text.Number(), false);
    }

    /// Waits until the client cancels the batch.
    static void Wait(DirectiveSession& session, const Text&, ResultSink&) {
        while (!session.cancelled_) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    /// Does not react to a cancel. The test kills the server before the time is over.
    static void Hang(DirectiveSession&, const Text&, ResultSink&) {
        std::this_thread::sleep_for(std::chrono::seconds(300));
    }

    /// Ends the server after some rows, which are sent in part.
    static void Die(DirectiveSession&, const Text& text, ResultSink& sink) {
        SendRows(text.Number(), sink);
        std::_Exit(0);
    }

    static constexpr std::size_t kBatchesKept = 1000; ///< bytes

    std::string batches_; ///< the first batches that were received, each with ";" after it
    std::atomic<bool> cancelled_ = false;
};

/// Accepts every login with the password "secret", and "guest" without a password.
class DirectiveEngine : public Engine {
  public:
    std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) override {
        if (request.password != (request.user == "guest" ? "" : "secret")) {
            sink.Send({18456, 14, 1, "Login failed for user '" + request.user + "'.", {}, 1});
            return nullptr;
        }
        sink.DatabaseChanged("master", "master");
        return std::make_unique<DirectiveSession>();
    }
    const std::string& ServerName() const override { return name_; }

  private:
    std::string name_ = "DIRECT";
};

} // namespace

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    DirectiveEngine engine;
    tds::Server server(engine, {});
    std::cout << server.port() << std::endl;
    server.Run();
    return EXIT_SUCCESS;
}

// A server for the tests of OSQL.EXE: the development server's protocol, and a language of directives, one a
// line, that gives exactly the results, errors and deaths that a test asks for. Prints its port and serves
// until it is killed.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
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
        if (batches_.size() < kMostNoted) {
            batches_.append(sql.substr(0, kMostNoted)).push_back(';');
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
    struct Text {
        std::string argument;
        std::string_view batch;
        std::int64_t Number() const { return std::stoll(argument); }
    };
    using Directive = std::function<void(DirectiveSession&, const Text&, ResultSink&)>;

    static void Done(ResultSink& sink) { sink.StatementDone(Command::None, std::nullopt, false); }

    static void Rows(std::int64_t count, ResultSink& sink) {
        sink.Columns({{"id", {TypeId::Int}}, {"name", {TypeId::VarChar, 12}}});
        for (std::int64_t i = 1; i <= count; ++i) {
            sink.Row({i, i % 2 == 0 ? Value() : Value("row " + std::to_string(i))});
        }
    }

    static const std::map<std::string, Directive>& Directives() {
        static const std::map<std::string, Directive> directives = {
            {"rows",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 Rows(text.Number(), sink);
                 sink.StatementDone(Command::Select, text.Number(), false);
             }},
            {"error",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 sink.Send({static_cast<std::int32_t>(text.Number()), 16, 1, "Made to fail.", {}, 1});
                 Done(sink);
             }},
            // The first batches that the session was sent.
            {"batches",
             [](DirectiveSession& session, const Text&, ResultSink& sink) {
                 sink.Send({0, 0, 1, session.batches_, {}, 1});
                 Done(sink);
             }},
            // Severity, state and text, and no end of a statement after it.
            {"raise",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 std::istringstream words(text.argument);
                 Message message{50000, 0, 0, {}, {}, 1};
                 int severity = 0;
                 int state = 0;
                 words >> severity >> state >> std::ws;
                 message.severity = static_cast<decltype(message.severity)>(severity);
                 message.state = static_cast<decltype(message.state)>(state);
                 std::getline(words, message.text);
                 sink.Send(message);
             }},
            {"print",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 sink.Send({0, 0, 1, text.argument, {}, 1});
                 Done(sink);
             }},
            {"PRINT",
             [](DirectiveSession&, const Text&, ResultSink& sink) {
                 sink.Send({0, 0, 1, " ", {}, 1});
                 Done(sink);
             }},
            {"touched", [](DirectiveSession&, const Text& text,
                           ResultSink& sink) { sink.StatementDone(Command::Insert, text.Number(), false); }},
            {"length",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 sink.Columns({{"length", {TypeId::Int}}});
                 sink.Row({static_cast<std::int64_t>(text.batch.size())});
                 sink.StatementDone(Command::Select, 1, false);
             }},
            {"wait",
             [](DirectiveSession& session, const Text&, ResultSink&) {
                 while (!session.cancelled_) {
                     std::this_thread::sleep_for(std::chrono::milliseconds(5));
                 }
             }},
            {"stuck",
             [](DirectiveSession&, const Text&, ResultSink&) {
                 std::this_thread::sleep_for(std::chrono::seconds(300)); // a test kills the server before
             }},
            {"die",
             [](DirectiveSession&, const Text& text, ResultSink& sink) {
                 Rows(text.Number(), sink); // some of which are on their way by now
                 std::_Exit(0);
             }},
        };
        return directives;
    }

    static constexpr std::size_t kMostNoted = 1000;

    std::string batches_;
    std::atomic<bool> cancelled_ = false;
};

/// Lets in who knows the password "secret", and "guest" without one.
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

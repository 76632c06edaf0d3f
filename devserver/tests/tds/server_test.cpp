// Many clients at the same time, the limit of connections, and stopping the server.
#include <gtest/gtest.h>
#include <thread>

#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

using fakes::BatchMessage;
using fakes::FakeSession;
using fakes::ParseTokens;
using fakes::RunningServer;
using fakes::Summary;
using fakes::TdsClient;

void Answer(FakeSession& session, std::string_view sql, ResultSink& sink) {
    if (sql == "wait") {
        session.WaitForCancel();
        return;
    }
    sink.Columns({{"id", {TypeId::Int}}, {"sql", {TypeId::NVarChar, 100}}});
    sink.Row({std::int64_t{session.Id()}, std::string(sql)});
    sink.StatementDone(Command::Select, 1, false);
}

TEST(TdsServer, ManyClientsAreServedAtTheSameTime) {
    RunningServer server;
    server.engine.script.on_batch = Answer;
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    threads.reserve(50);
    for (int i = 0; i < 50; ++i) {
        threads.emplace_back([&] {
            TdsClient client = server.LoggedIn();
            for (int n = 0; n < 20; ++n) {
                good += Summary(ParseTokens(client.Batch("x"))) == "COLUMNS ROW DONE(10,1)" ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 1000);
}

TEST(TdsServer, AWaitingClientDoesNotBlockAnother) {
    RunningServer server;
    server.engine.script.on_batch = Answer;
    TdsClient waiting = server.LoggedIn();
    waiting.Send(PacketType::SqlBatch, BatchMessage("wait"));
    TdsClient other = server.LoggedIn();
    EXPECT_EQ(Summary(ParseTokens(other.Batch("x"))), "COLUMNS ROW DONE(10,1)");
    waiting.Send(PacketType::Attention, "");
    EXPECT_EQ(Summary(ParseTokens(waiting.Receive().value())), "DONE(00,0)");
    EXPECT_EQ(Summary(ParseTokens(waiting.Receive().value())), "DONE(20,0)");
}

TEST(TdsServer, ClientsOverTheLimitAreRefusedUntilOneDisconnects) {
    ServerOptions options;
    options.connection_limit = 2;
    RunningServer server(options);
    std::optional<TdsClient> first = server.LoggedIn();
    TdsClient second = server.LoggedIn();
    TdsClient third = server.Connect();
    EXPECT_EQ(Summary(ParseTokens(third.LogIn())), "ERROR(17809) DONE(02,0)");
    EXPECT_EQ(third.Receive(), std::nullopt);
    first.reset();
    std::string answer;
    for (int i = 0; i < 6000 && answer.find("LOGINACK") == std::string::npos; ++i) {
        TdsClient next = server.Connect();
        answer = Summary(ParseTokens(next.LogIn()));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_NE(answer.find("LOGINACK"), std::string::npos);
}

TEST(TdsServer, AClientThatDoesNotLogInIsClosedForANewClient) {
    ServerOptions options;
    options.connection_limit = 2;
    options.login_time = std::chrono::hours(1);
    options.login_grace = std::chrono::milliseconds(0);
    RunningServer server(options);
    server.engine.script.on_batch = Answer;
    TdsClient working = server.LoggedIn();
    TdsClient silent = server.Connect();
    TdsClient newcomer = server.LoggedIn();
    EXPECT_EQ(Summary(ParseTokens(newcomer.Batch("x"))), "COLUMNS ROW DONE(10,1)");
    EXPECT_EQ(silent.Receive(), std::nullopt);
    EXPECT_EQ(Summary(ParseTokens(working.Batch("x"))), "COLUMNS ROW DONE(10,1)");
}

TEST(TdsServer, AClientThatDoesNotLogInInTimeIsClosed) {
    ServerOptions options;
    options.login_time = std::chrono::milliseconds(50);
    RunningServer server(options);
    TdsClient silent = server.Connect();
    EXPECT_EQ(silent.Receive(), std::nullopt);
}

TEST(TdsServer, StoppingEndsIdleAndRunningSessions) {
    RunningServer server;
    server.engine.script.on_batch = Answer;
    TdsClient resting = server.LoggedIn();
    TdsClient running = server.LoggedIn();
    running.Send(PacketType::SqlBatch, BatchMessage("wait"));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    server.Stop();
    EXPECT_EQ(server.engine.script.open_sessions, 0);
    EXPECT_EQ(resting.Receive(), std::nullopt);
}

TEST(TdsServer, APortInUseIsAnError) {
    const Listener taken(0);
    EXPECT_THROW(Listener{taken.port()}, std::runtime_error);
}

} // namespace
} // namespace devsql::tds

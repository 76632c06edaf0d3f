// Clients that send invalid data, disconnect at any point or do not read: other clients are not affected.
#include <gtest/gtest.h>
#include <random>
#include <thread>

#include "devserver/tds/connection.h"
#include "devserver/tds/requests.h"
#include "devserver/tests/hex.h"
#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

using fakes::BatchMessage;
using fakes::FakeSession;
using fakes::FromHex;
using fakes::Packets;
using fakes::ParseTokens;
using fakes::RunningServer;
using fakes::Summary;
using fakes::TdsClient;
using fakes::Utf16;

void Answer(FakeSession& session, std::string_view sql, ResultSink& sink) {
    if (sql == "wait") {
        session.WaitForCancel();
        return;
    }
    sink.Columns({{"text", {TypeId::NVarChar, 4000}}});
    for (int i = 0; i < (sql == "much" ? 100000 : 1) && !session.cancelled(); ++i) {
        sink.Row({std::string(1000, 'x')});
    }
    sink.StatementDone(Command::Select, 1, false);
}

class TdsHostile : public testing::Test {
  protected:
    void SetUp() override { server_.engine.script.on_batch = Answer; }

    /// Checks that all sessions have ended and that the server still serves a new client.
    void ExpectUnharmed() {
        EXPECT_TRUE(server_.WaitForNoSession());
        TdsClient client = server_.LoggedIn();
        EXPECT_EQ(Summary(ParseTokens(client.Batch("x"))), "COLUMNS ROW DONE(10,1)");
    }

    /// Waits until this number of batches has begun; false after a minute.
    bool BeginsBatches(std::size_t count) {
        for (int i = 0; i < 30000; ++i) {
            {
                const std::lock_guard lock(server_.engine.script.mutex);
                if (server_.engine.script.batches.size() >= count) {
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }

    RunningServer server_;
};

TEST_F(TdsHostile, DisconnectingAnywhereInTheLogin) {
    const std::string bytes =
        Packets(0x12, fakes::PreLoginMessage()) + Packets(0x10, fakes::LoginMessage({}));
    for (std::size_t length = 0; length <= bytes.size(); length += 7) {
        const TdsClient client = server_.Connect();
        client.SendRaw(std::string_view(bytes).substr(0, length));
    }
    ExpectUnharmed();
}

TEST_F(TdsHostile, DisconnectingAnywhereInABatch) {
    const std::string bytes = Packets(1, BatchMessage(std::string(600, 'x')), 512);
    for (std::size_t length = 0; length <= bytes.size(); length += 100) {
        const TdsClient client = server_.LoggedIn();
        client.SendRaw(std::string_view(bytes).substr(0, length));
    }
    ExpectUnharmed();
}

TEST_F(TdsHostile, DisconnectingWithinAResultCancelsTheBatch) {
    for (std::size_t i = 0; i < 5; ++i) {
        const TdsClient client = server_.LoggedIn();
        client.Send(PacketType::SqlBatch, BatchMessage(i % 2 == 0 ? "much" : "wait"));
        EXPECT_TRUE(BeginsBatches(i + 1));
    }
    ExpectUnharmed();
    EXPECT_GT(server_.engine.script.cancels, 0);
}

TEST_F(TdsHostile, AClientThatDoesNotReadDoesNotBlockOthers) {
    const TdsClient deaf = server_.LoggedIn();
    deaf.Send(PacketType::SqlBatch, BatchMessage("much"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    TdsClient client = server_.LoggedIn();
    EXPECT_EQ(Summary(ParseTokens(client.Batch("x"))), "COLUMNS ROW DONE(10,1)");
    server_.Stop();
    EXPECT_EQ(server_.engine.script.open_sessions, 0);
}

TEST_F(TdsHostile, RequestsThatAreSentEarlyAreAnsweredInTurn) {
    {
        TdsClient client = server_.LoggedIn();
        for (int i = 0; i < 10; ++i) {
            client.Send(PacketType::SqlBatch, BatchMessage("x"));
        }
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(Summary(ParseTokens(client.Receive().value())), "COLUMNS ROW DONE(10,1)") << i;
        }
    }
    ExpectUnharmed();
}

/// The client has ended its sending, so it can ask for nothing more. But its socket is open, and it does not
/// read, so the server's answer would wait for ever.
TEST_F(TdsHostile, AClientThatSendsNothingMoreAndDoesNotReadIsLeft) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    TdsClient client{Socket(system::SocketHandle(ends[0]))};
    Connection connection(Socket(system::SocketHandle(ends[1])), server_.engine, false);
    std::thread running([&connection] { connection.Run(); });
    client.LogIn();
    client.Send(PacketType::SqlBatch, BatchMessage("much"));
    shutdown(ends[0], SHUT_WR);
    for (int i = 0; i < 1000 && server_.engine.script.open_sessions > 0; ++i) {
        connection.Watch();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(server_.engine.script.open_sessions, 0);
    connection.Stop();
    running.join();
}

TEST_F(TdsHostile, RandomBytesInsteadOfALogin) {
    std::mt19937 random(20210607);
    for (int i = 0; i < 200; ++i) {
        std::string bytes(random() % 300, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        const TdsClient client = server_.Connect();
        client.SendRaw(i % 2 == 0 ? bytes : Packets(i % 4 == 1 ? 0x12 : 0x10, bytes));
    }
    ExpectUnharmed();
}

TEST_F(TdsHostile, RandomBytesInEveryKindOfRequest) {
    std::mt19937 random(19650412);
    for (const int type : {0x01, 0x03, 0x06, 0x07, 0x0E, 0x10, 0x11, 0x12, 0x55}) {
        for (int i = 0; i < 20; ++i) {
            std::string bytes(random() % 200, '\0');
            for (char& byte : bytes) {
                byte = static_cast<char>(random());
            }
            TdsClient client = server_.LoggedIn();
            client.SendRaw(
                Packets(static_cast<std::uint8_t>(type), i % 2 == 0 ? bytes : FromHex("04000000") + bytes));
            const std::optional<std::string> answer = client.Receive();
            EXPECT_TRUE(!answer || !ParseTokens(*answer).empty()) << type;
        }
    }
    ExpectUnharmed();
}

TEST_F(TdsHostile, HugeLengthsAllocateNothing) {
    const std::vector<std::string> bodies{
        FromHex("FFFFFFFF"),
        FromHex("04000000 FEFF 0000"),
        FromHex("04000000 0100") + Utf16("p") + FromHex("0000 00 00 23 FFFFFFFF 0904D00034 FEFFFFFF"),
        FromHex("04000000 0100") + Utf16("p") +
            FromHex("0000 00 00 E7 FFFF 0904D00034 FDFFFFFFFFFFFFFF F0FFFFFF"),
        FromHex("04000000 0100") + Utf16("p") + FromHex("0000 00 00 A5 401F 401F"),
        FromHex("04000000 0100") + Utf16("p") + FromHex("0000 FD"),
    };
    TdsClient client = server_.LoggedIn();
    for (const std::string& body : bodies) {
        client.Send(PacketType::Rpc, body);
        EXPECT_EQ(ParseTokens(client.Receive().value()).front().type, token::kError) << fakes::Hex(body);
    }
    client = server_.Connect();
    ExpectUnharmed();
}

TEST_F(TdsHostile, AMessageOverTheLimitIsRefused) {
    TdsClient client = server_.LoggedIn();
    const std::string packet =
        FromHex("01 00 7F FF 00 00 01 00") + std::string(kLargestPacket - kHeaderSize, 'x');
    for (std::size_t sent = 0; sent <= kLargestMessage; sent += packet.size() - kHeaderSize) {
        client.SendRaw(packet);
    }
    EXPECT_EQ(Summary(ParseTokens(client.Receive().value())), "ERROR(17836) DONE(02,0)");
    EXPECT_EQ(client.Receive(), std::nullopt);
    ExpectUnharmed();
}

TEST_F(TdsHostile, MutatedCallsAreParsedWithoutHarm) {
    const std::string whole =
        FromHex("04000000 0300") + Utf16("abc") + FromHex("0000 02") + Utf16("@a") +
        FromHex("00 26 04 04 05000000 00 01 E7 FFFF 0904D00034 FEFFFFFFFFFFFFFF 02000000 "
                "6100 00000000 00 00 6A 11 26 04 05 01 05000000 FF FFFF 0D00 0000");
    std::mt19937 random(1601);
    for (int i = 0; i < 200000; ++i) {
        std::string mutated = whole;
        for (int n = static_cast<int>(random() % 4); n >= 0; --n) {
            mutated[random() % mutated.size()] = static_cast<char>(random());
        }
        mutated.resize(mutated.size() - random() % 8);
        const RpcRequest request = ParseRpc(mutated, i % 2 == 0 ? Version::V74 : Version::V71);
        EXPECT_TRUE(request.error || !request.calls.empty());
    }
}

} // namespace
} // namespace devsql::tds

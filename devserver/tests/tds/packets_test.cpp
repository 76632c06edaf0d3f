// Messages and their packets, in both directions.
#include "devserver/tds/packets.h"

#include <gtest/gtest.h>

#include "devserver/tds/protocol_error.h"
#include "devserver/tests/hex.h"
#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

using fakes::Hex;
using fakes::Packets;
using fakes::SocketPair;

constexpr std::chrono::minutes kLongest{1}; ///< that only a failure waits for

std::string ReadAll(const Socket& socket) {
    std::string all;
    char byte = 0;
    while (socket.ReadExactly(&byte, 1, Until(std::chrono::steady_clock::now() + kLongest))) {
        all += byte;
    }
    return all;
}

std::optional<ClientMessage> Read(const std::string& bytes, std::size_t limit = kLargestMessage) {
    const auto [client, server] = SocketPair();
    client.Write(bytes);
    client.Shutdown();
    return ReadMessage(server, limit);
}

std::int32_t ErrorOf(const std::string& bytes, std::size_t limit = kLargestMessage) {
    try {
        Read(bytes, limit);
    } catch (const ProtocolError& error) {
        EXPECT_GE(error.severity(), kFatalSeverity);
        return error.number();
    }
    return 0;
}

TEST(TdsPackets, AMessageIsAssembledFromItsPackets) {
    const std::string data(1500, 'x');
    const auto message = Read(Packets(1, data, 512, packet_status::kResetConnection));
    ASSERT_TRUE(message);
    EXPECT_EQ(message->type, PacketType::SqlBatch);
    EXPECT_EQ(message->data, data);
    EXPECT_EQ(message->first_status, packet_status::kResetConnection);
    EXPECT_FALSE(message->ignore);
}

TEST(TdsPackets, AMessageCanBeEmptyAndCanBeMarkedIgnored) {
    EXPECT_EQ(Read(Packets(6, ""))->type, PacketType::Attention);
    EXPECT_TRUE(Read(Packets(1, "x", 4096, packet_status::kIgnore))->ignore);
}

TEST(TdsPackets, AConnectionThatEndsBetweenMessagesIsNotAnError) {
    EXPECT_FALSE(Read(""));
}

TEST(TdsPackets, AConnectionThatEndsWithinAMessageIsAnError) {
    const std::string whole = Packets(1, std::string(1000, 'x'), 512);
    for (const std::size_t length : {1U, 7U, 8U, 9U, 512U, 515U, 1015U}) {
        EXPECT_THROW(Read(whole.substr(0, length)), ConnectionLost) << length;
    }
}

TEST(TdsPackets, InvalidHeadersAreRefused) {
    EXPECT_EQ(ErrorOf(fakes::FromHex("01 01 00 07 00 00 01 00")), 17836); // shorter than itself
    EXPECT_EQ(ErrorOf(fakes::FromHex("01 01 80 00 00 00 01 00")), 17836); // 32768
    EXPECT_EQ(ErrorOf("GET / HTTP/1.1\r\n"), 17836);
    EXPECT_EQ(ErrorOf(fakes::FromHex("01 00 00 09 00 00 01 00 41 03 01 00 08 00 00 02 00")), 17836);
}

TEST(TdsPackets, AMessageOverTheLimitIsRefused) {
    EXPECT_EQ(ErrorOf(Packets(1, std::string(1000, 'x'), 512), 999), 17836);
    EXPECT_EQ(ErrorOf(Packets(1, std::string(1000, 'x'), 512), 1000), 0);
}

TEST(TdsPackets, ReadingEndsAtTheDeadline) {
    const auto [client, server] = SocketPair();
    client.Write(std::string_view("\x12\x01", 2));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(30);
    EXPECT_THROW(ReadMessage(server, 100, Until(deadline)), ConnectionLost);
}

TEST(TdsPacketWriter, AnAnswerIsSplitIntoFullPacketsAndALastOne) {
    const auto [client, server] = SocketPair();
    PacketWriter writer(server);
    writer.SetPacketSize(512);
    writer.SetSessionId(0x0134);
    writer.Append(std::string(504 + 1, 'x'));
    writer.EndMessage();
    server.Shutdown();
    const std::string sent = ReadAll(client);
    ASSERT_EQ(sent.size(), 512U + 9U);
    EXPECT_EQ(Hex(sent.substr(0, 8)), "04 00 02 00 01 34 01 00");
    EXPECT_EQ(Hex(sent.substr(512)), "04 01 00 09 01 34 02 00 78");
}

TEST(TdsPacketWriter, TheFirstFullPacketsOfAnAnswerAreSentOneByOne) {
    const auto [client, server] = SocketPair();
    PacketWriter writer(server);
    const std::string packet(kLoginPacket - kHeaderSize, 'x');
    for (int answer = 0; answer < 2; ++answer) {
        writer.Append(packet);
        for (int i = 0; i < 16; ++i) {
            writer.Append(packet);
            ASSERT_TRUE(client.WaitReadable(kLongest)) << i;
            std::string sent(kLoginPacket, '\0');
            client.ReadExactly(sent.data(), sent.size());
        }
        writer.EndMessage();
        std::string last(kLoginPacket, '\0');
        client.ReadExactly(last.data(), last.size());
    }
}

TEST(TdsPacketWriter, FullPacketsAreGatheredUpToALimit) {
    const auto [client, server] = SocketPair();
    PacketWriter writer(server);
    const std::string packet(kLoginPacket - kHeaderSize, 'x');
    std::string sent;
    std::size_t appended = 0;
    // A packet that was filled slowly is sent alone, so a busy machine may need several attempts.
    bool kept = false;
    for (int i = 0; i < 1000 && !kept; ++i) {
        writer.Append(packet);
        ++appended;
        kept = i > 0 && !client.WaitReadable(std::chrono::milliseconds(0));
        for (char byte = 0; client.WaitReadable(std::chrono::milliseconds(0)); sent += byte) {
            client.ReadExactly(&byte, 1);
        }
    }
    EXPECT_TRUE(kept);
    for (int i = 0; i < 20; ++i, ++appended) {
        writer.Append(packet);
    }
    EXPECT_TRUE(client.WaitReadable(kLongest));
    writer.EndMessage();
    server.Shutdown();
    sent += ReadAll(client);
    ASSERT_EQ(sent.size(), appended * kLoginPacket);
    for (std::size_t i = 1; i <= appended; ++i) {
        EXPECT_EQ(Hex(sent.substr((i - 1) * kLoginPacket, 4)), i < appended ? "04 00 10 00" : "04 01 10 00");
    }
}

TEST(TdsPacketWriter, AnAnswerThatFillsAPacketHasNoFurtherPacket) {
    const auto [client, server] = SocketPair();
    PacketWriter writer(server);
    writer.SetPacketSize(512);
    writer.Append(std::string(504, 'x'));
    writer.EndMessage();
    writer.Append("y");
    writer.EndMessage();
    server.Shutdown();
    const std::string sent = ReadAll(client);
    ASSERT_EQ(sent.size(), 512U + 9U);
    EXPECT_EQ(Hex(sent.substr(0, 8)), "04 01 02 00 00 00 01 00");
    EXPECT_EQ(Hex(sent.substr(512)), "04 01 00 09 00 00 01 00 79");
}

TEST(TdsPacketWriter, TheSizeStaysWithinTheProtocolsLimits) {
    const auto [client, server] = SocketPair();
    PacketWriter writer(server);
    writer.SetPacketSize(1);
    writer.Append(std::string(600, 'x'));
    writer.EndMessage();
    server.Shutdown();
    EXPECT_EQ(Hex(ReadAll(client).substr(2, 2)), "02 00");
}

TEST(TdsPacketWriter, ADisconnectedClientIsAnErrorAndNotASignal) {
    auto [client, server] = SocketPair();
    client.Shutdown();
    PacketWriter writer(server);
    writer.Append("x");
    EXPECT_THROW(writer.EndMessage(), ConnectionLost);
}

} // namespace
} // namespace devsql::tds

// Bulk loads: the bytes that clients send, and long messages that are read while they arrive.
#include "devserver/tds/bulk_load.h"

#include <gtest/gtest.h>

#include "devserver/tests/hex.h"
#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

using fakes::FromHex;
using fakes::Packets;
using fakes::ParseTokens;
using fakes::RunningServer;
using fakes::Summary;
using fakes::TdsClient;
using fakes::Utf16;
using Step = BulkRows::Step;
using State = BulkReader::State;

/// Two columns, an int and an nvarchar(100), in the form since TDS 7.2.
std::string Columns() {
    return FromHex("81 0200 00000000 0000 26 04 01") + Utf16("a") +
           FromHex("00000000 0000 E7 C800 0904D00034 01") + Utf16("b");
}
const std::string kDone = FromHex("FD 0000 0000 0000000000000000");

std::string Row(std::uint8_t number, std::string_view text) {
    std::string row = FromHex("D1 04") + static_cast<char>(number) + FromHex("000000");
    row += static_cast<char>(text.size() * 2);
    return row + '\0' + Utf16(text);
}

class TdsBulkReader : public testing::Test {
  protected:
    /// A function that returns the packets of a message one by one: a packet for each part. `end` says how
    /// the message ends.
    static std::function<ClientPacket()> Message(std::vector<std::string> parts, State end = State::Whole) {
        return [parts = std::move(parts), end, next = std::size_t{0}]() mutable -> ClientPacket {
            if (next == parts.size()) {
                throw ConnectionLost("gone");
            }
            const bool last = next + 1 == parts.size() && end != State::Lost;
            const int status = (last ? packet_status::kEndOfMessage : 0) |
                               (last && end == State::TakenBack ? packet_status::kIgnore : 0);
            return {PacketType::BulkLoad, static_cast<std::uint8_t>(status), parts[next++]};
        };
    }

    /// Reads a message and describes it: each row as "7 x ", then "end", "gone" or the number of the error.
    std::string ReadAll(const std::string& data, State end = State::Whole, Version version = Version::V74) {
        return ReadAll(Message({data}, end), version);
    }
    static std::string ReadAll(std::function<ClientPacket()> packets, Version version = Version::V74) {
        BulkReader reader(std::move(packets), version);
        std::string text;
        std::vector<Value> row;
        for (;;) {
            const Step step = reader.Next(row);
            if (step == Step::End) {
                return text + "end";
            }
            if (step == Step::Gone) {
                return text + (reader.error() ? std::to_string(reader.error()->number()) : "gone");
            }
            if (step == Step::Row) {
                for (const Value& value : row) {
                    text += IsNull(value) ? "null "
                            : std::holds_alternative<std::string>(value)
                                ? std::get<std::string>(value) + " "
                                : std::to_string(std::get<std::int64_t>(value)) + " ";
                }
            }
        }
    }
};

TEST_F(TdsBulkReader, ReadsRows) {
    EXPECT_EQ(ReadAll(Columns() + kDone), "end");
    EXPECT_EQ(ReadAll(Columns() + Row(7, "x")), "7 x end"); // FreeTDS writes no end.
    EXPECT_EQ(ReadAll(Columns() + Row(7, "x") + Row(8, "") + FromHex("D1 00 FFFF") + kDone),
              "7 x 8  null null end");
}

TEST_F(TdsBulkReader, RowsCanBeSplitAnywhere) {
    const std::string data = Columns() + Row(7, "x") + Row(8, std::string(90, 'y')) + kDone;
    for (std::size_t cut = 0; cut <= data.size(); ++cut) {
        const std::vector<std::string> parts{data.substr(0, cut), data.substr(cut)};
        ASSERT_EQ(ReadAll(Message(parts)), "7 x 8 " + std::string(90, 'y') + " end") << cut;
        // Also after DONE the client can still take the message back.
        ASSERT_TRUE(ReadAll(Message({parts[0], parts[1], ""}, State::TakenBack)).ends_with("gone")) << cut;
    }
}

TEST_F(TdsBulkReader, TextValuesHaveATextPointerInEachRow) {
    const std::string head = FromHex("81 0100");
    const std::string tail = FromHex("01") + Utf16("t");
    const std::string row = FromHex("D1 10") + std::string(16, '\0') + std::string(8, '\0') +
                            FromHex("03000000 616263") + FromHex("D1 00");
    // The table name is a single text in every version.
    EXPECT_EQ(ReadAll(head + FromHex("00000000 0000 23 FFFFFF7F 0904D00034 0100") + Utf16("t") + tail + row +
                      kDone),
              "abc null end");
    EXPECT_EQ(
        ReadAll(head + FromHex("0000 0000 23 FFFFFF7F 0904D00034 0100") + Utf16("t") + tail + row + kDone,
                State::Whole, Version::V71),
        "abc null end");
}

TEST_F(TdsBulkReader, AnIncompleteMessageDoesNotEndTheLoad) {
    const std::string rows = Columns() + Row(7, "x");
    EXPECT_EQ(ReadAll(rows + kDone, State::TakenBack), "7 x gone");
    EXPECT_EQ(ReadAll(rows, State::Lost), "7 x gone");
}

TEST_F(TdsBulkReader, APacketThatCannotBeIsTheLoadsError) {
    const auto packets = [first = true, rows = Columns() + Row(7, "x")]() mutable -> ClientPacket {
        if (!std::exchange(first, false)) {
            throw ProtocolError(error_number::kPacketLength, kFatalSeverity, "too long");
        }
        return {PacketType::BulkLoad, 0, rows};
    };
    EXPECT_EQ(ReadAll(packets), "7 x 17836");
}

TEST_F(TdsBulkReader, InvalidBytesAreErrors) {
    EXPECT_EQ(ReadAll(""), "4002");
    EXPECT_EQ(ReadAll(Row(7, "x") + kDone), "4002");
    EXPECT_EQ(ReadAll(Columns() + Row(7, "x").substr(0, 9)), "4002");
    EXPECT_EQ(ReadAll(Columns() + "z"), "4002");
    EXPECT_EQ(ReadAll(Columns() + FromHex("D1 03 010203")), "8016");
    EXPECT_EQ(ReadAll(FromHex("81 0100 00000000 0000 99 01") + Utf16("a")), "8009");
    EXPECT_EQ(ReadAll(FromHex("81 0100 00000000 0000 F1 00 01") + Utf16("a")), "40510");
}

TEST_F(TdsBulkReader, TheErrorOfAWrongColumnNamesTheColumn) {
    BulkReader reader(Message({FromHex("81 0100 00000000 0000 26 09")}), Version::V74);
    std::vector<Value> row;
    EXPECT_EQ(reader.Next(row), Step::Gone);
    ASSERT_TRUE(reader.error());
    EXPECT_NE(std::string(reader.error()->what()).find("bulk load protocol stream is incorrect. Column 1"),
              std::string::npos);
}

// ------------------------------------------------------------------ through the connection

class TdsBulkLoad : public testing::Test {
  protected:
    fakes::FakeScript& script() { return server_.engine.script; }
    static std::string Summarize(TdsClient& client) {
        const std::optional<std::string> answer = client.Receive();
        return answer ? Summary(ParseTokens(*answer)) : "closed";
    }
    /// A load of many rows. It has more bytes than the sockets' buffers hold, so the client can send it only
    /// if the server reads it.
    static std::string Many(int rows) {
        std::string data = Columns();
        for (int i = 0; i < rows; ++i) {
            data += Row(1, std::string(90, 'x'));
        }
        return data;
    }

    RunningServer server_;
};

TEST_F(TdsBulkLoad, RowsReachTheEngineBeforeTheMessageEnds) {
    TdsClient client = server_.LoggedIn();
    const std::string packets = Packets(7, Many(20000) + kDone);
    const std::size_t half = packets.size() / 2;
    client.SendRaw(packets.substr(0, half));
    std::size_t seen = 0;
    for (int i = 0; i < 6000 && seen < 9000; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const std::lock_guard lock(script().mutex);
        seen = script().bulk_rows.size();
    }
    EXPECT_GE(seen, 9000U);
    client.SendRaw(packets.substr(half));
    EXPECT_EQ(Summarize(client), "DONE(10,20000)");
    EXPECT_EQ(script().bulk_rows.size(), 20000U);
}

TEST_F(TdsBulkLoad, ALoadThatTheEngineRefusesIsStillReadToItsEnd) {
    script().refuse_bulk = true;
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::BulkLoad, Many(20000) + kDone);
    EXPECT_EQ(Summarize(client), "DONE(00,0)");
    script().refuse_bulk = false;
    client.Send(PacketType::BulkLoad, Columns() + Row(1, "x") + kDone);
    EXPECT_EQ(Summarize(client), "DONE(10,1)");
}

TEST_F(TdsBulkLoad, AnIgnoredOrInvalidLoadIsAnErrorAndTheConnectionStays) {
    TdsClient client = server_.LoggedIn();
    std::string packets = Packets(7, Columns() + Row(1, "x") + kDone);
    packets[1] = static_cast<char>(packet_status::kEndOfMessage | packet_status::kIgnore);
    client.SendRaw(packets);
    EXPECT_EQ(Summarize(client), "DONE(02,0)");
    client.Send(PacketType::BulkLoad, "rows");
    EXPECT_EQ(Summarize(client), "ERROR(4002) DONE(02,0)");
    client.Send(PacketType::BulkLoad, Columns() + kDone);
    EXPECT_EQ(Summarize(client), "DONE(10,0)");
}

TEST_F(TdsBulkLoad, AnAttentionAfterALoadIsAcknowledged) {
    TdsClient client = server_.LoggedIn();
    std::string packets = Packets(7, Columns() + Row(1, "x") + kDone);
    packets[1] = static_cast<char>(packet_status::kEndOfMessage | packet_status::kIgnore);
    client.SendRaw(packets);
    client.Send(PacketType::Attention, "");
    const std::string answer = Summarize(client);
    EXPECT_TRUE(answer == "DONE(02,0)" || answer == "DONE(00,0)")
        << answer; // Depends on whether the attention arrived before or after the load's end.
    EXPECT_EQ(Summarize(client), "DONE(20,0)");
}

TEST_F(TdsBulkLoad, AClientThatDisconnectsDuringALoadEndsItsSession) {
    for (const bool refused : {false, true}) {
        script().refuse_bulk = refused;
        TdsClient client = server_.LoggedIn();
        const std::string packets = Packets(7, Many(20000));
        client.SendRaw(packets.substr(0, packets.size() - 100));
        client.socket().Shutdown();
        EXPECT_TRUE(server_.WaitForNoSession());
    }
}

/// The client stops in the middle of a packet and sends nothing more, so the server must end the connection
/// by itself.
TEST_F(TdsBulkLoad, ASessionThatIsThrownOutDuringALoadLosesItsConnection) {
    for (const bool refused : {false, true}) {
        script().refuse_bulk = refused;
        fakes::FakeSession* loading = nullptr;
        script().on_batch = [&](fakes::FakeSession& session, std::string_view, ResultSink&) {
            loading = &session;
        };
        TdsClient client = server_.LoggedIn();
        client.Batch("insert bulk");
        const std::string packets = Packets(7, Many(20000));
        const int before = script().loads;
        client.SendRaw(packets.substr(0, packets.size() - 100));
        for (int i = 0; i < 6000 && script().loads == before; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        loading->End();
        EXPECT_EQ(Summarize(client), "DONE(00,0)");
        EXPECT_EQ(Summarize(client), "closed");
        EXPECT_TRUE(server_.WaitForNoSession());
    }
}

TEST_F(TdsBulkLoad, TheServerStopsDuringAStalledLoad) {
    TdsClient client = server_.LoggedIn();
    const std::string packets = Packets(7, Many(20000));
    client.SendRaw(packets.substr(0, packets.size() / 2));
    server_.Stop();
    EXPECT_TRUE(server_.WaitForNoSession());
}

} // namespace
} // namespace devsql::tds

// The bytes of an answer's tokens, before and since TDS 7.2.
#include "devserver/tds/tokens.h"

#include <functional>
#include <gtest/gtest.h>

#include "devserver/tests/hex.h"
#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

std::string Written(Version version, const std::function<void(TokenWriter&)>& write) {
    auto [client, server] = fakes::SocketPair();
    PacketWriter packets(server);
    packets.SetPacketSize(kLargestPacket);
    TokenWriter tokens(packets, "S");
    tokens.SetVersion(version);
    write(tokens);
    packets.EndMessage();
    fakes::TdsClient reader(std::move(client));
    return fakes::Hex(*reader.Receive());
}

TEST(TdsTokens, LineNumbersHaveTwoBytesBefore72AndFourSince) {
    const auto write = [](TokenWriter& tokens) { tokens.WriteMessage({208, 16, 2, "ab", "p", 70000}); };
    EXPECT_EQ(Written(Version::V71, write),
              "AA 14 00 D0 00 00 00 02 10 02 00 61 00 62 00 01 53 00 01 70 00 FF FF");
    EXPECT_EQ(Written(Version::V72, write),
              "AA 16 00 D0 00 00 00 02 10 02 00 61 00 62 00 01 53 00 01 70 00 70 11 01 00");
}

TEST(TdsTokens, AMessageUpToSeverityTenIsInformation) {
    const auto first = [](std::uint8_t severity) {
        return Written(Version::V74,
                       [=](TokenWriter& tokens) {
                           tokens.WriteMessage({50000, severity, 1, "x", "", 1});
                       })
            .substr(0, 2);
    };
    EXPECT_EQ(first(0), "AB");
    EXPECT_EQ(first(10), "AB");
    EXPECT_EQ(first(11), "AA");
}

TEST(TdsTokens, SeverityTenIsSentAsZero) {
    const auto severity = [](std::uint8_t given) {
        constexpr std::size_t kPlace = 3 * (1 + 2 + 4 + 1); // after token, length, number and state
        return Written(Version::V74,
                       [=](TokenWriter& tokens) {
                           tokens.WriteMessage({5701, given, 1, "x", "", 1});
                       })
            .substr(kPlace, 2);
    };
    EXPECT_EQ(severity(10), "00");
    EXPECT_EQ(severity(9), "09");
    EXPECT_EQ(severity(11), "0B");
}

TEST(TdsTokens, ALongMessageIsCutToTheLimitOfAToken) {
    const std::string hex = Written(Version::V74, [](TokenWriter& tokens) {
        tokens.WriteMessage({50000, 16, 1, std::string(100000, 'x'), std::string(1000, 'p'), 1});
    });
    EXPECT_EQ(hex.size() / 3 + 1, 3U + 4 + 2 + 2 + 64000 + 1 + 2 + 1 + 256 + 4);
}

TEST(TdsTokens, LoginAckHasTheProtocolVersion) {
    const auto version = [](Version v) {
        return Written(v, [](TokenWriter& tokens) { tokens.WriteLoginAck(); }).substr(9, 14);
    };
    EXPECT_EQ(version(Version::V71), "01 07 01 00 00");
    EXPECT_EQ(version(Version::V71Revision1), "01 71 00 00 01");
    EXPECT_EQ(version(Version::V72), "01 72 09 00 02");
    EXPECT_EQ(version(Version::V73A), "01 73 0A 00 03");
    EXPECT_EQ(version(Version::V73B), "01 73 0B 00 03");
    EXPECT_EQ(version(Version::V74), "01 74 00 00 04");
}

TEST(TdsTokens, EnvironmentChangesHaveTheNewValueBeforeTheOldOne) {
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WriteDatabaseChange("a", "b"); }),
              "E3 07 00 01 01 62 00 01 61 00");
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WriteLanguage("e"); }), "E3 05 00 02 01 65 00 00");
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WritePacketSize(1, 2); }),
              "E3 07 00 04 01 32 00 01 31 00");
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WriteCollation(); }),
              "E3 08 00 07 05 09 04 D0 00 34 00");
    EXPECT_EQ(
        Written(Version::V74, [](TokenWriter& t) { t.WriteTransaction(Environment::BeginTransaction, 1); }),
        "E3 0B 00 08 08 01 00 00 00 00 00 00 00 00");
    EXPECT_EQ(Written(Version::V74,
                      [](TokenWriter& t) { t.WriteTransaction(Environment::RollbackTransaction, 1); }),
              "E3 0B 00 0A 00 08 01 00 00 00 00 00 00 00");
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WriteResetAcknowledged(); }), "E3 03 00 12 00 00");
}

TEST(TdsTokens, TheUserTypeOfAColumnHasTheWidthOfTheVersion) {
    const auto write = [](TokenWriter& tokens) {
        tokens.WriteColumns({{"a", {TypeId::Int}, false, true}, {"", {TypeId::Timestamp}}});
    };
    EXPECT_EQ(Written(Version::V71, write), "81 02 00 00 00 18 00 26 04 01 61 00 50 00 09 00 AD 08 00 00");
    EXPECT_EQ(Written(Version::V72, write),
              "81 02 00 00 00 00 00 18 00 26 04 01 61 00 50 00 00 00 09 00 AD 08 00 00");
}

TEST(TdsTokens, TextColumnsHaveAnEmptyTableName) {
    const auto write = [](TokenWriter& tokens) { tokens.WriteColumns({{"a", {TypeId::Image}}}); };
    EXPECT_EQ(Written(Version::V71, write), "81 01 00 00 00 09 00 22 FF FF FF 7F 00 00 01 61 00");
    EXPECT_EQ(Written(Version::V72, write), "81 01 00 00 00 00 00 09 00 22 FF FF FF 7F 00 01 61 00");
}

TEST(TdsTokens, RowsAreEncodedByTheirColumns) {
    EXPECT_EQ(Written(Version::V74,
                      [](TokenWriter& tokens) {
                          tokens.WriteColumns({{"", {TypeId::TinyInt}}});
                          tokens.WriteRow({std::int64_t{7}});
                          tokens.WriteRow({Value{}});
                          EXPECT_THROW(tokens.WriteRow({std::int64_t{256}}), EncodingError);
                          EXPECT_THROW(tokens.WriteRow({}), EncodingError);
                      }),
              "81 01 00 00 00 00 00 09 00 26 01 00 D1 01 07 D1 00");
}

TEST(TdsTokens, TheRowCountHasFourBytesBefore72AndEightSince) {
    const auto write = [](TokenWriter& tokens) {
        tokens.WriteDone(DoneToken::DoneInProcedure, 0x11, Command::Select, 3);
    };
    EXPECT_EQ(Written(Version::V71, write), "FF 11 00 C1 00 03 00 00 00");
    EXPECT_EQ(Written(Version::V72, write), "FF 11 00 C1 00 03 00 00 00 00 00 00 00");
}

TEST(TdsTokens, ReturnStatusAndReturnValue) {
    EXPECT_EQ(Written(Version::V74, [](TokenWriter& t) { t.WriteReturnStatus(-6); }), "79 FA FF FF FF");
    const auto write = [](TokenWriter& t) {
        t.WriteReturnValue(1, "@a", {TypeId::TinyInt}, std::int64_t{7});
    };
    EXPECT_EQ(Written(Version::V71, write), "AC 01 00 02 40 00 61 00 01 00 00 01 00 26 01 01 07");
    EXPECT_EQ(Written(Version::V74, write), "AC 01 00 02 40 00 61 00 01 00 00 00 00 01 00 26 01 01 07");
}

} // namespace
} // namespace devsql::tds

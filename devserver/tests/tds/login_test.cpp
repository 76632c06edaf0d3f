// Prelogin and login messages: valid, truncated and damaged.
#include "devserver/tds/login.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "devserver/tds/prelogin.h"
#include "devserver/tds/protocol_error.h"
#include "devserver/tests/hex.h"
#include "devserver/tests/tds/client.h"

namespace devsql::tds {
namespace {

using fakes::LoginFields;
using fakes::LoginMessage;

Login Parse(const std::string& message) {
    Version version = Version::V74;
    return ParseLogin(message, version);
}

std::int32_t ErrorOf(const std::string& message) {
    try {
        Parse(message);
    } catch (const ProtocolError& error) {
        return error.number();
    }
    return 0;
}

TEST(TdsPreLogin, TheAnswerOffersNoEncryption) {
    EXPECT_EQ(fakes::Hex(PreLoginAnswer()),
              "00 00 1A 00 06 01 00 20 00 01 02 00 21 00 01 03 00 22 00 00 04 00 22 00 01 FF "
              "0E 00 03 E8 00 00 02 00 00");
}

TEST(TdsPreLogin, EncryptionAndInstanceAreRead) {
    const PreLogin asked = ParsePreLogin(fakes::FromHex("01 000B 0001 02 000C 0003 FF 03 41 42 00"));
    EXPECT_EQ(asked.encryption, Encryption::Required);
    EXPECT_EQ(asked.instance, "AB");
}

TEST(TdsPreLogin, WhatLiesOutsideOrDoesNotEndIsRefused) {
    for (const char* hex :
         {"", "00", "01 00 0B 00 01", "01 00 06 00 02 FF 00", "01 FF FF 00 01 FF", "01 0006 0000 FF"}) {
        EXPECT_THROW(ParsePreLogin(fakes::FromHex(hex)), ProtocolError) << hex;
    }
}

TEST(TdsLogin, EveryFieldIsRead) {
    LoginFields fields;
    fields.database = "Batch";
    fields.packet_size = 8192;
    const Login login = Parse(LoginMessage(fields));
    EXPECT_EQ(login.user, "sa");
    EXPECT_EQ(login.password, "secret");
    EXPECT_EQ(login.host_name, "bench");
    EXPECT_EQ(login.application, "tests");
    EXPECT_EQ(login.server, "localhost");
    EXPECT_EQ(login.library, "library");
    EXPECT_EQ(login.database, "Batch");
    EXPECT_EQ(login.packet_size, 8192U);
    EXPECT_TRUE(login.odbc);
}

TEST(TdsLogin, TheVersionIsTheLatestThatBothSupport) {
    const std::vector<std::pair<std::uint32_t, Version>> versions{
        {0x71000000, Version::V71},  {0x71000001, Version::V71Revision1}, {0x72090002, Version::V72},
        {0x730A0003, Version::V73A}, {0x730B0003, Version::V73B},         {0x74000004, Version::V74},
        {0x75000000, Version::V74},
    };
    for (const auto& [number, version] : versions) {
        LoginFields fields;
        fields.version = number;
        EXPECT_EQ(Parse(LoginMessage(fields)).version, version) << std::hex << number;
    }
}

TEST(TdsLogin, ANulInTheServerNameIsAccepted) {
    LoginFields fields;
    fields.server = std::string("127.0.0.1\0"
                                "21000",
                                15);
    const Login login = Parse(LoginMessage(fields));
    EXPECT_EQ(login.server.size(), 15U);
    EXPECT_EQ(login.user, "sa");
}

TEST(TdsLogin, APasswordMayHaveAnyCharacter) {
    // "pä€" encoded by hand: each byte of 70 00 E4 00 AC 20 with its halves swapped, xored with A5.
    LoginFields fields;
    fields.password = "abc";
    std::string message = LoginMessage(fields);
    const std::size_t at = 94 + (fields.host.size() + fields.user.size()) * 2;
    message.replace(at, 6, fakes::FromHex("A2 A5 EB A5 6F A7"));
    EXPECT_EQ(Parse(message).password, "p\xC3\xA4\xE2\x82\xAC");
}

TEST(TdsLogin, FeaturesAreSkippedAndAFederatedLoginIsRefused) {
    LoginFields fields;
    fields.option_flags3 = 0x10;
    fields.features = fakes::FromHex("01 00000000 0A 01000000 01 FF");
    EXPECT_EQ(Parse(LoginMessage(fields)).user, "sa");
    fields.features = fakes::FromHex("02 01000000 00 FF");
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 40510);
    fields.features = fakes::FromHex("01 FFFFFFFF FF");
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 17832);
    fields.features = fakes::FromHex("01 00000000");
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 17832);
}

TEST(TdsLogin, AWindowsLoginIsRefused) {
    LoginFields fields;
    fields.option_flags2 = 0x82;
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 18452);
}

TEST(TdsLogin, ChangingThePasswordIsRefused) {
    LoginFields fields;
    fields.option_flags3 = 0x01;
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 40510);
}

TEST(TdsLogin, AnOlderVersionIsRefused) {
    LoginFields fields;
    fields.version = 0x70000000;
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 17832);
}

TEST(TdsLogin, ATruncatedLoginIsRefused) {
    const std::string whole = LoginMessage({});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(ErrorOf(whole.substr(0, length)), 17832) << length;
    }
}

TEST(TdsLogin, ADamagedByteIsAcceptedOrRefused) {
    LoginFields fields;
    fields.option_flags3 = 0x10;
    fields.features = fakes::FromHex("01 00000000 FF");
    const std::string whole = LoginMessage(fields);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int byte : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[i] = static_cast<char>(byte);
            const std::int32_t error = ErrorOf(damaged);
            EXPECT_TRUE(error == 0 || error == 17832 || error == 18452 || error == 40510)
                << i << ": " << error;
        }
    }
}

TEST(TdsLogin, ATextOverTheLimitIsRefused) {
    LoginFields fields;
    fields.user = std::string(129, 'x');
    EXPECT_EQ(ErrorOf(LoginMessage(fields)), 17832);
}

} // namespace
} // namespace devsql::tds

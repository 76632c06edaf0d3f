// The content of batches, procedure calls and transaction requests.
#include "devserver/tds/requests.h"

#include <gtest/gtest.h>

#include "devserver/tests/hex.h"
#include "devserver/tests/tds/client.h"

namespace devsql::tds {
namespace {

using fakes::BatchMessage;
using fakes::FromHex;
using fakes::Utf16;

constexpr const char* kHeaders = "16000000 12000000 0200 0000000000000000 01000000";

std::int32_t ErrorOf(const RpcRequest& request) {
    return request.error ? request.error->number() : 0;
}

std::int32_t TransactionError(const std::string& hex) {
    try {
        ParseTransaction(FromHex(hex), Version::V71);
    } catch (const ProtocolError& error) {
        return error.number();
    }
    return 0;
}

TEST(TdsBatch, HeadersAreSkippedFrom72On) {
    EXPECT_EQ(ParseBatch(BatchMessage("SELECT 1"), Version::V72), "SELECT 1");
    EXPECT_EQ(ParseBatch(Utf16("SELECT 1"), Version::V71), "SELECT 1");
    EXPECT_EQ(ParseBatch(FromHex("04000000 16 04"), Version::V74), "\xD0\x96");
}

TEST(TdsBatch, InvalidLengthsAreRefused) {
    for (const char* hex : {"", "04", "03000000", "05000000", "FFFFFFFF 4100", "04000000 41", "00000000"}) {
        EXPECT_THROW(ParseBatch(FromHex(hex), Version::V74), ProtocolError) << hex;
    }
}

TEST(TdsRpc, AProcedureIsCalledByItsName) {
    const std::string data = FromHex(kHeaders) + FromHex("0300") + Utf16("p;1") + FromHex("0200") +
                             FromHex("02") + Utf16("@a") + FromHex("00 26 04 04 05000000") +
                             FromHex("00 01 E7 08 00 0904D00034 FF FF") + FromHex("00 02 1F");
    const RpcRequest request = ParseRpc(data, Version::V74);
    ASSERT_EQ(ErrorOf(request), 0);
    ASSERT_EQ(request.calls.size(), 1U);
    const RpcCall& call = request.calls[0];
    EXPECT_EQ(call.procedure, "p;1");
    ASSERT_EQ(call.parameters.size(), 3U);
    EXPECT_EQ(call.parameters[0].name, "@a");
    EXPECT_EQ(call.parameters[0].value, Value(std::int64_t{5}));
    EXPECT_FALSE(call.parameters[0].output);
    EXPECT_EQ(call.parameters[1].name, "");
    EXPECT_TRUE(call.parameters[1].output);
    EXPECT_TRUE(IsNull(call.parameters[1].value));
    EXPECT_TRUE(call.parameters[2].use_default);
    EXPECT_FALSE(call.parameters[1].use_default);
}

TEST(TdsRpc, AParameterWithoutATypeIsRefusedUnlessItRequestsTheDefault) {
    const auto request = [](const char* flags) {
        return ParseRpc(FromHex(kHeaders) + FromHex("0100") + Utf16("p") + FromHex("0000") +
                            FromHex(std::string("00 ") + flags + " 1F") + FromHex("00 00 26 04 04 05000000"),
                        Version::V74);
    };
    EXPECT_EQ(ErrorOf(request("00")), 8009);
    const RpcRequest with_default = request("02");
    ASSERT_EQ(ErrorOf(with_default), 0);
    ASSERT_EQ(with_default.calls[0].parameters.size(), 2U);
    EXPECT_TRUE(with_default.calls[0].parameters[0].use_default);
    EXPECT_FALSE(with_default.calls[0].parameters[1].use_default);
}

TEST(TdsRpc, SystemProceduresAreCalledByNumber) {
    const auto name = [](const char* number) {
        const RpcRequest request = ParseRpc(FromHex(std::string("FFFF") + number + "0000"), Version::V71);
        return request.calls.empty() ? std::string() : request.calls[0].procedure;
    };
    EXPECT_EQ(name("0100"), "sp_cursor");
    EXPECT_EQ(name("0200"), "sp_cursoropen");
    EXPECT_EQ(name("0700"), "sp_cursorfetch");
    EXPECT_EQ(name("0900"), "sp_cursorclose");
    EXPECT_EQ(name("0A00"), "sp_executesql");
    EXPECT_EQ(name("0B00"), "sp_prepare");
    EXPECT_EQ(name("0C00"), "sp_execute");
    EXPECT_EQ(name("0D00"), "sp_prepexec");
    EXPECT_EQ(name("0E00"), "sp_prepexecrpc");
    EXPECT_EQ(name("0F00"), "sp_unprepare");
    EXPECT_EQ(ErrorOf(ParseRpc(FromHex("FFFF 0000 0000"), Version::V71)), 2812);
    EXPECT_EQ(ErrorOf(ParseRpc(FromHex("FFFF 1000 0000"), Version::V71)), 2812);
}

TEST(TdsRpc, AMessageCanHaveSeveralCalls) {
    const std::string one = FromHex("0100") + Utf16("p") + FromHex("0000");
    EXPECT_EQ(ParseRpc(one + "\x80" + one, Version::V71).calls.size(), 2U);
    EXPECT_EQ(ParseRpc(FromHex(kHeaders) + one + "\xFF" + one + "\xFF", Version::V74).calls.size(), 2U);
    EXPECT_EQ(ErrorOf(ParseRpc(FromHex(kHeaders) + one + "\xFE" + one, Version::V74)), 40510);
}

TEST(TdsRpc, TheCallsBeforeAWrongOneAreKept) {
    const std::string one = FromHex("0100") + Utf16("p") + FromHex("0000");
    const RpcRequest request = ParseRpc(one + "\x80" + one + FromHex("00 00 99"), Version::V71);
    EXPECT_EQ(request.calls.size(), 1U);
    EXPECT_EQ(ErrorOf(request), 8009);
}

TEST(TdsRpc, ATruncatedCallIsRefused) {
    const std::string whole = FromHex("0300") + Utf16("abc") + FromHex("0000") + FromHex("02") + Utf16("@a") +
                              FromHex("00 26 04 04 05000000");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const bool complete = length == 2 + 6 + 2; // name and options alone are a call without parameters
        EXPECT_EQ(ErrorOf(ParseRpc(std::string_view(whole).substr(0, length), Version::V71)) == 0, complete)
            << length;
    }
}

TEST(TdsTransaction, RequestsBecomeStatements) {
    const auto parse = [](const char* hex) { return ParseTransaction(FromHex(hex), Version::V71); };
    EXPECT_EQ(parse("0500 00 00").statement, "BEGIN TRANSACTION");
    EXPECT_EQ(parse("0500 00 00").isolation, "");
    EXPECT_EQ(parse("0500 04 02 6100").isolation, "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE");
    EXPECT_EQ(parse("0500 04 02 6100").statement, "BEGIN TRANSACTION [a]");
    EXPECT_EQ(parse("0700 00 00").statement, "COMMIT TRANSACTION");
    EXPECT_EQ(parse("0700 00 00").ended_by, Environment::CommitTransaction);
    EXPECT_EQ(parse("0700 00 01 02 00").next_isolation, "SET TRANSACTION ISOLATION LEVEL READ COMMITTED");
    EXPECT_EQ(parse("0700 00 01 02 00").next_statement, "BEGIN TRANSACTION");
    EXPECT_EQ(parse("0800 00 00").statement, "ROLLBACK TRANSACTION");
    EXPECT_EQ(parse("0800 02 6100 00").statement, "ROLLBACK TRANSACTION [a]");
    EXPECT_EQ(parse("0900 04 61005D00").statement, "SAVE TRANSACTION [a]]]");
}

TEST(TdsTransaction, DistributedTransactionsAreRefused) {
    EXPECT_EQ(TransactionError("0000 0000"), 40510);
    EXPECT_EQ(TransactionError("0100 0000"), 40510);
    EXPECT_EQ(TransactionError("0600"), 40510);
    EXPECT_EQ(TransactionError("0500 06 00"), 4002);
    EXPECT_EQ(TransactionError("05"), 4002);
}

} // namespace
} // namespace devsql::tds

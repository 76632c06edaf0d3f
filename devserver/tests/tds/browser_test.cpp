// The answers of the SQL Browser.
#include "devserver/tds/browser.h"

#include <chrono>
#include <gtest/gtest.h>

namespace devsql::tds {
namespace {

using std::string_literals::operator""s;

const BrowserEntry kNamed{"NODE1\\KV_BATCH", 5001};
const std::string kDescription =
    "ServerName;NODE1;InstanceName;KV_BATCH;IsClustered;No;Version;14.0.1000.0;tcp;5001;;";

/// The text of an answer without its header. Checks that the length in the header is that of the text.
std::string Text(const std::optional<std::string>& answer) {
    if (!answer) {
        return "(silence)";
    }
    EXPECT_EQ(answer->at(0), '\x05');
    const std::size_t length =
        static_cast<std::uint8_t>(answer->at(1)) + 256 * static_cast<std::uint8_t>(answer->at(2));
    EXPECT_EQ(answer->size(), length + 3);
    return answer->substr(3);
}

TEST(Browser, AnswersRequestsForAllInstancesAndForThisOne) {
    EXPECT_EQ(Text(BrowserAnswer("\x02", kNamed)), kDescription);
    EXPECT_EQ(Text(BrowserAnswer("\x03", kNamed)), kDescription);
    EXPECT_EQ(Text(BrowserAnswer("\x04kv_batch\0"s, kNamed)), kDescription);
    EXPECT_EQ(Text(BrowserAnswer("\x04KV_BATCH", kNamed)), kDescription);
}

TEST(Browser, ReportsAnUnnamedInstanceAsMssqlserver) {
    EXPECT_EQ(Text(BrowserAnswer("\x04MSSQLSERVER\0"s, {"NODE1", 1433})),
              "ServerName;NODE1;InstanceName;MSSQLSERVER;IsClustered;No;Version;14.0.1000.0;tcp;1433;;");
}

TEST(Browser, DoesNotAnswerForOtherInstancesOrInvalidRequests) {
    // The last request is for the dedicated administrator connection, which this server does not have.
    for (const std::string& request : {""s, "\x04other\0"s, "\x04"s, "\x05"s, "\x02more"s,
                                       "\x04KV_BATCHES\0"s, "GET"s, "\x0F\x01KV_BATCH\0"s}) {
        EXPECT_EQ(BrowserAnswer(request, kNamed), std::nullopt) << request;
    }
}

TEST(Browser, AnswersByUdp) {
    const Browser browser(kNamed, 0);
    const system::SocketHandle client = system::DatagramsOnLoopback(0);
    system::SendDatagram(client, "\x0Fnonsense", browser.port());
    system::SendDatagram(client, "\x04KV_BATCH\0"s, browser.port());
    ASSERT_EQ(system::WaitReadable(client, nullptr, std::chrono::minutes(1)), system::Readable::First);
    const std::optional<system::Datagram> answer = system::ReceiveDatagram(client, 2000);
    ASSERT_TRUE(answer);
    EXPECT_EQ(Text(answer->bytes), kDescription);
    EXPECT_EQ(answer->sender_port, browser.port());
}

TEST(Browser, AnErrorNamesAPortThatIsInUse) {
    const Browser browser(kNamed, 0);
    try {
        const Browser second(kNamed, browser.port());
        ADD_FAILURE() << "two servers use the same port";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("UDP 127.0.0.1:" + std::to_string(browser.port())),
                  std::string::npos);
    }
}

} // namespace
} // namespace devsql::tds

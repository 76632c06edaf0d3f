// A client's connection: login, batches, calls, transactions, attention, reset, and a session that the engine
// ends.
#include <gtest/gtest.h>
#include <thread>

#include "devserver/tests/hex.h"
#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

using fakes::BatchMessage;
using fakes::FakeSession;
using fakes::FromHex;
using fakes::LoginFields;
using fakes::Packets;
using fakes::ParseTokens;
using fakes::RunningServer;
using fakes::Summary;
using fakes::TdsClient;
using fakes::Utf16;

std::string Summarize(const std::optional<std::string>& answer, Version version = Version::V74) {
    return answer ? Summary(ParseTokens(*answer, version)) : "closed";
}

/// "rows N" returns N rows of text; "wait" runs until it is cancelled; "endless" sends rows until then; "end"
/// ends the session; "fail" throws; "misfit" sends a value that does not fit; "wrong" is a syntax error.
void RunScript(FakeSession& session, std::string_view sql, ResultSink& sink) {
    if (sql.starts_with("rows ")) {
        const int rows = std::stoi(std::string(sql.substr(5)));
        sink.Columns({{"n", {TypeId::Int}}, {"text", {TypeId::NVarChar, 100}}});
        for (int i = 0; i < rows; ++i) {
            sink.Row({std::int64_t{i}, std::string(90, 'x')});
        }
        sink.StatementDone(Command::Select, rows, false);
    } else if (sql == "wait") {
        session.WaitForCancel();
    } else if (sql == "endless") {
        sink.Columns({{"n", {TypeId::Int}}});
        while (!session.cancelled()) {
            sink.Row({std::int64_t{1}});
        }
    } else if (sql == "end") {
        session.End();
    } else if (sql == "fail") {
        throw std::runtime_error("a defect");
    } else if (sql == "misfit") {
        sink.Columns({{"n", {TypeId::TinyInt}}});
        sink.Row({std::int64_t{300}});
    } else if (sql == "wrong") {
        sink.Send({102, 15, 1, "Incorrect syntax near 'wrong'.", {}, 1});
    } else {
        if (sql.starts_with("BEGIN") || sql.starts_with("COMMIT") || sql.starts_with("ROLLBACK")) {
            session.SetTransactions(sql.starts_with("BEGIN") ? 1 : 0);
        }
        sink.StatementDone(Command::None, std::nullopt, false);
    }
}

class TdsConnection : public testing::Test {
  protected:
    void SetUp() override { server_.engine.script.on_batch = RunScript; }
    fakes::FakeScript& script() { return server_.engine.script; }

    RunningServer server_;
};

TEST_F(TdsConnection, ALoginIsAnsweredInEveryVersion) {
    for (const auto& [number, version] : {std::pair{0x71000001U, Version::V71Revision1},
                                          {0x72090002U, Version::V72},
                                          {0x730B0003U, Version::V73B},
                                          {0x74000004U, Version::V74}}) {
        TdsClient client = server_.Connect();
        LoginFields fields;
        fields.version = number;
        EXPECT_EQ(Summarize(client.LogIn(fields), version),
                  "ENV(1) INFO(5701) INFO(5703) ENV(7) ENV(2) LOGINACK ENV(4) DONE(00,0)");
        EXPECT_GT(client.session_id(), 50);
    }
}

TEST_F(TdsConnection, TheEngineGetsTheLoginsFields) {
    LoginFields fields;
    fields.database = "Batch";
    server_.LoggedIn(fields);
    ASSERT_EQ(script().logins.size(), 1U);
    EXPECT_EQ(script().logins[0].database, "Batch");
    EXPECT_EQ(script().logins[0].host_name, "bench");
    EXPECT_EQ(script().logins[0].application, "tests");
}

TEST_F(TdsConnection, AClientCanLogInWithoutAPrelogin) {
    TdsClient client = server_.Connect();
    LoginFields fields;
    fields.version = 0x71000000;
    client.Send(PacketType::Login, LoginMessage(fields));
    EXPECT_NE(Summarize(client.Receive(), Version::V71).find("LOGINACK"), std::string::npos);
    client.Send(PacketType::SqlBatch, Utf16("rows 1"));
    EXPECT_EQ(Summarize(client.Receive(), Version::V71), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, AWrongLoginIsReportedAndTheConnectionClosed) {
    TdsClient client = server_.Connect();
    LoginFields fields;
    fields.password = "wrong";
    EXPECT_EQ(Summarize(client.LogIn(fields)), "ERROR(18456) DONE(02,0)");
    EXPECT_EQ(client.Receive(), std::nullopt);
    fields.password = "secret";
    fields.database = "Nowhere";
    TdsClient second = server_.Connect();
    EXPECT_EQ(Summarize(second.LogIn(fields)), "ERROR(4060) DONE(02,0)");
}

TEST_F(TdsConnection, AnExceptionOfTheEngineAtTheLoginIsReported) {
    script().on_login = [] { throw std::runtime_error("the store is gone"); };
    TdsClient client = server_.Connect();
    EXPECT_EQ(Summarize(client.LogIn()), "ERROR(3624) DONE(02,0)");
}

TEST_F(TdsConnection, ThePacketSizeIsTheRequestedOneWithinTheLimits) {
    for (const auto& [asked, got] :
         {std::pair{512U, 512U}, {8192U, 8192U}, {0U, 4096U}, {100U, 512U}, {1000000U, 32767U}}) {
        LoginFields fields;
        fields.packet_size = asked;
        TdsClient client = server_.LoggedIn(fields);
        client.Batch("rows 1000");
        ASSERT_GT(client.packet_lengths().size(), 1U);
        EXPECT_EQ(client.packet_lengths().front(), got) << asked;
    }
}

TEST_F(TdsConnection, ABatchCanSpanManyPackets) {
    TdsClient client = server_.LoggedIn();
    const std::string sql = "-- " + std::string(100000, 'x');
    client.set_packet_size(512);
    EXPECT_EQ(Summarize(client.Batch(sql)), "DONE(00,0)");
    EXPECT_EQ(script().batches.back(), sql);
}

TEST_F(TdsConnection, CallsReachTheEngineWithTheirParameters) {
    script().on_call = [](FakeSession&, const RpcCall& call, ResultSink& sink) {
        sink.ReturnStatus(0);
        sink.OutputParameter("@a", call.parameters.at(0).type, std::int64_t{9});
    };
    TdsClient client = server_.LoggedIn();
    const std::string call =
        FromHex("0100") + Utf16("p") + FromHex("0000 02") + Utf16("@a") + FromHex("01 26 04 04 05000000");
    client.Send(PacketType::Rpc, FromHex("04000000") + call + "\xFF" + call);
    EXPECT_EQ(Summarize(client.Receive()), "STATUS VALUE DONEPROC(01,0) STATUS VALUE DONEPROC(00,0)");
    ASSERT_EQ(script().calls.size(), 2U);
    EXPECT_EQ(script().calls[1].parameters.at(0).value, Value(std::int64_t{5}));
    EXPECT_TRUE(script().calls[1].parameters.at(0).output);
}

TEST_F(TdsConnection, OutputParametersHaveTheirPositionsInTheCall) {
    script().on_call = [](FakeSession&, const RpcCall& call, ResultSink& sink) {
        // The order of the procedure's parameters differs from the order in the call.
        sink.OutputParameter("@c", call.parameters.at(2).type, std::int64_t{9});
        sink.OutputParameter("@b", call.parameters.at(1).type, std::int64_t{8});
    };
    TdsClient client = server_.LoggedIn();
    const std::string integer = FromHex("26 04 04 05000000");
    client.Send(PacketType::Rpc, FromHex("04000000 0100") + Utf16("p") + FromHex("0000 02") + Utf16("@a") +
                                     FromHex("00") + integer + FromHex("02") + Utf16("@b") + FromHex("01") +
                                     integer + FromHex("02") + Utf16("@c") + FromHex("01") + integer);
    std::vector<int> places;
    for (const fakes::Token& token : ParseTokens(client.Receive().value())) {
        if (token.type == 0xAC) {
            places.push_back(static_cast<std::uint8_t>(token.body.at(0)));
        }
    }
    EXPECT_EQ(places, (std::vector<int>{2, 1}));
}

TEST_F(TdsConnection, AWrongCallIsAnErrorAndTheConnectionStays) {
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::Rpc, FromHex("04000000 0100") + Utf16("p") + FromHex("0000 00 00 99"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(8009) DONEPROC(02,0)");
    client.Send(PacketType::SqlBatch, FromHex("99"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(4002) DONE(02,0)");
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, ADefectOfTheEngineIsAnErrorAndTheConnectionStays) {
    TdsClient client = server_.LoggedIn();
    EXPECT_EQ(Summarize(client.Batch("fail")), "ERROR(3624) DONE(02,0)");
    EXPECT_EQ(Summarize(client.Batch("misfit")), "COLUMNS ERROR(3624) DONE(02,0)");
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, AnErrorInABatchSetsTheErrorBit) {
    TdsClient client = server_.LoggedIn();
    EXPECT_EQ(Summarize(client.Batch("wrong")), "ERROR(102) DONE(02,0)");
}

TEST_F(TdsConnection, AttentionEndsARunningBatch) {
    TdsClient client = server_.LoggedIn();
    for (int i = 0; i < 20; ++i) {
        client.Send(PacketType::SqlBatch, BatchMessage("wait"));
        std::this_thread::sleep_for(std::chrono::milliseconds(i % 4));
        client.Send(PacketType::Attention, "");
        // A batch that has not started yet is answered too, before the acknowledgement.
        EXPECT_EQ(Summarize(client.Receive()), "DONE(00,0)");
        EXPECT_EQ(Summarize(client.Receive()), "DONE(20,0)");
    }
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, AttentionEndsABatchThatIsSendingRows) {
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::SqlBatch, BatchMessage("endless"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // the socket is full by now
    client.Send(PacketType::Attention, "");
    const std::vector<fakes::Token> tokens = ParseTokens(client.Receive().value());
    EXPECT_EQ(tokens.back().status, done_status::kFinal);
    EXPECT_EQ(Summarize(client.Receive()), "DONE(20,0)");
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, AttentionIsAcknowledgedIfNothingRuns) {
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::Attention, "");
    EXPECT_EQ(Summarize(client.Receive()), "DONE(20,0)");
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
    EXPECT_EQ(script().cancels, 0);
}

TEST_F(TdsConnection, AnIgnoredMessageIsNotRun) {
    TdsClient client = server_.LoggedIn();
    client.SendRaw(Packets(1, BatchMessage("rows 1"), 4096, packet_status::kIgnore));
    EXPECT_EQ(Summarize(client.Receive()), "DONE(02,0)");
    EXPECT_TRUE(script().batches.empty());
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, TransactionsOfTheDriverBecomeStatements) {
    TdsClient client = server_.LoggedIn();
    const std::string headers = FromHex("04000000");
    client.Send(PacketType::TransactionManager, headers + FromHex("0500 00 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(8) DONE(00,0)");
    client.Send(PacketType::TransactionManager, headers + FromHex("0700 00 01 00 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(9) DONE(01,0) ENV(8) DONE(00,0)");
    client.Send(PacketType::TransactionManager, headers + FromHex("0800 00 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(10) DONE(00,0)");
    const std::vector<std::string> expected{"BEGIN TRANSACTION", "COMMIT TRANSACTION", "BEGIN TRANSACTION",
                                            "ROLLBACK TRANSACTION"};
    EXPECT_EQ(script().batches, expected);
}

TEST_F(TdsConnection, ATransactionWhoseIsolationLevelIsRefusedIsNotBegun) {
    script().on_batch = [](FakeSession& session, std::string_view sql, ResultSink& sink) {
        if (sql.ends_with("SNAPSHOT")) {
            sink.Send({40517, 16, 1, "no SNAPSHOT", {}, 1});
        } else {
            RunScript(session, sql, sink);
        }
    };
    TdsClient client = server_.LoggedIn();
    const std::string headers = FromHex("04000000");
    client.Send(PacketType::TransactionManager, headers + FromHex("0500 05 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(40517) DONE(02,0)");
    client.Send(PacketType::TransactionManager, headers + FromHex("0500 04 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(8) DONE(00,0)");
    client.Send(PacketType::TransactionManager, headers + FromHex("0700 00 01 05 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(9) DONE(01,0) ERROR(40517) DONE(02,0)");
    const std::vector<std::string> expected{
        "SET TRANSACTION ISOLATION LEVEL SNAPSHOT", "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE",
        "BEGIN TRANSACTION", "COMMIT TRANSACTION", "SET TRANSACTION ISOLATION LEVEL SNAPSHOT"};
    EXPECT_EQ(script().batches, expected);
}

TEST_F(TdsConnection, ATransactionThatABatchEndsIsReportedToTheDriver) {
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::TransactionManager, FromHex("04000000 0500 00 00"));
    client.Receive();
    EXPECT_EQ(Summarize(client.Batch("ROLLBACK")), "ENV(10) DONE(00,0)");
    EXPECT_EQ(Summarize(client.Batch("ROLLBACK")), "DONE(00,0)");
    EXPECT_EQ(Summarize(client.Batch("BEGIN TRAN")), "ENV(8) DONE(00,0)");
    EXPECT_EQ(Summarize(client.Batch("BEGIN TRAN")), "DONE(00,0)");
}

TEST_F(TdsConnection, AFailedCommitIsReportedAsARollback) {
    TdsClient client = server_.LoggedIn();
    client.Batch("BEGIN TRAN");
    script().on_batch = [](FakeSession& session, std::string_view, ResultSink& sink) {
        session.SetTransactions(0);
        sink.Send({9002, 17, 1, "the log is full", {}, 1});
    };
    client.Send(PacketType::TransactionManager, FromHex("04000000 0700 00 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(9002) ENV(10) DONE(02,0)");
}

TEST_F(TdsConnection, AClientOf71GetsNoTransactionNotices) {
    LoginFields fields;
    fields.version = 0x71000001;
    TdsClient client = server_.LoggedIn(fields);
    client.Send(PacketType::SqlBatch, Utf16("BEGIN TRAN"));
    EXPECT_EQ(Summarize(client.Receive(), Version::V71), "DONE(00,0)");
}

TEST_F(TdsConnection, AFailedTransactionRequestIsReportedOnlyAsAnError) {
    script().on_batch = [](FakeSession&, std::string_view, ResultSink& sink) {
        sink.Send({3902, 16, 1, "no BEGIN TRANSACTION", {}, 1});
    };
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::TransactionManager, FromHex("04000000 0700 00 00"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(3902) DONE(02,0)");
}

TEST_F(TdsConnection, DistributedTransactionsAreRefused) {
    TdsClient client = server_.LoggedIn();
    client.Send(PacketType::TransactionManager, FromHex("04000000 0000 0000"));
    EXPECT_EQ(Summarize(client.Receive()), "ERROR(40510) DONE(02,0)");
    EXPECT_EQ(Summarize(client.Batch("rows 1")), "COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsConnection, APacketOfAnotherTypeIsRefusedAndTheConnectionClosed) {
    for (const PacketType type : {PacketType::Login, PacketType::PreLogin, PacketType::Sspi}) {
        TdsClient client = server_.LoggedIn();
        client.Send(type, "x");
        EXPECT_EQ(Summarize(client.Receive()), "ERROR(4014) DONE(02,0)");
        EXPECT_EQ(client.Receive(), std::nullopt);
    }
}

TEST_F(TdsConnection, AResetGivesANewSession) {
    LoginFields fields;
    fields.database = "Batch";
    TdsClient client = server_.LoggedIn(fields);
    client.Batch("rows 1");
    const std::uint16_t before = client.session_id();
    script().on_batch = [](FakeSession& session, std::string_view sql, ResultSink& sink) {
        session.Use("master");
        RunScript(session, sql, sink);
    };
    client.Batch("x");
    client.SendRaw(Packets(1, BatchMessage("rows 1"), 4096, packet_status::kResetConnection));
    EXPECT_EQ(Summarize(client.Receive()), "ENV(18) ENV(1) COLUMNS ROW DONE(10,1)");
    EXPECT_NE(client.session_id(), before);
    EXPECT_EQ(script().open_sessions, 1);
}

TEST_F(TdsConnection, AnOlderLibraryCanUseDoubleQuotesForTexts) {
    LoginFields fields;
    fields.option_flags2 = 0;
    server_.LoggedIn(fields);
    EXPECT_EQ(script().batches, std::vector<std::string>{"SET QUOTED_IDENTIFIER OFF"});
}

TEST_F(TdsConnection, AnEndedSessionLosesItsConnection) {
    TdsClient client = server_.LoggedIn();
    EXPECT_EQ(Summarize(client.Batch("end")), "DONE(00,0)");
    EXPECT_EQ(client.Receive(), std::nullopt);
}

TEST_F(TdsConnection, ASessionThatEndsWhileIdleLosesItsConnection) {
    FakeSession* resting = nullptr;
    script().on_batch = [&](FakeSession& session, std::string_view, ResultSink&) { resting = &session; };
    TdsClient client = server_.LoggedIn();
    client.Batch("x");
    resting->End();
    EXPECT_EQ(client.Receive(), std::nullopt);
    EXPECT_TRUE(server_.WaitForNoSession());
}

} // namespace
} // namespace devsql::tds

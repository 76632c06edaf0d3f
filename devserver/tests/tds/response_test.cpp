// The DONE tokens of an answer: their bits for more results, errors and row counts, and the end of a
// procedure.
#include "devserver/tds/response.h"

#include <functional>
#include <gtest/gtest.h>

#include "devserver/tests/tds/running_server.h"

namespace devsql::tds {
namespace {

const Column kColumn{"a", {TypeId::Int}};
const std::vector<Value> kRow{std::int64_t{1}};
const Message kError{208, 16, 1, "no such object", "", 1};
const Message kPrint{0, 0, 1, "printed", "", 1};

class TdsResponse : public testing::Test {
  protected:
    /// The answer that the client receives for one part of a request.
    std::string Answer(Response::Kind kind, const std::function<void(Response&)>& run,
                       bool interrupted = false) {
        Response response(tokens_, packets_, cancelled_, [this] { ++stops_; });
        response.Begin(kind);
        run(response);
        response.End();
        response.Finish(interrupted);
        return fakes::Summary(fakes::ParseTokens(client_.Receive().value_or("")));
    }
    std::string Batch(const std::function<void(Response&)>& run) {
        return Answer(Response::Kind::Batch, run);
    }
    std::string Call(const std::function<void(Response&)>& run) {
        return Answer(Response::Kind::Procedure, run);
    }

    static void Rows(Response& response, int rows, bool in_procedure = false) {
        response.Columns({kColumn});
        for (int i = 0; i < rows; ++i) {
            response.Row(kRow);
        }
        response.StatementDone(Command::Select, rows, in_procedure);
    }

    std::pair<Socket, Socket> ends_ = fakes::SocketPair();
    Socket server_ = std::move(ends_.second);
    fakes::TdsClient client_{std::move(ends_.first)};
    PacketWriter packets_{server_};
    TokenWriter tokens_{packets_, "S"};
    std::atomic<bool> cancelled_ = false;
    int stops_ = 0;
};

TEST_F(TdsResponse, ABatchWithoutResultsEndsWithADone) {
    EXPECT_EQ(Batch([](Response&) {}), "DONE(00,0)");
}

TEST_F(TdsResponse, OnlyTheLastDoneHasNoMoreBit) {
    EXPECT_EQ(Batch([](Response& r) { Rows(r, 2); }), "COLUMNS ROW ROW DONE(10,2)");
    EXPECT_EQ(Batch([](Response& r) {
                  Rows(r, 1);
                  r.StatementDone(Command::Update, 5, false);
                  Rows(r, 0);
              }),
              "COLUMNS ROW DONE(11,1) DONE(11,5) COLUMNS DONE(10,0)");
}

TEST_F(TdsResponse, WithoutACountThereIsNoCountBit) {
    EXPECT_EQ(Batch([](Response& r) { r.StatementDone(Command::Insert, std::nullopt, false); }),
              "DONE(00,0)");
}

TEST_F(TdsResponse, AMessageAfterTheLastStatementIsFollowedByADone) {
    EXPECT_EQ(Batch([](Response& r) {
                  r.StatementDone(Command::Insert, 1, false);
                  r.Send(kPrint);
              }),
              "DONE(11,1) INFO(0) DONE(00,0)");
}

TEST_F(TdsResponse, AnErrorEndsWithTheErrorBit) {
    EXPECT_EQ(Batch([](Response& r) { r.Send(kError); }), "ERROR(208) DONE(02,0)");
    EXPECT_EQ(Batch([](Response& r) {
                  r.Send(kError);
                  r.StatementDone(Command::Insert, 0, false);
              }),
              "ERROR(208) DONE(02,0)");
}

TEST_F(TdsResponse, AnErrorWithinRowsSetsTheErrorBitOfTheirDone) {
    EXPECT_EQ(Batch([](Response& r) {
                  r.Columns({kColumn});
                  r.Row(kRow);
                  r.Send(kError);
                  r.StatementDone(Command::Select, 1, false);
              }),
              "COLUMNS ROW ERROR(208) DONE(02,0)");
}

TEST_F(TdsResponse, TheStatementAfterAFailedOneHasNoErrorBit) {
    EXPECT_EQ(Batch([](Response& r) {
                  r.Send(kError);
                  Rows(r, 1);
              }),
              "ERROR(208) DONE(03,0) COLUMNS ROW DONE(10,1)");
    EXPECT_EQ(Batch([](Response& r) {
                  r.Send(kError);
                  r.StatementDone(Command::Update, 3, false);
              }),
              "ERROR(208) DONE(03,0) DONE(10,3)");
}

TEST_F(TdsResponse, AProcedureInABatchEndsWithItsStatus) {
    EXPECT_EQ(Batch([](Response& r) {
                  Rows(r, 1, true);
                  r.ReturnStatus(0);
              }),
              "COLUMNS ROW DONEINPROC(11,1) STATUS DONEPROC(00,0)");
    EXPECT_EQ(Batch([](Response& r) {
                  Rows(r, 1, true);
                  r.ReturnStatus(0);
                  Rows(r, 1);
              }),
              "COLUMNS ROW DONEINPROC(11,1) STATUS DONEPROC(01,0) COLUMNS ROW DONE(10,1)");
}

TEST_F(TdsResponse, ABatchDoesNotEndWithDoneInProc) {
    EXPECT_EQ(Batch([](Response& r) { Rows(r, 1, true); }), "COLUMNS ROW DONEINPROC(11,1) DONE(00,0)");
}

TEST_F(TdsResponse, ACallSendsItsStatusBeforeItsOutputParameters) {
    EXPECT_EQ(Call([](Response& r) {
                  Rows(r, 1);
                  r.OutputParameter("@a", {TypeId::Int}, std::int64_t{1});
                  r.OutputParameter("@b", {TypeId::Int}, Value{});
                  r.ReturnStatus(3);
              }),
              "COLUMNS ROW DONEINPROC(11,1) STATUS VALUE VALUE DONEPROC(00,0)");
}

TEST_F(TdsResponse, AFailedCallEndsWithTheErrorBit) {
    EXPECT_EQ(Call([](Response& r) { r.Send(kError); }), "ERROR(208) DONEPROC(02,0)");
}

TEST_F(TdsResponse, EachOfSeveralCallsEndsWithDoneProc) {
    EXPECT_EQ(Call([](Response& r) {
                  r.ReturnStatus(0);
                  r.End();
                  r.Begin(Response::Kind::Procedure);
                  r.ReturnStatus(1);
              }),
              "STATUS DONEPROC(01,0) STATUS DONEPROC(00,0)");
}

TEST_F(TdsResponse, AChangeOfDatabaseIsReported) {
    EXPECT_EQ(Batch([](Response& r) {
                  r.DatabaseChanged("a", "b");
                  r.StatementDone(Command::None, std::nullopt, false);
              }),
              "ENV(1) DONE(00,0)");
}

TEST_F(TdsResponse, AfterAnAttentionOutputIsDroppedAndTheEngineIsAskedToStop) {
    EXPECT_EQ(Answer(
                  Response::Kind::Batch,
                  [this](Response& r) {
                      r.Columns({kColumn});
                      r.Row(kRow);
                      cancelled_ = true;
                      r.Row(kRow);
                      r.StatementDone(Command::Select, 2, false);
                  },
                  true),
              "COLUMNS ROW DONE(00,0)");
    EXPECT_GT(stops_, 0);
}

TEST_F(TdsResponse, AnInterruptedAnswerEndsBeforeTheAcknowledgement) {
    Response response(tokens_, packets_, cancelled_, [this] { ++stops_; });
    response.Begin(Response::Kind::Batch);
    Rows(response, 1);
    response.Finish(true);
    response.Acknowledge();
    EXPECT_EQ(fakes::Summary(fakes::ParseTokens(client_.Receive().value_or(""))),
              "COLUMNS ROW DONE(11,1) DONE(00,0)");
    EXPECT_EQ(fakes::Summary(fakes::ParseTokens(client_.Receive().value_or(""))), "DONE(20,0)");
}

TEST_F(TdsResponse, ADisconnectedClientStopsTheEngineWithoutAnException) {
    client_.socket().Shutdown();
    Response response(tokens_, packets_, cancelled_, [this] { ++stops_; });
    response.Begin(Response::Kind::Batch);
    response.Columns({kColumn});
    for (int i = 0; i < 10000; ++i) {
        response.Row(kRow);
    }
    EXPECT_TRUE(response.lost());
    EXPECT_GT(stops_, 0);
    response.End();
    response.Finish();
}

} // namespace
} // namespace devsql::tds

// The ODBC layer with the real driver manager and driver, against the development server's protocol with a
// fake engine: the results and their order, and the state after an error, a time-out and the death of the
// server.
#include "odbc/odbc.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <map>
#include <thread>

#include "devserver/tests/tds/running_server.h"
#include "odbc/odbc_rows.h"
#include "text/code_page.h"

namespace {

using namespace odbc;
using devsql::Command;
using devsql::ResultSink;
using devsql::RpcCall;
using devsql::TypeId;
using devsql::fakes::FakeSession;
using devsql::fakes::RunningServer;

/// A limit for an action that takes no time on an idle machine; only a failure reaches it.
constexpr std::chrono::seconds kLongest{60};

using Answers = std::map<std::string, std::function<void(FakeSession&, ResultSink&)>>;

void SendError(ResultSink& sink, std::int32_t number) {
    sink.Send({number, 16, 2, "error " + std::to_string(number), {}, 4});
    sink.StatementDone(Command::None, std::nullopt, false);
}

void Print(ResultSink& sink, const std::string& text) {
    sink.Send({0, 0, 1, text, {}, 1});
    sink.StatementDone(Command::None, std::nullopt, false);
}

void SendRows(ResultSink& sink, int count) {
    sink.Columns({{"id", {TypeId::Int}}});
    for (int i = 0; i < count; ++i) {
        sink.Row({std::int64_t{i}});
    }
    sink.StatementDone(Command::Select, count, false);
}

class OdbcWire : public ::testing::Test {
  protected:
    // Must be set before the first handle is made, because unixODBC reads the variable once.
    static void SetUpTestSuite() { setenv("ODBCSYSINI", KV_ODBC_CONFIG, 1); }

    OdbcWire() {
        server_.engine.script.on_batch = [this](FakeSession& session, std::string_view sql,
                                                ResultSink& sink) {
            if (sql == "PRINT ''") {
                Print(sink, " ");
            } else if (const auto answer = answers_.find(std::string(sql)); answer != answers_.end()) {
                answer->second(session, sink);
            }
        };
    }

    /// A connection string for the server, with `more` at its end.
    std::string Target(const std::string& password = "secret", const std::string& more = "") const {
        return "Driver={SQL Server};Server=127.0.0.1," + std::to_string(server_.Port()) +
               ";Uid=sa;Pwd=" + password + ";" + more;
    }

    void Connect() { connection_.DriverConnect(Target(), 10); }

    /// A statement that is prepared as the product's layers above ODBC prepare it.
    Statement Ready() {
        Statement statement(connection_);
        if (connection_.DropsResultsAfterError()) {
            statement.KeepResultsAfterError();
        }
        return statement;
    }

    /// Runs a batch and returns its results and messages as text, in order: "rows 3 | error 208 | message
    /// text | ". It ends with "lost" if the connection was lost, and with "and so on" after 20 results.
    std::string Story(const std::string& sql) {
        Statement statement = Ready();
        std::string story;
        const auto tell = [&](const std::vector<Diagnostic>& diagnostics) {
            for (const Diagnostic& diagnostic : diagnostics) {
                story += diagnostic.error
                             ? "error " + std::to_string(diagnostic.native_error) + " | "
                             : "message " + std::string(WithoutOrigin(diagnostic.message)) + " | ";
            }
        };
        const auto step = [&](const std::function<bool()>& take) {
            try {
                const bool result = take();
                tell(statement.TakeMessages());
                if (!result) {
                    return;
                }
                if (statement.ColumnCount() != 0) {
                    story += "rows " + std::to_string(CountRows(statement)) + " | ";
                } else if (statement.RowCount() >= 0) {
                    story += "touched " + std::to_string(statement.RowCount()) + " | ";
                }
            } catch (const OdbcError& error) {
                tell(error.Diagnostics());
                if (error.ConnectionLost()) {
                    story += "lost";
                    lost_ = true;
                }
            }
        };
        bool more = true;
        step([&] {
            statement.ExecDirect(sql);
            return true;
        });
        for (int steps = 0; more && !lost_; ++steps) {
            step([&] { return more = statement.MoreResults(); });
            if (steps == 20) {
                return story + "and so on";
            }
        }
        return story;
    }

    static std::size_t CountRows(Statement& statement) {
        RowReader reader(statement);
        std::vector<Value> row;
        std::size_t count = 0;
        while (reader.Next(row)) {
            ++count;
        }
        return count;
    }

    std::vector<Value> OneRow(const std::string& sql, std::vector<Column>* columns = nullptr) {
        Statement statement(connection_);
        statement.ExecDirect(sql);
        RowReader reader(statement);
        std::vector<Value> row;
        EXPECT_TRUE(reader.Next(row));
        if (columns != nullptr) {
            *columns = reader.Columns();
        }
        return row;
    }

    RunningServer server_;
    Answers answers_;
    bool lost_ = false;
    Environment environment_;
    Connection connection_{environment_};
};

TEST_F(OdbcWire, ResultsAfterAnErrorOfTheFirstStatementAreKept) {
    Connect();
    answers_["x"] = [](FakeSession&, ResultSink& sink) {
        SendError(sink, 2627);
        SendRows(sink, 3);
        SendError(sink, 208);
        Print(sink, "end");
    };
    EXPECT_EQ(Story("x"), "error 2627 | rows 3 | error 208 | message end | ");
    EXPECT_EQ(server_.engine.script.cancels, 0) << "the rest of the batch was cancelled on the server";
}

TEST_F(OdbcWire, AnErrorOfTheServerWithClass08IsNotALostConnection) {
    Connect();
    answers_["x"] = [](FakeSession&, ResultSink& sink) {
        SendRows(sink, 1);
        SendError(sink, 911);
        SendRows(sink, 2);
    };
    EXPECT_EQ(Story("x"), "rows 1 | error 911 | rows 2 | ");
    EXPECT_FALSE(connection_.Dead());
    EXPECT_EQ(server_.engine.script.cancels, 0);
    answers_["first"] = [](FakeSession&, ResultSink& sink) { SendError(sink, 911); };
    Statement statement(connection_);
    try {
        statement.ExecDirect("first");
        FAIL() << "did not fail";
    } catch (const OdbcError& error) {
        EXPECT_EQ(error.Diagnostics().front().sql_state, "08004")
            << "the driver has changed its table of states";
        EXPECT_FALSE(error.ConnectionLost());
    }
}

class MessagesAfterRows : public OdbcWire, public ::testing::WithParamInterface<int> {};

TEST_P(MessagesAfterRows, AreKeptWhereverABlockEnds) {
    Connect();
    answers_["x"] = [](FakeSession&, ResultSink& sink) {
        SendRows(sink, GetParam());
        Print(sink, "after");
        sink.StatementDone(Command::Insert, 2, false);
    };
    EXPECT_EQ(Story("x"), "rows " + std::to_string(GetParam()) + " | message after | touched 2 | ");
}

INSTANTIATE_TEST_SUITE_P(Rows, MessagesAfterRows, ::testing::Values(0, 1, 511, 512, 513, 1024));

TEST_F(OdbcWire, AStatementWithoutAResultSucceeds) {
    Connect();
    answers_["ddl"] = [](FakeSession&, ResultSink& sink) {
        sink.StatementDone(Command::None, std::nullopt, false);
    };
    EXPECT_EQ(Story("ddl"), "");
}

TEST_F(OdbcWire, AnErrorHasItsNumberStateSeverityAndLine) {
    Connect();
    answers_["x"] = [](FakeSession&, ResultSink& sink) { SendError(sink, 208); };
    Statement statement(connection_);
    try {
        statement.ExecDirect("x");
        FAIL() << "did not fail";
    } catch (const OdbcError& error) {
        const Diagnostic& first = error.Diagnostics().front();
        EXPECT_EQ(first.native_error, 208);
        EXPECT_EQ(first.sql_state, "42S02");
        EXPECT_EQ(first.severity, 16);
        EXPECT_EQ(first.line, 4);
        EXPECT_EQ(first.server, "FAKE");
        EXPECT_EQ(WithoutOrigin(first.message), "error 208");
        EXPECT_FALSE(error.ConnectionLost());
    }
}

TEST_F(OdbcWire, EveryByteOfTheCodePageArrivesBothWays) {
    Connect();
    std::string text;
    for (int i = 1; i < 256; ++i) {
        text += static_cast<char>(i);
    }
    server_.engine.script.on_batch = [](FakeSession&, std::string_view sql, ResultSink& sink) {
        sink.Columns({{"v", {TypeId::VarChar, 300}}, {"n", {TypeId::NVarChar, 300}}, {"t", {TypeId::Text}}});
        sink.Row({std::string(sql), std::string(sql), std::string(sql)});
        sink.StatementDone(Command::Select, 1, false);
    };
    const std::vector<Value> row = OneRow(text);
    EXPECT_EQ(std::get<std::string>(row[1]), text);
    // The five undefined bytes of the code page have no character in the server's single-byte types.
    std::string closed;
    for (const char c : text) {
        const bool open = std::string_view("\x81\x8D\x8F\x90\x9D").find(c) != std::string_view::npos;
        closed += open ? '?' : c;
    }
    std::string varchar = std::get<std::string>(row[0]);
    for (char& c : varchar) {
        c = std::string_view("\x81\x8D\x8F\x90\x9D").find(c) != std::string_view::npos ? '?' : c;
    }
    EXPECT_EQ(varchar, closed);
}

TEST_F(OdbcWire, AStatementWithANulByteIsRefused) {
    Connect();
    Statement statement(connection_);
    const std::string sql("DELETE a\0 WHERE id = 1", 22);
    EXPECT_THROW(statement.ExecDirect(sql), OdbcError);
    EXPECT_THROW(statement.Prepare(sql), OdbcError);
    EXPECT_TRUE(server_.engine.script.batches.empty());
}

TEST_F(OdbcWire, EveryTypeOfColumnIsRead) {
    Connect();
    answers_["x"] = [](FakeSession&, ResultSink& sink) {
        devsql::Guid guid;
        guid.bytes = {0x0A, 0x0B, 0x0C, 0x0D, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        sink.Columns({{"bit", {TypeId::Bit}},
                      {"tinyint", {TypeId::TinyInt}},
                      {"bigint", {TypeId::BigInt}},
                      {"decimal", {TypeId::Decimal, 0, 10, 2}},
                      {"money", {TypeId::Money}},
                      {"real", {TypeId::Real}},
                      {"float", {TypeId::Float}},
                      {"datetime", {TypeId::DateTime}},
                      {"smalldatetime", {TypeId::SmallDateTime}},
                      {"char", {TypeId::Char, 5}},
                      {"binary", {TypeId::VarBinary, 10}},
                      {"guid", {TypeId::UniqueIdentifier}},
                      {"null", {TypeId::Int}}});
        sink.Row({std::int64_t{1}, std::int64_t{255}, std::int64_t{-9000000000000000000},
                  devsql::Decimal{-1234, 2}, devsql::Decimal{15000, 4}, 0.5, 0.1,
                  devsql::DateTime{36524, 300}, devsql::DateTime{36524, 18000}, std::string("ab   "),
                  devsql::Bytes{std::string("\x01\0\xFF", 3)}, guid, std::monostate()});
        sink.StatementDone(Command::Select, 1, false);
    };
    const std::vector<Value> row = OneRow("x");
    ASSERT_EQ(row.size(), 13U);
    EXPECT_EQ(row[0], Value(true));
    EXPECT_EQ(row[1], Value(std::int64_t{255}));
    EXPECT_EQ(row[2], Value(std::int64_t{-9000000000000000000}));
    EXPECT_EQ(row[3], Value(std::string("-12.34")));
    EXPECT_EQ(row[4], Value(std::string("1.5000")));
    EXPECT_EQ(row[5], Value(0.5));
    EXPECT_EQ(row[6], Value(0.1));
    EXPECT_EQ(row[7], Value(Timestamp{2000, 1, 1, 0, 0, 1, 0}));
    EXPECT_EQ(row[8], Value(Timestamp{2000, 1, 1, 0, 1, 0, 0}));
    EXPECT_EQ(row[9], Value(std::string("ab   ")));
    EXPECT_EQ(row[10], Value(Bytes{std::string("\x01\0\xFF", 3)}));
    EXPECT_EQ(row[11], Value(Guid{0x0A0B0C0D, 0x0102, 0x0304, {5, 6, 7, 8, 9, 10, 11, 12}}));
    EXPECT_EQ(row[12], Value());
}

TEST_F(OdbcWire, LongColumnsAndTheColumnsAfterThemAreReadCompletely) {
    Connect();
    const std::string text(200001, 'x');
    answers_["x"] = [&](FakeSession&, ResultSink& sink) {
        sink.Columns(
            {{"id", {TypeId::Int}}, {"t", {TypeId::Text}}, {"i", {TypeId::Image}}, {"after", {TypeId::Int}}});
        sink.Row({std::int64_t{1}, text, devsql::Bytes{text}, std::int64_t{2}});
        sink.StatementDone(Command::Select, 1, false);
    };
    std::vector<Column> columns;
    const std::vector<Value> row = OneRow("x", &columns);
    EXPECT_TRUE(columns[1].IsLong() && columns[2].IsLong() && !columns[3].IsLong());
    EXPECT_EQ(std::get<std::string>(row[1]), text);
    EXPECT_EQ(std::get<Bytes>(row[2]).data, text);
    EXPECT_EQ(row[3], Value(std::int64_t{2}));
}

TEST_F(OdbcWire, ParametersArriveWithTheirTypes) {
    Connect();
    std::vector<devsql::Value> seen;
    server_.engine.script.on_call = [&](FakeSession&, const RpcCall& call, ResultSink&) {
        for (const devsql::RpcParameter& parameter : call.parameters) {
            seen.push_back(parameter.value);
        }
    };
    Statement statement(connection_);
    statement.Prepare("{call spTake(?,?,?,?,?,?)}");
    const std::string image(100000, '\xFE');
    statement.Bind(1, {.value = std::string("caf\xE9 \x80")});
    statement.Bind(2, {.type = SqlType::Integer, .value = std::int64_t{-5}});
    statement.Bind(3, {.type = SqlType::VarChar, .value = {}, .size = 10});
    statement.Bind(4, {.type = SqlType::LongVarBinary, .value = Bytes{image}});
    statement.Bind(
        5, {.type = SqlType::Guid, .value = Guid{0x0A0B0C0D, 0x0102, 0x0304, {5, 6, 7, 8, 9, 10, 11, 12}}});
    statement.Bind(6, {.type = SqlType::Timestamp, .value = Timestamp{2000, 1, 1, 0, 0, 1, 0}});
    statement.Execute();
    while (statement.MoreResults()) {
    }
    ASSERT_EQ(seen.size(), 6U);
    EXPECT_EQ(seen[0], devsql::Value(std::string("caf\xC3\xA9 \xE2\x82\xAC")));
    EXPECT_EQ(seen[1], devsql::Value(std::int64_t{-5}));
    EXPECT_EQ(seen[2], devsql::Value());
    EXPECT_EQ(seen[3], devsql::Value(devsql::Bytes{image}));
    devsql::Guid guid;
    guid.bytes = {0x0A, 0x0B, 0x0C, 0x0D, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(seen[4], devsql::Value(guid));
    EXPECT_EQ(seen[5], devsql::Value(devsql::DateTime{36524, 300}));
}

TEST_F(OdbcWire, OutputParametersHaveValuesAfterTheLastResult) {
    Connect();
    server_.engine.script.on_call = [&](FakeSession&, const RpcCall& call, ResultSink& sink) {
        SendRows(sink, 2);
        sink.ReturnStatus(7);
        for (const devsql::RpcParameter& parameter : call.parameters) {
            if (!parameter.output) {
                continue;
            }
            const bool text = std::holds_alternative<std::string>(parameter.value);
            sink.OutputParameter(parameter.name, parameter.type,
                                 text ? devsql::Value(std::string("longer than before"))
                                      : devsql::Value(std::int64_t{42}));
        }
    };
    Statement statement(connection_);
    statement.Prepare("{? = call spGive(?,?)}");
    statement.Bind(1, {.type = SqlType::Integer, .direction = Direction::Output});
    statement.Bind(2, {.type = SqlType::VarChar,
                       .value = std::string("in"),
                       .direction = Direction::InputOutput,
                       .size = 50});
    statement.Bind(3, {.type = SqlType::Integer, .direction = Direction::Output});
    statement.Execute();
    EXPECT_EQ(CountRows(statement), 2U);
    while (statement.MoreResults()) {
    }
    EXPECT_EQ(statement.ParameterValue(1), Value(std::int64_t{7}));
    EXPECT_EQ(statement.ParameterValue(2), Value(std::string("longer than before")));
    EXPECT_EQ(statement.ParameterValue(3), Value(std::int64_t{42}));
}

TEST_F(OdbcWire, ATimeOutEndsTheStatementButNotTheConnection) {
    Connect();
    answers_["wait"] = [](FakeSession& session, ResultSink&) { session.WaitForCancel(); };
    answers_["x"] = [](FakeSession&, ResultSink& sink) { SendRows(sink, 1); };
    {
        Statement statement(connection_);
        statement.SetQueryTimeout(5); // also the longest wait for the answer to the cancelling
        const auto begin = std::chrono::steady_clock::now();
        try {
            statement.ExecDirect("wait");
            FAIL() << "did not time out";
        } catch (const OdbcError& error) {
            EXPECT_EQ(error.Diagnostics().front().sql_state, "HYT00");
        }
        EXPECT_LT(std::chrono::steady_clock::now() - begin, kLongest);
    }
    EXPECT_EQ(Story("x"), "rows 1 | ");
}

TEST_F(OdbcWire, TheConnectionIsLostIfTheServerDoesNotAnswerTheCancel) {
    Connect();
    std::promise<void> over;
    answers_["stuck"] = [done = over.get_future().share()](FakeSession&, ResultSink&) {
        done.wait_for(kLongest);
    };
    {
        Statement statement(connection_);
        statement.SetQueryTimeout(1);
        try {
            statement.ExecDirect("stuck");
            ADD_FAILURE() << "did not time out";
        } catch (const OdbcError& error) {
            EXPECT_EQ(error.Diagnostics().front().sql_state, "HYT00");
        }
    }
    EXPECT_TRUE(connection_.Dead());
    over.set_value();
    server_.Stop(); // waits for the batch, which uses variables of this test
}

TEST_F(OdbcWire, AWrongPasswordHasItsErrorNumber) {
    try {
        connection_.DriverConnect(Target("wrong"), 10);
        FAIL() << "the connection was opened";
    } catch (const OdbcError& error) {
        EXPECT_EQ(error.Diagnostics().front().native_error, 18456);
        EXPECT_EQ(WithoutOrigin(error.Diagnostics().front().message), "Login failed for user 'sa'.");
    }
}

TEST_F(OdbcWire, AnUnansweredLoginTimesOut) {
    std::promise<void> given_up;
    server_.engine.script.on_login = [done = given_up.get_future().share()] { done.wait_for(kLongest); };
    const auto begin = std::chrono::steady_clock::now();
    try {
        connection_.DriverConnect(Target(), 1);
        ADD_FAILURE() << "the connection was opened";
    } catch (const OdbcError& error) {
        EXPECT_EQ(error.Diagnostics().front().sql_state, "HYT00");
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kLongest);
    given_up.set_value();
}

TEST_F(OdbcWire, APortWithoutAServerIsAnErrorOfClass08) {
    try {
        connection_.DriverConnect("Driver={SQL Server};Server=127.0.0.1,1;Uid=sa;Pwd=x;", 10);
        FAIL() << "the connection was opened";
    } catch (const OdbcError& error) {
        EXPECT_TRUE(error.ConnectionLost());
    }
}

/// A server that stops while it runs a batch.
class OdbcDyingServer : public OdbcWire {
  protected:
    std::string Dying(const std::function<void(ResultSink&)>& before) {
        Connect();
        std::promise<void> running;
        answers_["x"] = [&](FakeSession& session, ResultSink& sink) {
            before(sink);
            running.set_value();
            session.WaitForCancel();
        };
        std::thread stopper([&] {
            running.get_future().wait();
            server_.Stop();
        });
        std::string story = Story("x");
        stopper.join();
        return story;
    }
};

TEST_F(OdbcDyingServer, BeforeTheAnswerIsALostConnection) {
    EXPECT_EQ(Dying([](ResultSink&) {}), "error 20017 | lost");
    EXPECT_TRUE(connection_.Dead());
}

TEST_F(OdbcDyingServer, WithinRowsIsALostConnection) {
    const std::string story = Dying([](ResultSink& sink) {
        sink.Columns({{"id", {TypeId::Int}}});
        for (std::int64_t i = 0; i < 50000; ++i) {
            sink.Row({i});
        }
    });
    EXPECT_EQ(story, "error 20017 | lost");
}

TEST_F(OdbcDyingServer, AfterAResultIsALostConnection) {
    const std::string story = Dying([](ResultSink& sink) {
        SendRows(sink, 3000);
        SendRows(sink, 3000);
    });
    EXPECT_TRUE(story.ends_with("error 20017 | lost")) << story;
}

TEST_F(OdbcDyingServer, EveryFurtherStatementFails) {
    Dying([](ResultSink&) {});
    Statement statement(connection_);
    EXPECT_THROW(statement.ExecDirect("y"), OdbcError);
}

} // namespace

#include "inspect/server_fixture.h"

#include <algorithm>

#include "base/registry_locations.h"
#include "odbc/odbc.h"
#include "support/servers.h"

namespace kv {
namespace {

constexpr char kLogFile[] = R"(L:\Log\KVLSQLDbMgr.log)";

/// Creates the databases once for each run of the test program.
class Database : public ::testing::Environment {
  public:
    void SetUp() override;
};

const ::testing::Environment* const kTheDatabase = ::testing::AddGlobalTestEnvironment(new Database);

} // namespace

Lines TestedManager::Reported() const {
    Lines lines;
    for (std::int32_t i = 1; i <= db_errors_.UpperBound(); ++i) {
        const DbError& error = db_errors_[i];
        lines.push_back(std::to_string(error.NativeError) + " " +
                        std::string(odbc::WithoutOrigin(error.Description)));
    }
    return lines;
}

std::vector<std::int32_t> TestedManager::Numbers() const {
    std::vector<std::int32_t> numbers;
    for (std::int32_t i = 1; i <= db_errors_.UpperBound(); ++i) {
        numbers.push_back(db_errors_[i].Number);
    }
    return numbers;
}

std::string ServerTest::ShownErrors() {
    screen_.calls.clear();
    manager_.ShowDbError();
    std::string boxes;
    for (const std::string& call : screen_.calls) {
        boxes += call;
    }
    return boxes;
}

ServerTest::ServerTest() {
    registry_.AddText(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey, "", "L:\\Log");
    files_.AddFolder("L:\\Log");
    manager_.UseServerA(true);
    manager_.ServerA(support::ServerA());
    manager_.UserA(support::FromServers("KV_USER"));
    manager_.PasswordA(support::FromServers("KV_PASSWORD"));
}

void ServerTest::Do(const std::string& statement, const std::string& database) {
    ado::Connection connection;
    connection.CursorLocation(ado::adUseClient);
    connection.ConnectionString("Driver={SQL Server};Server=" + support::ServerA() + ";Database=" + database +
                                ";Uid=" + support::FromServers("KV_USER") +
                                ";Pwd=" + support::FromServers("KV_PASSWORD") + ";");
    connection.CommandTimeout(300);
    try {
        connection.Open("", "", "", ado::adOptionUnspecified);
        std::int64_t ignored = 0;
        connection.Execute(statement, ignored, ado::adCmdText);
    } catch (const ado::CallError& error) {
        ADD_FAILURE() << error.what() << " in " << statement.substr(0, 300);
    }
}

TextTable ServerTest::Data(const std::string& table) {
    TextTable data;
    EXPECT_TRUE(manager_.GetData(kDatabase, table, identifiers_, data)) << table;
    EXPECT_EQ(manager_.Reported(), Lines{}) << table;
    return data;
}

bool ServerTest::Call(const std::string& procedure, const std::vector<ado::Variant>& values) {
    EXPECT_TRUE(manager_.GetStoredProcedureParameters(kDatabase, procedure, parameters_)) << procedure;
    // parameters_[0] is not used and [1] is the return value, so the first value belongs to [2]. Every value
    // must have a parameter; a call without values may be of a procedure whose parameters are not known.
    EXPECT_LE(values.size() + 2, parameters_.size() + (values.empty() ? 1 : 0)) << procedure;
    for (std::size_t i = 0; i < values.size() && i + 2 < parameters_.size(); ++i) {
        parameters_[i + 2]->Value(values[i]);
    }
    return manager_.ExecuteStoredProcedure(kDatabase, procedure, parameters_, data_);
}

Lines ServerTest::Rows(const TextTable& table) {
    Lines rows;
    for (std::int32_t row = 0; row <= table.RowUpperBound(); ++row) {
        std::string& line = rows.emplace_back();
        for (std::int32_t column = 1; column <= table.ColumnUpperBound(); ++column) {
            line += (column == 1 ? "" : "|") + table(column, row);
        }
    }
    return rows;
}

std::size_t ServerTest::LoggedFailures() const {
    if (!files_.HasFile(kLogFile)) {
        return 0;
    }
    return static_cast<std::size_t>(std::ranges::count(files_.Content(kLogFile), '\n'));
}

namespace {

/// Gives access to the fixture's protected function.
class StatementRunner : public ServerTest {
  public:
    using ServerTest::Do;
    void TestBody() override {}
};

void Database::SetUp() {
    StatementRunner::Do("CREATE DATABASE Inspect", "master");
    StatementRunner::Do("CREATE DATABASE Bare", "master");
}

} // namespace
} // namespace kv

// The fixture of the managers' tests. All services are fakes in memory: a log, and a database that answers as
// the test says.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/failure.h"
#include "base/registry_locations.h"
#include "fakes/fake_ado.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "support/log_lines.h"
#include "support/program_statements.h"

namespace kv {

using support::kJobQuery;
using support::kVersionQuery;
using Lines = std::vector<std::string>;

/// Sets the servers, logins and paths of both servers.
template <class Manager>
void FillPair(Manager& manager, bool use_server_a = true) {
    manager.UseServerA(use_server_a);
    manager.ServerA("NodeA\\KV_BATCH");
    manager.ServerB("NodeB");
    manager.UserA("saA");
    manager.UserB("saB");
    manager.PasswordA("pwA");
    manager.PasswordB("pwB");
    manager.SQLDataPathA("D:\\DataA\\");
    manager.SQLDataPathB("E:\\DataB");
}

class ManagerTest : public ::testing::Test {
  protected:
    static constexpr char kLogFile[] = R"(L:\Log\KVLSQLDbMgr.log)";

    ManagerTest() {
        registry_.AddText(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey, "", "L:\\Log");
        files_.AddFolder("L:\\Log");
        // When an operation fails, the manager first reads the connection's errors, if there is a connection,
        // and then writes the log. At both places the current error is the failure of the operation.
        const auto note = [this] {
            if (CurrentError().number != 0) {
                failure_ = CurrentError();
            }
        };
        ado_.on_errors_read = note;
        files_.on_folder_asked = note;
    }
    /// No test may leave a connection open.
    ~ManagerTest() override {
        EXPECT_EQ(ado_.connections, 0U);
        EXPECT_EQ(ado_.open_connections, 0U);
    }

    static std::string ConnectionStringA(const std::string& database) {
        return "Driver={SQL Server};Server=NodeA\\KV_BATCH;Database=" + database + ";Uid=saA;Pwd=pwA;";
    }
    static std::string ConnectionStringB(const std::string& database) {
        return "Driver={SQL Server};Server=NodeB;Database=" + database + ";Uid=saB;Pwd=pwB;";
    }
    /// The calls of an operation that opens a connection, runs these statements and closes it.
    static Lines StandardCalls(const std::string& connection_string, const Lines& statements) {
        Lines calls = {"CursorLocation 3", "ConnectionString " + connection_string, "CommandTimeout 300",
                       "ConnectionTimeout 300", "Open '' '' '' -1"};
        for (const std::string& statement : statements) {
            calls.push_back("Execute 1 " + statement);
        }
        calls.emplace_back("Close");
        return calls;
    }

    Lines LogLines() const {
        return files_.HasFile(kLogFile) ? support::LogLines(files_.Content(kLogFile)) : Lines{};
    }
    /// Checks the last failure of an operation. Its text is neither shown nor logged.
    void ExpectRaised(const char* class_name, const std::string& description) {
        EXPECT_EQ(failure_.number, kProgramFailure);
        EXPECT_EQ(failure_.source, class_name);
        EXPECT_EQ(failure_.description, description);
        failure_ = {};
    }
    void ForgetLog() { files_.files.erase(fakes::FakeFiles::Plain(kLogFile)); }

    ErrorState failure_;
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
    fakes::FakeAdo ado_;
};

} // namespace kv

// What the tests of the managers have in common: a machine in memory with a log, and a database that answers
// as the test says.
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

namespace kv {

inline constexpr char kJobQuery[] =
    "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id "
    "From msdb.dbo.syscategories Where "
    "(category_class = 1) AND ([name] = 'REPL-Distribution'))";

using Lines = std::vector<std::string>;

/// The pair as the tests fill it.
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
        // The failure path reads the connection's errors, if there is one, and then writes the log.
        const auto note = [this] {
            if (CurrentError().number != 0) {
                failure_ = CurrentError();
            }
        };
        ado_.on_errors_read = note;
        files_.on_folder_asked = note;
    }
    /// Whatever a test does, no connection survives it.
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
    /// Every call of an operation that opens by the standard sequence and runs these statements.
    static Lines StandardCalls(const std::string& connection_string, const Lines& statements) {
        Lines calls = {"CursorLocation 3", "ConnectionString " + connection_string, "CommandTimeout 300",
                       "ConnectionTimeout 300", "Open '' '' '' -1"};
        for (const std::string& statement : statements) {
            calls.push_back("Execute 1 " + statement);
        }
        calls.emplace_back("Close");
        return calls;
    }

    /// The log without the date of its lines and the words that each begins with.
    Lines LogLines() const {
        constexpr std::string_view kHead = "2006-05-12 14:03:22 : Error in ";
        Lines lines;
        if (!files_.HasFile(kLogFile)) {
            return lines;
        }
        const std::string& log = files_.Content(kLogFile);
        for (std::size_t at = 0; at < log.size();) {
            const std::size_t end = log.find("\r\n", at);
            lines.push_back(log.substr(at, end - at).substr(kHead.size()));
            at = end + 2;
        }
        return lines;
    }
    /// The last failure that went through a failure path. Its text reaches neither operator nor log, so this
    /// is the one place where it can be seen.
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

// The fixture of CSQLScriptMgr's tests: files, registry, processes and packages in memory, with the query
// tool of server version 14 installed.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/failure.h"
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_process.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "scripts/executed_scripts.h"
#include "scripts/sql_script_mgr.h"
#include "support/log_lines.h"

namespace kv {

class ScriptMgrTest : public ::testing::Test {
  protected:
    static constexpr char kDataFolder[] = R"(C:\Lotkeeper\Server\Data)";
    static constexpr char kLogFile[] = R"(D:\Log\KVLSQLDbMgr.log)";
    static constexpr char kTool140[] = R"(C:\SQL\140\Tools\Binn\OSQL.EXE)";

    ScriptMgrTest() {
        Text(registry_locations::kLogKey, "", "D:\\Log");
        files_.AddFolder("D:\\Log");
        Version("14.0.1000.169");
        SqlPath("140", R"(C:\SQL\140\Tools)");
        files_.AddFile(kTool140, "");
        // The raised failure can last be seen when the log begins to write, which is when it asks for its
        // folder.
        files_.on_folder_asked = [this] {
            if (CurrentError().number != 0) {
                failure_ = CurrentError();
            }
        };
    }

    /// Checks the last failure that reached a handler. Its text is neither shown nor logged.
    void ExpectRaised(const char* source, const std::string& description) {
        EXPECT_EQ(failure_.number, kProgramFailure);
        EXPECT_EQ(failure_.source, source);
        EXPECT_EQ(failure_.description, description);
        failure_ = {};
    }

    void Text(const std::string& key, const std::string& name, const std::string& text) {
        registry_.AddText(registry_locations::kHkeyLocalMachine, key, name, text);
    }
    void Version(const std::string& version) {
        Text(registry_locations::kCurrentVersionKey, registry_locations::kCurrentVersionValue, version);
    }
    void SqlPath(const std::string& version, const std::string& path) {
        Text(R"(SOFTWARE\Microsoft\Microsoft SQL Server\)" + version + R"(\Tools\ClientSetup)", "SQLPath",
             path);
    }
    std::vector<std::string> LogLines() const {
        return files_.HasFile(kLogFile) ? support::LogLines(files_.Content(kLogFile))
                                        : std::vector<std::string>{};
    }
    /// The scripts that the query tool was started with, in order.
    std::vector<std::string> Executed() const { return ExecutedScripts(processes_); }

    ErrorState failure_;
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeProcesses processes_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
};

} // namespace kv

// What the tests of CSQLScriptMgr have in common: a machine in memory on which version 14's query tool lies.
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
#include "scripts/sql_script_mgr.h"

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
        // The log's first step is to ask for a folder: the last moment at which the raised failure can be
        // seen.
        files_.on_folder_asked = [this] {
            if (CurrentError().number != 0) {
                failure_ = CurrentError();
            }
        };
    }

    /// The last failure that reached a handler. Its text reaches neither operator nor log.
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
    /// The log without the date of its lines.
    std::vector<std::string> LogLines() const {
        std::vector<std::string> lines;
        if (!files_.HasFile(kLogFile)) {
            return lines;
        }
        const std::string& log = files_.Content(kLogFile);
        for (std::size_t at = 0; at < log.size();) {
            const std::size_t end = log.find("\r\n", at);
            lines.push_back(log.substr(at, end - at).substr(std::string("2006-05-12 14:03:22").size()));
            at = end + 2;
        }
        return lines;
    }

    ErrorState failure_;
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeProcesses processes_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
};

} // namespace kv

// What the tests of the console have in common: a machine in memory with a registry, a log, a query tool and
// a database that answers as the test says, and an operator who presses the main window's buttons.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/registry_locations.h"
#include "console/main_form.h"
#include "fakes/fake_ado.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_packages.h"
#include "fakes/fake_process.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "fakes/fake_toolkit.h"
#include "fakes/fake_user_settings.h"
#include "ui/operator.h"

namespace kv {

// Statements of the program.
inline constexpr char kTables[] = "SELECT DISTINCT TABLE_NAME FROM INFORMATION_SCHEMA.COLUMNS";
inline constexpr char kIdentity[] =
    "SELECT COLUMN_NAME AS [Column] FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = 'Lots' "
    "AND COLUMNPROPERTY(OBJECT_ID('Lots'), COLUMN_NAME, 'IsIdentity')=1";
inline constexpr char kJobQuery[] =
    "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id "
    "From msdb.dbo.syscategories Where "
    "(category_class = 1) AND ([name] = 'REPL-Distribution'))";

using Lines = std::vector<std::string>;

class ConsoleTest : public ::testing::Test {
  protected:
    static constexpr char kLogFile[] = R"(L:\Log\KVLSQLDbMgr.log)";
    static constexpr char kTool[] = R"(C:\SQL\90\Tools\Binn\SqlCMD.EXE)";

    ConsoleTest() {
        namespace location = registry_locations;
        files_.AddFolder("L:\\Log");
        Text(location::kLogKey, "", "L:\\Log");
        for (const char* key :
             {location::kLoginKey, location::kCustomFunctionsKey, location::kInstallationKey,
              location::kClientSetup80Key, location::kCurrentVersionKey}) {
            registry_.AddKey(location::kHkeyLocalMachine, key);
        }
        registry_.AddKey(location::kHkeyCurrentUser, location::kRedundancyKey);
        Version("9.00.1399.06");
        Text(location::kClientSetup90Key, location::kSqlPathValue, R"(C:\SQL\90\Tools)");
        files_.AddFile(kTool, "");
    }

    void Text(const std::string& key, const std::string& name, const std::string& text) {
        registry_.AddText(registry_locations::kHkeyLocalMachine, key, name, text);
    }
    void Version(const std::string& version) {
        Text(registry_locations::kCurrentVersionKey, registry_locations::kCurrentVersionValue, version);
    }
    void SqlServerInstalled(const std::string& text) {
        Text(registry_locations::kCustomFunctionsKey, registry_locations::kSqlServerInstalledValue, text);
    }

    void Remember(const std::string& key, const std::string& text) {
        remembered_.texts["KVLSQLDbMgr/Settings/" + key] = text;
    }
    /// One server's fields, remembered from an earlier run.
    void RememberLogin(int server) {
        const std::string index = std::to_string(server);
        Remember("edtServerName" + index, server == 0 ? "NodeA" : "NodeB");
        Remember("edtUserID" + index, server == 0 ? "saA" : "saB");
        Remember("edtPassword" + index, server == 0 ? "pwA" : "pwB");
    }
    void RememberServer(int server) {
        RememberLogin(server);
        const std::string index = std::to_string(server);
        Remember("edtSQLDataPath" + index, server == 0 ? "D:\\Data" : "E:\\Data");
        Remember("edtSQLUNCReplDataPath" + index, server == 0 ? "D$\\ReplData" : "E$\\ReplData");
    }

    /// Loads the window and forgets what that has called.
    void Start() {
        main_.emplace();
        main_->Load();
        screen_.calls.clear();
        ado_.calls.clear();
    }

    ui::Form& Form() { return main_->Form(); }
    ui::TextBox& Edit(const char* name, int index = ui::kNoIndex) {
        return Form().Get<ui::TextBox>(name, index);
    }
    ui::ComboBox& Combo(const char* name) { return Form().Get<ui::ComboBox>(name); }
    ui::CheckBox& Check(const char* name) { return Form().Get<ui::CheckBox>(name); }
    ui::CommandButton& Button(const char* name, int index = ui::kNoIndex) {
        return Form().Get<ui::CommandButton>(name, index);
    }
    ui::OptionButton& Option(const char* name, int index) {
        return Form().Get<ui::OptionButton>(name, index);
    }
    ui::Label& Label(const char* name) { return Form().Get<ui::Label>(name); }
    ui::ProgressBar& Bar() { return Form().Get<ui::ProgressBar>("prbStatus"); }
    ui::TabControl& Tabs() { return Form().Get<ui::TabControl>("tabMain"); }

    /// Opens a tab as the operator does.
    void Open(MainTab tab) { ASSERT_TRUE(ui::Choose(Tabs(), tab)); }
    /// The operator empties the box and types.
    static void TypeInto(ui::TextBox& box, const std::string& text) {
        ui::SelectAll(box);
        ASSERT_TRUE(ui::Edit(box, ""));
        ui::Type(box, text);
    }

    /// The next `times` lists of databases, of whichever server.
    void Databases(const std::vector<std::string>& names, int times = 1) {
        std::vector<fakes::AdoRow> rows;
        for (const std::string& name : names) {
            rows.push_back({name});
        }
        for (int i = 0; i < times; ++i) {
            ado_.Answer("exec sp_helpdb", fakes::Rows(rows));
        }
    }
    static Lines ItemsOf(const ui::ComboBox& combo) {
        Lines items;
        for (int i = 0; i < combo.ListCount(); ++i) {
            items.push_back(combo.List(i));
        }
        return items;
    }
    Lines Boxes() const { return screen_.Behind("box "); }
    /// The servers that were connected to, in order, as "server database".
    Lines Connections() const {
        Lines connections;
        for (const std::string& call : ado_.calls) {
            const auto begin = call.find("Server=");
            if (call.rfind("ConnectionString ", 0) == 0 && begin != std::string::npos) {
                const auto middle = call.find(";Database=", begin);
                const auto end = call.find(";Uid=", middle);
                connections.push_back(call.substr(begin + 7, middle - begin - 7) + " " +
                                      call.substr(middle + 10, end - middle - 10));
            }
        }
        return connections;
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

    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeProcesses processes_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
    fakes::FakePackages packages_;
    fakes::FakeAdo ado_;
    fakes::FakeToolkit toolkit_;
    fakes::FakeUserSettings remembered_;
    std::optional<frmMain> main_;
};

} // namespace kv

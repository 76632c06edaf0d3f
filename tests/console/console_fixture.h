// The fixture of the console's tests. All services are fakes in memory: a registry, a log, a query tool, and
// a database that answers as the test says. The tests use the main window's controls as an operator does.
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
#include "support/log_lines.h"
#include "support/program_statements.h"
#include "ui/operator.h"

namespace kv {

using support::IdentityQuery;
using support::kJobQuery;
using support::kTableQuery;
using support::kVersionQuery;
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

    /// Sets a text below HKEY_LOCAL_MACHINE in the registry.
    void Text(const std::string& key, const std::string& name, const std::string& text) {
        registry_.AddText(registry_locations::kHkeyLocalMachine, key, name, text);
    }
    /// Sets the installed version of SQL Server.
    void Version(const std::string& version) {
        Text(registry_locations::kCurrentVersionKey, registry_locations::kCurrentVersionValue, version);
    }
    void SqlServerInstalled(const std::string& text) {
        Text(registry_locations::kCustomFunctionsKey, registry_locations::kSqlServerInstalledValue, text);
    }

    /// Sets an entry that an earlier run has saved. `key` is the control's name and index.
    void Remember(const std::string& key, const std::string& text) {
        remembered_.texts["KVLSQLDbMgr/Settings/" + key] = text;
    }
    /// Remembers a server's login, as an earlier run would. `server` is 0 for Server A, 1 for Server B.
    void RememberLogin(int server) {
        const std::string index = std::to_string(server);
        Remember("edtServerName" + index, server == 0 ? "NodeA" : "NodeB");
        Remember("edtUserID" + index, server == 0 ? "saA" : "saB");
        Remember("edtPassword" + index, server == 0 ? "pwA" : "pwB");
    }
    /// Remembers all fields of a server.
    void RememberServer(int server) {
        RememberLogin(server);
        const std::string index = std::to_string(server);
        Remember("edtSQLDataPath" + index, server == 0 ? "D:\\Data" : "E:\\Data");
        Remember("edtSQLUNCReplDataPath" + index, server == 0 ? "D$\\ReplData" : "E$\\ReplData");
    }

    /// Selects Server A for a manager that is used without the main window.
    static void SelectServerA(ServerPairSettings& manager) {
        manager.UseServerA(true);
        manager.ServerA("NodeA");
        manager.UserA("sa");
    }

    /// Loads the window and drops the calls recorded so far.
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

    /// Opens a tab as an operator does.
    void Open(MainTab tab) { ASSERT_TRUE(ui::Choose(Tabs(), tab)); }
    /// Empties the box and types the text, as an operator does.
    static void TypeInto(ui::TextBox& box, const std::string& text) {
        ui::SelectAll(box);
        ASSERT_TRUE(ui::Edit(box, ""));
        ui::Type(box, text);
    }

    /// Sets the answer to the next `times` requests for the databases of a server.
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
    /// The message boxes so far, each as "[icon] title: text".
    Lines Boxes() const { return screen_.After("box "); }
    /// The connections in order, each as "server database".
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

    Lines LogLines() const {
        return files_.HasFile(kLogFile) ? support::LogLines(files_.Content(kLogFile)) : Lines{};
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

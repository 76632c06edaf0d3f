// Opens the console's real window many times in one process. Each time it works through the tabs with a
// server, by the control model, as an operator would, and closes the window. tests/soak/console.py prepares
// the server and checks the figures that are printed.
//
//   console_soak SETTINGS
//
// SETTINGS is a file of lines: server A, server B, the user, the password, the data path, the number of
// opens. Prints "at OPENS COMMANDS name=figure; name=figure" after each open. Exits with 1 at the first
// failure.
#include <cstdio>
#include <exception>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "console/form_designs.h"
#include "console/main_form.h"
#include "platform/files.h"
#include "platform/pending_events.h"
#include "soak/own_figures.h"
#include "ui/operator.h"
#include "ui/toolkit.h"

namespace {

void Require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// The lines of the settings file.
struct Settings {
    std::string server_a;
    std::string server_b;
    std::string user;
    std::string password;
    std::string data_path;
    int opens = 0;
};

Settings ReadSettings(const std::string& path) {
    std::istringstream text(platform::ReadWholeFile(path));
    Settings settings;
    for (std::string* member :
         {&settings.server_a, &settings.server_b, &settings.user, &settings.password, &settings.data_path}) {
        Require(static_cast<bool>(std::getline(text, *member)), "the settings are too short");
    }
    Require(static_cast<bool>(text >> settings.opens), "the settings have no number of opens");
    return settings;
}

int IndexOf(const ui::ComboBox& list, const std::string& text) {
    for (int i = 0; i < list.ListCount(); ++i) {
        if (list.List(i) == text) {
            return i;
        }
    }
    throw std::runtime_error(text + " is not in " + list.Name());
}

/// One console, from the opening of its window to its closing. Each act of the operator raises `commands`.
class Session {
  public:
    explicit Session(int& commands) : commands_(commands), window_(ui::MakeWindow(main_.Form())) {
        Require(window_ != nullptr, "no window can be shown");
        main_.Load();
        window_->Show();
        platform::RunPendingEvents();
    }

    void FillGeneralTab(const Settings& settings) {
        const std::vector<std::pair<const char*, std::string>> fields[] = {
            {{"edtServerName", settings.server_a},
             {"edtUserID", settings.user},
             {"edtPassword", settings.password},
             {"edtSQLDataPath", settings.data_path}},
            {{"edtServerName", settings.server_b},
             {"edtUserID", settings.user},
             {"edtPassword", settings.password},
             {"edtSQLDataPath", settings.data_path}}};
        for (const int server : {0, 1}) {
            for (const auto& [name, text] : fields[server]) {
                auto& box = Get<ui::TextBox>(name, server);
                ui::Edit(box, text);
                Require(box.Text() == text, std::string(name) + " does not take its text");
            }
        }
        Done();
    }

    void WorkThroughTheTabs() {
        Open(kv::kUpgradeTab);
        Rename("Alpha", "Beta");
        Rename("Beta", "Alpha");
        Open(kv::kSynchronizeTab);
        Require(Get<ui::ComboBox>("cboSynchronizeSourceDatabase").ListCount() > 0, "no database is listed");
        LookAtReplication();
        LookAtData();
        LookAtProcedures();
        Open(kv::kScriptTab);
        Open(kv::kGeneralTab);
    }

    /// Opens and closes a second window: that of the dialog for stored procedures.
    void OpenDialog() {
        ui::Form dialog(kv::ProceduresFormDesign());
        const auto window = ui::MakeWindow(dialog);
        window->Show();
        Done();
    }

    void Close() {
        ui::Close(main_.Form());
        Require(main_.Form().Unloaded(), "the window does not close");
        window_->RunUntilClosed();
    }

  private:
    template <class T>
    T& Get(const char* name, int index = ui::kNoIndex) {
        return main_.Form().Get<T>(name, index);
    }

    /// Lets the toolkit handle its events, and counts a command.
    void Done() {
        platform::RunPendingEvents();
        ++commands_;
    }

    void Open(kv::MainTab tab) {
        Require(ui::Choose(Get<ui::TabControl>("tabMain"), tab), "a tab cannot be opened");
        Done();
    }

    void ChooseIn(const char* name, const std::string& text) {
        auto& list = Get<ui::ComboBox>(name);
        Require(ui::Choose(list, IndexOf(list, text)), std::string(name) + " takes no choice");
        Done();
    }

    void Rename(const std::string& from, const std::string& to) {
        ChooseIn("cboRenameDatabase", from);
        ui::Edit(Get<ui::TextBox>("edtRenameNewDatabase"), to);
        Require(ui::Click(Get<ui::CommandButton>("cmdRename")), "cmdRename cannot be pressed");
        Done();
        IndexOf(Get<ui::ComboBox>("cboRenameDatabase"), to);
    }

    void LookAtReplication() {
        Open(kv::kReplicationTab);
        ChooseIn("cboSQLReplicationDatabase", "Probe");
        Require(Get<ui::Label>("lblSQLServerReplicationStatus").Caption() ==
                    "Transaction replication is not activated for the SQL Server database 'Probe'.",
                "the replication tab says: " + Get<ui::Label>("lblSQLServerReplicationStatus").Caption());
    }

    void LookAtData() {
        Open(kv::kViewDataTab);
        ChooseIn("cboViewDataDatabase", "Probe");
        auto& tables = Get<ui::ListBox>("lstViewDataTables");
        Require(tables.ListCount() == 2, "the tables of Probe are not listed");
        const int expected[] = {3, 500}; // rows of Few and Many
        for (const int table : {1, 0}) {
            Require(ui::Choose(tables, table), "a table cannot be chosen");
            Done();
            const int rows = Get<ui::ListView>("lvwViewData").RowCount();
            Require(rows == expected[table], std::to_string(rows) + " rows are shown");
        }
    }

    void LookAtProcedures() {
        Open(kv::kStoredProcTab);
        ChooseIn("cboStoredProcDatabase", "Probe");
        ChooseIn("cboStoredProcedure", "spProbe");
        Require(Get<ui::TextBox>("edtStoredProcedure").Text().find("SELECT 42") != std::string::npos,
                "the procedure's text is not shown");
    }

    int& commands_;
    kv::frmMain main_;
    std::unique_ptr<ui::Window> window_; // destroyed before the form, which it mirrors
};

void Print(int opens, int commands) {
    std::printf("at %d %d ", opens, commands);
    const char* between = "";
    for (const auto& [name, figure] : soak::OwnFigures()) {
        std::printf("%s%s=%llu", between, name.c_str(), static_cast<unsigned long long>(figure));
        between = "; ";
    }
    std::printf("\n");
    std::fflush(stdout);
}

void Run(const Settings& settings) {
    int commands = 0;
    for (int open = 1; open <= settings.opens; ++open) {
        {
            Session session(commands);
            session.FillGeneralTab(settings);
            session.WorkThroughTheTabs();
            session.OpenDialog();
            session.Close();
        }
        platform::RunPendingEvents();
        Print(open, commands);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: console_soak SETTINGS\n", stderr);
        return 2;
    }
    try {
        Run(ReadSettings(argv[1]));
    } catch (const std::exception& error) {
        std::printf("! %s\n", error.what());
        return 1;
    }
    return 0;
}

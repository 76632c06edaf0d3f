// The handlers of the Upgrade tab.
#include "console/upgrade_tab.h"

#include <vector>

#include "admin/upgrade_db_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "console/dialogs.h"
#include "console/main_form.h"
#include "console/name_array.h"
#include "console/wait_cursor.h"

namespace kv {

UpgradeTab::UpgradeTab(frmMain& main)
    : main_(main),
      server_a_(main.Form().Get<ui::OptionButton>("optUpgradeCurrentServer", 0)),
      edtRenameNewDatabase_(main.Form().Get<ui::TextBox>("edtRenameNewDatabase")),
      cmdRename_(main.Form().Get<ui::CommandButton>("cmdRename")) {
    main.RefillOnServerChoice(kUpgradeTab);
    cmdRename_.on_click = [this] {
        RunCommand(cmdRename_, "frmMain::cmdRename_Click",
                   [this](CUpgradeDbMgr& manager) { return Rename(manager); });
    };
    auto& upgrade = main.Form().Get<ui::CommandButton>("cmdUpgrade");
    upgrade.on_click = [this, &upgrade] {
        RunCommand(upgrade, "frmMain::cmdUpgrade_Click", [this](CUpgradeDbMgr& manager) {
            manager.UpgradeDatabase(Chosen("cboUpgradeDatabaseDest"), Chosen("cboUpgradeDatabaseSource"));
            return true;
        });
    };
    auto& remove = main.Form().Get<ui::CommandButton>("cmdRemove");
    remove.on_click = [this, &remove] {
        RunCommand(remove, "frmMain::cmdRemove_Click", [this](CUpgradeDbMgr& manager) {
            manager.RemoveDatabase(Chosen("cboRemoveDatabase"));
            return true;
        });
    };
}

const std::string& UpgradeTab::Chosen(const char* combo) const {
    return main_.Form().Get<ui::ComboBox>(combo).Text();
}

void UpgradeTab::RunCommand(ui::CommandButton& button, const char* log_source, const Work& work) {
    const CWaitCursor wait;
    CUpgradeDbMgr manager;
    bool refused = false;
    WithFailureHandler(
        [&] {
            button.Enabled(false);
            main_.FillSettings(manager, server_a_.Value());
            refused = !work(manager);
        },
        [&](const Failure&) { WriteErrorLog(log_source); });
    if (refused) {
        return;
    }
    main_.UpdateDatabaseLists(kUpgradeTab, server_a_.Value());
    main_.GiveButtonBack(button);
    manager.ShowDbError();
}

bool UpgradeTab::Rename(CUpgradeDbMgr& manager) {
    const std::string& new_name = edtRenameNewDatabase_.Text();
    // If the names cannot be read, the array is empty and the server decides whether the name is free.
    std::vector<std::string> arrDatabase;
    manager.GetDatabases(arrDatabase);
    if (AnyName(arrDatabase, [&](const std::string& name) { return name == new_name; })) {
        ShowExclamation("The database '" + new_name + "' already exist!");
        main_.GiveButtonBack(cmdRename_);
        return false;
    }
    manager.RenameDatabase(Chosen("cboRenameDatabase"), new_name);
    return true;
}

} // namespace kv

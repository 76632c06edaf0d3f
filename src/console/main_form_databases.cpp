// frmMain: the combo boxes that list the databases of a server.
#include "admin/upgrade_db_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "console/main_form.h"
#include "console/name_array.h"

namespace kv {
namespace {

struct DatabaseList {
    int tab; ///< MainTab
    const char* combo;
    bool keep_text;    ///< the text stays, even if there is no such database
    bool other_server; ///< shows the databases of the server that is not selected
};

/// In the order in which they are filled. The destination of an upgrade keeps its text because that database
/// need not exist yet.
constexpr std::array kDatabaseLists = {
    DatabaseList{kSynchronizeTab, "cboSynchronizeSourceDatabase", false, false},
    DatabaseList{kSynchronizeTab, "cboSynchronizeDestDatabase", false, true},
    DatabaseList{kUpgradeTab, "cboRenameDatabase", false, false},
    DatabaseList{kUpgradeTab, "cboUpgradeDatabaseDest", true, false},
    DatabaseList{kUpgradeTab, "cboUpgradeDatabaseSource", false, false},
    DatabaseList{kUpgradeTab, "cboRemoveDatabase", false, false},
    DatabaseList{kReplicationTab, "cboSQLReplicationDatabase", false, false},
    DatabaseList{kViewDataTab, "cboViewDataDatabase", false, false},
    DatabaseList{kStoredProcTab, "cboStoredProcDatabase", false, false},
};

} // namespace

void frmMain::UpdateDatabaseLists(int intTab, bool blnUseServerA) {
    if (loading_) {
        return;
    }
    CUpgradeDbMgr manager;
    WithFailureHandler(
        [&] {
            FillSettings(manager, blnUseServerA);
            // If the operation fails there are no names, and the lists become empty.
            std::vector<std::string> arrDatabase;
            manager.GetDatabases(arrDatabase);
            for (const DatabaseList& list : kDatabaseLists) {
                if (list.tab != intTab) {
                    continue;
                }
                if (list.other_server) {
                    manager.UseServerA(!blnUseServerA);
                    manager.GetDatabases(arrDatabase);
                }
                FillDatabaseCombo(form_.Get<ui::ComboBox>(list.combo), arrDatabase, list.keep_text);
            }
        },
        [](const Failure&) { WriteErrorLog("frmMain::UpdateDatabaseLists"); });
    manager.ShowDbError();
}

void frmMain::FillDatabaseCombo(ui::ComboBox& combo, const std::vector<std::string>& arrDatabase,
                                bool keep_text) {
    const std::string text = combo.Text();
    combo.Clear();
    int selected = 0;
    ForEachName(arrDatabase, [&](const std::string& name) {
        combo.AddItem(name);
        if (name == text) {
            selected = combo.ListCount() - 1;
        }
    });
    if (keep_text) {
        combo.Text(text);
    } else if (combo.ListCount() > 0) {
        combo.Text(combo.List(selected));
    }
}

} // namespace kv

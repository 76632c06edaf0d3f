// The handler of the Synchronize tab.
#include "console/synchronize_tab.h"

#include "admin/synchronize_db_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "console/dialogs.h"
#include "console/main_form.h"
#include "console/wait_cursor.h"

namespace kv {

SynchronizeTab::SynchronizeTab(frmMain& main)
    : main_(main),
      server_a_(main.Form().Get<ui::OptionButton>("optSynchronizeSourceServer", 0)),
      source_(main.Form().Get<ui::ComboBox>("cboSynchronizeSourceDatabase")),
      dest_(main.Form().Get<ui::ComboBox>("cboSynchronizeDestDatabase")),
      cmdSynchronize_(main.Form().Get<ui::CommandButton>("cmdSynchronize")) {
    main.RefillOnServerChoice(kSynchronizeTab);
    cmdSynchronize_.on_click = [this] { cmdSynchronize_Click(); };
}

void SynchronizeTab::cmdSynchronize_Click() {
    const CWaitCursor wait;
    CSynchronizeDbMgr manager;
    bool refused = false;
    WithFailureHandler([&] { refused = !Synchronize(manager); },
                       [](const Failure&) { WriteErrorLog("frmMain::cmdSynchronize_Click"); });
    if (refused) {
        return;
    }
    main_.GiveButtonBack(cmdSynchronize_);
    manager.ShowDbError();
    main_.ResetStatus("");
}

bool SynchronizeTab::Synchronize(CSynchronizeDbMgr& manager) {
    cmdSynchronize_.Enabled(false);
    main_.InitStatus(Int16(2), "Initializing...");
    main_.FillSettings(manager, server_a_.Value());
    // The names are compared as typed: the same server in two spellings counts as two.
    if (manager.ServerA() == manager.ServerB() && source_.Text() == dest_.Text()) {
        ShowExclamation("Different source and destination database must be specified!");
        main_.GiveButtonBack(cmdSynchronize_);
        main_.ResetStatus("");
        return false;
    }
    main_.StepStatus("Synchronizing databases...");
    manager.Synchronize(source_.Text(), dest_.Text());
    // This text is shown whether or not the synchronization succeeded.
    main_.StepStatus("Synchronization completed...");
    return true;
}

} // namespace kv

// The handlers of the Stored Proc. tab.
#include "console/stored_proc_tab.h"

#include <optional>

#include "base/error_log.h"
#include "base/failure.h"
#include "console/main_form.h"
#include "console/name_array.h"
#include "console/procedures_form.h"
#include "console/wait_cursor.h"
#include "ui/toolkit.h"

namespace kv {

StoredProcTab::StoredProcTab(frmMain& main)
    : main_(main),
      server_a_(main.Form().Get<ui::OptionButton>("optStoredProcCurrentServer", 0)),
      cboStoredProcDatabase_(main.Form().Get<ui::ComboBox>("cboStoredProcDatabase")),
      cboStoredProcedure_(main.Form().Get<ui::ComboBox>("cboStoredProcedure")),
      edtStoredProcedure_(main.Form().Get<ui::TextBox>("edtStoredProcedure")) {
    main.RefillOnServerChoice(kStoredProcTab);
    cboStoredProcDatabase_.on_click = [this] { loadStoredProcedures(); };
    cboStoredProcedure_.on_click = [this] { cboStoredProcedure_Click(); };
    main.Form().Get<ui::CommandButton>("cmdExecute").on_click = [this] { cmdExecute_Click(); };
}

void StoredProcTab::Fill(CViewDataMgr& manager) const {
    main_.FillSettings(manager, server_a_.Value());
}

void StoredProcTab::loadStoredProcedures() {
    const CWaitCursor wait;
    CViewDataMgr manager;
    WithFailureHandler([&] { ListProcedures(manager); },
                       [](const Failure&) { WriteErrorLog("frmMain::loadStoredProcedures"); });
    manager.ShowDbError();
}

void StoredProcTab::ListProcedures(CViewDataMgr& manager) {
    cboStoredProcedure_.Clear();
    cboStoredProcedure_.Enabled(false);
    Fill(manager);
    std::vector<std::string> arrStoredProcedures;
    if (!manager.GetStoredProcedures(cboStoredProcDatabase_.Text(), arrStoredProcedures)) {
        return;
    }
    ForEachName(arrStoredProcedures, [this](const std::string& name) { cboStoredProcedure_.AddItem(name); });
    if (cboStoredProcedure_.ListCount() > 0) {
        cboStoredProcedure_.ListIndex(0);
    }
    cboStoredProcedure_.Enabled(true);
}

void StoredProcTab::cboStoredProcedure_Click() {
    const CWaitCursor wait;
    CViewDataMgr manager;
    WithFailureHandler(
        [&] {
            Fill(manager);
            edtStoredProcedure_.Text(
                manager.GetStoredProcedure(cboStoredProcDatabase_.Text(), cboStoredProcedure_.Text()));
        },
        [](const Failure&) { WriteErrorLog("frmMain::cboStoredProcedure_Click"); });
    manager.ShowDbError();
}

void StoredProcTab::cmdExecute_Click() {
    WithFailureHandler(
        [&] {
            std::optional<CWaitCursor> wait(std::in_place);
            CViewDataMgr manager;
            Fill(manager);
            frmStoredProcedures dialog;
            dialog.Init(manager, cboStoredProcDatabase_.Text(), cboStoredProcedure_.Text());
            wait.reset(); // no hourglass while the dialog is open
            ui::ShowModally(dialog.Form(), main_.Form());
        },
        [](const Failure&) { WriteErrorLog("frmMain::cmdExecute_Click"); });
}

} // namespace kv

// The handlers of the View Data tab.
#include "console/view_data_tab.h"

#include <algorithm>

#include "base/error_log.h"
#include "base/failure.h"
#include "console/list_views.h"
#include "console/main_form.h"
#include "console/name_array.h"

#include "console/wait_cursor.h"

namespace kv {

ViewDataTab::ViewDataTab(frmMain& main)
    : main_(main),
      server_a_(main.Form().Get<ui::OptionButton>("optViewDataCurrentServer", 0)),
      cboViewDataDatabase_(main.Form().Get<ui::ComboBox>("cboViewDataDatabase")),
      lstViewDataTables_(main.Form().Get<ui::ListBox>("lstViewDataTables")),
      lvwViewData_(main.Form().Get<ui::ListView>("lvwViewData")) {
    main.RefillOnServerChoice(kViewDataTab);
    cboViewDataDatabase_.on_click = [this] { cboViewDataDatabase_Click(); };
    lstViewDataTables_.on_click = [this] { lstViewDataTables_Click(); };
}

void ViewDataTab::Fill(CViewDataMgr& manager) const {
    main_.FillSettings(manager, server_a_.Value());
}

void ViewDataTab::cboViewDataDatabase_Click() {
    const CWaitCursor wait;
    CViewDataMgr manager;
    // The log line names the event Change, although this is Click: readers of the log know it by that name.
    WithFailureHandler([&] { ListTables(manager); },
                       [](const Failure&) { WriteErrorLog("frmMain::cboViewDataDatabase_Change"); });
    main_.Form().UnlockPainting();
    manager.ShowDbError();
}

void ViewDataTab::ListTables(CViewDataMgr& manager) {
    main_.Form().LockPainting();
    lstViewDataTables_.Clear();
    lstViewDataTables_.Enabled(false);
    Fill(manager);
    std::vector<std::string> arrTables;
    if (!manager.GetTables(cboViewDataDatabase_.Text(), arrTables)) {
        return;
    }
    ForEachName(arrTables, [this](const std::string& name) { lstViewDataTables_.AddItem(name); });
    if (lstViewDataTables_.ListCount() > 0) {
        lstViewDataTables_.ListIndex(0);
    }
    lstViewDataTables_.Enabled(true);
}

void ViewDataTab::lstViewDataTables_Click() {
    const CWaitCursor wait;
    std::unique_ptr<CViewDataMgr> manager;
    bool returned_early = false;
    WithFailureHandler([&] { returned_early = !ShowTable(manager); },
                       [](const Failure&) { WriteErrorLog("frmMain::lstViewDataTables_Click"); });
    if (returned_early) {
        return;
    }
    main_.Form().UnlockPainting();
    if (manager) {
        manager->ShowDbError();
    }
}

bool ViewDataTab::ShowTable(std::unique_ptr<CViewDataMgr>& manager) {
    main_.Form().LockPainting();
    EmptyResultList(lvwViewData_);
    if (lstViewDataTables_.ListCount() == 0 || lstViewDataTables_.ListIndex() < 0) {
        return false;
    }
    manager = std::make_unique<CViewDataMgr>();
    Fill(*manager);
    std::vector<std::string> arrTableIdentifiers;
    TextTable arrTableData;
    if (!manager->GetData(cboViewDataDatabase_.Text(), lstViewDataTables_.Text(), arrTableIdentifiers,
                          arrTableData)) {
        return true;
    }
    if (arrTableData.ColumnUpperBound() == 0) {
        return false;
    }
    FillResultList(lvwViewData_, arrTableData, [&](Int16, const std::string& name) {
        const bool identity = std::find(arrTableIdentifiers.begin() + 1, arrTableIdentifiers.end(), name) !=
                              arrTableIdentifiers.end();
        return ui::ListView::Column{name, name + (identity ? " *" : "")};
    });
    lvwViewData_.Enabled(true);
    return true;
}

} // namespace kv

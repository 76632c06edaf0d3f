// The View Data tab: a server, a database, a table, and the whole table with its identity columns marked.
#pragma once

#include <memory>

#include "inspect/view_data_mgr.h"
#include "ui/form.h"

namespace kv {

class frmMain;

class ViewDataTab {
  public:
    explicit ViewDataTab(frmMain& main);

  private:
    void cboViewDataDatabase_Click();
    void lstViewDataTables_Click();
    void ListTables(CViewDataMgr& manager);
    /// False where the handler is left at once: the window stays locked and the list closed.
    bool ShowTable(std::unique_ptr<CViewDataMgr>& manager);
    void Fill(CViewDataMgr& manager) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& cboViewDataDatabase_;
    ui::ListBox& lstViewDataTables_;
    ui::ListView& lvwViewData_;
};

} // namespace kv

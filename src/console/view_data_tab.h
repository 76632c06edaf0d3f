// The View Data tab: the operator chooses a server, a database and a table, and sees the whole table with its
// identity columns marked.
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
    /// Returns false if the handler must return at once: painting stays locked and the list disabled.
    bool ShowTable(std::unique_ptr<CViewDataMgr>& manager);
    void Fill(CViewDataMgr& manager) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& cboViewDataDatabase_;
    ui::ListBox& lstViewDataTables_;
    ui::ListView& lvwViewData_;
};

} // namespace kv

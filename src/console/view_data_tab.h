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
    /// Fills the list of tables and selects the first. The list stays empty and disabled if they cannot be
    /// read.
    void ListTables(CViewDataMgr& manager);
    /// Shows the selected table. Sets `manager` if a table is selected. Returns false if no table is selected
    /// or it has no columns. Then the handler must return without its last steps: painting stays locked and
    /// the list disabled.
    bool ShowTable(std::unique_ptr<CViewDataMgr>& manager);
    /// Copies the settings of the selected server into the manager.
    void Fill(CViewDataMgr& manager) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& cboViewDataDatabase_;
    ui::ListBox& lstViewDataTables_;
    ui::ListView& lvwViewData_;
};

} // namespace kv

// The Stored Proc. tab: the operator chooses a server, a database and a procedure, sees its source text and
// opens the dialog that runs it.
#pragma once

#include "inspect/view_data_mgr.h"
#include "ui/form.h"

namespace kv {

class frmMain;

class StoredProcTab {
  public:
    explicit StoredProcTab(frmMain& main);

  private:
    void loadStoredProcedures();
    /// Fills the list of procedures and selects the first. The list stays empty and disabled if they cannot
    /// be read.
    void ListProcedures(CViewDataMgr& manager);
    void cboStoredProcedure_Click();
    void cmdExecute_Click();
    /// Copies the settings of the selected server into the manager.
    void Fill(CViewDataMgr& manager) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& cboStoredProcDatabase_;
    ui::ComboBox& cboStoredProcedure_;
    ui::TextBox& edtStoredProcedure_;
};

} // namespace kv

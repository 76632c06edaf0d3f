// The Synchronize tab: copies the data of a database on one server of the pair to a database on the other.
#pragma once

#include "ui/form.h"

namespace kv {

class CSynchronizeDbMgr;
class frmMain;

class SynchronizeTab {
  public:
    explicit SynchronizeTab(frmMain& main);

  private:
    void cmdSynchronize_Click();
    /// Returns false if the command was refused. Then the exit steps have been done already.
    bool Synchronize(CSynchronizeDbMgr& manager);

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& source_;
    ui::ComboBox& dest_;
    ui::CommandButton& cmdSynchronize_;
};

} // namespace kv

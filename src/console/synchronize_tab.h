// The Synchronize tab: brings a database of one server of the pair up to one of the other.
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
    /// False if it was refused: the handler ends then without its exit steps.
    bool Synchronize(CSynchronizeDbMgr& manager);
    void GiveButtonBack();

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::ComboBox& source_;
    ui::ComboBox& dest_;
    ui::CommandButton& cmdSynchronize_;
};

} // namespace kv

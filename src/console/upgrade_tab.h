// The Upgrade tab: renames, upgrades and removes databases of one server, at once and without a question.
#pragma once

#include <functional>
#include <string>

#include "ui/form.h"

namespace kv {

class CUpgradeDbMgr;
class frmMain;

class UpgradeTab {
  public:
    explicit UpgradeTab(frmMain& main);

  private:
    /// False if it was refused: the handler ends then without its exit steps.
    using Work = std::function<bool(CUpgradeDbMgr&)>;

    /// What the three commands share: the button away and back, the manager, the refreshed lists.
    void RunCommand(ui::CommandButton& button, const char* log_source, const Work& work);
    bool Rename(CUpgradeDbMgr& manager);
    void GiveBack(ui::CommandButton& button);
    const std::string& Chosen(const char* combo) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::TextBox& edtRenameNewDatabase_;
    ui::CommandButton& cmdRename_;
};

} // namespace kv

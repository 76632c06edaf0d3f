// The Upgrade tab: renames, upgrades and removes databases of one server, without asking for confirmation.
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
    /// Returns false if the command was refused: the handler then ends without its exit steps.
    using Work = std::function<bool(CUpgradeDbMgr&)>;

    /// The steps that the three commands share: disables the button, makes the manager, does the work,
    /// refreshes the lists and enables the button.
    void RunCommand(ui::CommandButton& button, const char* log_source, const Work& work);
    bool Rename(CUpgradeDbMgr& manager);

    const std::string& Chosen(const char* combo) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::TextBox& edtRenameNewDatabase_;
    ui::CommandButton& cmdRename_;
};

} // namespace kv

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
    /// The work of a command. Returns false if the command was refused; then the lists are not refreshed and
    /// no errors are shown.
    using Work = std::function<bool(CUpgradeDbMgr&)>;

    /// Runs one of the three commands: disables the button, makes the manager, does the work, refreshes the
    /// lists, enables the button and shows the server's errors. A failure is logged under `log_source`.
    void RunCommand(ui::CommandButton& button, const char* log_source, const Work& work);
    bool Rename(CUpgradeDbMgr& manager);

    /// The text of a combo box.
    const std::string& Chosen(const char* combo) const;

    frmMain& main_;
    ui::OptionButton& server_a_;
    ui::TextBox& edtRenameNewDatabase_;
    ui::CommandButton& cmdRename_;
};

} // namespace kv

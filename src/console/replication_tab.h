// The Replication tab: shows whether replication is installed, installs and uninstalls it, and shows the
// site's registry setting that says whether it is to be used.
#pragma once

#include <string>

#include "ui/form.h"

namespace kv {

class CSQLReplicationMgr;
class frmMain;

class ReplicationTab {
  public:
    explicit ReplicationTab(frmMain& main);

    /// Shows the site's registry setting in its check box.
    void ShowReplicationSetting();
    /// Asks the server whether replication is installed, and sets the two buttons and the status label.
    void UpdatedReplicationStatus();

  private:
    using Operation = bool (CSQLReplicationMgr::*)(const std::string&);

    void chkUseSQLServerReplication_Click();
    /// Runs the manager's operation on the chosen database and shows the new status. A failure is logged
    /// under `log_source`.
    void RunCommand(const char* log_source, Operation operation);
    /// Shows whether replication is installed. `known` is false if the server could not be asked.
    void ShowStatus(bool known, bool installed);
    /// Copies the settings of the server that is selected on the Upgrade tab, not on this one, into the
    /// manager. The option buttons here only choose the server whose databases fill the list. Sites rely on
    /// it.
    void Fill(CSQLReplicationMgr& manager) const;

    frmMain& main_;
    ui::CheckBox& chkUseSQLServerReplication_;
    ui::ComboBox& cboSQLReplicationDatabase_;
    ui::CommandButton& cmdInstallReplication_;
    ui::CommandButton& cmdUninstallReplication_;
    ui::Label& status_;
};

} // namespace kv

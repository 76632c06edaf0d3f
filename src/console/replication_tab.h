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
    void ShowSwitch();
    /// Asks the server whether replication is installed, and sets the two buttons and the status label.
    void UpdatedReplicationStatus();

  private:
    using Operation = bool (CSQLReplicationMgr::*)(const std::string&);

    void chkUseSQLServerReplication_Click();
    void RunCommand(const char* log_source, Operation operation);
    void ShowStatus(bool known, bool installed);
    /// Uses the server that is selected on the Upgrade tab, not on this one: the option here only chooses the
    /// server whose databases fill the list. Sites rely on it.
    void Fill(CSQLReplicationMgr& manager) const;

    frmMain& main_;
    ui::CheckBox& chkUseSQLServerReplication_;
    ui::ComboBox& cboSQLReplicationDatabase_;
    ui::CommandButton& cmdInstallReplication_;
    ui::CommandButton& cmdUninstallReplication_;
    ui::Label& status_;
};

} // namespace kv

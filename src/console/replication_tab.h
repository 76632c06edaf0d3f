// The Replication tab: shows whether replication is on, switches it, and holds the site's switch that says
// whether it is to be used at all.
#pragma once

#include <string>

#include "ui/form.h"

namespace kv {

class CSQLReplicationMgr;
class frmMain;

class ReplicationTab {
  public:
    explicit ReplicationTab(frmMain& main);

    /// The site's switch, as the registry holds it, on its box.
    void ShowSwitch();
    /// Asks the server, and sets the two buttons and the status label.
    void UpdatedReplicationStatus();

  private:
    using Operation = bool (CSQLReplicationMgr::*)(const std::string&);

    void chkUseSQLServerReplication_Click();
    void RunCommand(const char* log_source, Operation operation);
    void ShowStatus(bool known, bool installed);
    /// The server is the one that the Upgrade tab has selected, not this tab's: the option here says only
    /// whose databases fill the list. Sites rely on it.
    void Fill(CSQLReplicationMgr& manager) const;

    frmMain& main_;
    ui::CheckBox& chkUseSQLServerReplication_;
    ui::ComboBox& cboSQLReplicationDatabase_;
    ui::CommandButton& cmdInstallReplication_;
    ui::CommandButton& cmdUninstallReplication_;
    ui::Label& status_;
};

} // namespace kv

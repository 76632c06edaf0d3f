// The handlers of the Replication tab.
#include "console/replication_tab.h"

#include "admin/sql_replication_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "console/main_form.h"
#include "console/wait_cursor.h"
#include "text/text.h"

namespace kv {
namespace {

namespace location = registry_locations;

} // namespace

ReplicationTab::ReplicationTab(frmMain& main)
    : main_(main),
      chkUseSQLServerReplication_(main.Form().Get<ui::CheckBox>("chkUseSQLServerReplication")),
      cboSQLReplicationDatabase_(main.Form().Get<ui::ComboBox>("cboSQLReplicationDatabase")),
      cmdInstallReplication_(main.Form().Get<ui::CommandButton>("cmdInstallReplication")),
      cmdUninstallReplication_(main.Form().Get<ui::CommandButton>("cmdUninstallReplication")),
      status_(main.Form().Get<ui::Label>("lblSQLServerReplicationStatus")) {
    main.RefillOnServerChoice(kReplicationTab);
    chkUseSQLServerReplication_.on_click = [this] { chkUseSQLServerReplication_Click(); };
    const auto update_status = [this](const char* log_source) {
        return [this, log_source] {
            const CWaitCursor wait;
            WithFailureHandler([this] { UpdatedReplicationStatus(); },
                               [log_source](const Failure&) { WriteErrorLog(log_source); });
        };
    };
    cboSQLReplicationDatabase_.on_click = update_status("frmMain::cboSQLReplicationDatabase_Click");
    cboSQLReplicationDatabase_.on_change = update_status("frmMain::cboSQLReplicationDatabase_Change");
    cmdInstallReplication_.on_click = [this] {
        RunCommand("frmMain::cmdInstallReplication_Click", &CSQLReplicationMgr::InstallReplication);
    };
    cmdUninstallReplication_.on_click = [this] {
        RunCommand("frmMain::cmdUninstallReplication_Click", &CSQLReplicationMgr::UninstallReplication);
    };
}

void ReplicationTab::Fill(CSQLReplicationMgr& manager) const {
    main_.FillSettings(manager, main_.Form().Get<ui::OptionButton>("optUpgradeCurrentServer", 0).Value());
}

void ReplicationTab::ShowReplicationSetting() {
    const std::string value =
        GetLocalSetting(location::kHkeyLocalMachine, location::kCustomFunctionsKey,
                        location::kUseTransactionalReplicationValue, location::kNoDefault);
    chkUseSQLServerReplication_.Value(text::UpperCase(value) == "TRUE" ? 1 : 0);
}

void ReplicationTab::chkUseSQLServerReplication_Click() {
    const char* value = chkUseSQLServerReplication_.Value() == 1 ? "TRUE" : "FALSE";
    if (!SaveLocalSetting(location::kHkeyLocalMachine, location::kCustomFunctionsKey,
                          location::kUseTransactionalReplicationValue, value)) {
        ShowReplicationSetting();
    }
}

void ReplicationTab::UpdatedReplicationStatus() {
    CSQLReplicationMgr manager;
    WithFailureHandler(
        [&] {
            Fill(manager);
            bool installed = false;
            const bool known = manager.IsReplicationInstalled(cboSQLReplicationDatabase_.Text(), installed);
            ShowStatus(known, installed);
        },
        [](const Failure&) { WriteErrorLog("frmMain::UpdatedReplicationStatus"); });
    manager.ShowDbError();
}

void ReplicationTab::ShowStatus(bool known, bool installed) {
    const std::string quoted = "'" + cboSQLReplicationDatabase_.Text() + "'";
    cmdInstallReplication_.Enabled(known && !installed);
    cmdUninstallReplication_.Enabled(known && installed);
    status_.ForeColor(known ? ui::kButtonText : ui::kRed);
    if (known) {
        status_.Caption(std::string("Transaction replication is ") + (installed ? "" : "not ") +
                        "activated for the SQL Server database " + quoted + ".");
    } else {
        status_.Caption("Replication status for database " + quoted +
                        " could not be retieved from the SQL Server!");
    }
}

void ReplicationTab::RunCommand(const char* log_source, Operation operation) {
    const CWaitCursor wait;
    CSQLReplicationMgr manager;
    WithFailureHandler(
        [&] {
            Fill(manager);
            (manager.*operation)(cboSQLReplicationDatabase_.Text());
            UpdatedReplicationStatus();
        },
        [&](const Failure&) { WriteErrorLog(log_source); });
    manager.ShowDbError();
}

} // namespace kv

// frmMain: the main window of the interactive console. Contains what its tabs share: the entries remembered
// from run to run, which tabs and servers can be used, the database lists and the status line. The handlers
// of each tab are in the tab's file.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/int16.h"
#include "console/availability.h"
#include "console/general_tab.h"
#include "console/replication_tab.h"
#include "console/script_tab.h"
#include "console/stored_proc_tab.h"
#include "console/synchronize_tab.h"
#include "console/upgrade_tab.h"
#include "console/view_data_tab.h"
#include "managers/server_pair_settings.h"
#include "ui/form.h"

namespace kv {

class frmMain {
  public:
    /// The window with the texts of its design; nothing is loaded yet.
    frmMain();
    frmMain(const frmMain&) = delete;
    frmMain& operator=(const frmMain&) = delete;
    ~frmMain();

    /// Restores the remembered entries and works out which tabs and servers can be used. Raises
    /// run_time::kInvalidProcedureCall for a server version without a ".". The entries are saved when the
    /// form is unloaded, by cmdClose or by its frame.
    void Load();

    ui::Form& Form() { return form_; }

    // For the tabs.

    /// Works out which tabs and servers can be used, from the fields of the General tab.
    void UpdateServerAvailability();
    /// Enables the controls of the DTS packages if the installed server version has DTS.
    void DisableDTSOptions();

    /// The status line: a bar and a text, shown at once. Each of the three then runs pending events.
    void InitStatus(Int16 intMax, const std::string& strText);
    void StepStatus(const std::string& strText);
    void ResetStatus(const std::string& strText);

    /// Refills the database lists of one tab. Logs a failure and shows the server's errors.
    void UpdateDatabaseLists(int intTab, bool blnUseServerA);

    /// Makes the tab's two server options refill its database lists when one is chosen.
    void RefillOnServerChoice(int intTab);

    /// Copies the fields of the General tab into a manager's settings.
    void FillSettings(ServerPairSettings& settings, bool blnUseServerA) const;

    /// Ends a command: enables its button again and gives it the focus.
    void GiveButtonBack(ui::CommandButton& button);

  private:
    void tabMain_Click();
    /// Reads from the server the lists and the status that the opened tab shows.
    void RefreshTab(int tab);
    bool ServerASelected(int tab) const;

    void UpdateTabStatus();
    void UpdateServerOptions(int intTab);
    void SetServerOption(ui::OptionButton& option, const std::string& strCaption);
    /// The General tab's fields of Server A (index 0) or Server B (index 1).
    ServerFields FieldsOf(int index) const;

    void LoadSettings(std::span<const ui::ControlName> entries);
    void SaveSettings(std::span<const ui::ControlName> entries);
    void LoadControlSetting(ui::Control& control);
    void SaveControlSetting(const ui::Control& control);
    void Unload();
    void LookForDomain();

    void ShowStatusText(const std::string& strText);
    void FillDatabaseCombo(ui::ComboBox& combo, const std::vector<std::string>& arrDatabase, bool keep_text);

    ui::Form form_;
    ui::TabControl& tabMain_;
    ui::ProgressBar& prbStatus_;
    ui::Label& lblStatus_;
    bool loading_ = false;

    GeneralTab general_;
    ScriptTab script_;
    SynchronizeTab synchronize_;
    UpgradeTab upgrade_;
    ReplicationTab replication_;
    ViewDataTab view_data_;
    StoredProcTab stored_proc_;
};

} // namespace kv

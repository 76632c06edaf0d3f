// frmMain: the main window of the interactive console. This class contains the parts that the tabs share: the
// entries that are remembered from run to run, which tabs and servers can be used, the database lists and the
// status line. The handlers of each tab are in the tab's class.
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
    /// Makes the form with the texts of its design, and sets the handlers. Load does the rest.
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

    // The status line: a progress bar and a text. Each of the three shows the text at once and runs pending
    // events.

    /// Empties the bar and gives it `intMax` steps; a negative number counts as 1.
    void InitStatus(Int16 intMax, const std::string& strText);
    /// Advances the bar by one step unless it is full.
    void StepStatus(const std::string& strText);
    /// Empties the bar.
    void ResetStatus(const std::string& strText);

    /// Refills the database lists of a tab (MainTab) from Server A or Server B. Logs a failure and shows the
    /// server's errors. Does nothing during Load.
    void UpdateDatabaseLists(int intTab, bool blnUseServerA);

    /// Sets the handlers of the tab's two option buttons for the servers: choosing one refills the tab's
    /// database lists.
    void RefillOnServerChoice(int intTab);

    /// Copies the fields of the General tab into a manager's settings. `blnUseServerA` selects the server on
    /// which the manager works.
    void FillSettings(ServerPairSettings& settings, bool blnUseServerA) const;

    /// Ends a command: enables its button again and gives it the focus.
    void GiveButtonBack(ui::CommandButton& button);

  private:
    void tabMain_Click();
    /// Reads from the server the lists and the status that the opened tab shows.
    void RefreshTab(int tab);
    bool ServerASelected(int tab) const;

    /// Enables the page of the active tab and disables the others.
    void UpdateTabStatus();
    /// Shows the servers' names on the tab's two option buttons, and selects a server that can be used.
    void UpdateServerOptions(int intTab);
    /// Shows the name, or "N/A" if the server cannot be used. UpdateServerAvailability stores in the button's
    /// Tag whether it can.
    void SetServerOption(ui::OptionButton& option, const std::string& strCaption);
    /// The General tab's fields of Server A (index 0) or Server B (index 1).
    ServerFields FieldsOf(int index) const;

    /// Load and save the texts of these controls in the user's settings.
    void LoadSettings(std::span<const ui::ControlName> entries);
    void SaveSettings(std::span<const ui::ControlName> entries);
    void LoadControlSetting(ui::Control& control);
    void SaveControlSetting(const ui::Control& control);
    /// Saves all remembered entries.
    void Unload();
    /// Disables the box of the domain if the registry lacks the installation key.
    void LookForDomain();

    void ShowStatusText(const std::string& strText);
    /// Replaces the items by the databases. The text stays if `keep_text`, else if it is one of them;
    /// otherwise the first database is selected.
    void FillDatabaseCombo(ui::ComboBox& combo, const std::vector<std::string>& arrDatabase, bool keep_text);

    ui::Form form_;
    ui::TabControl& tabMain_;
    ui::ProgressBar& prbStatus_;
    ui::Label& lblStatus_;
    bool loading_ = false; ///< Load is running: handlers that the entries fire do nothing

    GeneralTab general_;
    ScriptTab script_;
    SynchronizeTab synchronize_;
    UpgradeTab upgrade_;
    ReplicationTab replication_;
    ViewDataTab view_data_;
    StoredProcTab stored_proc_;
};

} // namespace kv

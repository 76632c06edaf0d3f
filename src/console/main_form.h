// frmMain: the one window of the interactive console. Carries what its tabs share: the remembered entries,
// which tabs and servers can be used, the database lists and the status line. The tabs' own work stands in
// their files.
#pragma once

#include <array>
#include <memory>
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
    /// The window with its design's texts; nothing is loaded yet.
    frmMain();
    frmMain(const frmMain&) = delete;
    frmMain& operator=(const frmMain&) = delete;
    ~frmMain();

    /// Restores what was remembered and works out what can be used. Raises
    /// run_time::kInvalidProcedureCall for a server version without a ".". Its unload, by cmdClose or by the
    /// frame, remembers the entries.
    void Load();

    ui::Form& Form() { return form_; }

    // What the tabs use.

    /// Works out availability of tabs and servers from the General tab.
    void UpdateServerAvailability();
    /// Applies the version rule to the controls of the packages.
    void DisableDTSOptions();

    /// The status line: a bar and a text, shown at once. Pending events run behind each of the three.
    void InitStatus(Int16 intMax, const std::string& strText);
    void StepStatus(const std::string& strText);
    void ResetStatus(const std::string& strText);

    /// Refills the database lists of one tab. Logs a failure; shows what the server reported.
    void UpdateDatabaseLists(int intTab, bool blnUseServerA);

    /// A choice of one of the tab's two servers refills its database lists.
    void RefillOnServerChoice(int intTab);

    /// Writes the whole block of settings from the General tab.
    void FillSettings(ServerPairSettings& settings, bool blnUseServerA) const;

  private:
    void tabMain_Click();
    /// What the tab that is opened shows of the server.
    void RefreshTab(int tab);
    bool ServerASelected(int tab) const;

    void UpdateTabStatus();
    void UpdateServerOptions(int intTab);
    void SetServerOption(ui::OptionButton& option, const std::string& strCaption);
    ServerFields FieldsOf(int index) const;

    /// The settings memory, entries `begin` to before `end` of the list.
    void LoadSettings(std::size_t begin, std::size_t end);
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

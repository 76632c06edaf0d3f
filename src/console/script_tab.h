// The Script tab: the operator chooses which scripts are created and run and which packages are installed.
// The unattended installation does the same in one run.
#pragma once

#include <string>
#include <vector>

#include "scripts/sql_script_mgr.h"
#include "ui/form.h"

namespace kv {

class frmMain;

class ScriptTab {
  public:
    explicit ScriptTab(frmMain& main);

    /// Enables the check box of the operator's own script if its text names an existing file; otherwise
    /// disables and clears it, so that a script that is gone cannot be run.
    void UpdateScriptFileBox();

  private:
    /// How a run ended. After Refused a message has been shown and the button is enabled again.
    enum class Run : bool { Completed, Refused };

    void cmdCreateInstall_Click();
    void cmdGetInstalledPackages_Click();
    void cmdBrowseForScriptFile_Click();

    /// Runs the ticked scripts and packages. Sets `manager` when the first step needs it; it stays null if
    /// nothing is ticked.
    Run RunTicked(std::unique_ptr<CSQLScriptMgr>& manager);
    /// Returns true if at least one script was created.
    bool CreateScripts(const CSQLScriptMgr& manager);
    bool AnyPackageExists(const CSQLScriptMgr& manager) const;
    void InstallScripts(const CSQLScriptMgr& manager);
    void InstallPackages(const CSQLScriptMgr& manager);
    /// Shows the message, enables the button and resets the status line. Returns Run::Refused.
    Run Refuse(const char* message);

    /// Makes a manager with the settings of the General tab and the server that is selected on this one.
    std::unique_ptr<CSQLScriptMgr> MakeManager() const;
    bool Ticked(const char* check_box) const;
    int TickedScripts() const;
    int TickedPackages() const;
    /// True if the scripts are to be run after they have been created.
    bool InstallsScripts() const;
    /// The path of the operator's own script; empty for any other script.
    std::string FileOf(eSQLScript script) const;

    frmMain& main_;
    ui::CommandButton& cmdCreateInstall_;
    ui::TextBox& edtCreateInstallScriptFile_;
    ui::CheckBox& chkCreateInstallScriptFile_;
};

} // namespace kv

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
    enum class Run : bool { Completed, Refused };

    void cmdCreateInstall_Click();
    void cmdGetInstalledPackages_Click();
    void cmdBrowseForScriptFile_Click();

    /// The steps of a run before its exit steps. Makes the manager when the first step needs it.
    Run RunTicked(std::unique_ptr<CSQLScriptMgr>& manager);
    bool CreateScripts(const CSQLScriptMgr& manager);
    bool AnyPackageExists(const CSQLScriptMgr& manager) const;
    void InstallScripts(const CSQLScriptMgr& manager);
    void InstallPackages(const CSQLScriptMgr& manager);
    /// Shows the message and runs the exit steps.
    Run Refuse(const char* message);

    std::unique_ptr<CSQLScriptMgr> MakeManager() const;
    bool Ticked(const char* check_box) const;
    int TickedScripts() const;
    int TickedPackages() const;
    bool InstallsScripts() const;
    std::string FileOf(eSQLScript script) const;

    frmMain& main_;
    ui::CommandButton& cmdCreateInstall_;
    ui::TextBox& edtCreateInstallScriptFile_;
    ui::CheckBox& chkCreateInstallScriptFile_;
};

} // namespace kv

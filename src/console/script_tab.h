// The Script tab: by hand and in pieces what the unattended installation does in one run.
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

    /// The box of the operator's own script can be ticked while its text names an existing file; otherwise it
    /// is clear, so that a stale tick cannot run.
    void UpdateScriptFileBox();

  private:
    enum class Run : bool { Completed, Refused };

    void cmdCreateInstall_Click();
    void cmdGetInstalledPackages_Click();
    void cmdBrowseForScriptFile_Click();

    /// The run between its first step and its exit steps. Makes the manager on the way.
    Run RunTicked(std::unique_ptr<CSQLScriptMgr>& manager);
    bool CreateScripts(const CSQLScriptMgr& manager);
    bool AnyPackageExists(const CSQLScriptMgr& manager) const;
    void InstallScripts(const CSQLScriptMgr& manager);
    void InstallPackages(const CSQLScriptMgr& manager);
    /// The message, the button back, and the end of the run.
    Run Refuse(const char* message);
    void GiveButtonBack();

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

/// What the operator is told of the packages of a server; empty if there are none.
std::string DescribePackages(const std::vector<DTSPackageInfo>& arrPackages);

} // namespace kv

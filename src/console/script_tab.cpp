// The handlers of the Script tab.
#include "console/script_tab.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "ado/variant.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "console/dialogs.h"
#include "console/main_form.h"
#include "console/wait_cursor.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "ui/toolkit.h"

namespace kv {
namespace {

// Pauses, so that the operator can read the status line: after each script, and at the end of a run.
constexpr std::chrono::milliseconds kScriptWait{2000};
constexpr std::chrono::milliseconds kEndWait{3000};

struct ScriptStep {
    const char* check_box;
    eSQLScript script;
    const char* text; ///< the status line during the step
};

struct PackageStep {
    const char* check_box;
    eDTSPackage package;
    const char* text; ///< the status line during the step
};

constexpr std::array kCreateSteps = {
    ScriptStep{"chkCreateInstallBatchDatabase", sqlCreateBatchDatabase,
               "Create modified batch database script..."},
    ScriptStep{"chkCreateInstallBatchDefaultData", sqlInsertDefaultData,
               "Create modified batch default data script..."},
    ScriptStep{"chkCreateInstallBatchStoredProcedures", sqlCreateBatchStoredProcedures,
               "Create modified batch stored procedure script..."},
    ScriptStep{"chkCreateInstallSQLServerReplication", sqlCreateReplicationStoredProcedures,
               "Create modified batch sql server replication script..."},
    ScriptStep{"chkCreateInstallScriptFile", sqlUserDefinedScript, "Create modified user defined script..."},
};

/// The order differs from that of kCreateSteps because the default data need the stored procedures.
constexpr std::array kInstallSteps = {
    ScriptStep{"chkCreateInstallBatchDatabase", sqlCreateBatchDatabase, "Install batch database..."},
    ScriptStep{"chkCreateInstallBatchStoredProcedures", sqlCreateBatchStoredProcedures,
               "Install batch stored procedures..."},
    ScriptStep{"chkCreateInstallBatchDefaultData", sqlInsertDefaultData, "Install batch default data..."},
    ScriptStep{"chkCreateInstallSQLServerReplication", sqlCreateReplicationStoredProcedures,
               "Install batch sql server replication..."},
    ScriptStep{"chkCreateInstallScriptFile", sqlUserDefinedScript, "Install user defined script file..."},
};

constexpr std::array kPackageSteps = {
    PackageStep{"chkStandardSynchronize", dtsStdSynchronize, "Install Standard Synchronize DTS package..."},
    PackageStep{"chkUpgradeDatabaseV1ToV2", dtsUpgradeDatabaseV1ToV2,
                "Install Upgrade Database V1 to V2 DTS package..."},
    PackageStep{"chkBatchOverviewExport", dtsBatchOverviewExport,
                "Install Batch Overview Export DTS package..."},
    PackageStep{"chkBatchOverviewRecalcExport", dtsBatchOverviewRecalcExport,
                "Install Batch Overview Recalculation Export DTS package..."},
    PackageStep{"chkBatchSummaryExport", dtsBatchSummaryExport,
                "Install Batch Summary Export DTS package..."},
    PackageStep{"chkBatchSummaryRecalcExport", dtsBatchSummaryRecalcExport,
                "Install Batch Summary Recalculation Export DTS package..."},
};

/// Formats the time by the user's locale, like every date that the program shows; only the log has a format
/// of its own.
std::string TextOf(const platform::LocalTime& time) {
    ado::Date date{};
    date.year = static_cast<decltype(date.year)>(time.year);
    date.month = static_cast<decltype(date.month)>(time.month);
    date.day = static_cast<decltype(date.day)>(time.day);
    date.hour = static_cast<decltype(date.hour)>(time.hour);
    date.minute = static_cast<decltype(date.minute)>(time.minute);
    date.second = static_cast<decltype(date.second)>(time.second);
    return ado::Variant(date).ToString();
}

/// The text that lists a server's packages for the operator; empty if there are none.
std::string DescribePackages(const std::vector<DTSPackageInfo>& arrPackages) {
    std::string text;
    for (std::size_t i = 1; i < arrPackages.size(); ++i) {
        if (i > 1) {
            text += "\r\n----------------------------------------------\r\n\r\n";
        }
        text += arrPackages[i].name + "\r\n";
        text += arrPackages[i].description + "\r\n";
        text += "Created: " + TextOf(arrPackages[i].creationDate) + "\r\n";
    }
    return text;
}

} // namespace

ScriptTab::ScriptTab(frmMain& main)
    : main_(main),
      cmdCreateInstall_(main.Form().Get<ui::CommandButton>("cmdCreateInstall")),
      edtCreateInstallScriptFile_(main.Form().Get<ui::TextBox>("edtCreateInstallScriptFile")),
      chkCreateInstallScriptFile_(main.Form().Get<ui::CheckBox>("chkCreateInstallScriptFile")) {
    ui::Form& form = main.Form();
    cmdCreateInstall_.on_click = [this] { cmdCreateInstall_Click(); };
    form.Get<ui::CommandButton>("cmdGetInstalledPackages").on_click = [this] {
        cmdGetInstalledPackages_Click();
    };
    form.Get<ui::CommandButton>("cmdBrowseForScriptFile").on_click = [this] {
        cmdBrowseForScriptFile_Click();
    };
    edtCreateInstallScriptFile_.on_change = [this] { UpdateScriptFileBox(); };
}

void ScriptTab::UpdateScriptFileBox() {
    const std::string& file = edtCreateInstallScriptFile_.Text();
    chkCreateInstallScriptFile_.Enabled(!file.empty() && platform::FileExists(file));
    if (!chkCreateInstallScriptFile_.Enabled()) {
        chkCreateInstallScriptFile_.Value(0);
    }
}

void ScriptTab::cmdBrowseForScriptFile_Click() {
    edtCreateInstallScriptFile_.Text(BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql",
                                                   main_.Form(), edtCreateInstallScriptFile_.Text()));
}

std::unique_ptr<CSQLScriptMgr> ScriptTab::MakeManager() const {
    auto manager = std::make_unique<CSQLScriptMgr>();
    manager->ScriptFolder(main_.Form().Get<ui::TextBox>("edtScriptFolder").Text());
    manager->Domain(main_.Form().Get<ui::TextBox>("edtDomainName").Text());
    main_.FillSettings(*manager, main_.Form().Get<ui::OptionButton>("optScriptCurrentServer", 0).Value());
    return manager;
}

bool ScriptTab::Ticked(const char* check_box) const {
    return main_.Form().Get<ui::CheckBox>(check_box).Value() == 1;
}

int ScriptTab::TickedScripts() const {
    return static_cast<int>(std::count_if(kCreateSteps.begin(), kCreateSteps.end(),
                                          [this](const ScriptStep& step) { return Ticked(step.check_box); }));
}

int ScriptTab::TickedPackages() const {
    return static_cast<int>(
        std::count_if(kPackageSteps.begin(), kPackageSteps.end(),
                      [this](const PackageStep& step) { return Ticked(step.check_box); }));
}

bool ScriptTab::InstallsScripts() const {
    return main_.Form().Get<ui::OptionButton>("optCreateInstallScriptFiles", 1).Value();
}

std::string ScriptTab::FileOf(eSQLScript script) const {
    return script == sqlUserDefinedScript ? edtCreateInstallScriptFile_.Text() : std::string();
}

void ScriptTab::cmdCreateInstall_Click() {
    const CWaitCursor wait;
    std::unique_ptr<CSQLScriptMgr> manager;
    Run run = Run::Completed;
    WithFailureHandler([&] { run = RunTicked(manager); },
                       [](const Failure&) { WriteErrorLog("frmMain::cmdCreateInstall_Click"); });
    if (run == Run::Refused) {
        return;
    }
    main_.GiveButtonBack(cmdCreateInstall_);
    if (manager) {
        manager->ShowDbError();
    }
    main_.ResetStatus("");
}

ScriptTab::Run ScriptTab::RunTicked(std::unique_ptr<CSQLScriptMgr>& manager) {
    cmdCreateInstall_.Enabled(false);
    const int items = TickedScripts() + TickedPackages();
    const int steps = TickedScripts() * (InstallsScripts() ? 2 : 1) + TickedPackages();
    // One step more than the run takes, so the bar never quite fills.
    main_.InitStatus(Int16(steps + 2), "Initializing...");
    if (items == 0) {
        ShowExclamation("No scripts or DTS packages selected!");
        main_.GiveButtonBack(cmdCreateInstall_);
        return Run::Refused; // the status line keeps "Initializing..."
    }
    manager = MakeManager();
    // The setter appends "\" to the folder, so an empty box means the root of the current drive.
    if (manager->ScriptFolder().empty() || !platform::FolderHoldsFile(manager->ScriptFolder())) {
        return Refuse("You must specify a script folder!");
    }
    const bool created = CreateScripts(*manager);
    const bool found = AnyPackageExists(*manager);
    if (!created && !found) {
        return Refuse("No scripts or DTS packages were found in the script folder!");
    }
    if (InstallsScripts()) {
        if (!manager->IsOSQLAvailable()) {
            return Refuse("The query tool OSQL.EXE was not found!");
        }
        InstallScripts(*manager);
    }
    InstallPackages(*manager);
    main_.StepStatus("Installation completed...");
    ui::Wait(kEndWait);
    return Run::Completed;
}

bool ScriptTab::CreateScripts(const CSQLScriptMgr& manager) {
    bool any = false;
    for (const ScriptStep& step : kCreateSteps) {
        if (Ticked(step.check_box)) {
            main_.StepStatus(step.text);
            any = manager.CreateModifiedScript(step.script, FileOf(step.script)) || any;
            ui::Wait(kScriptWait);
        }
    }
    return any;
}

bool ScriptTab::AnyPackageExists(const CSQLScriptMgr& manager) const {
    // Every ticked package is looked for, even after one was found.
    return std::count_if(kPackageSteps.begin(), kPackageSteps.end(), [&](const PackageStep& step) {
               return Ticked(step.check_box) && manager.DTSPackageExist(step.package);
           }) > 0;
}

void ScriptTab::InstallScripts(const CSQLScriptMgr& manager) {
    for (const ScriptStep& step : kInstallSteps) {
        if (Ticked(step.check_box)) {
            main_.StepStatus(step.text);
            // The result is ignored; the query tool's output file shows what happened. A script is run even
            // if its template was missing: an older modified script may still be there.
            manager.ExecuteSQLScript(step.script, FileOf(step.script));
            ui::Wait(kScriptWait);
        }
    }
}

void ScriptTab::InstallPackages(const CSQLScriptMgr& manager) {
    for (const PackageStep& step : kPackageSteps) {
        if (Ticked(step.check_box)) {
            main_.StepStatus(step.text);
            manager.InstallDTSPackage(step.package);
        }
    }
}

ScriptTab::Run ScriptTab::Refuse(const char* message) {
    ShowExclamation(message);
    main_.GiveButtonBack(cmdCreateInstall_);
    main_.ResetStatus("");
    return Run::Refused;
}

void ScriptTab::cmdGetInstalledPackages_Click() {
    const std::unique_ptr<CSQLScriptMgr> manager = MakeManager();
    std::vector<DTSPackageInfo> arrPackages;
    const std::string text =
        manager->GetInstalledDTSPackages(arrPackages)
            ? DescribePackages(arrPackages)
            : "Information about installed packages could not be read from the SQL Server installation!";
    if (!text.empty()) {
        platform::ShowMessageBox(text, platform::MessageIcon::None, platform::ExecutableName());
    }
}

} // namespace kv

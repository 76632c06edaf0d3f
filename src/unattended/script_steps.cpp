// The shared steps of the unattended runs.
#include "unattended/script_steps.h"

#include "base/failure.h"
#include "text/escaped.h"

namespace kv {

void AdvanceBar(frmStatus& status) {
    status.StepProgessBar(Int16(1));
}

void ShowAndFail(frmStatus& status, const std::string& text) {
    status.StatusText(text);
    RaiseFailure(kProgramFailure, kUnattendedModule, text);
}

void RequireCodePageText(frmStatus& status, const std::string& name, const std::string& value) {
    if (text::HoldsEscape(value)) {
        ShowAndFail(status, name + " has characters that code page 1252 lacks. Nothing was changed.");
    }
}

void ModifyScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script) {
    if (!scripts.CreateModifiedScript(script.script, "")) {
        RaiseFailure(kProgramFailure, kUnattendedModule,
                     std::string("The script '") + script.name + "' could not be modified!");
    }
    AdvanceBar(status);
}

void RequireQueryTool(const CSQLScriptMgr& scripts, frmStatus& status) {
    if (!scripts.IsOSQLAvailable()) {
        RaiseFailure(kProgramFailure, kUnattendedModule, "The query tool OSQL.EXE was not found!");
    }
    AdvanceBar(status);
}

void RunScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script) {
    status.StatusText(script.running_text);
    scripts.ExecuteSQLScript(script.script, "");
    AdvanceBar(status);
}

void InstallPackages(const CSQLScriptMgr& scripts, frmStatus& status) {
    status.StatusText("Installing DTS packages...");
    for (const eDTSPackage package : kDtsPackages) {
        if (scripts.DTSPackageExist(package)) {
            scripts.InstallDTSPackage(package);
        }
        AdvanceBar(status);
    }
}

} // namespace kv

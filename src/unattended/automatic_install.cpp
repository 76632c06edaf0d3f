#include "unattended/automatic_install.h"

#include <memory>

#include "console/status_form.h"
#include "platform/pending_events.h"
#include "scripts/sql_script_mgr.h"
#include "startup/error_log.h"
#include "startup/failure.h"

namespace kv {
namespace {

constexpr char kModule[] = "modMain";

struct Flags {
    bool db;
    bool sp;
    bool dts;
};

/// The exact number of steps that the sequence makes.
float StepCount(const Flags& install) {
    return 2.0F + (install.db ? 4.0F : 0.0F) + (install.sp ? 2.0F : 0.0F) + (install.dts ? 6.0F : 0.0F);
}

void Step(frmStatus& status) {
    status.StepProgessBar(Int16(1));
}

void ModifyScript(const CSQLScriptMgr& scripts, frmStatus& status, eSQLScript script, const char* name) {
    if (!scripts.CreateModifiedScript(script, "")) {
        RaiseFailure(kProgramFailure, kModule,
                     std::string("The script '") + name + "' could not be modified!");
    }
    Step(status);
}

void RunScript(const CSQLScriptMgr& scripts, frmStatus& status, eSQLScript script, const char* text) {
    status.StatusText(text);
    scripts.ExecuteSQLScript(script, ""); // the result is not looked at: the next script runs in any case
    Step(status);
}

void InstallPackages(const CSQLScriptMgr& scripts, frmStatus& status) {
    status.StatusText("Installing DTS packages...");
    for (const eDTSPackage package : kDtsPackages) {
        if (scripts.DTSPackageExist(package)) {
            scripts.InstallDTSPackage(package);
        }
        Step(status);
    }
}

void RunSequence(const CSQLScriptMgr& scripts, frmStatus& status, const Flags& install) {
    Step(status);
    status.StatusText("Modifying sql scripts...");
    if (install.db) {
        ModifyScript(scripts, status, sqlCreateBatchDatabase, "Create Batch Database");
        ModifyScript(scripts, status, sqlInsertDefaultData, "Insert Batch Default Data");
    }
    if (install.sp) {
        ModifyScript(scripts, status, sqlCreateBatchStoredProcedures, "Create Batch Stored Procedures");
    }
    if (!scripts.IsOSQLAvailable()) { // tested also by a run of packages alone, which does not use the tool
        RaiseFailure(kProgramFailure, kModule, "The query tool OSQL.EXE was not found!");
    }
    Step(status);
    if (install.db) {
        RunScript(scripts, status, sqlCreateBatchDatabase, "Installing the new database...");
        RunScript(scripts, status, sqlInsertDefaultData, "Inserting batch default data...");
    }
    if (install.sp) {
        RunScript(scripts, status, sqlCreateBatchStoredProcedures, "Installing batch stored procedures...");
    }
    if (install.dts) {
        InstallPackages(scripts, status);
    }
}

} // namespace

void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server, const std::string& User,
                        const std::string& Password, const std::string& SQLDataPath, bool InstallDb,
                        bool InstallSp, bool InstallDts) {
    // It goes away last, behind the handler.
    std::unique_ptr<frmStatus> status;
    WithFailureHandler(
        [&] {
            const Flags install{InstallDb, InstallSp, InstallDts};
            status = std::make_unique<frmStatus>();
            status->InitProgressBar(0.0F, StepCount(install), 0.0F);
            status->StatusText("Initializing installation...");
            status->Show();
            platform::RunPendingEvents();

            CSQLScriptMgr scripts;
            scripts.UseServerA(true);
            scripts.ServerA(Server);
            scripts.UserA(User);
            scripts.PasswordA(Password);
            scripts.SQLDataPathA(SQLDataPath);
            scripts.ScriptFolder(ScriptFolder);
            RunSequence(scripts, *status, install);
        },
        // The sister routine's name is what this routine has always logged.
        [](const Failure&) { WriteErrorLog("modMain::DoAutomaticUpgrade"); });
}

} // namespace kv

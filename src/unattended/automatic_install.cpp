// The unattended installation.
#include "unattended/automatic_runs.h"

#include <memory>

#include "base/error_log.h"
#include "base/failure.h"
#include "platform/pending_events.h"
#include "unattended/script_steps.h"

namespace kv {
namespace {

/// The parts that are installed.
struct Parts {
    bool db;  ///< the database
    bool sp;  ///< its stored procedures
    bool dts; ///< the DTS packages
};

/// Returns the number of steps by which RunSequence moves the progress bar.
float StepCount(const Parts& install) {
    return 2.0F + (install.db ? 4.0F : 0.0F) + (install.sp ? 2.0F : 0.0F) + (install.dts ? 6.0F : 0.0F);
}

void RunSequence(const CSQLScriptMgr& scripts, frmStatus& status, const Parts& install) {
    AdvanceBar(status);
    status.StatusText("Modifying sql scripts...");
    if (install.db) {
        ModifyScript(scripts, status, kCreateBatchDatabase);
        ModifyScript(scripts, status, kInsertDefaultData);
    }
    if (install.sp) {
        ModifyScript(scripts, status, kCreateStoredProcedures);
    }
    RequireQueryTool(scripts, status); // also for a run of packages alone, which does not use the tool
    if (install.db) {
        RunScript(scripts, status, kCreateBatchDatabase);
        RunScript(scripts, status, kInsertDefaultData);
    }
    if (install.sp) {
        RunScript(scripts, status, kCreateStoredProcedures);
    }
    if (install.dts) {
        InstallPackages(scripts, status);
    }
}

} // namespace

void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server, const std::string& User,
                        const std::string& Password, const std::string& SQLDataPath, bool InstallDb,
                        bool InstallSp, bool InstallDts) {
    // Outside the handler, so that the window is closed after a failure was logged.
    std::unique_ptr<frmStatus> status;
    WithFailureHandler(
        [&] {
            const Parts install{InstallDb, InstallSp, InstallDts};
            status = std::make_unique<frmStatus>();
            status->InitProgressBar(0.0F, StepCount(install), 0.0F);
            status->StatusText("Initializing installation...");
            status->Show();
            platform::RunPendingEvents();

            RequireCodePageText(*status, "/server", Server);
            RequireCodePageText(*status, "/user", User);
            RequireCodePageText(*status, "/password", Password);
            RequireCodePageText(*status, "/sqldatapath", SQLDataPath);
            CSQLScriptMgr scripts;
            scripts.UseServerA(true);
            scripts.ServerA(Server);
            scripts.UserA(User);
            scripts.PasswordA(Password);
            scripts.SQLDataPathA(SQLDataPath);
            scripts.ScriptFolder(ScriptFolder);
            RunSequence(scripts, *status, install);
        },
        // The log line of an installation has the upgrade's name too; it is part of the product and must not
        // change.
        [](const Failure&) { WriteErrorLog("modMain::DoAutomaticUpgrade"); });
}

} // namespace kv

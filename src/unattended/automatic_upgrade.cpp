#include "unattended/automatic_upgrade.h"

#include <memory>

#include "admin/upgrade_db_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "platform/pending_events.h"
#include "unattended/script_steps.h"

namespace kv {
namespace {

constexpr char kBatchDb[] = "Batch";
constexpr char kTemporaryDb[] = "TmpBatchUpgradeDb";
/// The exact number of steps that the sequence makes.
constexpr float kStepCount = 17.0F;

std::string LoginSetting(const char* value) {
    using namespace registry_locations;
    return GetLocalSetting(kHkeyLocalMachine, kLoginKey, value, kNoDefault);
}

void ReadLogin(CUpgradeDbMgr& databases) {
    databases.UseServerA(true);
    databases.ServerA(LoginSetting(registry_locations::kServerNameValue));
    databases.UserA(LoginSetting(registry_locations::kUserIdValue));
    databases.PasswordA(LoginSetting(registry_locations::kPasswordValue)); // as it stands, not decrypted
}

/// The new database's files go where the old data file lies.
void FindDataPath(CUpgradeDbMgr& databases) {
    std::string strDataFileName;
    std::string strDataFilePath;
    std::string strLogFileName;
    std::string strLogFilePath;
    if (!databases.GetDatabaseInfo(kBatchDb, strDataFileName, strDataFilePath, strLogFileName,
                                   strLogFilePath)) {
        RaiseFailure(kProgramFailure, kUnattendedModule,
                     std::string("Database information could not be found for '") + kBatchDb + "'!");
    }
    // npos + 1 is 0: a path without a separator stays whole.
    if (const auto behind = strDataFilePath.rfind('\\') + 1; behind != 0) {
        strDataFilePath.erase(behind);
    }
    databases.SQLDataPathA(strDataFilePath);
}

void CopySettings(const CUpgradeDbMgr& databases, CSQLScriptMgr& scripts) {
    scripts.UseServerA(databases.UseServerA());
    scripts.ServerA(databases.ServerA());
    scripts.UserA(databases.UserA());
    scripts.PasswordA(databases.PasswordA());
    scripts.SQLDataPathA(databases.SQLDataPathA());
}

/// No result is looked at: a first upgrade has no temporary database to remove, and behind a rename that
/// failed the create script runs on top of what there is.
void PutOldDatabaseAside(CUpgradeDbMgr& databases, frmStatus& status) {
    StepBar(status);
    status.StatusText("Deleting existing temporary database...");
    databases.RemoveDatabase(kTemporaryDb);
    StepBar(status);
    status.StatusText("Renaming existing database...");
    databases.RenameDatabase(kBatchDb, kTemporaryDb);
}

/// The procedures come before the default data, the other way round than in an installation.
void BuildNewDatabase(const CSQLScriptMgr& scripts, frmStatus& status) {
    StepBar(status);
    status.StatusText("Modifying sql scripts...");
    ModifyScript(scripts, status, kCreateBatchDatabase);
    ModifyScript(scripts, status, kInsertDefaultData);
    ModifyScript(scripts, status, kCreateStoredProcedures);
    RequireQueryTool(scripts, status);
    RunScript(scripts, status, kCreateBatchDatabase);
    RunScript(scripts, status, kCreateStoredProcedures);
    RunScript(scripts, status, kInsertDefaultData);
    InstallPackages(scripts, status);
}

} // namespace

void DoAutomaticUpgrade(const std::string& strScriptFolder) {
    // It goes away last, behind the handler.
    std::unique_ptr<frmStatus> status;
    WithFailureHandler(
        [&] {
            status = std::make_unique<frmStatus>();
            status->InitProgressBar(0.0F, kStepCount, 0.0F);
            status->StatusText("Retrieving upgrade information...");
            status->Show();
            platform::RunPendingEvents();

            CUpgradeDbMgr databases;
            ReadLogin(databases);
            FindDataPath(databases);
            CSQLScriptMgr scripts;
            CopySettings(databases, scripts);
            scripts.ScriptFolder(strScriptFolder);

            PutOldDatabaseAside(databases, *status);
            BuildNewDatabase(scripts, *status);
            status->StatusText(std::string("Upgrading database '") + kBatchDb + "' from '" + kTemporaryDb +
                               "'...");
            databases.UpgradeDatabase(kBatchDb, kTemporaryDb); // the result is not looked at
            StepBar(*status);
        },
        [](const Failure&) { WriteErrorLog("modMain::DoAutomaticUpgrade"); });
}

} // namespace kv

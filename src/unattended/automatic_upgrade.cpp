// The unattended upgrade.
#include "unattended/automatic_runs.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "admin/server_path.h"
#include "admin/upgrade_db_mgr.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "platform/files.h"
#include "platform/named_lock.h"
#include "platform/pending_events.h"
#include "text/text.h"
#include "unattended/script_steps.h"

namespace kv {
namespace {

constexpr char kBatchDb[] = "Batch";
constexpr char kTemporaryDb[] = "TmpBatchUpgradeDb";
/// The number of steps by which the run moves the progress bar.
constexpr float kStepCount = 17.0F;

std::string LoginSetting(frmStatus& status, const char* value) {
    using namespace registry_locations;
    std::string text = GetLocalSetting(kHkeyLocalMachine, kLoginKey, value, kNoDefault);
    RequireCodePageText(status, std::string("The registry's ") + value, text);
    return text;
}

void ReadLogin(CUpgradeDbMgr& databases, frmStatus& status) {
    databases.UseServerA(true);
    databases.ServerA(LoginSetting(status, registry_locations::kServerNameValue));
    databases.UserA(LoginSetting(status, registry_locations::kUserIdValue));
    databases.PasswordA(
        LoginSetting(status, registry_locations::kPasswordValue)); // used as stored, not decrypted
}

using Locks = std::vector<std::unique_ptr<platform::NamedLock>>;

/// Returns locks that keep other upgrades from running; fails if one is running already. A second upgrade
/// would delete the temporary database of the first, the only copy of the old data. There is a lock for the
/// server's name and, because a server can have several names, one for the program's folder.
Locks LockOutOtherUpgrades(const std::string& server, frmStatus& status) {
    std::vector<std::string> names = {"program " + platform::ExecutableFolder()};
    if (!server.empty()) {
        names.push_back("server " + server);
    }
    Locks locks;
    for (const std::string& name : names) {
        auto lock = platform::TryLock("Lotkeeper upgrade: " + text::LowerCase(name));
        if (!lock) {
            ShowAndFail(status, "Another upgrade is running. Nothing was changed.");
        }
        locks.push_back(std::move(lock));
    }
    return locks;
}

/// Sets the data path, in which the new database's files are made: the folder of the old data file.
void FindDataPath(CUpgradeDbMgr& databases, frmStatus& status) {
    std::string strDataFileName;
    std::string strDataFilePath;
    std::string strLogFileName;
    std::string strLogFilePath;
    if (!databases.GetDatabaseInfo(kBatchDb, strDataFileName, strDataFilePath, strLogFileName,
                                   strLogFilePath)) {
        RaiseFailure(kProgramFailure, kUnattendedModule,
                     std::string("Database information could not be found for '") + kBatchDb + "'!");
    }
    if (HasLostCharacter(strDataFilePath)) {
        ShowAndFail(status, "The path '" + strDataFilePath +
                                "' has characters that code page 1252 lacks. Nothing was changed.");
    }
    databases.SQLDataPathA(FolderOnServer(strDataFilePath));
}

void CopySettings(const CUpgradeDbMgr& databases, CSQLScriptMgr& scripts) {
    scripts.UseServerA(databases.UseServerA());
    scripts.ServerA(databases.ServerA());
    scripts.UserA(databases.UserA());
    scripts.PasswordA(databases.PasswordA());
    scripts.SQLDataPathA(databases.SQLDataPathA());
}

/// The results are ignored: at a first upgrade there is no temporary database to remove, and after a failed
/// rename the create script is run on the existing database.
void RenameOldDatabase(CUpgradeDbMgr& databases, frmStatus& status) {
    AdvanceBar(status);
    status.StatusText("Deleting existing temporary database...");
    databases.RemoveDatabase(kTemporaryDb);
    AdvanceBar(status);
    status.StatusText("Renaming existing database...");
    databases.RenameDatabase(kBatchDb, kTemporaryDb);
}

/// The stored procedures are run before the default data; an installation runs them after.
void BuildNewDatabase(const CSQLScriptMgr& scripts, frmStatus& status) {
    AdvanceBar(status);
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
    // Outside the handler, so that the window is closed after a failure was logged.
    std::unique_ptr<frmStatus> status;
    WithFailureHandler(
        [&] {
            status = std::make_unique<frmStatus>();
            status->InitProgressBar(0.0F, kStepCount, 0.0F);
            status->StatusText("Retrieving upgrade information...");
            status->Show();
            platform::RunPendingEvents();

            CUpgradeDbMgr databases;
            ReadLogin(databases, *status);
            const Locks locks = LockOutOtherUpgrades(databases.ServerA(), *status);
            FindDataPath(databases, *status);
            CSQLScriptMgr scripts;
            CopySettings(databases, scripts);
            scripts.ScriptFolder(strScriptFolder);

            RenameOldDatabase(databases, *status);
            BuildNewDatabase(scripts, *status);
            status->StatusText(std::string("Upgrading database '") + kBatchDb + "' from '" + kTemporaryDb +
                               "'...");
            databases.UpgradeDatabase(kBatchDb, kTemporaryDb); // the result is ignored
            AdvanceBar(*status);
        },
        [](const Failure&) { WriteErrorLog("modMain::DoAutomaticUpgrade"); });
}

} // namespace kv

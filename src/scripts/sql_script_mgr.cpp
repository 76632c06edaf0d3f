#include "scripts/sql_script_mgr.h"

#include <memory>

#include "base/error_log.h"
#include "base/failure.h"
#include "packages/packages.h"
#include "platform/files.h"
#include "platform/process.h"
#include "scripts/query_tool.h"
#include "scripts/script_files.h"
#include "scripts/token_passes.h"
#include "text/text.h"

namespace kv {
namespace {

constexpr char kClassName[] = "CSQLScriptMgr";

std::string Numbered(const char* operation, std::int32_t number) {
    return std::string(kClassName) + operation + std::to_string(number) + ")";
}

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

/// The setters of the paths cut a trailing "\", which turns "C:\" into "C:". This appends it again.
std::string WithDriveRootRepair(const std::string& path) {
    return !path.empty() && path.back() == ':' ? path + '\\' : path;
}

} // namespace

CSQLScriptMgr::CSQLScriptMgr() {
    ResetDbErrors(db_errors_);
    query_tool_path_ = FindQueryTool();
}

void CSQLScriptMgr::ScriptFolder(const std::string& value) {
    script_folder_ = value;
    if (script_folder_.empty() || script_folder_.back() != '\\') {
        script_folder_ += '\\';
    }
}

bool CSQLScriptMgr::CreateModifiedScript(eSQLScript script, const std::string& strFile) const {
    const std::string path = TemplatePath(script, script_folder_, strFile);
    if (!platform::FileExists(path)) {
        return false;
    }
    WriteDataFile(ReplaceFileContent(ReadFileContent(path)), ModifiedScriptName(script, strFile));
    return true;
}

std::string CSQLScriptMgr::ReplaceFileContent(std::string_view strFileContent) const {
    // The letter case of a server or domain token decides the case of its value; the other values keep
    // theirs. The paths of the pair get the drive root repair, those of the selected server do not: templates
    // rely on both.
    return ReplaceTokens(strFileContent,
                         {
                             {"###SERVER###", false, text::UpperCase(Selected().server)},
                             {"###server###", false, text::LowerCase(Selected().server)},
                             {"###USERID###", true, Selected().user},
                             {"###PASSWORD###", true, Selected().password},
                             {"###DATAPATH###", true, Selected().sql_data_path},
                             {"###UNCREPLDATAPATH###", true, Selected().sql_unc_repl_data_path},
                             {"###DOMAIN###", false, text::UpperCase(domain_)},
                             {"###SERVERA###", false, text::UpperCase(ServerA())},
                             {"###SERVERB###", false, text::UpperCase(ServerB())},
                             {"###servera###", false, text::LowerCase(ServerA())},
                             {"###serverb###", false, text::LowerCase(ServerB())},
                             {"###USERIDA###", true, UserA()},
                             {"###USERIDB###", true, UserB()},
                             {"###PASSWORDA###", true, PasswordA()},
                             {"###PASSWORDB###", true, PasswordB()},
                             {"###DATAPATHA###", true, WithDriveRootRepair(SQLDataPathA())},
                             {"###DATAPATHB###", true, WithDriveRootRepair(SQLDataPathB())},
                             {"###UNCREPLDATAPATHA###", true, WithDriveRootRepair(SQLUNCReplDataPathA())},
                             {"###UNCREPLDATAPATHB###", true, WithDriveRootRepair(SQLUNCReplDataPathB())},
                         });
}

bool CSQLScriptMgr::ExecuteSQLScript(eSQLScript script, const std::string& strFile) const {
    bool result = false;
    WithFailureHandler(
        [&] {
            // The three values are not quoted: with an empty password " -P " is followed directly by " -i ".
            std::string parameters =
                " -S " + Selected().server + " -U " + Selected().user + " -P " + Selected().password;
            const std::string folder = DataFolder() + "\\";
            parameters += " -i " + Quoted(folder + ModifiedScriptName(script, strFile));
            parameters += " -o " + Quoted(folder + OutputFileName(script, strFile));

            constexpr std::int32_t kNoLimit = -1;
            constexpr std::int32_t kNormalWindow = 1;
            constexpr std::int32_t kHighPriority = 128;
            result = RunProcessAndWait(Quoted(query_tool_path_), parameters, "", kNoLimit, kNormalWindow,
                                       kHighPriority);
        },
        [&](const Failure&) { WriteErrorLog(Numbered("::ExecuteSQLScript(", script)); });
    return result;
}

bool CSQLScriptMgr::RunProcessAndWait(const std::string& program, const std::string& parameters,
                                      const std::string& working_folder, std::int32_t wait_milliseconds,
                                      std::int32_t /*show_state*/, std::int32_t /*priority*/) const {
    // Show state and priority are not passed on: the tool's console window stays hidden.
    platform::ShellExecuteInfo info;
    info.mask = platform::kNoCloseProcess;
    info.verb = "open";
    info.file = program;
    info.parameters = parameters;
    info.directory = working_folder;
    std::unique_ptr<platform::Process> process;
    if (!platform::ShellExecuteProgram(info, process)) {
        return false;
    }
    if (process) {
        process->Wait(static_cast<std::uint32_t>(wait_milliseconds));
    }
    return true;
}

bool CSQLScriptMgr::DTSPackageExist(eDTSPackage package) const {
    return platform::FileExists(script_folder_ + PackageFileName(package));
}

bool CSQLScriptMgr::InstallDTSPackage(eDTSPackage package) const {
    bool result = false;
    WithFailureHandler(
        [&] {
            const std::string& server = Selected().server;
            const std::string& user = Selected().user;
            const std::string& password = Selected().password;
            if (script_folder_.empty() || !platform::FolderHoldsFile(script_folder_)) {
                RaiseFailure(kProgramFailure, kClassName, "No valid script folder was specified!");
            }
            const std::unique_ptr<packages::DtsPackage> object = packages::CreateDtsPackage();
            if (!object) {
                RaiseFailure(kProgramFailure, kClassName,
                             "Installing SQL DTS package failed! Can not create DTS.Package object.");
            }
            // The package may not exist on the server. No failure of this call is noticed.
            WithFailureHandler(
                [&] { object->RemoveFromSQLServer(server, user, password, PackageName(package)); },
                [](const Failure&) {});
            object->LoadFromStorageFile(script_folder_ + PackageFileName(package), "");
            object->SaveToSQLServer(server, user, password);
            result = true;
        },
        [&](const Failure&) { WriteErrorLog(Numbered("::InstallDTSPackage(", package)); });
    return result;
}

bool CSQLScriptMgr::GetInstalledDTSPackages(std::vector<DTSPackageInfo>& arrPackages) const {
    bool result = false;
    WithFailureHandler(
        [&] {
            arrPackages.assign(1, {});
            const std::unique_ptr<packages::DtsApplication> object = packages::CreateDtsApplication();
            if (!object) {
                RaiseRunTimeFailure(run_time::kCannotCreateObject);
            }
            object->EnumPackageInfos(
                Selected().server, Selected().user, Selected().password,
                [&](const packages::PackageInfo& info) {
                    arrPackages.push_back({info.name, info.description, info.creation_date});
                });
            result = true;
        },
        [](const Failure&) { WriteErrorLog(std::string(kClassName) + "::GetInstalledDTSPackages()"); });
    return result;
}

} // namespace kv

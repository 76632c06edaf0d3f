// CSQLScriptMgr: makes modified scripts out of templates, runs them through the query tool, and installs and
// lists DTS packages. Opens no database connection of its own and knows no window.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "managers/db_errors.h"
#include "managers/server_pair_settings.h"
#include "platform/clock.h"
#include "scripts/script_tables.h"

namespace kv {

/// One package that a server holds.
struct DTSPackageInfo {
    std::string name;
    std::string description;
    platform::LocalTime creationDate;
};

class CSQLScriptMgr : public ManagerErrors, public ServerPairSettings {
  public:
    /// Looks for the query tool; see FindQueryTool for what it shows and raises.
    CSQLScriptMgr();

    /// True if the query tool was found, whichever tool it is.
    bool IsOSQLAvailable() const { return !query_tool_path_.empty(); }

    /// Folder of templates and package files; ends in "\" once it has been set.
    const std::string& ScriptFolder() const { return script_folder_; }
    void ScriptFolder(const std::string& value);

    const std::string& Domain() const { return domain_; }
    void Domain(const std::string& value) { domain_ = value; }

    /// Writes the template with all tokens replaced into the folder Data. False, and nothing written, if
    /// there is no such template. `strFile` counts for sqlUserDefinedScript only. Raises the run time's file
    /// failures.
    bool CreateModifiedScript(eSQLScript script, const std::string& strFile) const;
    /// True if the package's file lies in the script folder.
    bool DTSPackageExist(eDTSPackage package) const;
    /// The text with all nineteen tokens replaced.
    std::string ReplaceFileContent(std::string_view strFileContent) const;
    /// Runs the modified script through the query tool and waits for the tool's end, with no time limit. True
    /// says only that the tool was started: what it printed stands in its output file in the folder Data.
    /// Logs failures.
    bool ExecuteSQLScript(eSQLScript script, const std::string& strFile) const;
    /// Fills the array with the packages of the selected server from element 1 on; element 0 stays empty.
    /// Logs a failure and gives false; what was read before it stays in the array.
    bool GetInstalledDTSPackages(std::vector<DTSPackageInfo>& arrPackages) const;
    /// Replaces the package on the selected server by the one in the script folder. Logs a failure and gives
    /// false.
    bool InstallDTSPackage(eDTSPackage package) const;

  private:
    bool RunProcessAndWait(const std::string& program, const std::string& parameters,
                           const std::string& working_folder, std::int32_t wait_milliseconds,
                           std::int32_t show_state, std::int32_t priority) const;

    std::string query_tool_path_;
    std::string script_folder_;
    std::string domain_;
};

} // namespace kv

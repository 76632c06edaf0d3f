// CSQLScriptMgr: makes modified scripts from templates, runs them with the query tool, and installs and lists
// DTS packages. Opens no database connection itself and knows no window.
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

/// A package that is stored on a server.
struct DTSPackageInfo {
    std::string name;
    std::string description;
    platform::LocalTime creationDate;
};

class CSQLScriptMgr : public ManagerErrors, public ServerPairSettings {
  public:
    /// Looks for the query tool. See FindQueryTool for the box that it shows and the failure that it raises.
    CSQLScriptMgr();

    /// True if a query tool was found, of whichever version.
    bool IsOSQLAvailable() const { return !query_tool_path_.empty(); }

    /// The folder of templates and package files. The setter appends "\" if it is missing.
    const std::string& ScriptFolder() const { return script_folder_; }
    void ScriptFolder(const std::string& value);

    const std::string& Domain() const { return domain_; }
    void Domain(const std::string& value) { domain_ = value; }

    /// Writes the template with all tokens replaced into the folder Data. Returns false and writes nothing if
    /// there is no such template. `strFile` is used for sqlUserDefinedScript only. Raises the run time's file
    /// failures.
    bool CreateModifiedScript(eSQLScript script, const std::string& strFile) const;
    /// True if the package's file is in the script folder.
    bool DTSPackageExist(eDTSPackage package) const;
    /// Returns the text with all nineteen tokens replaced.
    std::string ReplaceFileContent(std::string_view strFileContent) const;
    /// Runs the modified script with the query tool and waits until the tool ends, without a time limit.
    /// Returns true if the tool was started; whether the script worked is in its output file in the folder
    /// Data. Logs failures.
    bool ExecuteSQLScript(eSQLScript script, const std::string& strFile) const;
    /// Fills the array with the packages of the selected server from element 1 on; element 0 is empty. Logs a
    /// failure and returns false; the array then keeps the packages read so far.
    bool GetInstalledDTSPackages(std::vector<DTSPackageInfo>& arrPackages) const;
    /// Replaces the package on the selected server by the one in the script folder. Logs a failure and
    /// returns false.
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

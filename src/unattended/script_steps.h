// The steps that the unattended installation and the unattended upgrade share. Each run calls them in its own
// order. A step moves the progress bar when it is done; a step that fails raises a Failure.
#pragma once

#include <string>

#include "scripts/sql_script_mgr.h"
#include "status/status_form.h"

namespace kv {

/// The source of the failures that both runs raise.
inline constexpr char kUnattendedModule[] = "modMain";

/// A script of an unattended run.
struct UnattendedScript {
    eSQLScript script;
    const char* name;         ///< in the text of a failure
    const char* running_text; ///< in the status window while the script runs
};

inline constexpr UnattendedScript kCreateBatchDatabase = {sqlCreateBatchDatabase, "Create Batch Database",
                                                          "Installing the new database..."};
inline constexpr UnattendedScript kInsertDefaultData = {sqlInsertDefaultData, "Insert Batch Default Data",
                                                        "Inserting batch default data..."};
inline constexpr UnattendedScript kCreateStoredProcedures = {sqlCreateBatchStoredProcedures,
                                                             "Create Batch Stored Procedures",
                                                             "Installing batch stored procedures..."};

/// Moves the progress bar by one step.
void AdvanceBar(frmStatus& status);

/// Shows the text in the status window and raises it as a failure.
[[noreturn]] void ShowAndFail(frmStatus& status, const std::string& text);

/// Fails if the value has characters that the code page lacks: the server would get a different value. `name`
/// is the value's name in the text of the failure.
void RequireCodePageText(frmStatus& status, const std::string& name, const std::string& value);

/// Makes the script from its template, with all tokens replaced. Fails if the template is missing.
void ModifyScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Fails if there is no query tool.
void RequireQueryTool(const CSQLScriptMgr& scripts, frmStatus& status);

/// Runs the modified script with the query tool. The result is ignored.
void RunScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Installs every package whose file exists. The bar moves once for each of the six packages, whether its
/// file exists or not. The results are ignored.
void InstallPackages(const CSQLScriptMgr& scripts, frmStatus& status);

} // namespace kv

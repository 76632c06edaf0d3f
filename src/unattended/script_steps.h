// The steps that the unattended installation and the unattended upgrade share; each runs them in its own
// order. Knows neither sequence.
#pragma once

#include <string>

#include "scripts/sql_script_mgr.h"
#include "status/status_form.h"

namespace kv {

/// The source of the failures that both sequences raise.
inline constexpr char kUnattendedModule[] = "modMain";

/// A script of an unattended run: its name in a failure, and the status window's text while it runs.
struct UnattendedScript {
    eSQLScript script;
    const char* name;
    const char* running;
};

inline constexpr UnattendedScript kCreateBatchDatabase = {sqlCreateBatchDatabase, "Create Batch Database",
                                                          "Installing the new database..."};
inline constexpr UnattendedScript kInsertDefaultData = {sqlInsertDefaultData, "Insert Batch Default Data",
                                                        "Inserting batch default data..."};
inline constexpr UnattendedScript kCreateStoredProcedures = {sqlCreateBatchStoredProcedures,
                                                             "Create Batch Stored Procedures",
                                                             "Installing batch stored procedures..."};

/// Moves the progress bar by one step.
void StepBar(frmStatus& status);

/// Shows the text in the status window and raises it as a failure.
[[noreturn]] void Refuse(frmStatus& status, const std::string& text);

/// Refuses a value with characters that the code page lacks: the server would get a different value. `name`
/// is the value's name in the message.
void RequireCodePage(frmStatus& status, const std::string& name, const std::string& value);

/// Writes the modified script and moves the bar. Raises a failure if its template is missing.
void ModifyScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Moves the bar, or raises a failure if there is no query tool.
void RequireQueryTool(const CSQLScriptMgr& scripts, frmStatus& status);

/// Runs the modified script and moves the bar; the result is ignored.
void RunScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Installs every package whose file exists. The bar moves once for each of the six, whether it exists or
/// not; the results are ignored.
void InstallPackages(const CSQLScriptMgr& scripts, frmStatus& status);

} // namespace kv

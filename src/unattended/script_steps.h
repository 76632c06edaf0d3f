// The steps that the unattended installation and the unattended upgrade share, each in its own order. Knows
// neither sequence.
#pragma once

#include <string>

#include "scripts/sql_script_mgr.h"
#include "status/status_form.h"

namespace kv {

/// The source of the failures that both sequences raise.
inline constexpr char kUnattendedModule[] = "modMain";

/// A script of an unattended run: how a failure names it, and what the status window says while it runs.
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

/// Moves the bar by one.
void StepBar(frmStatus& status);

/// Shows the text and raises it as a failure.
[[noreturn]] void Refuse(frmStatus& status, const std::string& text);

/// Refuses a value that is not what was typed or stored, since it has characters that the code page lacks: a
/// server would be given another one. `name` is how the operator knows it.
void RequireCodePage(frmStatus& status, const std::string& name, const std::string& value);

/// Writes the modified script and moves the bar. Raises a failure if its template is missing.
void ModifyScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Raises a failure if there is no query tool, and moves the bar.
void RequireQueryTool(const CSQLScriptMgr& scripts, frmStatus& status);

/// Runs the modified script and moves the bar; the result is not looked at.
void RunScript(const CSQLScriptMgr& scripts, frmStatus& status, const UnattendedScript& script);

/// Stores every package whose file is there. The bar moves once for each of the six, there or not; the result
/// is not looked at.
void InstallPackages(const CSQLScriptMgr& scripts, frmStatus& status);

} // namespace kv

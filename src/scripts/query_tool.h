// Finds the query tool of the installed SQL Server client. Knows no script and no server.
#pragma once

#include <string>

namespace kv {

/// Reads the version of the instance KV_BATCH and the folder of that version's tools from the registry.
/// Returns the tool's full path, or the empty string if there is no such file. Shows a message box for an
/// unknown version. Raises run_time::kInvalidProcedureCall for a version text without a ".".
std::string FindQueryTool();

} // namespace kv

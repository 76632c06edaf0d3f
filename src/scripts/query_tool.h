// Where the query tool of the installed SQL Server client lies. Knows no script and no server.
#pragma once

#include <string>

namespace kv {

/// Reads the version of the instance KV_BATCH and the folder of that version's tools from the registry. Gives
/// the tool's full path, or the empty string if there is no such file. An unknown version is told in a
/// message box. Raises run_time::kInvalidProcedureCall for a version text without a ".".
std::string FindQueryTool();

} // namespace kv

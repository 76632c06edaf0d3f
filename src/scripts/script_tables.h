// The scripts and packages by number, with the names of their files.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kv {

enum eSQLScript : std::int32_t {
    sqlCreateBatchDatabase = 0,
    sqlCreateBatchStoredProcedures = 1,
    sqlCreateReplicationStoredProcedures = 2,
    sqlInsertDefaultData = 3,
    sqlUserDefinedScript = 4, ///< any file that the operator names
};

enum eDTSPackage : std::int32_t {
    dtsStdSynchronize = 0,
    dtsUpgradeDatabaseV1ToV2 = 1,
    dtsBatchOverviewExport = 2,
    dtsBatchOverviewRecalcExport = 3,
    dtsBatchSummaryExport = 4,
    dtsBatchSummaryRecalcExport = 5,
};

inline constexpr std::array kDtsPackages = {
    dtsStdSynchronize,     dtsUpgradeDatabaseV1ToV2,    dtsBatchOverviewExport, dtsBatchOverviewRecalcExport,
    dtsBatchSummaryExport, dtsBatchSummaryRecalcExport,
};

/// The path of the template: in `script_folder`, which ends in "\"; for a user-defined script `file` itself.
std::string TemplatePath(eSQLScript script, const std::string& script_folder, const std::string& file);
/// The name of the modified script, without a folder; for a user-defined script the name in `file`.
std::string ModifiedScriptName(eSQLScript script, const std::string& file);
/// The name of the query tool's output file: the script's name with the extension "txt".
std::string OutputFileName(eSQLScript script, const std::string& file);

/// The package's name on the server.
std::string PackageName(eDTSPackage package);
/// The package's file in the script folder.
std::string PackageFileName(eDTSPackage package);

} // namespace kv

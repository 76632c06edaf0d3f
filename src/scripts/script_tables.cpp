#include "scripts/script_tables.h"

namespace kv {
namespace {

/// The fixed scripts by number. A template and its modified script have the same name.
constexpr std::array kScriptNames = {
    "Create_Batch_Database.sql",
    "Create_Batch_Stored_Procedures.sql",
    "Create_Replication_Stored_Procedures.sql",
    "Insert_Default_Data.sql",
};

constexpr std::array kPackageNames = {
    "StdSynchronize",     "UpgradeDatabase_V1_to_V2", "BatchOverviewExport", "BatchOverviewRecalcExport",
    "BatchSummaryExport", "BatchSummaryRecalcExport",
};

} // namespace

std::string TemplatePath(eSQLScript script, const std::string& script_folder, const std::string& file) {
    return script == sqlUserDefinedScript ? file : script_folder + ModifiedScriptName(script, file);
}

std::string ModifiedScriptName(eSQLScript script, const std::string& file) {
    if (script != sqlUserDefinedScript) {
        return kScriptNames.at(static_cast<std::size_t>(script));
    }
    const auto separator = file.find_last_of("\\/");
    return separator == std::string::npos ? file : file.substr(separator + 1);
}

std::string OutputFileName(eSQLScript script, const std::string& file) {
    const std::string name = ModifiedScriptName(script, file);
    const auto dot = name.rfind('.');
    return (dot == std::string::npos ? name : name.substr(0, dot)) + ".txt";
}

std::string PackageName(eDTSPackage package) {
    return kPackageNames.at(static_cast<std::size_t>(package));
}

std::string PackageFileName(eDTSPackage package) {
    return PackageName(package) + ".dts";
}

} // namespace kv

#include "scripts/query_tool.h"

#include <array>

#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "text/text.h"

namespace kv {
namespace {

namespace location = registry_locations;

struct QueryTool {
    const char* major_version; ///< compared exactly
    const char* key;
    const char* tool;    ///< below the folder that the key names
    const char* removed; ///< every occurrence is removed from the full path; empty: nothing is removed
};

constexpr std::array kQueryTools = {
    QueryTool{"9", location::kClientSetup90Key, "Binn\\SqlCMD.EXE", ""},
    QueryTool{"12", location::kClientSetup120Key, "Binn\\OSQL.EXE", ""},
    // That version's setup names the folder of the 32-bit programs, but the tool is in that of the 64-bit
    // ones.
    QueryTool{"14", location::kClientSetup140Key, "Binn\\OSQL.EXE", " (x86)"},
};

constexpr QueryTool kFallback{"", location::kClientSetup80Key, "Binn\\OSQL.EXE", ""};

std::string Setting(const char* key, const char* value) {
    return GetLocalSetting(location::kHkeyLocalMachine, key, value, location::kNoDefault);
}

std::string MajorVersion() {
    const std::string version = Setting(location::kCurrentVersionKey, location::kCurrentVersionValue);
    if (version.empty()) {
        return version;
    }
    const auto dot = version.find('.');
    if (dot == std::string::npos) {
        RaiseRunTimeFailure(run_time::kInvalidProcedureCall);
    }
    return version.substr(0, dot);
}

std::string PathOf(const QueryTool& tool) {
    std::string path = Setting(tool.key, location::kSqlPathValue);
    if (path.empty() || path.back() != '\\') {
        path += '\\';
    }
    path += tool.tool;
    return *tool.removed == '\0' ? path : text::ReplaceAll(path, tool.removed, "");
}

std::string PathForVersion(const std::string& major_version) {
    for (const QueryTool& tool : kQueryTools) {
        if (major_version == tool.major_version) {
            return PathOf(tool);
        }
    }
    platform::ShowMessageBox("Can't determine installed SQL Server version!",
                             platform::MessageIcon::Exclamation, platform::ExecutableName());
    return {};
}

} // namespace

std::string FindQueryTool() {
    const std::string path = PathForVersion(MajorVersion());
    if (platform::FileExists(path)) {
        return path;
    }
    const std::string fallback = PathOf(kFallback);
    return platform::FileExists(fallback) ? fallback : std::string();
}

} // namespace kv

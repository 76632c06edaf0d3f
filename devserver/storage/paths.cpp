// See paths.h.
#include "devserver/storage/paths.h"

#include <algorithm>

#include "devserver/tsql/scalar/text.h"

namespace devsql {

std::optional<std::filesystem::path> LocalPath(std::string_view client_path, const DriveMap& drives) {
    std::string path(client_path);
    std::replace(path.begin(), path.end(), '\\', '/');
    std::filesystem::path base = "/";
    if (path.size() >= 2 && path[1] == ':') {
        const auto drive = drives.find(AsciiUpper(path.substr(0, 1)));
        if (drive != drives.end()) {
            base = drive->second;
        } else if (std::filesystem::path base_of_system = path.substr(0, 2) + "/";
                   base_of_system.is_absolute()) {
            base = std::move(base_of_system); // The system has drive letters.
        } else {
            return std::nullopt;
        }
        path.erase(0, 2);
    } else if (!path.starts_with('/')) {
        return std::nullopt;
    }
    path.erase(0, std::min(path.find_first_not_of('/'), path.size()));
    return path.empty() ? std::nullopt : std::optional((base / PathOf(path)).lexically_normal());
}

std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::filesystem::path PathOf(std::string_view utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

} // namespace devsql

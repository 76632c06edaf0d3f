#include "devserver/storage/paths.h"

#include <algorithm>
#include <cctype>

namespace devsql {

std::optional<std::filesystem::path> LocalPath(std::string_view client_path, const DriveMap& drives) {
    std::string path(client_path);
    std::replace(path.begin(), path.end(), '\\', '/');
    std::filesystem::path base = "/";
    if (path.size() >= 2 && path[1] == ':') {
        const auto drive = drives.find(std::string(1, static_cast<char>(std::toupper(path[0]))));
        if (drive == drives.end()) {
            return std::nullopt;
        }
        base = drive->second;
        path.erase(0, 2);
    } else if (!path.starts_with('/')) {
        return std::nullopt;
    }
    path.erase(0, std::min(path.find_first_not_of('/'), path.size()));
    return path.empty() ? std::nullopt : std::optional((base / path).lexically_normal());
}

} // namespace devsql

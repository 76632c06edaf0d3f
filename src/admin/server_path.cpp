// Takes apart and makes paths of a database server.
#include "admin/server_path.h"

#include <algorithm>

#include "platform/files.h"

namespace kv {
namespace {

/// Returns the position of the separator before the file's name; npos if there is none.
std::size_t LastSeparator(const std::string& path) {
    return path.find_last_of("\\/");
}

} // namespace

std::string FolderOnServer(const std::string& path) {
    const auto separator = LastSeparator(path);
    if (separator == std::string::npos) {
        return path;
    }
    const bool kept = path[separator] == '\\' || separator == 0;
    return path.substr(0, kept ? separator + 1 : separator);
}

std::string ServerPath(std::string folder, const std::string& file, const std::string& reported) {
    const auto separator = LastSeparator(reported);
    if (separator == std::string::npos || reported[separator] == '\\') {
        return folder + '\\' + file;
    }
    std::replace(folder.begin(), folder.end(), '\\', '/');
    return folder.ends_with('/') ? folder + file : folder + '/' + file;
}

bool HasLostCharacter(const std::string& path) {
    return path.find('?') != std::string::npos && !platform::FileExists(path);
}

} // namespace kv

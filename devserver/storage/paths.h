// Translates paths as clients write them (either separator, drive letters) to paths of this machine.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace devsql {

/// Maps an upper-case drive letter ("D") to the folder that replaces the drive's root.
using DriveMap = std::map<std::string, std::filesystem::path>;

/// This machine's path for a client's path: "D:\x\y.mdf" lies below the folder of drive D; "\srv\x" and
/// "/srv/x" are both /srv/x. Returns nothing for a relative path, for an empty one and, except on Windows,
/// for a drive that is not mapped. On Windows such a drive is the drive of the machine.
std::optional<std::filesystem::path> LocalPath(std::string_view client_path, const DriveMap& drives);

/// The path in UTF-8, for SQLite, the catalogue and clients.
std::string Utf8(const std::filesystem::path& path);
/// The path that this UTF-8 text describes.
std::filesystem::path PathOf(std::string_view utf8);

} // namespace devsql

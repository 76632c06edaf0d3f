// Translates paths as clients write them (either separator, drive letters) to paths of this machine.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace devsql {

/// Upper-case drive letter ("D") to the folder that replaces its root.
using DriveMap = std::map<std::string, std::filesystem::path>;

/// The place of a client's path: "D:\x\y.mdf" below the folder of drive D, "\srv\x" and "/srv/x" as they are.
/// Returns nothing for a drive that is not mapped, for a relative path and for an empty one. On Windows a
/// drive that is not mapped is the drive of the machine.
std::optional<std::filesystem::path> LocalPath(std::string_view client_path, const DriveMap& drives);

/// A path as UTF-8, which is what SQLite, the catalogue and clients take.
std::string Utf8(const std::filesystem::path& path);
/// A path of UTF-8.
std::filesystem::path PathOf(std::string_view utf8);

} // namespace devsql

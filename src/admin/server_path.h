// Paths on the computer of a database server, whose system may differ from this program's. The separator in
// the paths that the server reports shows which one it uses.
#pragma once

#include <string>

namespace kv {

/// Returns the folder of a file whose full path the server has reported. A "\" at the folder's end is kept:
/// the path members of ServerPairSettings cut it. A "/" at its end is cut, unless it is the whole folder. A
/// path without a separator is returned unchanged.
std::string FolderOnServer(const std::string& path);

/// Returns the path of a new file in `folder`. `reported` is a path from the server: if it is written with
/// "/", the new path is written with "/" too, also in `folder`.
std::string ServerPath(std::string folder, const std::string& file, const std::string& reported);

/// True if the path contains a "?" and names no file on this computer. Then the "?" has replaced a character
/// that the code page lacks, and the file cannot be found under this path.
bool HasLostCharacter(const std::string& path);

} // namespace kv

// Paths on the computer of a database server, whose system may differ from this program's. The paths that the
// server reports show which separator it uses.
#pragma once

#include <string>

namespace kv {

/// Returns the folder of a file whose full path the server has reported. A "\" at the folder's end is kept:
/// the path members of ServerPairSettings cut it. A "/" at its end is cut, unless it is the whole folder. A
/// path without a separator is returned unchanged.
std::string FolderOnServer(const std::string& path);

/// Returns the path of a new file in `folder`. If `reported`, a path from the server, is written with "/", so
/// is the whole new path.
std::string ServerPath(std::string folder, const std::string& file, const std::string& reported);

/// True for a path in which a "?" replaces a character that the code page lacks: such a path finds no file.
bool IsGuessed(const std::string& path);

} // namespace kv

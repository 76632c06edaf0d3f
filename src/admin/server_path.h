// Paths on the computer of a database server, which may be of another system than this program's: its own
// paths say which separator it writes.
#pragma once

#include <string>

namespace kv {

/// The folder of a file whose whole path the server has reported. A "\" at its end stays, for the path
/// members of ServerPairSettings to cut; a "/" goes unless it is the whole folder. A path without a separator
/// stays as it is.
std::string FolderOnServer(const std::string& path);

/// The path of a new file beside `reported`, a path of the server's own. Where that one is written with "/",
/// so is the new one, the folder too.
std::string ServerPath(std::string folder, const std::string& file, const std::string& reported);

/// True for a path in which a "?" stands for a character that the code page lacks: no file is found by it.
bool IsGuessed(const std::string& path);

} // namespace kv

// Finds the folder in which Linux keeps a user's configuration.
#pragma once

#include <string>

namespace registry {

/// Returns $XDG_CONFIG_HOME if that is an absolute path, otherwise ~/.config, in the system's encoding. Empty
/// if the user has no home folder.
std::string ConfigFolder();

} // namespace registry

// The folder in which this system keeps a user's configuration.
#pragma once

#include <string>

namespace registry {

/// $XDG_CONFIG_HOME if that is an absolute path, otherwise ~/.config. Empty if the user has no home folder.
std::string ConfigFolder();

} // namespace registry

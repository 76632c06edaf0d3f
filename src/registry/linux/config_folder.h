// Where this system keeps a user's configuration.
#pragma once

#include <string>

namespace platform {

/// $XDG_CONFIG_HOME if that is a whole path, else ~/.config. Empty if the user has no home.
std::string ConfigFolder();

} // namespace platform

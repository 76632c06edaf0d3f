// The settings that a program stores for its user: texts by application, section and key. On Windows below
// HKEY_CURRENT_USER\Software\VB and VBA Program Settings; on Linux in the file
// $XDG_CONFIG_HOME/<application>/settings.ini, which only its user can read.
#pragma once

#include <string>

namespace registry {

/// The text; `otherwise` if there is no such setting or it cannot be read.
std::string ReadUserSetting(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& otherwise);

/// False if the text could not be stored; the old text then stays. A text of several lines is refused.
bool WriteUserSetting(const std::string& application, const std::string& section, const std::string& key,
                      const std::string& value);

} // namespace registry

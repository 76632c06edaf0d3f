// The settings that a program stores for its user: texts by application, section and key. On Windows they are
// below HKEY_CURRENT_USER\Software\VB and VBA Program Settings. On Linux they are in the file
// $XDG_CONFIG_HOME/<application>/settings.ini, which only its user can read.
#pragma once

#include <string>

namespace registry {

/// Returns the setting's text; `otherwise` if there is no such setting or it cannot be read.
std::string ReadUserSetting(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& otherwise);

/// Stores the text. Returns false if that fails; the old text then stays. A text of several lines is refused,
/// and on Windows a text of 4096 bytes or more.
bool WriteUserSetting(const std::string& application, const std::string& section, const std::string& key,
                      const std::string& value);

} // namespace registry

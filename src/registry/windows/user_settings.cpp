// The user's settings in the registry of Windows.
#include "registry/user_settings.h"

#include "registry/registry.h"

namespace registry {
namespace {

constexpr std::size_t kLongestText = 4096; // bytes, including the NUL

std::string KeyOf(const std::string& application, const std::string& section) {
    return "Software\\VB and VBA Program Settings\\" + application + "\\" + section;
}

} // namespace

std::string ReadUserSetting(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& otherwise) {
    const OpenedKey opened = OpenKey(kHkeyCurrentUser, KeyOf(application, section), kKeyQueryValue);
    if (opened.error != error::kSuccess) {
        return otherwise;
    }
    std::string buffer(kLongestText, '\0');
    const RegistryError error = QueryValue(opened.key, key, buffer);
    CloseKey(opened.key);
    return error == error::kSuccess ? buffer.substr(0, buffer.find('\0')) : otherwise;
}

bool WriteUserSetting(const std::string& application, const std::string& section, const std::string& key,
                      const std::string& value) {
    if (value.find_first_of("\r\n") != std::string::npos || value.size() >= kLongestText) {
        return false;
    }
    const OpenedKey opened =
        CreateKey(kHkeyCurrentUser, KeyOf(application, section), "", kKeyQueryValue | kKeySetValue);
    if (opened.error != error::kSuccess) {
        return false;
    }
    const RegistryError error = SetValue(opened.key, key, kRegSz, value);
    CloseKey(opened.key);
    return error == error::kSuccess;
}

} // namespace registry

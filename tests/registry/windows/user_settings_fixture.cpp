#include "registry/user_settings_fixture.h"

#include "platform/windows/lean_windows.h"

namespace settings_tests {

struct SettingsRoom::State {};

SettingsRoom::SettingsRoom() : application_("KVTest" + std::to_string(::GetCurrentProcessId())) {}

SettingsRoom::~SettingsRoom() {
    const std::string key = "Software\\VB and VBA Program Settings\\" + application_;
    ::RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
    ::RegDeleteKeyA(HKEY_CURRENT_USER, key.c_str());
}

} // namespace settings_tests

#include "registry/user_settings_fixture.h"

#include "platform/windows/lean_windows.h"

namespace settings_tests {

struct TestSettings::State {};

TestSettings::TestSettings() : application_("KVTest" + std::to_string(::GetCurrentProcessId())) {}

TestSettings::~TestSettings() {
    const std::string key = "Software\\VB and VBA Program Settings\\" + application_;
    ::RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
    ::RegDeleteKeyA(HKEY_CURRENT_USER, key.c_str());
}

} // namespace settings_tests

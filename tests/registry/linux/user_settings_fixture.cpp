#include "registry/user_settings_fixture.h"

#include <cstdlib>

#include "support/temp_folder.h"

namespace settings_tests {

struct SettingsRoom::State {
    support::TempFolder folder;
};

SettingsRoom::SettingsRoom() : state_(std::make_unique<State>()), application_("KVTest") {
    ::setenv("XDG_CONFIG_HOME", state_->folder.Path().c_str(), 1);
}

SettingsRoom::~SettingsRoom() {
    ::unsetenv("XDG_CONFIG_HOME");
}

} // namespace settings_tests

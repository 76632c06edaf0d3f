#include "registry/user_settings_fixture.h"

#include <cstdlib>

#include "support/temp_folder.h"

namespace settings_tests {

struct TestSettings::State {
    support::TempFolder folder;
};

TestSettings::TestSettings() : state_(std::make_unique<State>()), application_("KVTest") {
    ::setenv("XDG_CONFIG_HOME", state_->folder.Path().c_str(), 1);
}

TestSettings::~TestSettings() {
    ::unsetenv("XDG_CONFIG_HOME");
}

} // namespace settings_tests

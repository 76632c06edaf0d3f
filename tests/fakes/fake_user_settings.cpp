// Implements registry/user_settings.h.
#include "fakes/fake_user_settings.h"

#include <cstdio>
#include <cstdlib>

#include "registry/user_settings.h"

namespace fakes {
namespace {
FakeUserSettings* current = nullptr;
} // namespace

FakeUserSettings::FakeUserSettings() {
    current = this;
}

FakeUserSettings::~FakeUserSettings() {
    current = nullptr;
}

FakeUserSettings& FakeUserSettings::Current() {
    if (current == nullptr) {
        std::fputs("the user's settings were asked for, and the test has no FakeUserSettings\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace registry {

using fakes::FakeUserSettings;

std::string ReadUserSetting(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& otherwise) {
    const std::string place = application + "/" + section + "/" + key;
    FakeUserSettings& settings = FakeUserSettings::Current();
    settings.reads.push_back(place);
    const auto found = settings.texts.find(place);
    return found == settings.texts.end() ? otherwise : found->second;
}

bool WriteUserSetting(const std::string& application, const std::string& section, const std::string& key,
                      const std::string& value) {
    const std::string place = application + "/" + section + "/" + key;
    FakeUserSettings& settings = FakeUserSettings::Current();
    settings.writes.push_back(place + "=" + value);
    if (settings.writes_fail) {
        return false;
    }
    settings.texts[place] = value;
    return true;
}

} // namespace registry

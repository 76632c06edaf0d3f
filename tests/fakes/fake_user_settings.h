// The user's settings (registry/user_settings.h) in memory, linked instead of the system's. They record reads
// and writes, and fail on demand.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace fakes {

class FakeUserSettings {
  public:
    FakeUserSettings();
    FakeUserSettings(const FakeUserSettings&) = delete;
    FakeUserSettings& operator=(const FakeUserSettings&) = delete;
    ~FakeUserSettings();
    /// The instance that the service uses. Ends the test program if there is no instance.
    static FakeUserSettings& Current();

    /// The settings, by "application/section/key".
    std::map<std::string, std::string> texts;
    /// Every setting that was read, and every setting that was written with its text ("a/b/c=text"), in
    /// order.
    std::vector<std::string> reads;
    std::vector<std::string> writes;
    bool writes_fail = false;
};

} // namespace fakes

// The user's settings in memory, linked in place of the system's. Records reads and writes; fails on demand.
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
    static FakeUserSettings& Current();

    /// By "application/section/key".
    std::map<std::string, std::string> texts;
    /// Every setting that was read, and every setting that was written, with "=" and its text, in order.
    std::vector<std::string> reads;
    std::vector<std::string> writes;
    bool writes_fail = false;
};

} // namespace fakes

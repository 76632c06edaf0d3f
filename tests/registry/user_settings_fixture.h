// A place for the settings of one test, gone when it ends.
#pragma once

#include <memory>
#include <string>

namespace settings_tests {

class SettingsRoom {
  public:
    SettingsRoom();
    SettingsRoom(const SettingsRoom&) = delete;
    SettingsRoom& operator=(const SettingsRoom&) = delete;
    ~SettingsRoom();

    /// An application of the room's own.
    const std::string& Application() const { return application_; }

  private:
    struct State;
    std::unique_ptr<State> state_;
    std::string application_;
};

} // namespace settings_tests

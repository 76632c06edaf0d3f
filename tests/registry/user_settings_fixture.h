// The settings of one test, which are deleted when the test ends.
#pragma once

#include <memory>
#include <string>

namespace settings_tests {

class TestSettings {
  public:
    TestSettings();
    TestSettings(const TestSettings&) = delete;
    TestSettings& operator=(const TestSettings&) = delete;
    ~TestSettings();

    /// The name of an application that only this test uses.
    const std::string& Application() const { return application_; }

  private:
    struct State;
    std::unique_ptr<State> state_;
    std::string application_;
};

} // namespace settings_tests

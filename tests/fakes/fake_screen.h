// A fake of the services that need a screen (message boxes, the status window, pending events, the mouse
// pointer), linked instead of the system's. It records the calls in their order.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/status_window.h"

namespace fakes {

class FakeScreen {
  public:
    FakeScreen();
    FakeScreen(const FakeScreen&) = delete;
    FakeScreen& operator=(const FakeScreen&) = delete;
    ~FakeScreen();
    /// The instance that the services use. Ends the test program if there is no instance.
    static FakeScreen& Current();

    /// One line for each call: "box [icon] title: text" for a message box; "window made CAPTION", "label
    /// TEXT", "bar MIN MAX VALUE", "show" and "window gone" for the status window; "events" for running
    /// pending events; "pointer N" for setting the mouse pointer.
    std::vector<std::string> calls;
    std::int16_t pointer = 0; ///< the present mouse pointer
    /// The layout with which the status window was made.
    platform::StatusWindowLayout status_layout;
    /// Called while a message box is on the screen.
    std::function<void()> on_box;

    /// The number of calls that begin with this text.
    int Count(const std::string& beginning) const;
    /// The calls that begin with this text, without that text.
    std::vector<std::string> After(const std::string& beginning) const;
};

} // namespace fakes

// A fake screen, linked in place of the system's services: message boxes, the status window, pending events
// and the mouse pointer are recorded in the order of the calls.
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
    static FakeScreen& Current();

    /// One line a call: "box [icon] title: text", "window made CAPTION", "label TEXT", "bar MIN MAX VALUE",
    /// "show", "window gone", "events", "pointer N".
    std::vector<std::string> calls;
    std::int16_t pointer = 0;
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

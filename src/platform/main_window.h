// A plain window with one text, in the place of the console until that is built.
#pragma once

#include <memory>
#include <string>

namespace platform {

class PlainWindow {
  public:
    virtual ~PlainWindow() = default;
    /// Runs the window's events and returns when it has been closed.
    virtual void RunUntilClosed() = 0;
};

/// Shows the window. Where none can be shown the text is a line on the terminal, and null comes back.
std::unique_ptr<PlainWindow> ShowPlainWindow(const std::string& title, const std::string& text);

} // namespace platform

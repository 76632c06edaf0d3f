// A small window with a label and a progress bar, or its replacement on a terminal.
#pragma once

#include <memory>
#include <string>

#include "platform/twips.h"

namespace platform {

/// A position and size in twips.
struct TwipsRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// The window's caption, the size of its inner area, and the positions in that area.
struct StatusWindowLayout {
    std::string caption;
    int client_width = 0;  ///< in twips
    int client_height = 0; ///< in twips
    TwipsRect label;
    TwipsRect bar;
};

/// The window. It is hidden until Show is called; the destructor closes it.
class StatusWindow {
  public:
    virtual ~StatusWindow() = default;
    /// Sets the progress bar. `value` must be between `min` and `max`.
    virtual void SetBar(float min, float max, float value) = 0;
    /// Sets the label. The text is on the screen when this returns.
    virtual void SetLabel(const std::string& text) = 0;
    /// Shows the window and returns. When the window is activated, it becomes topmost.
    virtual void Show() = 0;
};

/// Makes a window or, if no window can be shown, the same as MakeTerminalStatus. Never returns null.
std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout);

/// Makes a StatusWindow that writes each label and the bar's position as a line to the terminal.
std::unique_ptr<StatusWindow> MakeTerminalStatus(const std::string& caption);

} // namespace platform

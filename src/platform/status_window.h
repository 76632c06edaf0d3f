// A small window with a label and a progress bar.
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

struct StatusWindowLayout {
    std::string caption;
    int client_width = 0;  ///< twips
    int client_height = 0; ///< twips
    TwipsRect label;
    TwipsRect bar;
};

class StatusWindow {
  public:
    virtual ~StatusWindow() = default;
    /// `value` must be between `min` and `max`.
    virtual void SetBar(float min, float max, float value) = 0;
    /// The text is on the screen when this returns.
    virtual void SetLabel(const std::string& text) = 0;
    /// Shows the window, non-modal; it is topmost once it has been activated.
    virtual void Show() = 0;
};

/// A window or, if no window can be shown, a StatusWindow that reports its progress on the terminal. Never
/// null.
std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout);

/// The StatusWindow that reports on the terminal.
std::unique_ptr<StatusWindow> MakeTerminalStatus(const std::string& caption);

} // namespace platform

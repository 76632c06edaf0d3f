// The system's font for dialogs and the scale of a monitor. It knows no control.
#pragma once

#include <utility>

#include "platform/windows/screen_scale.h"

namespace ui {

using platform::kDesignDpi;

/// Pixels per inch of the whole desktop at the start of the process.
int SystemDpi();
/// Pixels per inch of the monitor that the window is on; SystemDpi where the system has no scale for each
/// monitor.
int DpiOf(HWND window);

/// The font of the system's own dialogs, for a monitor of that many pixels per inch. Owns the font.
class DialogFont {
  public:
    explicit DialogFont(int dpi);
    DialogFont(DialogFont&& other) noexcept
        : font_(std::exchange(other.font_, nullptr)), text_height_(other.text_height_) {}
    DialogFont& operator=(DialogFont&& other) noexcept {
        std::swap(font_, other.font_);
        std::swap(text_height_, other.text_height_);
        return *this;
    }
    DialogFont(const DialogFont&) = delete;
    DialogFont& operator=(const DialogFont&) = delete;
    ~DialogFont();

    HFONT Get() const { return font_; }
    /// Of a line, in pixels.
    LONG TextHeight() const { return text_height_; }

  private:
    HFONT font_ = nullptr;
    LONG text_height_ = 0;
};

} // namespace ui

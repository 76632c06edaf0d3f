// The system's font for dialogs, and the scale of a monitor in DPI (pixels per inch). Knows no control.
#pragma once

#include <utility>

#include "platform/windows/screen_scale.h"

namespace ui {

using platform::kDesignDpi;

/// The DPI of the desktop when the process started.
int SystemDpi();
/// The DPI of the monitor that the window is on. Before Windows 10, which has a scale for each monitor, it is
/// SystemDpi.
int DpiOf(HWND window);

/// Owns the font of the system's dialogs in the size for one DPI.
class DialogFont {
  public:
    /// If the system cannot make the font, Get returns null, which Windows takes for its own font.
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

    /// The font, which lives as long as this object.
    HFONT Get() const { return font_; }
    /// The height of a line of text, in pixels.
    LONG TextHeight() const { return text_height_; }

  private:
    HFONT font_ = nullptr;
    LONG text_height_ = 0;
};

} // namespace ui

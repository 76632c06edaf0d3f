// The native tab control, with tabs that can be disabled: grey, and not to be chosen by mouse or keyboard.
// The system's own has none. It knows nothing of pages.
#pragma once

#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace ui {

class TabStrip {
  public:
    /// Makes the control as a child of `parent`, which owns it. `parent` gets its messages: TCN_SELCHANGE
    /// when the operator has chosen a tab, and WM_DRAWITEM for each tab, to be handed to Draw.
    TabStrip(HWND parent, int id, const std::vector<std::string>& captions);
    TabStrip(const TabStrip&) = delete;
    TabStrip& operator=(const TabStrip&) = delete;
    ~TabStrip() = default;

    HWND Window() const { return window_; }
    int Selected() const;
    /// Tells nobody.
    void Select(int index);
    void Enable(int index, bool enabled);
    /// Chooses the next tab in that direction (1 or -1) that can be chosen, as the operator does; `around`
    /// goes on at the other end. Nothing happens where there is none.
    void ChooseNext(int direction, bool around);
    void Draw(const DRAWITEMSTRUCT& item) const;
    /// Free space left and right, above and below of each caption, in pixels. Before a font is set, which is
    /// when the tabs take their size.
    void Pad(int across, int down);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                      DWORD_PTR data);
    bool IsEnabled(int index) const;
    void PaintBody() const;
    int Count() const { return static_cast<int>(enabled_.size()); }
    /// The tab under a point of the control that cannot be chosen.
    bool HitsDisabled(LPARAM point) const;
    bool HandlesKey(WPARAM key);
    void ChooseFrom(int index, int direction);

    HWND window_ = nullptr;
    std::vector<bool> enabled_;
};

} // namespace ui

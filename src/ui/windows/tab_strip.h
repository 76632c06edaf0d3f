// The native tab control, with tabs that can be disabled: these are grey and cannot be chosen.
// The system's tab control cannot disable a tab. This one paints itself in the colour of the pages: the
// system's themes give the body and the selected tab another colour, and draw a second focus rectangle. It
// knows no pages.
#pragma once

#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace ui {

class TabStrip {
  public:
    /// Makes the control as a child of `parent`, which owns it. `parent` gets TCN_SELCHANGE when the operator
    /// has chosen a tab, also for a click on the selected one; a double click is one click.
    TabStrip(HWND parent, int id, const std::vector<std::string>& captions);
    TabStrip(const TabStrip&) = delete;
    TabStrip& operator=(const TabStrip&) = delete;
    ~TabStrip() = default;

    HWND Window() const { return window_; }
    int Selected() const;
    /// Notifies nobody.
    void Select(int index);
    void Enable(int index, bool enabled);
    /// Chooses the next tab in that direction (1 or -1) that can be chosen, as the operator does; `around`
    /// goes on at the other end. Does nothing if there is no such tab.
    void ChooseNext(int direction, bool around);
    /// Free space left and right, above and below of each caption, in pixels. Before a font is set, which is
    /// when the tabs take their size.
    void Pad(int across, int down);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                      DWORD_PTR data);
    bool IsEnabled(int index) const;
    LRESULT TakePress(UINT message, WPARAM wparam, LPARAM lparam);
    void Paint(HDC paper) const;
    void PaintTab(HDC paper, int index) const;
    void PaintBuffered() const;
    RECT PlaceOf(int index) const;
    int TabAt(LPARAM point) const;
    bool ShowsFocus() const;
    int Count() const { return static_cast<int>(enabled_.size()); }
    bool HandlesKey(WPARAM key);
    void ChooseFrom(int index, int direction);

    HWND window_ = nullptr;
    std::vector<bool> enabled_;
};

} // namespace ui

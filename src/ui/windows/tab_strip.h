// The native tab control, with tabs that can be disabled, which the system's control does not offer: a
// disabled tab is grey and cannot be chosen. The control paints itself in the colour of the pages, because
// the system's themes give the body and the selected tab another colour and draw a second focus rectangle. It
// knows nothing of the pages.
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
    /// The selected tab; -1 if there is none. Tabs are numbered from 0.
    int Selected() const;
    /// Selects a tab without notifying the parent.
    void Select(int index);
    void Enable(int index, bool enabled);
    /// Chooses the next enabled tab in `direction` (1 or -1), as the operator does. With `around` the search
    /// goes on at the other end. Does nothing if there is no such tab.
    void ChooseNext(int direction, bool around);
    /// Sets the free space left and right (`across`) and above and below (`down`) of each caption, in pixels.
    /// Call it before the font is set, because the tabs take their size then.
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

#include "ui/windows/tab_strip.h"

#include <commctrl.h>
#include <windowsx.h>

namespace ui {

TabStrip::TabStrip(HWND parent, int id, const std::vector<std::string>& captions)
    : window_(::CreateWindowExA(0, WC_TABCONTROLA, "",
                                WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | TCS_OWNERDRAWFIXED, 0,
                                0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                ::GetModuleHandleA(nullptr), nullptr)),
      enabled_(captions.size(), true) {
    ::SetWindowSubclass(window_, Procedure, 0, reinterpret_cast<DWORD_PTR>(this));
    for (std::size_t index = 0; index < captions.size(); ++index) {
        std::string caption = captions[index];
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        ::SendMessageA(window_, TCM_INSERTITEMA, index, reinterpret_cast<LPARAM>(&item));
    }
}

int TabStrip::Selected() const {
    return static_cast<int>(::SendMessageA(window_, TCM_GETCURSEL, 0, 0));
}

void TabStrip::Select(int index) {
    ::SendMessageA(window_, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void TabStrip::Enable(int index, bool enabled) {
    const auto place = static_cast<std::size_t>(index);
    if (enabled_.at(place) != enabled) {
        enabled_[place] = enabled;
        ::InvalidateRect(window_, nullptr, TRUE);
    }
}

bool TabStrip::IsEnabled(int index) const {
    return index >= 0 && index < Count() && enabled_[static_cast<std::size_t>(index)];
}

void TabStrip::ChooseNext(int direction, bool around) {
    for (int step = 1; step < Count(); ++step) {
        int index = Selected() + step * direction;
        if (around) {
            index = (index + Count()) % Count();
        }
        if (IsEnabled(index)) {
            // Unlike TCM_SETCURSEL this tells the parent, as a click does.
            ::SendMessageA(window_, TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
            return;
        }
    }
}

/// The first tab from `index` on, in that direction, that can be chosen.
void TabStrip::ChooseFrom(int index, int direction) {
    while (index >= 0 && index < Count() && !IsEnabled(index)) {
        index += direction;
    }
    if (IsEnabled(index) && index != Selected()) {
        ::SendMessageA(window_, TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
    }
}

bool TabStrip::HitsDisabled(LPARAM point) const {
    TCHITTESTINFO hit{{GET_X_LPARAM(point), GET_Y_LPARAM(point)}, 0};
    const auto index =
        static_cast<int>(::SendMessageA(window_, TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    return index >= 0 && !IsEnabled(index);
}

/// The control's own keys would stop at a tab that is grey.
bool TabStrip::HandlesKey(WPARAM key) {
    switch (key) {
    case VK_LEFT:
    case VK_UP:
        ChooseNext(-1, false);
        return true;
    case VK_RIGHT:
    case VK_DOWN:
        ChooseNext(1, false);
        return true;
    case VK_HOME:
        ChooseFrom(0, 1);
        return true;
    case VK_END:
        ChooseFrom(Count() - 1, -1);
        return true;
    default:
        return false;
    }
}

void TabStrip::Pad(int across, int down) {
    ::SendMessageA(window_, TCM_SETPADDING, 0, MAKELPARAM(across, down));
}

/// The pages have the colour of a button's face; the control's own body may be white, and would show around
/// them.
void TabStrip::PaintBody() const {
    RECT body{};
    ::GetClientRect(window_, &body);
    ::SendMessageA(window_, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&body));
    const HDC paper = ::GetDC(window_);
    ::FillRect(paper, &body, ::GetSysColorBrush(COLOR_BTNFACE));
    ::ReleaseDC(window_, paper);
}

LRESULT CALLBACK TabStrip::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                     DWORD_PTR data) {
    auto& strip = *reinterpret_cast<TabStrip*>(data);
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_MOUSEMOVE: // a tab that cannot be chosen does not light up under the pointer either
        if (strip.HitsDisabled(lparam)) {
            return 0;
        }
        break;
    case WM_KEYDOWN:
        if (strip.HandlesKey(wparam)) {
            return 0;
        }
        break;
    case WM_PAINT: {
        const LRESULT result = ::DefSubclassProc(window, message, wparam, lparam);
        strip.PaintBody();
        return result;
    }
    case WM_NCDESTROY:
        ::RemoveWindowSubclass(window, Procedure, id);
        break;
    default:
        break;
    }
    return ::DefSubclassProc(window, message, wparam, lparam);
}

void TabStrip::Draw(const DRAWITEMSTRUCT& item) const {
    char text[80] = "";
    TCITEMA tab{};
    tab.mask = TCIF_TEXT;
    tab.pszText = text;
    tab.cchTextMax = static_cast<int>(sizeof text);
    ::SendMessageA(window_, TCM_GETITEMA, item.itemID, reinterpret_cast<LPARAM>(&tab));
    const bool enabled = IsEnabled(static_cast<int>(item.itemID));
    ::SetBkMode(item.hDC, TRANSPARENT);
    ::SetTextColor(item.hDC, ::GetSysColor(enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    RECT place = item.rcItem;
    ::DrawTextA(item.hDC, text, -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    if ((item.itemState & ODS_FOCUS) != 0 && ::GetFocus() == window_ &&
        (::SendMessageA(window_, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0) {
        ::InflateRect(&place, -2, -2);
        ::DrawFocusRect(item.hDC, &place);
    }
}

} // namespace ui

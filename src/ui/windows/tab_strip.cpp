// Handles the input and the painting of the tab control.
#include "ui/windows/tab_strip.h"

#include <commctrl.h>
#include <windowsx.h>

namespace ui {
namespace {

constexpr int kRaised = 2; // pixels by which the selected tab is higher

} // namespace

TabStrip::TabStrip(HWND parent, int id, const std::vector<std::string>& captions)
    : window_(::CreateWindowExA(0, WC_TABCONTROLA, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP,
                                0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
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
            // Unlike TCM_SETCURSEL this notifies the parent, as a click does.
            ::SendMessageA(window_, TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
            return;
        }
    }
}

/// Chooses the first enabled tab from `index` on in `direction` (1 or -1). Does nothing if there is none.
void TabStrip::ChooseFrom(int index, int direction) {
    while (index >= 0 && index < Count() && !IsEnabled(index)) {
        index += direction;
    }
    if (IsEnabled(index) && index != Selected()) {
        ::SendMessageA(window_, TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
    }
}

/// The tab at a point of the window (as in a mouse message's LPARAM); -1 if there is none.
int TabStrip::TabAt(LPARAM point) const {
    TCHITTESTINFO hit{{GET_X_LPARAM(point), GET_Y_LPARAM(point)}, 0};
    return static_cast<int>(::SendMessageA(window_, TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

/// Handles a press of the mouse's button. The control itself reports only a tab that was not selected before;
/// this also reports a click on the selected one.
LRESULT TabStrip::TakePress(UINT message, WPARAM wparam, LPARAM lparam) {
    const int tab = TabAt(lparam);
    if (tab >= 0 && !IsEnabled(tab)) {
        return 0;
    }
    const bool again = tab >= 0 && tab == Selected() && message == WM_LBUTTONDOWN;
    const LRESULT result = ::DefSubclassProc(window_, message, wparam, lparam);
    if (again) {
        NMHDR notice{window_, static_cast<UINT_PTR>(::GetDlgCtrlID(window_)), TCN_SELCHANGE};
        ::SendMessageA(::GetParent(window_), WM_NOTIFY, notice.idFrom, reinterpret_cast<LPARAM>(&notice));
    }
    return result;
}

/// Handles the keys that choose a tab. The control's own handling would stop at a disabled tab.
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

RECT TabStrip::PlaceOf(int index) const {
    RECT place{};
    ::SendMessageA(window_, TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&place));
    return place;
}

bool TabStrip::ShowsFocus() const {
    return ::GetFocus() == window_ && (::SendMessageA(window_, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0;
}

/// The selected tab is higher than the others and open to the page below.
void TabStrip::PaintTab(HDC paper, int index) const {
    const bool selected = index == Selected();
    RECT place = PlaceOf(index);
    RECT edge = place;
    edge.right += 1; // neighbours share a line
    if (selected) {
        edge.top -= kRaised;
    }
    ::FillRect(paper, &edge, ::GetSysColorBrush(COLOR_BTNSHADOW));
    RECT face{edge.left + 1, edge.top + 1, edge.right - 1, edge.bottom + (selected ? 1 : 0)};
    ::FillRect(paper, &face, ::GetSysColorBrush(COLOR_BTNFACE));

    char text[80] = "";
    TCITEMA tab{};
    tab.mask = TCIF_TEXT;
    tab.pszText = text;
    tab.cchTextMax = static_cast<int>(sizeof text);
    ::SendMessageA(window_, TCM_GETITEMA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&tab));
    ::SetTextColor(paper, ::GetSysColor(IsEnabled(index) ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    ::DrawTextA(paper, text, -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    if (selected && ShowsFocus()) {
        ::InflateRect(&place, -3, -2);
        ::SetTextColor(paper, ::GetSysColor(COLOR_BTNTEXT)); // the rectangle takes both colours
        ::DrawFocusRect(paper, &place);
    }
}

void TabStrip::Paint(HDC paper) const {
    RECT client{};
    ::GetClientRect(window_, &client);
    ::FillRect(paper, &client, ::GetSysColorBrush(COLOR_BTNFACE));
    RECT body = client;
    body.top = PlaceOf(0).bottom;
    ::FrameRect(paper, &body, ::GetSysColorBrush(COLOR_BTNSHADOW));
    const HGDIOBJ before =
        ::SelectObject(paper, reinterpret_cast<HGDIOBJ>(::SendMessageA(window_, WM_GETFONT, 0, 0)));
    ::SetBkMode(paper, TRANSPARENT);
    for (int index = 0; index < Count(); ++index) {
        if (index != Selected()) {
            PaintTab(paper, index);
        }
    }
    if (Selected() >= 0) {
        PaintTab(paper, Selected()); // over its neighbours
    }
    ::SelectObject(paper, before);
}

/// Paints into memory first, so that nothing flickers.
void TabStrip::PaintBuffered() const {
    PAINTSTRUCT painting{};
    const HDC screen = ::BeginPaint(window_, &painting);
    RECT client{};
    ::GetClientRect(window_, &client);
    const HDC paper = ::CreateCompatibleDC(screen);
    const HBITMAP picture = ::CreateCompatibleBitmap(screen, client.right, client.bottom);
    const HGDIOBJ before = ::SelectObject(paper, picture);
    Paint(paper);
    ::BitBlt(screen, 0, 0, client.right, client.bottom, paper, 0, 0, SRCCOPY);
    ::SelectObject(paper, before);
    ::DeleteObject(picture);
    ::DeleteDC(paper);
    ::EndPaint(window_, &painting);
}

LRESULT CALLBACK TabStrip::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                     DWORD_PTR data) {
    auto& strip = *reinterpret_cast<TabStrip*>(data);
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        return strip.TakePress(message, wparam, lparam);
    case WM_MOUSEMOVE: // the control would paint the tab under the pointer by itself
        return 0;
    case WM_KEYDOWN:
        if (strip.HandlesKey(wparam)) {
            return 0;
        }
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_UPDATEUISTATE:
    case TCM_SETCURSEL:
        ::InvalidateRect(window, nullptr, FALSE);
        break;
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        strip.PaintBuffered();
        return 0;
    case WM_PRINTCLIENT:
        strip.Paint(reinterpret_cast<HDC>(wparam));
        return 0;
    case WM_NCDESTROY:
        ::RemoveWindowSubclass(window, Procedure, id);
        break;
    default:
        break;
    }
    return ::DefSubclassProc(window, message, wparam, lparam);
}

} // namespace ui

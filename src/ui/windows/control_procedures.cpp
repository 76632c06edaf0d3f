// Subclasses native controls, so that containers pass on notifications and disabled ticks look disabled.
#include "ui/windows/control_procedures.h"

#include "ui/windows/dialog_font.h"

#include <commctrl.h>

namespace ui {
namespace {

LRESULT CALLBACK ContainerProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                    DWORD_PTR /*data*/) {
    switch (message) {
    case WM_COMMAND:
    case WM_NOTIFY:
    case WM_NOTIFYFORMAT:
    case WM_NEXTDLGCTL:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:
        return ::SendMessageA(::GetParent(window), message, wparam, lparam);
    case WM_ERASEBKGND: {
        RECT client{};
        ::GetClientRect(window, &client);
        ::FillRect(reinterpret_cast<HDC>(wparam), &client, ::GetSysColorBrush(COLOR_BTNFACE));
        return 1;
    }
    case WM_CLOSE: // a text box of several lines sends it to its parent for Escape
        return 0;
    case WM_NCDESTROY:
        ::RemoveWindowSubclass(window, ContainerProcedure, id);
        break;
    default:
        break;
    }
    return ::DefSubclassProc(window, message, wparam, lparam);
}

constexpr int kTickWidth = 16;  // pixels with its margin, at 96 DPI
constexpr BYTE kPaleness = 160; // how much of the background's colour is mixed in, of 255

/// Lays the colour of a button's face over the tick.
void Dim(HWND button) {
    RECT client{};
    ::GetClientRect(button, &client);
    const HDC paper = ::GetDC(button);
    const HDC source = ::CreateCompatibleDC(paper);
    const HBITMAP dot = ::CreateCompatibleBitmap(paper, 1, 1);
    const HGDIOBJ before = ::SelectObject(source, dot);
    ::SetPixel(source, 0, 0, ::GetSysColor(COLOR_BTNFACE));
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, kPaleness, 0};
    const int width = ::MulDiv(kTickWidth, DpiOf(button), kDesignDpi);
    ::GdiAlphaBlend(paper, 0, 0, width, client.bottom, source, 0, 0, 1, 1, blend);
    ::SelectObject(source, before);
    ::DeleteObject(dot);
    ::DeleteDC(source);
    ::ReleaseDC(button, paper);
}

LRESULT CALLBACK TickProcedure(HWND button, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                               DWORD_PTR /*data*/) {
    switch (message) {
    case WM_PAINT: {
        if (::IsWindowEnabled(button) != 0) {
            break;
        }
        ::InvalidateRect(button, nullptr,
                         FALSE); // the whole button: a part that is not repainted would be dimmed twice
        const LRESULT result = ::DefSubclassProc(button, message, wparam, lparam);
        Dim(button);
        return result;
    }
    case BM_SETCHECK: // the system may paint the tick at once
        ::InvalidateRect(button, nullptr, FALSE);
        break;
    case WM_NCDESTROY:
        ::RemoveWindowSubclass(button, TickProcedure, id);
        break;
    default:
        break;
    }
    return ::DefSubclassProc(button, message, wparam, lparam);
}

} // namespace

void MakeContainer(HWND window) {
    ::SetWindowSubclass(window, ContainerProcedure, 0, 0);
}

void DimTickWhileDisabled(HWND button) {
    ::SetWindowSubclass(button, TickProcedure, 0, 0);
}

} // namespace ui

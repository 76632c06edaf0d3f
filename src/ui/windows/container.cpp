#include "ui/windows/container.h"

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

} // namespace

void MakeContainer(HWND window) {
    ::SetWindowSubclass(window, ContainerProcedure, 0, 0);
}

} // namespace ui

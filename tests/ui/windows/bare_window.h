// An empty window, with which the start of the console is compared.
#pragma once

#include "platform/windows/lean_windows.h"

/// Returns when the system says so.
inline int ShowBareWindow(const char* window_class) {
    WNDCLASSA bare{};
    bare.lpfnWndProc = ::DefWindowProcA;
    bare.lpszClassName = window_class;
    ::RegisterClassA(&bare);
    const HWND window = ::CreateWindowExA(0, window_class, "bare", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                          640, 540, nullptr, nullptr, nullptr, nullptr);
    ::UpdateWindow(window);
    MSG message{};
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
        ::DispatchMessageA(&message);
    }
    return 0;
}

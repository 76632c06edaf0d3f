// Asks the window station, and tries to create a window.
#include "platform/windows/desktop.h"

namespace platform {

bool DesktopIsVisible() {
    USEROBJECTFLAGS flags{};
    DWORD needed = 0;
    if (::GetUserObjectInformationA(::GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, &needed) ==
            0 ||
        (flags.dwFlags & WSF_VISIBLE) == 0) {
        return false;
    }
    // Seen with Wine without a display: the window station reports that it is visible, the screen has a size,
    // and only the creation of a top-level window fails.
    const HWND probe =
        ::CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    if (probe == nullptr) {
        return false;
    }
    ::DestroyWindow(probe);
    return true;
}

} // namespace platform

// The scale of the screen, for the status window and the windows of the forms.
#pragma once

#include "platform/twips.h"
#include "platform/windows/lean_windows.h"

namespace platform {

/// Pixels per inch of the whole desktop, as the system reported them when the process started.
inline int ScreenDpi() {
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

inline int TwipsToPixels(int twips, int dpi) {
    return ::MulDiv(twips, dpi, kTwipsPerInch);
}

} // namespace platform

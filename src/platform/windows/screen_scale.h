// The scale of the screen. The status window and the windows of the forms use it.
#pragma once

#include "platform/twips.h"
#include "platform/windows/lean_windows.h"

namespace platform {

/// Returns the pixels per inch of the whole desktop, as they were when the process started.
inline int ScreenDpi() {
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

/// Rounds to the nearest pixel. `dpi` is in pixels per inch.
inline int TwipsToPixels(int twips, int dpi) {
    return ::MulDiv(twips, dpi, kTwipsPerInch);
}

} // namespace platform

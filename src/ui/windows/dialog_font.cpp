// Reads the dialogs' font and the DPI from the system.
#include "ui/windows/dialog_font.h"

namespace ui {
namespace {

LONG TextHeightOf(HFONT font) {
    const HDC paper = ::GetDC(nullptr);
    const HGDIOBJ before = ::SelectObject(paper, font);
    TEXTMETRICA metrics{};
    ::GetTextMetricsA(paper, &metrics);
    ::SelectObject(paper, before);
    ::ReleaseDC(nullptr, paper);
    return metrics.tmHeight;
}

using DpiFunction = UINT(WINAPI*)(HWND);

/// Returns GetDpiForWindow, or null before Windows 10. It is looked up because Windows 7 lacks it, and a
/// program that is linked with it would not start there.
DpiFunction FindDpiFunction() {
    const HMODULE user = ::GetModuleHandleA("user32.dll");
    return reinterpret_cast<DpiFunction>(reinterpret_cast<void*>(::GetProcAddress(user, "GetDpiForWindow")));
}

} // namespace

int SystemDpi() {
    return platform::ScreenDpi();
}

int DpiOf(HWND window) {
    static const DpiFunction dpi_for_window = FindDpiFunction();
    const int dpi = dpi_for_window == nullptr ? 0 : static_cast<int>(dpi_for_window(window));
    return dpi == 0 ? SystemDpi() : dpi;
}

DialogFont::DialogFont(int dpi) {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    ::SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    LOGFONTA& font = metrics.lfMessageFont;
    font.lfHeight = ::MulDiv(font.lfHeight, dpi, SystemDpi());
    font_ = ::CreateFontIndirectA(&font);
    text_height_ = TextHeightOf(font_);
}

DialogFont::~DialogFont() {
    if (font_ != nullptr) {
        ::DeleteObject(font_);
    }
}

} // namespace ui

// The status window as a Win32 window with a label and a progress bar.
#include "platform/status_window.h"

#include "platform/windows/desktop.h"
#include "platform/windows/screen_scale.h"

#include <commctrl.h>

namespace platform {
namespace {

constexpr char kClassName[] = "StatusWindow";
constexpr int kProgramIcon = 1; // the icon's number among the resources

HICON ProgramIcon(int width, int height) {
    return static_cast<HICON>(::LoadImageA(::GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kProgramIcon),
                                           IMAGE_ICON, width, height, LR_SHARED));
}

/// Owns the font that the system uses in message boxes.
class Font {
  public:
    Font() {
        NONCLIENTMETRICSA metrics{};
        metrics.cbSize = sizeof metrics;
        ::SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
        font_ = ::CreateFontIndirectA(&metrics.lfMessageFont);
    }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font() { ::DeleteObject(font_); }

    HFONT Get() const { return font_; }

  private:
    HFONT font_ = nullptr;
};

LRESULT CALLBACK StatusProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_ACTIVATE:
        if (LOWORD(wparam) != WA_INACTIVE) {
            // No other window may cover the progress of an unattended run.
            ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0,
                           SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
        }
        return 0;
    case WM_CLOSE:
        return 0; // the run ends the window
    default:
        return ::DefWindowProcA(window, message, wparam, lparam);
    }
}

class NativeStatusWindow : public StatusWindow {
  public:
    explicit NativeStatusWindow(const StatusWindowLayout& layout) : dpi_(ScreenDpi()) {
        const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&controls);
        window_ = CreateFrame(layout);
        label_ = CreateChild("STATIC", SS_LEFT | SS_NOPREFIX, layout.label);
        bar_ = CreateChild(PROGRESS_CLASSA, 0, layout.bar);
        ::SendMessageA(label_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
    }
    NativeStatusWindow(const NativeStatusWindow&) = delete;
    NativeStatusWindow& operator=(const NativeStatusWindow&) = delete;
    ~NativeStatusWindow() override { ::DestroyWindow(window_); }

    void SetBar(float min, float max, float value) override {
        ::SendMessageA(bar_, PBM_SETRANGE32, static_cast<WPARAM>(min), static_cast<LPARAM>(max));
        ::SendMessageA(bar_, PBM_SETPOS, static_cast<WPARAM>(value), 0);
        ::UpdateWindow(bar_);
    }

    void SetLabel(const std::string& text) override {
        ::SetWindowTextA(label_, text.c_str());
        ::UpdateWindow(label_);
    }

    void Show() override { ::ShowWindow(window_, SW_SHOWNORMAL); }

  private:
    int Pixels(int twips) const { return TwipsToPixels(twips, dpi_); }

    HWND CreateFrame(const StatusWindowLayout& layout) const {
        const HINSTANCE instance = ::GetModuleHandleA(nullptr);
        WNDCLASSEXA window_class{};
        window_class.cbSize = sizeof window_class;
        window_class.style = CS_NOCLOSE; // the run ends the window
        window_class.hIcon = ProgramIcon(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON));
        window_class.hIconSm = ProgramIcon(::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON));
        window_class.lpfnWndProc = StatusProcedure;
        window_class.hInstance = instance;
        window_class.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
        window_class.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
        window_class.lpszClassName = kClassName;
        ::RegisterClassExA(&window_class);

        constexpr DWORD kStyle =
            WS_POPUP | WS_CAPTION | WS_SYSMENU; // without WS_SYSMENU the window has no icon
        RECT frame{0, 0, Pixels(layout.client_width), Pixels(layout.client_height)};
        ::AdjustWindowRect(&frame, kStyle, FALSE);
        const int width = frame.right - frame.left;
        const int height = frame.bottom - frame.top;
        return ::CreateWindowExA(0, kClassName, layout.caption.c_str(), kStyle,
                                 (::GetSystemMetrics(SM_CXSCREEN) - width) / 2,
                                 (::GetSystemMetrics(SM_CYSCREEN) - height) / 2, width, height, nullptr,
                                 nullptr, instance, nullptr);
    }

    HWND CreateChild(const char* class_name, DWORD style, const TwipsRect& place) const {
        return ::CreateWindowExA(0, class_name, "", WS_CHILD | WS_VISIBLE | style, Pixels(place.left),
                                 Pixels(place.top), Pixels(place.width), Pixels(place.height), window_,
                                 nullptr, ::GetModuleHandleA(nullptr), nullptr);
    }

    int dpi_;
    Font font_;
    HWND window_ = nullptr;
    HWND label_ = nullptr;
    HWND bar_ = nullptr;
};

} // namespace

std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) {
    if (!DesktopIsVisible()) {
        return MakeTerminalStatus(layout.caption);
    }
    return std::make_unique<NativeStatusWindow>(layout);
}

} // namespace platform

#include "platform/main_window.h"

#include "platform/terminal.h"
#include "platform/windows/desktop.h"

namespace platform {
namespace {

constexpr char kClassName[] = "KVPlainWindow";

LRESULT CALLBACK PlainProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_DESTROY) {
        ::PostQuitMessage(0);
        return 0;
    }
    return ::DefWindowProcA(window, message, wparam, lparam);
}

class NativePlainWindow : public PlainWindow {
  public:
    NativePlainWindow(const std::string& title, const std::string& text) {
        const HINSTANCE instance = ::GetModuleHandleA(nullptr);
        WNDCLASSA window_class{};
        window_class.lpfnWndProc = PlainProcedure;
        window_class.hInstance = instance;
        window_class.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
        window_class.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
        window_class.lpszClassName = kClassName;
        ::RegisterClassA(&window_class);

        constexpr int kWidth = 460;
        constexpr int kHeight = 140;
        constexpr int kMargin = 16;
        window_ = ::CreateWindowExA(0, kClassName, title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                    CW_USEDEFAULT, kWidth, kHeight, nullptr, nullptr, instance, nullptr);
        RECT client{};
        ::GetClientRect(window_, &client);
        const HWND label = ::CreateWindowExA(
            0, "STATIC", text.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX, kMargin, kMargin,
            client.right - 2 * kMargin, client.bottom - 2 * kMargin, window_, nullptr, instance, nullptr);
        ::SendMessageA(label, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)),
                       FALSE);
        ::ShowWindow(window_, SW_SHOWNORMAL);
        ::UpdateWindow(window_);
    }
    NativePlainWindow(const NativePlainWindow&) = delete;
    NativePlainWindow& operator=(const NativePlainWindow&) = delete;
    ~NativePlainWindow() override {
        if (::IsWindow(window_) != 0) {
            ::DestroyWindow(window_);
        }
    }

    void RunUntilClosed() override {
        MSG message{};
        while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
            ::TranslateMessage(&message);
            ::DispatchMessageA(&message);
        }
    }

  private:
    HWND window_ = nullptr;
};

} // namespace

std::unique_ptr<PlainWindow> ShowPlainWindow(const std::string& title, const std::string& text) {
    if (!DesktopIsVisible()) {
        WriteToTerminal(title + ": " + text + "\n");
        return nullptr;
    }
    return std::make_unique<NativePlainWindow>(title, text);
}

} // namespace platform

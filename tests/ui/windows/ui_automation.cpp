#include "ui/windows/ui_automation.h"

#include <fstream>
#include <thread>

#include "platform/pending_events.h"

namespace ui_automation {
namespace {

struct Search {
    int id;
    HWND found;
};

BOOL CALLBACK TakeIfWanted(HWND window, LPARAM wanted) {
    auto& search = *reinterpret_cast<Search*>(wanted);
    // The system gives the text field of a combo box an identifier, which may equal the one that is wanted.
    if (::GetDlgCtrlID(window) != search.id || ClassOf(::GetParent(window)) == "ComboBox") {
        return TRUE;
    }
    search.found = window;
    return FALSE;
}

INPUT KeyInput(WORD key, bool up) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(::MapVirtualKeyA(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? DWORD{KEYEVENTF_KEYUP} : DWORD{0};
    return input;
}

/// Presses or releases a button at a point of the screen. The point is given although the pointer was moved
/// there before: a late event of an earlier move may set the pointer back (seen on Wine), and the button
/// would be pressed at the old point.
INPUT MouseInput(POINT point, DWORD button) {
    constexpr LONG kScreenUnits = 65536; // the screen's width and height in units of MOUSEEVENTF_ABSOLUTE
    const auto middle_of = [](LONG pixel, LONG pixels) {
        return (pixel * kScreenUnits + kScreenUnits / 2) / pixels;
    };
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = middle_of(point.x, ::GetSystemMetrics(SM_CXSCREEN));
    input.mi.dy = middle_of(point.y, ::GetSystemMetrics(SM_CYSCREEN));
    input.mi.dwFlags = button | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    return input;
}

POINT OnScreen(HWND window, int x, int y) {
    POINT point{x, y};
    ::ClientToScreen(window, &point);
    return point;
}

void Send(std::vector<INPUT> inputs) {
    ::SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

/// A bitmap in memory with a device context to paint on it.
class Canvas {
  public:
    Canvas(HDC screen, int width, int height) : paper_(::CreateCompatibleDC(screen)) {
        header_.biSize = sizeof header_;
        header_.biWidth = width;
        header_.biHeight = height;
        header_.biPlanes = 1;
        header_.biBitCount = 32;
        BITMAPINFO info{};
        info.bmiHeader = header_;
        picture_ = ::CreateDIBSection(screen, &info, DIB_RGB_COLORS, &pixels_, nullptr, 0);
        before_ = ::SelectObject(paper_, picture_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() {
        ::SelectObject(paper_, before_);
        ::DeleteObject(picture_);
        ::DeleteDC(paper_);
    }

    HDC Paper() const { return paper_; }

    bool Write(const std::string& path) const {
        const auto size = static_cast<DWORD>(header_.biWidth * header_.biHeight * 4);
        BITMAPFILEHEADER file{};
        file.bfType = 0x4D42; // "BM"
        file.bfOffBits = sizeof file + sizeof header_;
        file.bfSize = file.bfOffBits + size;
        ::GdiFlush();
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<const char*>(&file), sizeof file);
        out.write(reinterpret_cast<const char*>(&header_), sizeof header_);
        out.write(static_cast<const char*>(pixels_), size);
        return out.good();
    }

  private:
    BITMAPINFOHEADER header_{};
    HDC paper_;
    HBITMAP picture_ = nullptr;
    HGDIOBJ before_ = nullptr;
    void* pixels_ = nullptr;
};

} // namespace

bool WaitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        platform::RunPendingEvents();
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

HWND Child(HWND top, int id) {
    Search search{id, nullptr};
    ::EnumChildWindows(top, TakeIfWanted, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::string Text(HWND window) {
    std::string text(static_cast<std::size_t>(::SendMessageA(window, WM_GETTEXTLENGTH, 0, 0)) + 1, '\0');
    const LRESULT length =
        ::SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string Caption(HWND window) {
    char text[512] = "";
    // Sends no message to a window of another process: the system returns its own copy of the text.
    ::GetWindowTextA(window, text, sizeof text);
    return text;
}

std::string ClassOf(HWND window) {
    char name[64] = "";
    ::GetClassNameA(window, name, sizeof name);
    return name;
}

RECT PlaceIn(HWND window, HWND other) {
    RECT place{};
    ::GetWindowRect(window, &place);
    ::MapWindowPoints(nullptr, other, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

bool Activate(HWND window) {
    ::SetForegroundWindow(window);
    return WaitFor([window] { return ::GetForegroundWindow() == window; });
}

HWND FocusIn(HWND top) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(top, nullptr), &info);
    return info.hwndFocus;
}

void PressAt(HWND window, int x, int y) {
    const POINT point = OnScreen(window, x, y);
    ::SetCursorPos(point.x, point.y);
    Send({MouseInput(point, MOUSEEVENTF_LEFTDOWN)});
}

void ReleaseAt(HWND window, int x, int y) {
    Send({MouseInput(OnScreen(window, x, y), MOUSEEVENTF_LEFTUP)});
}

void ClickAt(HWND window, int x, int y) {
    const POINT point = OnScreen(window, x, y);
    ::SetCursorPos(point.x, point.y);
    Send({MouseInput(point, MOUSEEVENTF_LEFTDOWN), MouseInput(point, MOUSEEVENTF_LEFTUP)});
}

void Click(HWND window) {
    RECT client{};
    ::GetClientRect(window, &client);
    ClickAt(window, client.right / 2, client.bottom / 2);
}

void Type(const std::string& text) {
    for (const char character : text) {
        const SHORT key = ::VkKeyScanA(character);
        const bool shift = (HIBYTE(key) & 1) != 0;
        if (shift) {
            Press(LOBYTE(key), {VK_SHIFT});
        } else {
            Press(LOBYTE(key));
        }
    }
}

void Press(WORD key, const std::vector<WORD>& held) {
    std::vector<INPUT> inputs;
    for (const WORD other : held) {
        inputs.push_back(KeyInput(other, false));
    }
    inputs.push_back(KeyInput(key, false));
    inputs.push_back(KeyInput(key, true));
    for (auto other = std::rbegin(held); other != std::rend(held); ++other) {
        inputs.push_back(KeyInput(*other, true));
    }
    Send(std::move(inputs));
}

void Hold(WORD key, int repeats) {
    std::vector<INPUT> inputs(static_cast<std::size_t>(repeats) + 1, KeyInput(key, false));
    inputs.push_back(KeyInput(key, true));
    Send(std::move(inputs));
}

bool TakePicture(HWND window, const std::string& path) {
    RECT place{};
    ::GetWindowRect(window, &place);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const HDC screen = ::GetDC(nullptr);
    const Canvas canvas(screen, width, height);
    const BOOL copied = ::BitBlt(canvas.Paper(), 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    ::ReleaseDC(nullptr, screen);
    return copied != 0 && canvas.Write(path);
}

} // namespace ui_automation

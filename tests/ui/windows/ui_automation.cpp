#include "ui/windows/ui_automation.h"

#include <algorithm>
#include <fstream>
#include <thread>
#include <utility>

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

/// The state of the thread that the window belongs to.
GUITHREADINFO StateOf(HWND window) {
    GUITHREADINFO state{};
    state.cbSize = sizeof state;
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(window, nullptr), &state);
    return state;
}

bool IsIn(HWND window, HWND part) {
    return part == window || ::IsChild(window, part) != 0;
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
    // While this program or the one that the condition asks stands still, nothing can change.
    constexpr std::chrono::steady_clock::duration kLongestLook = std::chrono::milliseconds(100);
    std::chrono::steady_clock::duration waited{};
    for (auto before = std::chrono::steady_clock::now();;) {
        platform::RunPendingEvents();
        if (condition()) {
            return true;
        }
        const auto now = std::chrono::steady_clock::now();
        waited += std::min(now - std::exchange(before, now), kLongestLook);
        if (waited > limit) {
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

bool Activate(HWND window, std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds kBetween{10};
    constexpr int kEnough = 5;    // looks at a window in front, with the focus
    constexpr int kPatience = 50; // the same without it, while a command has disabled the control that had it
    int kept = 0;
    int missed = 0;
    const auto has_keyboard = [&] {
        if (::GetForegroundWindow() != window) {
            kept = 0;
            if (missed++ % kPatience == 0) {
                ::SetForegroundWindow(window);
            }
            return false;
        }
        missed = 0;
        ++kept;
        return kept >= (IsIn(window, FocusIn(window)) ? kEnough : kPatience);
    };
    const auto gone_or_ready = [&] {
        std::this_thread::sleep_for(kBetween);
        return ::IsWindow(window) == 0 || has_keyboard();
    };
    return WaitFor(gone_or_ready, limit) && ::IsWindow(window) != 0;
}

HWND FocusIn(HWND top) {
    return StateOf(top).hwndFocus;
}

HWND CaptureIn(HWND top) {
    return StateOf(top).hwndCapture;
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

void TypeCharacters(const std::string& text) {
    std::vector<INPUT> inputs;
    for (const char character : text) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wScan = static_cast<unsigned char>(character);
        input.ki.dwFlags = KEYEVENTF_UNICODE;
        inputs.push_back(input);
        input.ki.dwFlags |= KEYEVENTF_KEYUP;
        inputs.push_back(input);
    }
    Send(std::move(inputs));
}

void PressDown(WORD key) {
    Send({KeyInput(key, false)});
}

void Release(WORD key) {
    Send({KeyInput(key, true)});
}

bool IsDown(WORD key) {
    return ::GetAsyncKeyState(key) < 0;
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

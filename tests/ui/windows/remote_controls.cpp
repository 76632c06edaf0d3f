#include "ui/windows/remote_controls.h"

#include <stdexcept>
#include <thread>

#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace remote_controls {
namespace {

constexpr std::size_t kLongestText = 260;

/// Memory of the other process for one structure and a text after it.
template <class T>
class RemoteMemory {
  public:
    explicit RemoteMemory(HANDLE process)
        : process_(process),
          place_(static_cast<char*>(::VirtualAllocEx(process, nullptr, sizeof(T) + kLongestText,
                                                     MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {}
    RemoteMemory(const RemoteMemory&) = delete;
    RemoteMemory& operator=(const RemoteMemory&) = delete;
    ~RemoteMemory() { ::VirtualFreeEx(process_, place_, 0, MEM_RELEASE); }

    char* TextPlace() const { return place_ + sizeof(T); }
    LRESULT Send(HWND window, UINT message, WPARAM what, T& value) const {
        ::WriteProcessMemory(process_, place_, &value, sizeof(T), nullptr);
        const LRESULT answer = ::SendMessageA(window, message, what, reinterpret_cast<LPARAM>(place_));
        ::ReadProcessMemory(process_, place_, &value, sizeof(T), nullptr);
        return answer;
    }
    std::string Text() const {
        char text[kLongestText] = "";
        ::ReadProcessMemory(process_, TextPlace(), text, sizeof text - 1, nullptr);
        return text;
    }

  private:
    HANDLE process_;
    char* place_;
};

void Require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// What an input that may be repeated gets to have its effect.
constexpr std::chrono::seconds kMoment{10};
constexpr int kTries = 6;

/// Returns when the window's thread has handled what the display had sent it before, at the latest after a
/// second: the thread may be busy.
void LetItHandleEvents(HWND window) {
    constexpr UINT kLongest = 1000;
    // The thread answers the first message before it looks at the display's events, and the second one after.
    for (int message = 0; message < 2; ++message) {
        DWORD_PTR answer = 0;
        ::SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, kLongest, &answer);
    }
}

/// Returns when the key is held and stays so: an event of the display may set its state back.
void HoldDown(HWND window, WORD key) {
    const bool held = ui_automation::WaitFor([window, key] {
        if (!ui_automation::IsDown(key)) {
            ui_automation::PressDown(key);
        }
        LetItHandleEvents(window);
        return ui_automation::IsDown(key);
    });
    Require(held, "a key does not stay down");
}

void PressHolding(HWND window, WORD key, const std::vector<WORD>& held) {
    for (const WORD other : held) {
        HoldDown(window, other);
    }
    ui_automation::Press(key);
    for (auto other = std::rbegin(held); other != std::rend(held); ++other) {
        ui_automation::Release(*other);
    }
}

/// A window with a frame is brought to the front; an open list of a combo box never is.
void BringToFront(HWND window) {
    const HWND top = ::GetAncestor(window, GA_ROOT);
    if ((::GetWindowLongPtrA(top, GWL_STYLE) & WS_CAPTION) == WS_CAPTION && ::GetForegroundWindow() != top) {
        ui_automation::Activate(top, kMoment);
    }
}

bool HasFocus(HWND box) {
    const HWND focus = ui_automation::FocusIn(box);
    return focus == box || ::GetParent(focus) == box; // the text field of a combo box
}

/// Moves the pointer there and waits until it has stayed there for `rest`.
void MoveTo(HWND window, int x, int y, std::chrono::milliseconds rest = std::chrono::milliseconds(30)) {
    POINT place{x, y};
    ::ClientToScreen(window, &place);
    auto since = std::chrono::steady_clock::now();
    ::SetCursorPos(place.x, place.y);
    const bool rests = ui_automation::WaitFor([&] {
        POINT now{};
        ::GetCursorPos(&now);
        if (now.x != place.x || now.y != place.y) {
            ::SetCursorPos(place.x, place.y);
            since = std::chrono::steady_clock::now();
        }
        return std::chrono::steady_clock::now() - since > rest;
    });
    Require(rests, "the pointer does not come to rest");
    LetItHandleEvents(window);
}

/// A button ignores a click that follows the end of its command sooner than this, as a double click's second.
constexpr std::chrono::milliseconds kReaction{300};

POINT MiddleOf(HWND window) {
    RECT client{};
    ::GetClientRect(window, &client);
    return {client.right / 2, client.bottom / 2};
}

/// True as long as the button would be clicked if the mouse's button were released now.
bool IsPressed(HWND button) {
    return (::SendMessageA(button, BM_GETSTATE, 0, 0) & BST_PUSHED) != 0 &&
           ui_automation::CaptureIn(button) == button;
}

} // namespace

void Press(HWND window, WORD key, const std::vector<WORD>& held) {
    Require(ui_automation::Activate(window), "the window does not get the keyboard");
    PressHolding(window, key, held);
}

bool PressUntil(HWND window, const std::function<bool()>& effect, WORD key, const std::vector<WORD>& held) {
    for (int time = 0; time < kTries; ++time) {
        if (effect()) {
            return true;
        }
        if (ui_automation::Activate(window, kMoment)) {
            PressHolding(window, key, held);
        }
        if (ui_automation::WaitFor(effect, kMoment)) {
            return true;
        }
    }
    return false;
}

void Type(HWND window, const std::string& text) {
    Require(ui_automation::Activate(window), "the window does not get the keyboard");
    ui_automation::TypeCharacters(text);
}

void Fill(HWND box, const std::string& text) {
    const HWND window = ::GetAncestor(box, GA_ROOT);
    for (int time = 0; time < kTries; ++time) {
        Click(box);
        if (!ui_automation::WaitFor([box] { return HasFocus(box); }, kMoment)) {
            continue;
        }
        Press(window, VK_HOME);
        PressHolding(window, VK_END, {VK_SHIFT});
        PressHolding(window, VK_DELETE, {});
        ui_automation::TypeCharacters(text);
        if (ui_automation::WaitFor([&] { return ui_automation::Text(box) == text; }, kMoment)) {
            return;
        }
    }
    throw std::runtime_error("the text is \"" + ui_automation::Text(box) + "\" and not \"" + text + "\"");
}

void ClickAt(HWND window, int x, int y) {
    BringToFront(window);
    MoveTo(window, x, y);
    ui_automation::ClickAt(window, x, y);
}

void Click(HWND window) {
    const POINT middle = MiddleOf(window);
    ClickAt(window, middle.x, middle.y);
}

std::chrono::milliseconds ClickTwice(HWND button, std::chrono::milliseconds between) {
    const POINT middle = MiddleOf(button);
    BringToFront(button);
    MoveTo(button, middle.x, middle.y, kReaction);
    const auto start = std::chrono::steady_clock::now();
    ui_automation::ClickAt(button, middle.x, middle.y);
    std::this_thread::sleep_for(between);
    ui_automation::ClickAt(button, middle.x, middle.y);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

void ClickButton(HWND button) {
    const POINT middle = MiddleOf(button);
    for (int press = 0; press < kTries; ++press) {
        BringToFront(button);
        MoveTo(button, middle.x, middle.y, kReaction);
        ui_automation::PressAt(button, middle.x, middle.y);
        const bool down = ui_automation::WaitFor([button] { return IsPressed(button); }, kMoment);
        ui_automation::ReleaseAt(button, middle.x, middle.y);
        if (down) {
            return;
        }
    }
    throw std::runtime_error("the button does not go down");
}

RECT TabPlace(HANDLE process, HWND tabs, int tab) {
    const RemoteMemory<RECT> piece(process);
    RECT place{};
    piece.Send(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(tab), place);
    return place;
}

std::vector<std::string> Headers(HANDLE process, HWND list_view) {
    const auto header = reinterpret_cast<HWND>(::SendMessageA(list_view, LVM_GETHEADER, 0, 0));
    const RemoteMemory<HDITEMA> piece(process);
    std::vector<std::string> texts;
    const LRESULT count = ::SendMessageA(header, HDM_GETITEMCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        HDITEMA item{};
        item.mask = HDI_TEXT;
        item.pszText = piece.TextPlace();
        item.cchTextMax = static_cast<int>(kLongestText);
        piece.Send(header, HDM_GETITEMA, static_cast<WPARAM>(i), item);
        texts.push_back(piece.Text());
    }
    return texts;
}

std::vector<std::string> Row(HANDLE process, HWND list_view, int row, int columns) {
    const RemoteMemory<LVITEMA> piece(process);
    std::vector<std::string> texts;
    for (int column = 0; column < columns; ++column) {
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = piece.TextPlace();
        item.cchTextMax = static_cast<int>(kLongestText);
        piece.Send(list_view, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), item);
        texts.push_back(piece.Text());
    }
    return texts;
}

std::string SelectedInTree(HANDLE process, HWND tree) {
    const RemoteMemory<TVITEMA> piece(process);
    TVITEMA item{};
    item.hItem = reinterpret_cast<HTREEITEM>(::SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
    item.mask = TVIF_TEXT;
    item.pszText = piece.TextPlace();
    item.cchTextMax = static_cast<int>(kLongestText);
    if (item.hItem == nullptr || piece.Send(tree, TVM_GETITEMA, 0, item) == 0) {
        return {};
    }
    return piece.Text();
}

} // namespace remote_controls

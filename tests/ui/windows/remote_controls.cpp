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
    if (!rests) {
        throw std::runtime_error("the pointer does not come to rest");
    }
}

/// A button ignores a click that follows the end of its command sooner than this, as a double click's second.
constexpr std::chrono::milliseconds kReaction{300};

POINT MiddleOf(HWND window) {
    RECT client{};
    ::GetClientRect(window, &client);
    return {client.right / 2, client.bottom / 2};
}

} // namespace

void ClickAt(HWND window, int x, int y) {
    MoveTo(window, x, y);
    ui_automation::ClickAt(window, x, y);
}

void Click(HWND window) {
    const POINT middle = MiddleOf(window);
    ClickAt(window, middle.x, middle.y);
}

std::chrono::milliseconds ClickTwice(HWND button, std::chrono::milliseconds between) {
    const POINT middle = MiddleOf(button);
    MoveTo(button, middle.x, middle.y, kReaction);
    const auto start = std::chrono::steady_clock::now();
    ui_automation::ClickAt(button, middle.x, middle.y);
    std::this_thread::sleep_for(between);
    ui_automation::ClickAt(button, middle.x, middle.y);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

void ClickButton(HWND button) {
    constexpr int kPresses = 6;
    constexpr std::chrono::seconds kNoticed{10}; // a program that answers messages also handles its input
    const POINT middle = MiddleOf(button);
    for (int press = 0; press < kPresses; ++press) {
        MoveTo(button, middle.x, middle.y, kReaction);
        ui_automation::PressAt(button, middle.x, middle.y);
        const bool down = ui_automation::WaitFor(
            [button] { return (::SendMessageA(button, BM_GETSTATE, 0, 0) & BST_PUSHED) != 0; }, kNoticed);
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

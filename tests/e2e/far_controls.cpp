#include "far_controls.h"

#include <commctrl.h>

namespace far_controls {
namespace {

constexpr std::size_t kLongestText = 260;

/// A piece of the other process's memory, for one structure and a text behind it.
template <class T>
class FarPiece {
  public:
    explicit FarPiece(HANDLE process)
        : process_(process),
          place_(static_cast<char*>(::VirtualAllocEx(process, nullptr, sizeof(T) + kLongestText,
                                                     MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {}
    FarPiece(const FarPiece&) = delete;
    FarPiece& operator=(const FarPiece&) = delete;
    ~FarPiece() { ::VirtualFreeEx(process_, place_, 0, MEM_RELEASE); }

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

} // namespace

RECT TabPlace(HANDLE process, HWND tabs, int tab) {
    const FarPiece<RECT> piece(process);
    RECT place{};
    piece.Send(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(tab), place);
    return place;
}

std::vector<std::string> Headers(HANDLE process, HWND list_view) {
    const auto header = reinterpret_cast<HWND>(::SendMessageA(list_view, LVM_GETHEADER, 0, 0));
    const FarPiece<HDITEMA> piece(process);
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
    const FarPiece<LVITEMA> piece(process);
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

} // namespace far_controls

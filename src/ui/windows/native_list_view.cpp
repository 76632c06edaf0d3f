#include "ui/windows/native_list_view.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "ui/windows/dialog_font.h"

namespace ui {
namespace {

constexpr std::size_t kPaintedCharacters = 259; // the control's own buffer for a text holds no more
constexpr int kNewColumnWidth = 96;             // an inch, at the design's scale
constexpr int kCellMargins = 14;                // free space left and right of a text, with the grid line
constexpr int kHeaderMargins = 24;              // the same of a header

using CharacterWidths = std::array<INT, 256>;

/// The widths of the font's characters. Without kerning, which the control's painting does not do, a text is
/// as wide as its characters, and a table of 327,660 cells is measured in a hundredth of the time of that
/// many calls of GetTextExtentPoint32.
CharacterWidths WidthsOfFont(HWND window) {
    CharacterWidths widths{};
    const HDC screen = ::GetDC(window);
    const HGDIOBJ before =
        ::SelectObject(screen, reinterpret_cast<HGDIOBJ>(::SendMessageA(window, WM_GETFONT, 0, 0)));
    ::GetCharWidth32A(screen, 0, 255, widths.data());
    ::SelectObject(screen, before);
    ::ReleaseDC(window, screen);
    return widths;
}

/// Of as much of the text as the control paints.
int WidthOf(std::string_view text, const CharacterWidths& widths) {
    int width = 0;
    for (const char character : text.substr(0, kPaintedCharacters)) {
        width += widths[static_cast<unsigned char>(character)];
    }
    return width;
}

int WidestCell(const ListView& list, int column, const CharacterWidths& widths) {
    int widest = 0;
    for (int row = 0; row < list.RowCount(); ++row) {
        widest = std::max(widest, WidthOf(list.Cell(row, column), widths));
    }
    return widest;
}

} // namespace

void ShowExtendedStyle(HWND window, const ListView& list) {
    // Painting into memory first is ours: without it a long list flickers when it is scrolled.
    ::SendMessageA(window, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, list.ExtendedStyle() | LVS_EX_DOUBLEBUFFER);
}

void ShowColumns(HWND window, const ListView& list) {
    while (::SendMessageA(window, LVM_DELETECOLUMN, 0, 0) != 0) {
    }
    for (int index = 0; index < list.ColumnCount(); ++index) {
        std::string text = list.ColumnAt(index).text;
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.pszText = text.data();
        column.cx = ::MulDiv(kNewColumnWidth, DpiOf(window), kDesignDpi);
        column.iSubItem = index;
        ::SendMessageA(window, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index),
                       reinterpret_cast<LPARAM>(&column));
    }
}

void ShowRows(HWND window, const ListView& list) {
    ::SendMessageA(window, LVM_SETITEMCOUNT, static_cast<WPARAM>(list.RowCount()), LVSICF_NOSCROLL);
    ::InvalidateRect(window, nullptr, TRUE);
}

void SizeColumns(HWND window, const ListView& list) {
    // The control holds no rows, so it would measure only those on the screen; on Wine it also makes a header
    // too narrow. So it is asked while it has no rows, which lets the last column reach the edge, and the
    // texts are measured here.
    const CharacterWidths widths = WidthsOfFont(window);
    const int cell_margins = ::MulDiv(kCellMargins, DpiOf(window), kDesignDpi);
    const int header_margins = ::MulDiv(kHeaderMargins, DpiOf(window), kDesignDpi);
    const std::vector<bool>& sized = list.AutoSized();
    RECT view{};
    ::GetClientRect(window, &view);
    ::SendMessageA(window, WM_SETREDRAW, FALSE, 0);
    ::SendMessageA(window, LVM_SETITEMCOUNT, 0, LVSICF_NOSCROLL);
    for (int column = 0; column < list.ColumnCount(); ++column) {
        if (!sized.at(static_cast<std::size_t>(column))) {
            continue;
        }
        const auto index = static_cast<WPARAM>(column);
        ::SendMessageA(window, LVM_SETCOLUMNWIDTH, index, LVSCW_AUTOSIZE_USEHEADER);
        const auto given = static_cast<int>(::SendMessageA(window, LVM_GETCOLUMNWIDTH, index, 0));
        const int wanted = std::max({given, WidestCell(list, column, widths) + cell_margins,
                                     WidthOf(list.ColumnAt(column).text, widths) + header_margins});
        // A wider one would leave no room for any other column, and its end could hardly be found.
        const int fitting = std::min(wanted, static_cast<int>(view.right));
        if (fitting != given) {
            ::SendMessageA(window, LVM_SETCOLUMNWIDTH, index, fitting);
        }
    }
    ::SendMessageA(window, LVM_SETITEMCOUNT, static_cast<WPARAM>(list.RowCount()), LVSICF_NOSCROLL);
    ::SendMessageA(window, WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(window, nullptr, TRUE);
}

void GiveCell(const ListView& list, NMLVDISPINFOA& wanted) {
    const int row = wanted.item.iItem;
    const int column = wanted.item.iSubItem;
    if ((wanted.item.mask & LVIF_TEXT) == 0 || wanted.item.cchTextMax <= 0 || row < 0 ||
        row >= list.RowCount() || column >= list.ColumnCount()) {
        return;
    }
    const std::string& text = list.Cell(row, column);
    const std::size_t room = static_cast<std::size_t>(wanted.item.cchTextMax) - 1;
    const std::size_t length = text.copy(wanted.item.pszText, std::min(room, kPaintedCharacters));
    wanted.item.pszText[length] = '\0';
}

} // namespace ui

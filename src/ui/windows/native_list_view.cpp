// Shows the columns and the visible rows of a ListView, and sizes its columns.
#include "ui/windows/native_list_view.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "ui/windows/dialog_font.h"

namespace ui {
namespace {

constexpr std::size_t kPaintedCharacters = 259; // the control's own buffer for a text holds no more
constexpr int kNewColumnWidth = 96;             // pixels at 96 DPI
constexpr int kCellMargins = 14;   // pixels left and right of a text, with the grid line, at 96 DPI
constexpr int kHeaderMargins = 24; // the same for a header

using CharacterWidths = std::array<INT, 256>;

/// The widths of the font's characters, in pixels. The control paints without kerning, so a text is as wide
/// as its characters together. Adding them measures a table of 327,660 cells in a hundredth of the time that
/// as many calls of GetTextExtentPoint32 take.
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

/// The width of the part of the text that the control paints, in pixels.
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
    // The program does not ask for double buffering; without it a long list flickers when it is scrolled.
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
    // The control holds no texts, so it can measure only the rows on the screen; on Wine it also makes a
    // header too narrow. So the texts are measured here. The control is still asked, with no rows, because it
    // makes the last column reach the window's edge.
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
        // A column wider than the window would hide all others.
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

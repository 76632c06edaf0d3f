// Shows the state of controls in their native controls. Each function compares first: a text that is set
// again loses its selection, and a list its scroll position.
#include <algorithm>
#include <string>

#include "ui/windows/native_control.h"
#include "ui/windows/native_list_view.h"
#include "ui/windows/shown_caption.h"

#include <commctrl.h>

namespace ui {
namespace {

void ShowText(HWND window, const std::string& text) {
    if (WindowText(window) != text) {
        ::SetWindowTextA(window, text.c_str());
    }
}

bool Stale(const NativeControl& native, Property property) {
    return (native.stale & Bit(property)) != 0;
}

void ShowLabel(const NativeControl& native) {
    const auto& label = static_cast<const Label&>(*native.control);
    ShowText(native.window, label.Caption());
    if (Stale(native, Property::ForeColor)) {
        ::InvalidateRect(native.window, nullptr, TRUE);
    }
}

void ShowTextBox(const NativeControl& native) {
    const auto& box = static_cast<const TextBox&>(*native.control);
    ShowText(native.window, box.Text());
    if (Stale(native, Property::Locked)) {
        ::SendMessageA(native.window, EM_SETREADONLY, box.Locked() ? TRUE : FALSE, 0);
    }
    if (Stale(native, Property::BackColor)) {
        ::InvalidateRect(native.window, nullptr, TRUE);
    }
    if (Stale(native, Property::Selection)) {
        const std::size_t end = box.SelStart() + box.SelLength();
        ::SendMessageA(native.window, EM_SETSEL, box.SelStart(), static_cast<LPARAM>(end));
        ::SendMessageA(native.window, EM_SCROLLCARET, 0, 0);
    }
}

void ShowTick(HWND window, bool ticked) {
    const LRESULT wanted = ticked ? BST_CHECKED : BST_UNCHECKED;
    if (::SendMessageA(window, BM_GETCHECK, 0, 0) != wanted) {
        ::SendMessageA(window, BM_SETCHECK, static_cast<WPARAM>(wanted), 0);
    }
}

void ShowCheckBox(const NativeControl& native) {
    ShowTick(native.window, static_cast<const CheckBox&>(*native.control).Value() == 1);
}

void ShowOptionButton(const NativeControl& native) {
    const auto& button = static_cast<const OptionButton&>(*native.control);
    const bool data = (button.Design().traits & kData) != 0;
    ShowText(native.window, data ? WithoutMnemonic(FittingCaption(button, native.window)) : button.Caption());
    ShowTick(native.window, button.Value());
}

/// Clears the selection in the text field. The system selects a text that comes from the list, and shows the
/// selection although the box does not have the focus.
void Unmark(HWND combo_box) {
    ::SendMessageA(combo_box, CB_SETEDITSEL, 0, 0);
}

void ShowComboBox(const NativeControl& native) {
    const auto& box = static_cast<const ComboBox&>(*native.control);
    if (Stale(native, Property::Items)) {
        ::SendMessageA(native.window, CB_RESETCONTENT, 0, 0);
        for (int index = 0; index < box.ListCount(); ++index) {
            ::SendMessageA(native.window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(box.List(index).c_str()));
        }
    }
    const bool had_focus = ::IsChild(native.window, ::GetFocus()) != 0;
    // In a box with free text an index of -1 would erase the text that the operator is typing.
    const bool from_list = box.IsDropDownList() || box.ListIndex() >= 0;
    if (from_list && ::SendMessageA(native.window, CB_GETCURSEL, 0, 0) != box.ListIndex()) {
        ::SendMessageA(native.window, CB_SETCURSEL, static_cast<WPARAM>(box.ListIndex()), 0);
    }
    if (!box.IsDropDownList()) {
        ShowText(native.window, box.Text());
        if (!had_focus) {
            Unmark(native.window);
        }
    }
}

/// The width of the longest item, in pixels, so that the list can be scrolled to its end.
int WidestItem(const ListBox& box, HWND window) {
    const HDC screen = ::GetDC(window);
    const HGDIOBJ before =
        ::SelectObject(screen, reinterpret_cast<HGDIOBJ>(::SendMessageA(window, WM_GETFONT, 0, 0)));
    int widest = 0;
    for (int index = 0; index < box.ListCount(); ++index) {
        SIZE size{};
        const std::string& text = box.List(index);
        ::GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &size);
        widest = std::max(widest, static_cast<int>(size.cx));
    }
    ::SelectObject(screen, before);
    ::ReleaseDC(window, screen);
    constexpr int kMargin = 6;
    return widest + kMargin;
}

void ShowListBox(const NativeControl& native) {
    const auto& box = static_cast<const ListBox&>(*native.control);
    if (Stale(native, Property::Items)) {
        ::SendMessageA(native.window, WM_SETREDRAW, FALSE, 0);
        ::SendMessageA(native.window, LB_RESETCONTENT, 0, 0);
        for (int index = 0; index < box.ListCount(); ++index) {
            ::SendMessageA(native.window, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(box.List(index).c_str()));
        }
        ::SendMessageA(native.window, LB_SETHORIZONTALEXTENT,
                       static_cast<WPARAM>(WidestItem(box, native.window)), 0);
        ::SendMessageA(native.window, WM_SETREDRAW, TRUE, 0);
        ::InvalidateRect(native.window, nullptr, TRUE);
    }
    if (::SendMessageA(native.window, LB_GETCURSEL, 0, 0) != box.ListIndex()) {
        ::SendMessageA(native.window, LB_SETCURSEL, static_cast<WPARAM>(box.ListIndex()), 0);
    }
}

void ShowListView(const NativeControl& native) {
    const auto& list = static_cast<const ListView&>(*native.control);
    if (Stale(native, Property::ExtendedStyle)) {
        ShowExtendedStyle(native.window, list);
    }
    if (Stale(native, Property::Columns)) {
        ShowColumns(native.window, list);
    }
    if (Stale(native, Property::Rows) || Stale(native, Property::Columns) || Stale(native, Property::Cells)) {
        ShowRows(native.window, list);
    }
    if (Stale(native, Property::ColumnSizes)) {
        SizeColumns(native.window, list);
    }
}

/// The native bar counts in whole numbers; no caller uses others.
void ShowProgressBar(const NativeControl& native) {
    const auto& bar = static_cast<const ProgressBar&>(*native.control);
    ::SendMessageA(native.window, PBM_SETRANGE32, static_cast<WPARAM>(bar.Min()),
                   static_cast<LPARAM>(bar.Max()));
    ::SendMessageA(native.window, PBM_SETPOS, static_cast<WPARAM>(bar.Value()), 0);
}

using ShowFunction = void (*)(const NativeControl&);

ShowFunction ShowFunctionOf(Kind kind) {
    switch (kind) {
    case Kind::Label:
        return ShowLabel;
    case Kind::TextBox:
        return ShowTextBox;
    case Kind::CheckBox:
        return ShowCheckBox;
    case Kind::OptionButton:
        return ShowOptionButton;
    case Kind::ComboBox:
        return ShowComboBox;
    case Kind::ListBox:
        return ShowListBox;
    case Kind::ListView:
        return ShowListView;
    case Kind::ProgressBar:
        return ShowProgressBar;
    case Kind::Form:
    case Kind::Frame:
    case Kind::PictureBox:
    case Kind::CommandButton:
    case Kind::TabControl:
        break;
    }
    return nullptr; // of these kinds only Enabled changes, or NativeForm shows the change
}

} // namespace

void BringInLine(NativeControl& native) {
    if (Stale(native, Property::Enabled)) {
        ::EnableWindow(native.window, native.control->Enabled() ? TRUE : FALSE);
    }
    constexpr std::uint32_t kOwn = ~Bit(Property::Enabled);
    const ShowFunction show = ShowFunctionOf(native.control->Kind());
    if (show != nullptr && (native.stale & kOwn) != 0) {
        show(native);
    }
    native.stale = 0;
}

} // namespace ui

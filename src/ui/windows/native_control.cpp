// Makes and places the windows of controls. native_state.cpp shows their state.
#include "ui/windows/native_control.h"

#include <algorithm>
#include <string>

#include "ui/windows/control_procedures.h"

#include <commctrl.h>

namespace ui {
namespace {

constexpr int kExecutePicture = 2;  // the icon's number among the resources
constexpr int kShownListItems = 12; // rows of a combo box's open list

constexpr DWORD kChild = WS_CHILD | WS_CLIPSIBLINGS;
constexpr DWORD kField = kChild | WS_TABSTOP;

/// The arguments of CreateWindowEx that depend on the kind of a control and on its state.
struct Recipe {
    const char* window_class = "";
    DWORD style = 0;
    DWORD extended_style = 0;
    std::string text;
};

bool IsOneLine(const Control& control) {
    return control.Kind() == Kind::TextBox && (control.Design().traits & kMultiLine) == 0;
}

Recipe FrameRecipe(const Control& control) {
    return {WC_BUTTONA, kChild | WS_CLIPCHILDREN | BS_GROUPBOX, WS_EX_CONTROLPARENT,
            static_cast<const Frame&>(control).Caption()};
}

Recipe PictureBoxRecipe(const Control& /*control*/) {
    return {WC_STATICA, kChild | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, ""};
}

Recipe LabelRecipe(const Control& control) {
    const DWORD mnemonics = (control.Design().traits & kData) != 0 ? DWORD{SS_NOPREFIX} : DWORD{0};
    return {WC_STATICA, kChild | SS_LEFT | mnemonics, 0, static_cast<const Label&>(control).Caption()};
}

Recipe TextBoxRecipe(const Control& control) {
    const auto& box = static_cast<const TextBox&>(control);
    const DWORD locked = box.Locked() ? DWORD{ES_READONLY} : DWORD{0};
    constexpr DWORD kLines = ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL | WS_HSCROLL;
    if (!IsOneLine(control)) {
        // BringInLine sets its text.
        return {WC_EDITA, kField | ES_AUTOHSCROLL | kLines | locked, WS_EX_CLIENTEDGE, ""};
    }
    return {WC_EDITA, kField | ES_AUTOHSCROLL | locked, WS_EX_CLIENTEDGE, box.Text()};
}

Recipe CommandButtonRecipe(const Control& control) {
    const bool picture = (control.Design().traits & kPicture) != 0;
    const DWORD look = picture ? DWORD{BS_ICON} : DWORD{0};
    // The window's text, which is not painted, is for screen readers.
    return {WC_BUTTONA, kField | BS_PUSHBUTTON | look, 0,
            picture ? control.Design().tool_tip : control.Design().caption};
}

Recipe CheckBoxRecipe(const Control& control) {
    return {WC_BUTTONA, kField | BS_AUTOCHECKBOX, 0, control.Design().caption};
}

Recipe OptionButtonRecipe(const Control& control) {
    return {WC_BUTTONA, kField | BS_AUTORADIOBUTTON, 0, static_cast<const OptionButton&>(control).Caption()};
}

Recipe ComboBoxRecipe(const Control& control) {
    const DWORD kind = static_cast<const ComboBox&>(control).IsDropDownList() ? DWORD{CBS_DROPDOWNLIST}
                                                                              : DWORD{CBS_DROPDOWN};
    return {WC_COMBOBOXA, kField | WS_VSCROLL | CBS_AUTOHSCROLL | kind, 0, ""};
}

Recipe ListBoxRecipe(const Control& /*control*/) {
    return {WC_LISTBOXA, kField | WS_VSCROLL | WS_HSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
            WS_EX_CLIENTEDGE, ""};
}

Recipe ListViewRecipe(const Control& /*control*/) {
    return {WC_LISTVIEWA, kField | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
            WS_EX_CLIENTEDGE, ""};
}

Recipe ProgressBarRecipe(const Control& /*control*/) {
    return {PROGRESS_CLASSA, kChild, 0, ""};
}

using RecipeFunction = Recipe (*)(const Control&);

RecipeFunction RecipeOf(Kind kind) {
    switch (kind) {
    case Kind::Frame:
        return FrameRecipe;
    case Kind::PictureBox:
        return PictureBoxRecipe;
    case Kind::Label:
        return LabelRecipe;
    case Kind::TextBox:
        return TextBoxRecipe;
    case Kind::CommandButton:
        return CommandButtonRecipe;
    case Kind::CheckBox:
        return CheckBoxRecipe;
    case Kind::OptionButton:
        return OptionButtonRecipe;
    case Kind::ComboBox:
        return ComboBoxRecipe;
    case Kind::ListBox:
        return ListBoxRecipe;
    case Kind::ListView:
        return ListViewRecipe;
    case Kind::ProgressBar:
        return ProgressBarRecipe;
    case Kind::Form:
    case Kind::TabControl:
        break;
    }
    return nullptr; // both have their own window classes and are made elsewhere
}

/// Leaves the closed box as high as its font requires and centres it vertically in its place: in a higher box
/// the text would stand at the top. The height that is set includes that of the open list below the box.
void PlaceComboBox(HWND window, const RECT& place) {
    RECT own{};
    ::GetWindowRect(window, &own);
    const LONG spare = (place.bottom - place.top) - (own.bottom - own.top);
    const auto row = static_cast<int>(::SendMessageA(window, CB_GETITEMHEIGHT, 0, 0));
    ::SetWindowPos(window, nullptr, place.left, place.top + spare / 2, place.right - place.left,
                   own.bottom - own.top + row * kShownListItems, SWP_NOZORDER | SWP_NOACTIVATE);
}

/// The rectangle for a text box of one line: as high as a combo box with the same font and centred vertically
/// in its place, since in a higher box the text would stand at the top.
RECT PlaceOfLine(RECT place, const DialogFont& font) {
    constexpr LONG kEdges = 8; // pixels above and below the text, together
    const LONG spare = std::max(LONG{0}, place.bottom - place.top - (font.TextHeight() + kEdges));
    place.top += spare / 2;
    place.bottom -= spare - spare / 2;
    return place;
}

void GiveFont(HWND window, const DialogFont& font) {
    ::SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
}

void GivePicture(HWND button) {
    const HANDLE picture =
        ::LoadImageA(::GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kExecutePicture), IMAGE_ICON,
                     ::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON), LR_SHARED);
    ::SendMessageA(button, BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(picture));
}

} // namespace

void MakeNativeControl(NativeControl& native, HWND parent, const RECT& place, DWORD style,
                       const DialogFont& font) {
    const Control& control = *native.control;
    const Recipe recipe = RecipeOf(control.Kind())(control);
    const DWORD disabled = control.Enabled() ? DWORD{0} : DWORD{WS_DISABLED};
    const RECT own = IsOneLine(control) ? PlaceOfLine(place, font) : place;
    native.window = ::CreateWindowExA(
        recipe.extended_style, recipe.window_class, recipe.text.c_str(), recipe.style | disabled | style,
        own.left, own.top, own.right - own.left, own.bottom - own.top, parent,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(control.Id())), ::GetModuleHandleA(nullptr), nullptr);
    // The styles show the first two already; the colours are asked for when the control is painted.
    native.stale &= ~(Bit(Property::Enabled) | Bit(Property::Locked) | Bit(Property::ForeColor) |
                      Bit(Property::BackColor));
    if ((recipe.extended_style & WS_EX_CONTROLPARENT) != 0) {
        MakeContainer(native.window);
    }
    if (control.Kind() == Kind::TextBox) {
        ::SendMessageA(native.window, EM_SETLIMITTEXT, 0, 0); // 0: the largest limit that the control has
    }
    if ((control.Design().traits & kPicture) != 0) {
        GivePicture(native.window);
    }
    if (control.Kind() == Kind::CheckBox || control.Kind() == Kind::OptionButton) {
        DimTickWhileDisabled(native.window);
    }
    GiveFont(native.window, font);
    if (control.Kind() == Kind::ComboBox) {
        PlaceComboBox(native.window, place);
    }
}

void PlaceNativeControl(const NativeControl& native, const RECT& place, const DialogFont& font) {
    GiveFont(native.window, font);
    if (native.control->Kind() == Kind::ComboBox) {
        PlaceComboBox(native.window, place);
        return;
    }
    const RECT own = IsOneLine(*native.control) ? PlaceOfLine(place, font) : place;
    ::SetWindowPos(native.window, nullptr, own.left, own.top, own.right - own.left, own.bottom - own.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

std::string WindowText(HWND window) {
    std::string text(static_cast<std::size_t>(::GetWindowTextLengthA(window)) + 1, '\0');
    const int length = ::GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

COLORREF ToColorRef(Colour colour) {
    constexpr Colour kSystem = 0x80000000;
    return (colour & kSystem) != 0 ? ::GetSysColor(static_cast<int>(colour & ~kSystem)) : COLORREF{colour};
}

HBRUSH SystemBrush(Colour colour) {
    constexpr Colour kSystem = 0x80000000;
    return ::GetSysColorBrush((colour & kSystem) != 0 ? static_cast<int>(colour & ~kSystem) : COLOR_BTNFACE);
}

} // namespace ui

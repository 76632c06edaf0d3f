#include "ui/screen.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "platform/pending_events.h"
#include "platform/windows/desktop.h"
#include "ui/windows/native_form.h"
#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace screen {
namespace {

int shown_dpi = 96; ///< the scale that SetSize has reported to the windows

HWND Of(Part part) {
    if (part == nullptr) {
        throw std::runtime_error("there is no such native control");
    }
    return static_cast<HWND>(part);
}

LRESULT Ask(Part part, UINT message, WPARAM first = 0, LPARAM second = 0) {
    return ::SendMessageA(Of(part), message, first, second);
}

template <class T>
LRESULT Ask(Part part, UINT message, WPARAM first, T* second) {
    return Ask(part, message, first, reinterpret_cast<LPARAM>(second));
}

bool IsComboBox(Part part) {
    return ui_automation::ClassOf(Of(part)) == "ComboBox";
}

Box ToBox(const RECT& rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
            static_cast<int>(rect.bottom)};
}

RECT ClientOf(Part part) {
    RECT client{};
    ::GetClientRect(Of(part), &client);
    return client;
}

HWND HeaderOf(Part list_view) {
    return reinterpret_cast<HWND>(Ask(list_view, LVM_GETHEADER));
}

LONG_PTR StyleOf(Part part) {
    return ::GetWindowLongPtrA(Of(part), GWL_STYLE);
}

/// A caption as it is painted: "&&" is one sign, and a single "&" is not seen.
std::string WithoutMnemonic(const std::string& caption) {
    std::string shown;
    for (std::size_t place = 0; place < caption.size(); ++place) {
        if (caption[place] == '&' && ++place == caption.size()) {
            break;
        }
        shown += caption[place];
    }
    return shown;
}

/// What a control needs beside its caption: the tick, the edges of a button.
int SpaceBesideCaption(ui::Kind kind) {
    constexpr int kTick = 18;
    constexpr int kEdges = 8;
    switch (kind) {
    case ui::Kind::CheckBox:
    case ui::Kind::OptionButton:
        return ::MulDiv(kTick, shown_dpi, 96);
    case ui::Kind::CommandButton:
        return ::MulDiv(kEdges, shown_dpi, 96);
    default:
        return 0;
    }
}

BOOL CALLBACK TakeShownTip(HWND window, LPARAM found) {
    if (ui_automation::ClassOf(window) == TOOLTIPS_CLASSA && ::IsWindowVisible(window) != 0) {
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    return TRUE;
}

HWND ShownTip() {
    HWND tip = nullptr;
    ::EnumThreadWindows(::GetCurrentThreadId(), TakeShownTip, reinterpret_cast<LPARAM>(&tip));
    return tip;
}

WORD KeyCode(Key key) {
    static const std::map<Key, WORD> codes = {
        {Key::Tab, VK_TAB},   {Key::Enter, VK_RETURN}, {Key::Escape, VK_ESCAPE}, {Key::Space, VK_SPACE},
        {Key::Home, VK_HOME}, {Key::End, VK_END},      {Key::Left, VK_LEFT},     {Key::Right, VK_RIGHT},
        {Key::Up, VK_UP},     {Key::Down, VK_DOWN},    {Key::PageUp, VK_PRIOR},  {Key::PageDown, VK_NEXT},
        {Key::F4, VK_F4},     {Key::C, WORD{'C'}},     {Key::P, WORD{'P'}},      {Key::R, WORD{'R'}},
        {Key::U, WORD{'U'}},
    };
    return codes.at(key);
}

WORD KeyCode(Held held) {
    static const std::map<Held, WORD> codes = {
        {Held::Control, VK_CONTROL}, {Held::Shift, VK_SHIFT}, {Held::Alt, VK_MENU}};
    return codes.at(held);
}

// --- Meanwhile: a timer without a window, which every loop of this thread serves

std::function<bool()> meanwhile;
UINT_PTR meanwhile_timer = 0;
bool in_meanwhile = false; ///< a step may run events itself

void CALLBACK RunMeanwhile(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/) {
    if (!meanwhile || std::exchange(in_meanwhile, true)) {
        return;
    }
    if (meanwhile()) {
        ::KillTimer(nullptr, timer);
    }
    in_meanwhile = false;
}

} // namespace

bool IsThere() {
    return platform::DesktopIsVisible();
}

bool WaitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    return ui_automation::WaitFor(condition, limit);
}

Meanwhile::Meanwhile(std::function<bool()> step) {
    meanwhile = std::move(step);
    meanwhile_timer = ::SetTimer(nullptr, 0, 10, RunMeanwhile);
}

Meanwhile::~Meanwhile() {
    ::KillTimer(nullptr, meanwhile_timer);
    meanwhile = nullptr;
}

// --- finding

Part WindowOf(const ui::Form& form) {
    return ui::NativeForm::HandleOf(form);
}

Part Find(const ui::Form& form, const ui::Control& control) {
    Part window = WindowOf(form);
    return window == nullptr ? nullptr : ui_automation::Child(Of(window), control.Id());
}

Part ParentOf(Part part) {
    return ::GetParent(Of(part));
}

const ui::Control* Focused(const ui::Form& form) {
    HWND focus = ::GetFocus();
    if (focus == nullptr || ::GetAncestor(focus, GA_ROOT) != WindowOf(form)) {
        return nullptr;
    }
    if (ui_automation::ClassOf(::GetParent(focus)) == "ComboBox") {
        focus = ::GetParent(focus); // its text field has an identifier that is another's on the form
    }
    for (const auto& control : form.Controls()) {
        if (control->Id() == ::GetDlgCtrlID(focus)) {
            return control.get();
        }
    }
    return nullptr;
}

// --- seeing

bool IsOfKind(Part part, ui::Kind kind) {
    static const std::map<ui::Kind, std::string> classes = {
        {ui::Kind::Frame, "Button"},
        {ui::Kind::PictureBox, "Static"},
        {ui::Kind::Label, "Static"},
        {ui::Kind::TextBox, "Edit"},
        {ui::Kind::CommandButton, "Button"},
        {ui::Kind::CheckBox, "Button"},
        {ui::Kind::OptionButton, "Button"},
        {ui::Kind::ComboBox, "ComboBox"},
        {ui::Kind::ListBox, "ListBox"},
        {ui::Kind::ListView, "SysListView32"},
        {ui::Kind::ProgressBar, "msctls_progress32"},
        {ui::Kind::TabControl, "SysTabControl32"},
    };
    return ui_automation::ClassOf(Of(part)) == classes.at(kind);
}

bool IsShown(Part part) {
    return part != nullptr && ::IsWindowVisible(Of(part)) != 0;
}

bool IsEnabled(Part part) {
    return ::IsWindowEnabled(Of(part)) != 0;
}

std::string Text(Part part) {
    return ui_automation::Text(Of(part));
}

std::string ShownCaption(Part part) {
    const bool plain = ui_automation::ClassOf(Of(part)) == "Static" && (StyleOf(part) & SS_NOPREFIX) != 0;
    return plain ? Text(part) : WithoutMnemonic(Text(part));
}

std::string Ellipsis() {
    return "...";
}

/// The toolkit counts characters.
std::size_t EllipsisOffset() {
    return 1;
}

bool IsTicked(Part part) {
    return Ask(part, BM_GETCHECK) == BST_CHECKED;
}

bool IsReadOnly(Part part) {
    return (StyleOf(part) & ES_READONLY) != 0;
}

std::pair<int, int> Selection(Part part) {
    DWORD begin = 0;
    DWORD end = 0;
    ::SendMessageA(Of(part), IsComboBox(part) ? CB_GETEDITSEL : EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                   reinterpret_cast<LPARAM>(&end));
    return {static_cast<int>(begin), static_cast<int>(end)};
}

int ItemCount(Part part) {
    return static_cast<int>(Ask(part, IsComboBox(part) ? CB_GETCOUNT : LB_GETCOUNT));
}

int ChosenItem(Part part) {
    return static_cast<int>(Ask(part, IsComboBox(part) ? CB_GETCURSEL : LB_GETCURSEL));
}

bool IsDroppedDown(Part combo_box) {
    return Ask(combo_box, CB_GETDROPPEDSTATE) != 0;
}

int BarMin(Part bar) {
    return static_cast<int>(Ask(bar, PBM_GETRANGE, TRUE));
}

int BarMax(Part bar) {
    return static_cast<int>(Ask(bar, PBM_GETRANGE, FALSE));
}

int BarValue(Part bar) {
    return static_cast<int>(Ask(bar, PBM_GETPOS));
}

int ShownTab(Part tabs) {
    return static_cast<int>(Ask(tabs, TCM_GETCURSEL));
}

int RowCount(Part list_view) {
    return static_cast<int>(Ask(list_view, LVM_GETITEMCOUNT));
}

int ColumnCount(Part list_view) {
    return static_cast<int>(Ask(HeaderOf(list_view), HDM_GETITEMCOUNT));
}

std::string Cell(Part list_view, int row, int column) {
    char text[300] = "";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    Ask(list_view, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), &item);
    return text;
}

int ColumnWidth(Part list_view, int column) {
    return static_cast<int>(Ask(list_view, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

int ViewWidth(Part list_view) {
    return ToBox(ClientOf(list_view)).Width();
}

/// The control paints no more of a cell.
std::size_t LongestCell() {
    return 259;
}

bool HasGridAndFullRows(Part list_view) {
    constexpr LRESULT kBoth = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES;
    return (Ask(list_view, LVM_GETEXTENDEDLISTVIEWSTYLE) & kBoth) == kBoth;
}

int WidthOfText(Part part, const std::string& text) {
    HWND window = Of(part);
    const HDC paper = ::GetDC(window);
    const HGDIOBJ before = ::SelectObject(paper, reinterpret_cast<HGDIOBJ>(Ask(part, WM_GETFONT)));
    RECT place{};
    ::DrawTextA(paper, text.c_str(), -1, &place, DT_CALCRECT | DT_SINGLELINE);
    ::SelectObject(paper, before);
    ::ReleaseDC(window, paper);
    return ToBox(place).Width();
}

int RoomForCaption(Part part, ui::Kind kind) {
    return ToBox(ClientOf(part)).Width() - SpaceBesideCaption(kind);
}

Box PlaceIn(Part part, Part other) {
    return ToBox(ui_automation::PlaceIn(Of(part), Of(other)));
}

Box FrameOf(Part window) {
    RECT frame{};
    ::GetWindowRect(Of(window), &frame);
    return ToBox(frame);
}

Box Room(Part part) {
    return ToBox(ClientOf(part));
}

Box TabPlace(Part tabs, int tab) {
    RECT place{};
    Ask(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(tab), &place);
    return ToBox(place);
}

Box ItemPlace(Part list_box, int item) {
    RECT place{};
    Ask(list_box, LB_GETITEMRECT, static_cast<WPARAM>(item), &place);
    return ToBox(place);
}

Pointer PointerOver(Part part) {
    const Box place = FrameOf(part);
    const POINT middle{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    ::SetCursorPos(middle.x - 1, middle.y);
    platform::RunPendingEvents();
    ::SetCursorPos(middle.x, middle.y);
    WaitFor([&middle] {
        POINT now{};
        ::GetCursorPos(&now);
        return now.x == middle.x && now.y == middle.y;
    });
    platform::RunPendingEvents();
    const HCURSOR pointer = ::GetCursor();
    const std::pair<LPCSTR, Pointer> known[] = {
        {IDC_ARROW, Pointer::Arrow}, {IDC_IBEAM, Pointer::Beam}, {IDC_WAIT, Pointer::Hourglass}};
    for (const auto& [name, shape] : known) {
        if (pointer == ::LoadCursorA(nullptr, name)) {
            return shape;
        }
    }
    return Pointer::Other;
}

std::string ToolTip() {
    const HWND tip = ShownTip();
    return tip == nullptr ? "" : ui_automation::Text(tip);
}

int ToolTipWidth() {
    const HWND tip = ShownTip();
    return tip == nullptr ? 0 : FrameOf(tip).Width();
}

/// Without the system menu no icon is shown.
bool HasIcon(Part window) {
    return ::GetClassLongPtrA(Of(window), GCLP_HICON) != 0 &&
           ::GetClassLongPtrA(Of(window), GCLP_HICONSM) != 0 && (StyleOf(window) & WS_SYSMENU) != 0;
}

bool HasPicture(Part button) {
    return Ask(button, BM_GETIMAGE, IMAGE_ICON) != 0;
}

/// The system locks one window at a time, and refuses a second one.
bool PaintingIsLocked(Part window) {
    const bool taken = ::LockWindowUpdate(Of(window)) == 0;
    if (!taken) {
        ::LockWindowUpdate(nullptr);
    }
    return taken;
}

namespace {

Colour ToColour(COLORREF colour) {
    return Colour{GetRValue(colour)} << 16U | Colour{GetGValue(colour)} << 8U | GetBValue(colour);
}

} // namespace

Colour ColourOf(Look look) {
    static const std::map<Look, int> indices = {{Look::Face, COLOR_BTNFACE},
                                                {Look::TextBackground, COLOR_WINDOW},
                                                {Look::DisabledText, COLOR_GRAYTEXT}};
    return ToColour(::GetSysColor(indices.at(look)));
}

std::vector<Colour> Pixels(Part part, const Box& box) {
    HWND window = Of(part);
    ::UpdateWindow(window);
    const HDC paper = ::GetDC(window);
    std::vector<Colour> pixels;
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x) {
            pixels.push_back(ToColour(::GetPixel(paper, x, y)));
        }
    }
    ::ReleaseDC(window, paper);
    return pixels;
}

bool TakePicture(Part window, const std::string& path) {
    ::RedrawWindow(Of(window), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_ERASE);
    return ui_automation::TakePicture(Of(window), path + ".bmp");
}

std::vector<int> Sizes() {
    return {96, 120, 144};
}

/// Sends the message that a window gets when it is moved to a monitor with another scale.
void SetSize(Part window, int size) {
    constexpr UINT kDpiChanged = 0x02E0; // WM_DPICHANGED
    shown_dpi = size;
    RECT place{20, 40, 0, 0};
    Ask(window, kDpiChanged, static_cast<WPARAM>(MAKELONG(size, size)), &place);
}

Box WorkArea() {
    RECT area{};
    ::SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    return ToBox(area);
}

// --- dialogs of the system

Part DialogInFront() {
    HWND dialog = nullptr;
    while ((dialog = ::FindWindowExA(nullptr, dialog, "#32770", nullptr)) != nullptr) {
        DWORD process = 0;
        ::GetWindowThreadProcessId(dialog, &process);
        if (process == ::GetCurrentProcessId() && ::IsWindowVisible(dialog) != 0) {
            return dialog;
        }
    }
    return nullptr;
}

namespace {

std::vector<HWND> ShownChildren(Part dialog, const std::string& window_class) {
    std::vector<HWND> children;
    for (HWND child = ::GetWindow(Of(dialog), GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        if (ui_automation::ClassOf(child) == window_class && (StyleOf(child) & WS_VISIBLE) != 0) {
            children.push_back(child);
        }
    }
    return children;
}

} // namespace

BoxIcon IconOf(Part message_box) {
    for (HWND child : ShownChildren(message_box, "Static")) {
        const auto picture = reinterpret_cast<HICON>(Ask(child, STM_GETICON));
        if (picture != nullptr) {
            return picture == ::LoadIconA(nullptr, IDI_EXCLAMATION) ? BoxIcon::Exclamation
                   : picture == ::LoadIconA(nullptr, IDI_ERROR)     ? BoxIcon::Critical
                                                                    : BoxIcon::Other;
        }
    }
    return BoxIcon::None;
}

std::string MessageOf(Part message_box) {
    constexpr int kMessage = 0xFFFF; // the system's identifier of the text
    return ui_automation::Text(ui_automation::Child(Of(message_box), kMessage));
}

/// The dialog fills its tree after it has come up.
bool HasChosen(Part dialog, const std::string& name) {
    HWND tree = nullptr;
    ::EnumChildWindows(
        Of(dialog),
        [](HWND child, LPARAM found) -> BOOL {
            if (ui_automation::ClassOf(child) != WC_TREEVIEWA) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(found) = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&tree));
    char text[300] = "";
    TVITEMA item{};
    item.mask = TVIF_TEXT;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    item.hItem =
        tree == nullptr ? nullptr : reinterpret_cast<HTREEITEM>(Ask(tree, TVM_GETNEXTITEM, TVGN_CARET));
    return item.hItem != nullptr && Ask(tree, TVM_GETITEMA, 0, &item) != 0 && text == name;
}

bool Says(Part dialog, const std::string& text) {
    const std::vector<HWND> texts = ShownChildren(dialog, "Static");
    return Text(dialog) == text || std::any_of(texts.begin(), texts.end(), [&text](HWND part) {
               return ui_automation::Text(part) == text;
           });
}

std::vector<std::string> ButtonsOf(Part dialog) {
    std::vector<std::string> captions;
    for (HWND button : ShownChildren(dialog, "Button")) {
        captions.push_back(WithoutMnemonic(ui_automation::Text(button)));
    }
    return captions;
}

/// A message box with only the button OK accepts a cancel too.
void Dismiss(Part dialog) {
    ::PostMessageA(Of(dialog), WM_COMMAND, IDCANCEL, 0);
}

// --- working

bool Activate(Part window) {
    return ui_automation::Activate(Of(window));
}

void Click(Part part) {
    ui_automation::Click(Of(part));
}

void ClickAt(Part part, int x, int y) {
    ui_automation::ClickAt(Of(part), x, y);
}

Spot MiddleOf(Part part) {
    const Box place = FrameOf(part);
    return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

void ClickAt(Spot spot) {
    ui_automation::ClickAt(::GetDesktopWindow(), spot.x, spot.y);
}

void Type(const std::string& text) {
    ui_automation::Type(text);
}

void Press(Key key, std::initializer_list<Held> held) {
    std::vector<WORD> codes;
    for (const Held one : held) {
        codes.push_back(KeyCode(one));
    }
    ui_automation::Press(KeyCode(key), codes);
}

void Hold(Key key, int repeats) {
    ui_automation::Hold(KeyCode(key), repeats);
}

/// F24 does nothing, and its toggle changes when this thread has taken it from its queue.
bool InputArrived() {
    const int before = ::GetKeyState(VK_F24) & 1;
    ui_automation::Press(VK_F24);
    return WaitFor([before] { return (::GetKeyState(VK_F24) & 1) != before; });
}

void CloseByFrame(Part window) {
    ::PostMessageA(Of(window), WM_CLOSE, 0, 0);
}

} // namespace screen

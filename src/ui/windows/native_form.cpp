// Makes the window of a form and its native controls, and places them for the monitor's DPI.
#include "ui/windows/native_form.h"

#include <algorithm>

#include "platform/windows/message_queue.h"

#include <commctrl.h>

namespace ui {
namespace {

constexpr char kClassName[] = "KVForm";
constexpr int kProgramIcon = 1;    // the icon's number among the resources
constexpr int kToolTipWidth = 480; // pixels at 96 DPI
constexpr int kTabPadding = 8;     // pixels at 96 DPI

constexpr DWORD kMainStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
constexpr DWORD kMainExtendedStyle = WS_EX_CONTROLPARENT;
constexpr DWORD kDialogExtendedStyle = WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME;
constexpr DWORD kDialogStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;

HICON ProgramIcon(int width, int height) {
    return static_cast<HICON>(::LoadImageA(::GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kProgramIcon),
                                           IMAGE_ICON, width, height, LR_SHARED));
}

void RegisterFormClass(WNDPROC procedure) {
    WNDCLASSEXA form_class{};
    form_class.cbSize = sizeof form_class;
    form_class.lpfnWndProc = procedure;
    form_class.cbWndExtra = DLGWINDOWEXTRA; // where DefDlgProc stores the focus and the default button
    form_class.hInstance = ::GetModuleHandleA(nullptr);
    form_class.hIcon = ProgramIcon(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON));
    form_class.hIconSm = ProgramIcon(::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON));
    form_class.hCursor = ::LoadCursorA(nullptr, IDC_ARROW);
    form_class.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
    form_class.lpszClassName = kClassName;
    ::RegisterClassExA(&form_class); // a second time it fails and does no harm
}

void LoadCommonControls() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    ::InitCommonControlsEx(&controls);
}

/// The part of the window's monitor that the taskbar does not cover.
RECT WorkArea(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoA(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

std::vector<std::string> Captions(const TabControl& tabs) {
    std::vector<std::string> captions;
    for (int tab = 0; tab < tabs.Tabs(); ++tab) {
        captions.emplace_back(tabs.TabCaption(tab));
    }
    return captions;
}

/// A control's upper left corner on the form, in twips. Edges are scaled, not sizes, so controls that touch
/// at one scale touch at every scale.
POINT CornerOf(const Control* control) {
    POINT corner{0, 0};
    for (; control != nullptr; control = control->Parent()) {
        corner.x += control->Design().place.left;
        corner.y += control->Design().place.top;
    }
    return corner;
}

/// The page of a tab control that a control is or lies on; null for a control outside the tabs.
const Control* PageOf(const Control& control) {
    for (const Control* part = &control; part->Parent() != nullptr; part = part->Parent()) {
        if (part->Parent()->Kind() == Kind::TabControl) {
            return part;
        }
    }
    return nullptr;
}

/// Moves the control to the beginning (HWND_TOP) or the end (HWND_BOTTOM) of the order of the Tab key.
void MoveInOrder(HWND control, HWND where) {
    ::SetWindowPos(control, where, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

} // namespace

NativeForm::NativeForm(Form& form, HWND owner)
    : form_(form),
      window_(MakeFrame(form, owner)),
      dpi_(DpiOf(owner == nullptr ? window_ : owner)),
      font_(dpi_) {
    platform::SetMessageFilter(Filter);
    All().push_back(this);
    MakeControls();
    FitClient();
    CentreOn(owner);
    form_.Attach(this);
}

NativeForm::~NativeForm() {
    form_.Attach(nullptr);
    showing_ = true; // notifications of controls that are being destroyed are not reported
    ::DestroyWindow(window_);
    std::erase(All(), this);
}

std::vector<NativeForm*>& NativeForm::All() {
    static std::vector<NativeForm*> all;
    return all;
}

HWND NativeForm::HandleOf(const Form& form) {
    for (const NativeForm* native : All()) {
        if (&native->form_ == &form) {
            return native->window_;
        }
    }
    return nullptr;
}

NativeForm* NativeForm::OfWindow(HWND window) {
    for (NativeForm* native : All()) {
        if (native->window_ == window) {
            return native;
        }
    }
    return nullptr;
}

HWND NativeForm::MakeFrame(const Form& form, HWND owner) {
    LoadCommonControls();
    RegisterFormClass(Procedure);
    const bool dialog = owner != nullptr;
    const DWORD style = dialog ? kDialogStyle : kMainStyle;
    const DWORD extended_style = dialog ? kDialogExtendedStyle : kMainExtendedStyle;
    const int dpi = dialog ? DpiOf(owner) : SystemDpi();
    RECT frame{0, 0, platform::TwipsToPixels(form.Design().client_width, dpi),
               platform::TwipsToPixels(form.Design().client_height, dpi)};
    ::AdjustWindowRectEx(&frame, style, FALSE, extended_style);
    return ::CreateWindowExA(extended_style, kClassName, form.Caption().c_str(), style, CW_USEDEFAULT,
                             CW_USEDEFAULT, frame.right - frame.left, frame.bottom - frame.top, owner,
                             nullptr, ::GetModuleHandleA(nullptr), nullptr);
}

/// Makes all native controls except those on the pages of a tab control.
void NativeForm::MakeControls() {
    showing_ = true;
    natives_.reserve(form_.Controls().size());
    for (const auto& control : form_.Controls()) {
        NativeControl native;
        native.control = control.get();
        native.stale = ~Bit(Property::Selection);
        natives_.push_back(native);
    }
    for (NativeControl& native : natives_) {
        if (native.control->Kind() == Kind::TabControl) {
            MakeTabs(native);
        } else if (PageOf(*native.control) == nullptr) {
            Make(native);
        }
    }
    if (tabs_) {
        // A window in front is earlier in the order of the Tab key. The pages are in front of the tab
        // control, so they come first and it comes last; the order starts again after the last.
        MoveInOrder(tabs_->Window(), HWND_BOTTOM);
    }
    showing_ = false;
}

/// Makes the page that is to be shown and the controls on it, unless they exist. A window spends most of its
/// start on making controls, so a page is made only when it is first shown.
void NativeForm::MakePage() {
    if (!tabs_) {
        return;
    }
    NativeControl& tabs = natives_[static_cast<std::size_t>(tabs_index_)];
    const int shown = static_cast<const TabControl*>(tabs.control)->Tab();
    bool made = false;
    for (NativeControl& native : natives_) {
        const Control* page = PageOf(*native.control);
        if (native.window == nullptr && page != nullptr && page->Index() == shown) {
            Make(native);
            made = true;
        }
    }
    if (made) {
        tabs.stale |= Bit(Property::Tab);
    }
}

void NativeForm::Make(NativeControl& native) {
    const Control& control = *native.control;
    const bool is_page = control.Parent() != nullptr && control.Parent()->Kind() == Kind::TabControl;
    const DWORD group = BeginsGroup(static_cast<std::size_t>(&native - natives_.data())) ? WS_GROUP : 0;
    const DWORD visible = is_page ? 0 : WS_VISIBLE; // a page is hidden until everything on it is up to date
    MakeNativeControl(native, ParentOf(control), PlaceOf(control), group | visible, font_);
    if (is_page) {
        MoveInOrder(native.window, HWND_TOP);
    }
    if (tool_tips_ != nullptr) {
        AddToolTip(native);
    }
}

void NativeForm::MakeTabs(NativeControl& native) {
    const auto& control = static_cast<const TabControl&>(*native.control);
    tabs_index_ = static_cast<int>(&native - natives_.data());
    tabs_ = std::make_unique<TabStrip>(ParentOf(control), control.Id(), Captions(control));
    native.window = tabs_->Window();
    Settle(native);
}

/// The native parent of a page is the form's window: the Tab key would not reach a tab control that is the
/// parent of others.
HWND NativeForm::ParentOf(const Control& control) const {
    const Control* parent = control.Parent();
    if (parent == nullptr || parent->Kind() == Kind::TabControl) {
        return window_;
    }
    return natives_.at(static_cast<std::size_t>(parent->Id() - form_.Controls().front()->Id())).window;
}

/// True if the control is the first of a group, within which the arrow keys move. Adjacent option buttons
/// with the same parent are a group; every other control is a group of its own.
bool NativeForm::BeginsGroup(std::size_t index) const {
    const Control& control = *natives_[index].control;
    if (index == 0 || control.Kind() != Kind::OptionButton) {
        return true;
    }
    const Control& before = *natives_[index - 1].control;
    return before.Kind() != Kind::OptionButton || before.Parent() != control.Parent();
}

void NativeForm::MakeToolTips() {
    tool_tips_ = ::CreateWindowExA(
        WS_EX_TOPMOST, TOOLTIPS_CLASSA, "", WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, window_, nullptr, ::GetModuleHandleA(nullptr), nullptr);
    ScaleToolTips();
    for (const NativeControl& native : natives_) {
        if (native.window != nullptr) {
            AddToolTip(native);
        }
    }
}

void NativeForm::ScaleToolTips() const {
    ::SendMessageA(tool_tips_, TTM_SETMAXTIPWIDTH, 0, ::MulDiv(kToolTipWidth, dpi_, kDesignDpi));
}

void NativeForm::AddToolTip(const NativeControl& native) {
    const bool may_be_cut =
        native.control->Kind() == Kind::OptionButton && (native.control->Design().traits & kData) != 0;
    std::string text = native.control->Design().tool_tip;
    if (text.empty() && !may_be_cut) {
        return;
    }
    TTTOOLINFOA tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = window_;
    tool.uId = reinterpret_cast<UINT_PTR>(native.window);
    tool.lpszText = may_be_cut ? LPSTR_TEXTCALLBACKA : text.data(); // see GiveToolTip
    ::SendMessageA(tool_tips_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

RECT NativeForm::PlaceOf(const Control& control) const {
    const bool on_form = ParentOf(control) == window_;
    const POINT origin = CornerOf(control.Parent());
    const POINT native_origin = on_form ? POINT{0, 0} : origin;
    const LONG left = platform::TwipsToPixels(native_origin.x, dpi_);
    const LONG top = platform::TwipsToPixels(native_origin.y, dpi_);
    const Place& design = control.Design().place;
    return {platform::TwipsToPixels(origin.x + design.left, dpi_) - left,
            platform::TwipsToPixels(origin.y + design.top, dpi_) - top,
            platform::TwipsToPixels(origin.x + design.left + design.width, dpi_) - left,
            platform::TwipsToPixels(origin.y + design.top + design.height, dpi_) - top};
}

/// Gives an existing native control its font and its place.
void NativeForm::Settle(const NativeControl& native) {
    if (native.control->Kind() == Kind::TabControl) {
        const int padding = ::MulDiv(kTabPadding, dpi_, kDesignDpi);
        tabs_->Pad(padding, padding / 2);
    }
    PlaceNativeControl(native, PlaceOf(*native.control), font_);
}

void NativeForm::LayOut(int dpi) {
    DialogFont before(dpi);
    std::swap(font_, before); // the old font must exist until no control uses it
    dpi_ = dpi;
    for (NativeControl& native : natives_) {
        if (native.window != nullptr) {
            Settle(native);
            native.stale |= Bit(Property::Caption); // a different part of a long caption fits
        }
    }
    BringAllInLine();
    if (tool_tips_ != nullptr) {
        ScaleToolTips();
    }
    FitClient();
}

/// Gives the window the size at which its client area has the form's size. How thick the frame is depends on
/// the monitor; so the client area is set, measured, and set again.
void NativeForm::FitClient() {
    const int width = platform::TwipsToPixels(form_.Design().client_width, dpi_);
    const int height = platform::TwipsToPixels(form_.Design().client_height, dpi_);
    for (int time = 0; time < 2; ++time) {
        RECT frame{};
        RECT client{};
        ::GetWindowRect(window_, &frame);
        ::GetClientRect(window_, &client);
        if (client.right == width && client.bottom == height) {
            return;
        }
        ::SetWindowPos(window_, nullptr, 0, 0, frame.right - frame.left + width - client.right,
                       frame.bottom - frame.top + height - client.bottom,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

/// Centres the window on its owner, or on the screen if it has none, wholly on the screen if it fits.
void NativeForm::CentreOn(HWND owner) {
    const RECT work = WorkArea(owner == nullptr ? window_ : owner);
    RECT middle = work;
    if (owner != nullptr) {
        ::GetWindowRect(owner, &middle);
    }
    RECT own{};
    ::GetWindowRect(window_, &own);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    const LONG left =
        std::max(work.left, std::min((middle.left + middle.right - width) / 2, work.right - width));
    const LONG top =
        std::max(work.top, std::min((middle.top + middle.bottom - height) / 2, work.bottom - height));
    ::SetWindowPos(window_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace ui

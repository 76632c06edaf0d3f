#include "ui/windows/native_form.h"

#include <algorithm>

#include "platform/windows/message_queue.h"

#include <commctrl.h>

namespace ui {
namespace {

constexpr char kClassName[] = "KVForm";
constexpr int kProgramIcon = 1; // the icon's number among the resources
constexpr int kToolTipWidth = 480;
constexpr int kTabPadding = 8;

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
    form_class.cbWndExtra = DLGWINDOWEXTRA; // DefDlgProc keeps the focus and the default button there
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

/// The part of the screen that the taskbar leaves, of the monitor that the window is on.
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

/// A control's upper left corner on the form, in twips. Places are scaled as edges on the form, not as sizes:
/// what touches at one scale touches at all.
POINT CornerOf(const Control* control) {
    POINT corner{0, 0};
    for (; control != nullptr; control = control->Parent()) {
        corner.x += control->Design().place.left;
        corner.y += control->Design().place.top;
    }
    return corner;
}

} // namespace

NativeForm::NativeForm(Form& form, HWND owner)
    : form_(form), font_(owner == nullptr ? SystemDpi() : DpiOf(owner)) {
    LoadCommonControls();
    RegisterFormClass(Procedure);
    platform::SetMessageFilter(Filter);
    MakeFrame(owner);
    All().push_back(this);
    MakeControls();
    LayOut(DpiOf(owner == nullptr ? window_ : owner));
    CentreOn(owner);
    form_.Attach(this);
    BringAllInLine();
    AddToolTips();
}

NativeForm::~NativeForm() {
    form_.Attach(nullptr);
    showing_ = true; // what the controls tell at their end is no news
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

void NativeForm::MakeFrame(HWND owner) {
    const bool dialog = owner != nullptr;
    window_ = ::CreateWindowExA(dialog ? kDialogExtendedStyle : kMainExtendedStyle, kClassName,
                                form_.Caption().c_str(), dialog ? kDialogStyle : kMainStyle, CW_USEDEFAULT,
                                CW_USEDEFAULT, 0, 0, owner, nullptr, ::GetModuleHandleA(nullptr), nullptr);
}

void NativeForm::MakeControls() {
    natives_.reserve(form_.Controls().size());
    for (const auto& control : form_.Controls()) {
        NativeControl native;
        native.control = control.get();
        native.window = MakeControl(*control);
        native.stale = ~Bit(Property::Selection);
        natives_.push_back(native);
    }
    for (std::size_t index = 0; index < natives_.size(); ++index) {
        if (BeginsGroup(index)) {
            const LONG_PTR style = ::GetWindowLongPtrA(natives_[index].window, GWL_STYLE);
            ::SetWindowLongPtrA(natives_[index].window, GWL_STYLE, style | WS_GROUP);
        }
    }
    if (tabs_) {
        // The pages lie on the tab control, so it is the last in the order of the Tab key; that order is a
        // ring, and it comes before its pages.
        ::SetWindowPos(tabs_->Window(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

HWND NativeForm::MakeControl(Control& control) {
    const HWND parent = ParentOf(control);
    if (control.Kind() != Kind::TabControl) {
        return MakeNativeControl(control, parent);
    }
    tabs_index_ = static_cast<int>(natives_.size());
    tabs_ = std::make_unique<TabStrip>(parent, control.Id(), Captions(static_cast<TabControl&>(control)));
    return tabs_->Window();
}

/// A page of the tab control is native to the form: a tab control that is the parent of others would not
/// itself be reached by the Tab key.
HWND NativeForm::ParentOf(const Control& control) const {
    const Control* parent = control.Parent();
    if (parent == nullptr || parent->Kind() == Kind::TabControl) {
        return window_;
    }
    return natives_.at(static_cast<std::size_t>(parent->Id() - form_.Controls().front()->Id())).window;
}

/// The arrow keys walk within a group. Option buttons of one name that stand together are one; everything
/// else stands for itself.
bool NativeForm::BeginsGroup(std::size_t index) const {
    const Control& control = *natives_[index].control;
    if (index == 0 || control.Kind() != Kind::OptionButton) {
        return true;
    }
    const Control& before = *natives_[index - 1].control;
    return before.Kind() != Kind::OptionButton || before.Parent() != control.Parent();
}

void NativeForm::AddToolTips() {
    tool_tips_ = ::CreateWindowExA(
        WS_EX_TOPMOST, TOOLTIPS_CLASSA, "", WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, window_, nullptr, ::GetModuleHandleA(nullptr), nullptr);
    ::SendMessageA(tool_tips_, TTM_SETMAXTIPWIDTH, 0, kToolTipWidth);
    for (const NativeControl& native : natives_) {
        std::string text = native.control->Design().tool_tip;
        if (text.empty()) {
            continue;
        }
        TTTOOLINFOA tool{};
        tool.cbSize = sizeof tool;
        tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
        tool.hwnd = window_;
        tool.uId = reinterpret_cast<UINT_PTR>(native.window);
        tool.lpszText = text.data();
        ::SendMessageA(tool_tips_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

RECT NativeForm::PlaceOf(const Control& control, int dpi) const {
    const bool on_form = ParentOf(control) == window_;
    const POINT origin = CornerOf(control.Parent());
    const POINT native_origin = on_form ? POINT{0, 0} : origin;
    const LONG left = Scaled(native_origin.x, dpi);
    const LONG top = Scaled(native_origin.y, dpi);
    const Place& design = control.Design().place;
    return {Scaled(origin.x + design.left, dpi) - left, Scaled(origin.y + design.top, dpi) - top,
            Scaled(origin.x + design.left + design.width, dpi) - left,
            Scaled(origin.y + design.top + design.height, dpi) - top};
}

void NativeForm::LayOut(int dpi) {
    DialogFont font(dpi);
    if (tabs_) {
        tabs_->Pad(::MulDiv(kTabPadding, dpi, kDesignDpi), ::MulDiv(kTabPadding, dpi, kDesignDpi) / 2);
    }
    for (const NativeControl& native : natives_) {
        ::SendMessageA(native.window, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
        PlaceNativeControl(native, PlaceOf(*native.control, dpi));
    }
    font_ = std::move(font); // the old one is let go only now that no control uses it
    FitClient(Scaled(form_.Design().client_width, dpi), Scaled(form_.Design().client_height, dpi));
}

/// How thick a frame is depends on the monitor; so the client area is set, measured, and set again.
void NativeForm::FitClient(int width, int height) {
    for (int time = 0; time < 2; ++time) {
        RECT frame{};
        RECT client{};
        ::GetWindowRect(window_, &frame);
        ::GetClientRect(window_, &client);
        ::SetWindowPos(window_, nullptr, 0, 0, frame.right - frame.left + width - client.right,
                       frame.bottom - frame.top + height - client.bottom,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

/// On the owner, or in the middle of the screen; wholly on the screen where it fits.
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

// The events of a form's window: shows changes of the form, and reports the operator's acts to the form.
#include <algorithm>

#include "platform/pending_events.h"
#include "platform/windows/message_queue.h"
#include "ui/operator.h"
#include "ui/windows/native_form.h"
#include "ui/windows/native_list_view.h"
#include "ui/windows/shown_caption.h"

namespace ui {
namespace {

/// The message that updates the window. It is in the queue while something is not shown yet. Posted messages
/// are delivered before input and painting.
constexpr UINT kBringInLine = WM_APP;
constexpr UINT kDpiChanged = 0x02E0; // WM_DPICHANGED, which headers for Windows 7 do not have

bool IsPressed(int key) {
    return ::GetKeyState(key) < 0;
}

bool IsInput(const MSG& message) {
    return (message.message >= WM_MOUSEFIRST && message.message <= WM_MOUSELAST) ||
           (message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST);
}

/// When the message arrived. The system counts in steps of up to 16 ms, so the result may be wrong by as
/// much.
InputClock::time_point ArrivalOf(const MSG& message) {
    const auto age = static_cast<std::int32_t>(::GetTickCount() - message.time);
    return InputClock::now() - std::chrono::milliseconds(std::max(age, 0));
}

/// True if the message is a repeat of a key that is held down.
bool IsRepeat(const MSG& message) {
    constexpr LPARAM kWasDown = LPARAM{1} << 30;
    return (message.lParam & kWasDown) != 0;
}

std::chrono::milliseconds DoubleClickTime() {
    return std::max(kDoubleClickTime, std::chrono::milliseconds(::GetDoubleClickTime()));
}

} // namespace

// --- changes of the form

void NativeForm::Stale(std::size_t index, Property property) {
    natives_[index].stale |= Bit(property);
    if (!told_) {
        told_ = ::PostMessageA(window_, kBringInLine, 0, 0) != 0;
    }
}

void NativeForm::Changed(const Control& control, Property property) {
    if (control.Kind() == Kind::Form) {
        TakeFormChange(property);
        return;
    }
    const auto index = static_cast<std::size_t>(control.Id() - form_.Controls().front()->Id());
    if (property == Property::Refresh) {
        BringAllInLine();
        if (natives_[index].window != nullptr) { // null would be the whole desktop
            ::RedrawWindow(natives_[index].window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        }
        return;
    }
    Stale(index, property);
}

void NativeForm::TakeFormChange(Property property) {
    switch (property) {
    case Property::Caption:
        ::SetWindowTextA(window_, form_.Caption().c_str());
        return;
    case Property::Focus:
        focus_wanted_ = true;
        if (!told_) {
            told_ = ::PostMessageA(window_, kBringInLine, 0, 0) != 0;
        }
        return;
    case Property::Painting:
        BringAllInLine();
        ::LockWindowUpdate(form_.PaintingLocked() ? window_ : nullptr);
        return;
    case Property::Unloaded:
        // The owner is enabled before this window is hidden. Otherwise another program would get the focus.
        if (const HWND owner = ::GetWindow(window_, GW_OWNER); owner != nullptr) {
            ::EnableWindow(owner, TRUE);
        }
        ::ShowWindow(window_, SW_HIDE);
        WakeLoop();
        return;
    default:
        BringAllInLine();
        ::UpdateWindow(window_);
        return;
    }
}

/// Makes RunUntilClosed check whether it is to end, which it does when GetMessage returns. GetMessage does
/// not return for a message that another thread or process sends, such as WM_CLOSE; so this posts one.
void NativeForm::WakeLoop() const {
    ::PostMessageA(window_, WM_NULL, 0, 0);
}

void NativeForm::BringAllInLine() {
    const bool before = std::exchange(showing_, true);
    told_ = false;
    MakePage();
    for (std::size_t index = 0; index < natives_.size(); ++index) {
        if (natives_[index].window != nullptr && natives_[index].stale != 0 &&
            static_cast<int>(index) != tabs_index_) {
            BringInLine(natives_[index]);
        }
    }
    // Last, so that everything on a page is up to date when the page is shown.
    if (tabs_ && natives_[static_cast<std::size_t>(tabs_index_)].stale != 0) {
        BringTabsInLine(natives_[static_cast<std::size_t>(tabs_index_)]);
    }
    showing_ = before;
    // A window below a message box is disabled and accepts no focus. WM_ENABLE comes when the box has closed.
    if (::IsWindowEnabled(window_) != 0 && std::exchange(focus_wanted_, false) &&
        form_.Focused() != nullptr && IsShown(*form_.Focused())) {
        GiveFocus(FindById(form_.Focused()->Id())->window);
    }
}

void NativeForm::BringTabsInLine(NativeControl& native) {
    const auto& tabs = static_cast<const TabControl&>(*native.control);
    native.stale = 0;
    for (int tab = 0; tab < tabs.Tabs(); ++tab) {
        tabs_->Enable(tab, tabs.TabEnabled(tab));
    }
    if (tabs_->Selected() != tabs.Tab()) {
        tabs_->Select(tabs.Tab());
    }
    const HWND focus = ::GetFocus();
    for (const NativeControl& page : natives_) {
        if (page.control->Parent() != native.control || page.window == nullptr) {
            continue;
        }
        const bool shown = page.control->Index() == tabs.Tab();
        if (shown != ((::GetWindowLongPtrA(page.window, GWL_STYLE) & WS_VISIBLE) != 0)) {
            ::ShowWindow(page.window, shown ? SW_SHOWNA : SW_HIDE);
            // Wine looks for mnemonics on hidden pages too if they have the style of a parent of controls.
            ::SetWindowLongPtrA(page.window, GWL_EXSTYLE, shown ? WS_EX_CONTROLPARENT : 0);
        }
        if (!shown && focus != nullptr && ::IsChild(page.window, focus) != 0) {
            ::SetFocus(tabs_->Window());
        }
    }
}

// --- the focus

/// Gives the focus as the Tab key does, which also selects the text of a box and makes a button the one that
/// Enter presses.
void NativeForm::GiveFocus(HWND control) const {
    ::SendMessageA(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

/// Gives the focus to the next control if the window has lost it. That happens when the control with the
/// focus is disabled; the keyboard would then have no effect.
void NativeForm::GiveFocusToSomeone() const {
    if (::GetActiveWindow() != window_ || ::GetFocus() != nullptr) {
        return;
    }
    HWND last = nullptr;
    for (const NativeControl& native : natives_) {
        if (native.control == form_.Focused()) {
            last = native.window;
        }
    }
    const HWND next = ::GetNextDlgTabItem(window_, last, FALSE);
    if (next != nullptr) {
        GiveFocus(next);
    }
}

void NativeForm::TrackFocus() {
    if (focus_wanted_) {
        return; // the form has moved the focus, and the window has not yet
    }
    const HWND focus = ::GetFocus();
    if (focus == nullptr || ::IsChild(window_, focus) == 0) {
        return; // in another window, or nowhere while a control is disabled: the form's focus stays
    }
    NativeControl* native = Find(focus);
    if (native == nullptr) {
        native = Find(::GetParent(focus)); // the text field of a combo box
    }
    if (native != nullptr && native->control != form_.Focused()) {
        FocusMoved(form_, native->control);
    }
}

// --- the operator's acts

NativeControl* NativeForm::Find(HWND window) {
    if (window == nullptr) {
        return nullptr; // a control whose native control is not made yet has a null window too
    }
    const auto found = std::find_if(natives_.begin(), natives_.end(), [window](const NativeControl& native) {
        return native.window == window;
    });
    return found == natives_.end() ? nullptr : &*found;
}

NativeControl* NativeForm::FindById(int id) {
    const auto found = std::find_if(natives_.begin(), natives_.end(),
                                    [id](const NativeControl& native) { return native.control->Id() == id; });
    return found == natives_.end() ? nullptr : &*found;
}

void NativeForm::TakeCommand(int id, WORD code) {
    if (showing_) {
        return;
    }
    if (id == IDCANCEL) {
        PressCancel();
        return;
    }
    if (id == IDOK) { // Enter
        NativeControl* focused = Find(::GetFocus());
        if (focused != nullptr && focused->control->Kind() == Kind::CommandButton) {
            ::SendMessageA(focused->window, BM_CLICK, 0, 0);
        }
        return;
    }
    if (NativeControl* native = FindById(id); native != nullptr) {
        TrackFocus();
        Report(*native, code);
    }
}

void NativeForm::PressCancel() {
    for (const NativeControl& native : natives_) {
        if ((native.control->Design().traits & kCancel) != 0 && native.window != nullptr) {
            ::SendMessageA(native.window, BM_CLICK, 0, 0);
        }
    }
}

void NativeForm::Report(NativeControl& native, WORD code) {
    Control& control = *native.control;
    const auto index = static_cast<std::size_t>(&native - natives_.data());
    switch (control.Kind()) {
    case Kind::TextBox:
        if (code == EN_CHANGE) {
            Edit(static_cast<TextBox&>(control), WindowText(native.window));
        }
        break;
    case Kind::CommandButton:
        if (code == BN_CLICKED) {
            Click(static_cast<CommandButton&>(control), arrived_);
        }
        break;
    case Kind::CheckBox:
        if (code == BN_CLICKED) {
            Stale(index, Property::Value); // the native tick has changed; the form may refuse the click
            Click(static_cast<CheckBox&>(control));
        }
        break;
    case Kind::OptionButton:
        if (code == BN_CLICKED) {
            Stale(index, Property::Value);
            Click(static_cast<OptionButton&>(control));
        }
        break;
    case Kind::ComboBox:
        if (code == CBN_SELCHANGE) {
            Choose(static_cast<ComboBox&>(control),
                   static_cast<int>(::SendMessageA(native.window, CB_GETCURSEL, 0, 0)));
        } else if (code == CBN_EDITCHANGE) {
            Edit(static_cast<ComboBox&>(control), WindowText(native.window));
        } else if (code == CBN_KILLFOCUS) {
            ::SendMessageA(native.window, CB_SETEDITSEL, 0, MAKELPARAM(-1, 0)); // clears the selection
        }
        break;
    case Kind::ListBox:
        if (code == LBN_SELCHANGE) {
            Choose(static_cast<ListBox&>(control),
                   static_cast<int>(::SendMessageA(native.window, LB_GETCURSEL, 0, 0)));
        }
        break;
    default:
        break;
    }
}

/// Gives the tool tip of an option button: the whole caption if it does not fit, otherwise no text.
void NativeForm::GiveToolTip(const NativeControl& native, NMTTDISPINFOA& wanted) const {
    const auto& button = static_cast<const OptionButton&>(*native.control);
    static std::string shown; // must exist as long as the tip is shown
    shown = FittingCaption(button, native.window) == button.Caption() ? std::string() : button.Caption();
    wanted.lpszText = shown.data();
}

LRESULT NativeForm::TakeNotice(const NMHDR& notice) {
    if (notice.code == TTN_GETDISPINFOA) {
        if (const NativeControl* native = Find(reinterpret_cast<HWND>(notice.idFrom)); native != nullptr) {
            GiveToolTip(*native, *reinterpret_cast<NMTTDISPINFOA*>(const_cast<NMHDR*>(&notice)));
        }
        return 0;
    }
    NativeControl* native = Find(notice.hwndFrom);
    if (native == nullptr) {
        return 0;
    }
    if (native->control->Kind() == Kind::ListView && notice.code == LVN_GETDISPINFOA) {
        auto& wanted = *reinterpret_cast<NMLVDISPINFOA*>(const_cast<NMHDR*>(&notice));
        GiveCell(static_cast<const ListView&>(*native->control), wanted);
    }
    if (native->control->Kind() == Kind::TabControl && notice.code == TCN_SELCHANGE && !showing_) {
        TrackFocus();
        Stale(static_cast<std::size_t>(tabs_index_), Property::Tab);
        Choose(static_cast<TabControl&>(*native->control), tabs_->Selected());
    }
    return 0;
}

// --- the window

LRESULT NativeForm::ColourControl(UINT message, WPARAM wparam, LPARAM lparam) {
    const auto paper = reinterpret_cast<HDC>(wparam);
    const NativeControl* native = Find(reinterpret_cast<HWND>(lparam));
    const LRESULT usual = ::DefDlgProcA(window_, message, wparam, lparam);
    if (native == nullptr || ::IsWindowEnabled(native->window) == 0) {
        return usual;
    }
    if (native->control->Kind() == Kind::Label) {
        ::SetTextColor(paper, ToColorRef(static_cast<const Label&>(*native->control).ForeColor()));
        ::SetBkColor(paper, ::GetSysColor(COLOR_BTNFACE));
        return reinterpret_cast<LRESULT>(::GetSysColorBrush(COLOR_BTNFACE));
    }
    if (native->control->Kind() == Kind::TextBox) {
        const Colour background = static_cast<const TextBox&>(*native->control).BackColor();
        ::SetTextColor(paper, ::GetSysColor(COLOR_WINDOWTEXT));
        ::SetBkColor(paper, ToColorRef(background));
        return reinterpret_cast<LRESULT>(SystemBrush(background));
    }
    return usual;
}

void NativeForm::TakeDpi(int dpi, const RECT& place) {
    ::SetWindowPos(window_, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    LayOut(dpi);
    ::InvalidateRect(window_, nullptr, TRUE);
}

LRESULT NativeForm::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case kBringInLine:
        BringAllInLine();
        return 0;
    case WM_COMMAND:
        TakeCommand(LOWORD(wparam), HIWORD(wparam));
        return 0;
    case WM_NOTIFY:
        return TakeNotice(*reinterpret_cast<const NMHDR*>(lparam));
    case WM_NOTIFYFORMAT:
        return NFR_ANSI;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
        return ColourControl(message, wparam, lparam);
    case WM_SETCURSOR:
        if (platform::MousePointer() == platform::kHourglassPointer) {
            ::SetCursor(::LoadCursorA(nullptr, IDC_WAIT));
            return TRUE;
        }
        break;
    case WM_ENABLE:
        if (wparam != FALSE && focus_wanted_) {
            told_ = ::PostMessageA(window_, kBringInLine, 0, 0) != 0;
        }
        break;
    case WM_CLOSE:
        Close(form_);
        return 0;
    case WM_ENDSESSION:
        if (wparam != FALSE) {
            Close(form_);
        }
        return 0;
    case kDpiChanged:
        TakeDpi(LOWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
        return 0;
    default:
        break;
    }
    return ::DefDlgProcA(window_, message, wparam, lparam);
}

/// The window procedure. An exception must not pass through functions of the system, so it is kept for
/// RunUntilClosed.
LRESULT CALLBACK NativeForm::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    NativeForm* form = OfWindow(window);
    if (form == nullptr) {
        return ::DefDlgProcA(window, message, wparam, lparam);
    }
    try {
        return form->Handle(message, wparam, lparam);
    } catch (...) {
        form->thrown_ = std::current_exception();
        form->WakeLoop();
        return 0;
    }
}

/// Ctrl+Tab and Ctrl+Page Down choose the next tab, Ctrl+Shift+Tab and Ctrl+Page Up the one before, wherever
/// the focus is.
bool NativeForm::FilterKey(const MSG& message) {
    if (!tabs_ || message.message != WM_KEYDOWN || !IsPressed(VK_CONTROL)) {
        return false;
    }
    switch (message.wParam) {
    case VK_TAB:
        tabs_->ChooseNext(IsPressed(VK_SHIFT) ? -1 : 1, true);
        return true;
    case VK_NEXT:
        tabs_->ChooseNext(1, true);
        return true;
    case VK_PRIOR:
        tabs_->ChooseNext(-1, true);
        return true;
    default:
        return false;
    }
}

/// Returns the control at a point of the screen, also a disabled one, whose mouse messages the system sends
/// to its parent. Null if there is none.
NativeControl* NativeForm::FindUnder(POINT place) {
    HWND window = window_;
    for (;;) {
        POINT inside = place;
        ::ScreenToClient(window, &inside);
        const HWND child = ::ChildWindowFromPointEx(window, inside, CWP_SKIPINVISIBLE);
        if (child == nullptr || child == window) {
            break;
        }
        window = child;
    }
    NativeControl* native = Find(window);
    return native != nullptr ? native : Find(::GetParent(window));
}

/// True for input that must not reach its control, by the rules in operator.h.
bool NativeForm::DropsInput(const MSG& message) {
    if (message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK) {
        NativeControl* pressed = FindUnder(message.pt);
        return pressed != nullptr && !AcceptsPress(*pressed->control, *arrived_, DoubleClickTime());
    }
    if (message.message == WM_SYSCHAR) {
        return IsRepeat(message); // a mnemonic, which may press a button
    }
    if (message.message != WM_KEYDOWN) {
        return false;
    }
    const NativeControl* focused = Find(message.hwnd);
    if (focused == nullptr) {
        focused = Find(::GetParent(message.hwnd));
    }
    if (focused == nullptr) {
        return false;
    }
    const bool button = focused->control->Kind() == Kind::CommandButton;
    if (button && message.wParam != VK_RETURN && message.wParam != VK_SPACE) {
        return false; // a key that leads to another control
    }
    return (button && IsRepeat(message)) || !Accepts(*focused->control, *arrived_);
}

std::optional<InputClock::time_point> NativeForm::arrived_;

bool NativeForm::Filter(MSG& message) {
    const HWND window = message.hwnd == nullptr ? nullptr : ::GetAncestor(message.hwnd, GA_ROOT);
    NativeForm* form = OfWindow(window);
    if (form == nullptr) {
        return false;
    }
    const auto before = std::exchange(arrived_, IsInput(message) ? std::optional(ArrivalOf(message))
                                                                 : std::optional<InputClock::time_point>());
    const bool done = (arrived_ && form->DropsInput(message)) || form->FilterKey(message) ||
                      ::IsDialogMessageA(window, &message) != 0;
    arrived_ = before;
    return done;
}

void NativeForm::Show() {
    BringAllInLine();
    // The form's focus, not that of the control to which the system gives it when it activates the window.
    focus_wanted_ = form_.Focused() != nullptr;
    ::ShowWindow(window_, SW_SHOWNORMAL);
    if (focus_wanted_) {
        BringAllInLine();
    } else if (::GetActiveWindow() == window_) {
        GiveFocus(::GetNextDlgTabItem(window_, tabs_ ? tabs_->Window() : nullptr, FALSE));
    }
    ::UpdateWindow(window_);
    if (tool_tips_ == nullptr) {
        MakeToolTips(); // not needed before the window is seen
    }
}

void NativeForm::RunUntilClosed() {
    MSG message{};
    while (!form_.Unloaded() && ::GetMessageA(&message, nullptr, 0, 0) > 0) {
        platform::Deliver(message);
        if (thrown_) {
            std::rethrow_exception(std::exchange(thrown_, nullptr));
        }
        if (!form_.Unloaded()) {
            TrackFocus();
            GiveFocusToSomeone();
        }
    }
}

} // namespace ui

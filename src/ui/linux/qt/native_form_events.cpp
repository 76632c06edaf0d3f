// The events of a form's window: changes of the form are shown, and the operator's acts are reported to the
// form.
#include <algorithm>
#include <utility>

#include <QApplication>
#include <QCloseEvent>

#include "ui/linux/qt/native_form.h"
#include "ui/linux/qt/text.h"
#include "ui/operator.h"

namespace ui {
namespace {

/// The event that updates the window. It is in the queue while something is not shown yet.
constexpr auto kBringInLine = static_cast<QEvent::Type>(QEvent::User);

/// The window whose painting is locked; null if none is. As on Windows, only one window of the program can be
/// locked: a second one is not locked, and unlocking any form unlocks the locked window.
QWidget* locked_window = nullptr;

} // namespace

// --- changes of the form

void NativeForm::AskToBringInLine() {
    if (!std::exchange(told_, true)) {
        QCoreApplication::postEvent(this, new QEvent(kBringInLine), Qt::HighEventPriority);
    }
}

void NativeForm::Stale(NativeControl& native, Property property) {
    native.stale |= Bit(property);
    AskToBringInLine();
}

NativeControl& NativeForm::NativeOf(const Control& control) {
    return natives_.at(static_cast<std::size_t>(control.Id() - form_.Controls().front()->Id()));
}

void NativeForm::Changed(const Control& control, Property property) {
    if (control.Kind() == Kind::Form) {
        TakeFormChange(property);
        return;
    }
    NativeControl& native = NativeOf(control);
    if (property == Property::Refresh) {
        BringAllInLine();
        if (native.widget != nullptr) {
            native.widget->repaint();
        }
        return;
    }
    Stale(native, property);
}

void NativeForm::TakeFormChange(Property property) {
    switch (property) {
    case Property::Caption:
        window_->setWindowTitle(ToQt(form_.Caption()));
        return;
    case Property::Focus:
        focus_wanted_ = true;
        AskToBringInLine();
        return;
    case Property::Painting:
        BringAllInLine();
        LockPainting();
        return;
    case Property::Unloaded:
        window_->hide();
        if (loop_ != nullptr) {
            loop_->quit();
        }
        return;
    default:
        BringAllInLine();
        window_->repaint();
        return;
    }
}

void NativeForm::LockPainting() {
    if (form_.PaintingLocked()) {
        if (locked_window == nullptr) {
            locked_window = window_.get();
            locked_window->setUpdatesEnabled(false);
        }
    } else if (QWidget* locked = std::exchange(locked_window, nullptr)) {
        locked->setUpdatesEnabled(true);
    }
}

void NativeForm::BringAllInLine() {
    const bool before = std::exchange(showing_, true);
    told_ = false;
    MakePage();
    for (NativeControl& native : natives_) {
        if (native.widget != nullptr && native.stale != 0 && native.control->Kind() != Kind::TabControl) {
            BringInLine(native);
        }
    }
    // Last, so that everything on a page is up to date when the page is shown.
    if (tabs_ != nullptr && natives_[static_cast<std::size_t>(tabs_index_)].stale != 0) {
        BringTabsInLine(natives_[static_cast<std::size_t>(tabs_index_)]);
    }
    showing_ = before;
    GiveFocus();
}

void NativeForm::BringTabsInLine(NativeControl& native) {
    const auto& tabs = static_cast<const TabControl&>(*native.control);
    native.stale = 0;
    // In Qt a disabled tab cannot be the active one; in the form it can. So the active tab is enabled here
    // until another one is chosen.
    for (int tab = 0; tab < tabs.Tabs(); ++tab) {
        tabs_->EnableTab(tab, tabs.TabEnabled(tab) || tab == tabs.Tab());
    }
    tabs_->Bar().setCurrentIndex(tabs.Tab());
    tabs_->update();
    for (const NativeControl& page : natives_) {
        if (page.control->Parent() == native.control && page.widget != nullptr) {
            ShowPage(page, page.control->Index() == tabs.Tab());
        }
    }
}

void NativeForm::ShowPage(const NativeControl& page, bool shown) {
    if (page.widget->isHidden() != shown) {
        return;
    }
    QWidget* focus = window_->focusWidget();
    if (!shown && focus != nullptr && page.widget->isAncestorOf(focus)) {
        tabs_->Bar().setFocus();
    }
    page.widget->setVisible(shown);
}

// --- the focus

/// Gives the focus as the Tab key does, which also selects the text of a box.
void NativeForm::GiveFocus() {
    if (!window_->isVisible() || !std::exchange(focus_wanted_, false)) {
        return;
    }
    Control* focused = form_.Focused();
    if (focused != nullptr && IsShown(*focused)) {
        NativeOf(*focused).widget->setFocus(Qt::TabFocusReason);
    }
}

void NativeForm::TrackFocus() {
    if (focus_wanted_) {
        return; // the form has moved the focus, and the window has not yet
    }
    const NativeControl* native = Find(window_->focusWidget());
    if (native != nullptr && native->control != form_.Focused()) {
        FocusMoved(form_, native->control);
    }
}

NativeControl* NativeForm::Find(const QObject* object) {
    // The text field of a combo box and the area that a list paints on are child widgets.
    for (; object != nullptr && object != window_.get(); object = object->parent()) {
        const auto found =
            std::find_if(natives_.begin(), natives_.end(),
                         [object](const NativeControl& native) { return native.widget == object; });
        if (found != natives_.end()) {
            return &*found;
        }
    }
    return nullptr;
}

// --- the operator's acts

/// True if the press must not reach its control (see operator.h). Is called once for each press, also for one
/// on a disabled control.
bool NativeForm::RefusesMouse(QWidget& widget, const QInputEvent& press) {
    const NativeControl* native = Find(&widget);
    if (native == nullptr) {
        return false;
    }
    const auto arrived = clock_.ArrivalOf(press.timestamp());
    const std::chrono::milliseconds double_click(QApplication::doubleClickInterval());
    if (!AcceptsPress(*native->control, arrived, std::max(kDoubleClickTime, double_click))) {
        return true;
    }
    last_press_ = arrived;
    return false;
}

/// True if a key must not reach the control that has the focus. Mnemonics are for other controls; they are
/// not checked here.
bool NativeForm::RefusesKey(QWidget& widget, const QKeyEvent& key) {
    const NativeControl* native = Find(&widget);
    if (native == nullptr) {
        return false;
    }
    const bool button = native->control->Kind() == Kind::CommandButton;
    const bool presses =
        key.key() == Qt::Key_Space || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (button && !presses) {
        return false; // a key that leads to another control
    }
    return (button && key.isAutoRepeat()) || !Accepts(*native->control, last_press_);
}

bool NativeForm::TakeKey(QWidget& widget, const QKeyEvent& key) {
    last_press_ = clock_.ArrivalOf(key.timestamp());
    return FilterKey(widget, key, false) || RefusesKey(widget, key);
}

bool NativeForm::FilterWindow(QEvent& event) {
    switch (event.type()) {
    case QEvent::Close:
        event.ignore();
        Report([this] { Close(form_); });
        return true;
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::ApplicationFontChange:
        LayOut();
        return false;
    case QEvent::PaletteChange:
    case QEvent::ApplicationPaletteChange:
        for (NativeControl& native : natives_) {
            Stale(native, Property::BackColor);
        }
        return false;
    default:
        return false;
    }
}

bool NativeForm::eventFilter(QObject* object, QEvent* event) {
    if (object == window_.get() && FilterWindow(*event)) {
        return true;
    }
    if (!object->isWidgetType()) {
        return false;
    }
    auto& widget = static_cast<QWidget&>(*object);
    if (widget.window() != window_.get()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        if (tabs_ != nullptr && &widget == &tabs_->Bar()) {
            return true; // otherwise the bar would report a second click on the tab
        }
        [[fallthrough]];
    case QEvent::MouseButtonPress:
        return RefusesMouse(widget, static_cast<const QInputEvent&>(*event));
    case QEvent::ShortcutOverride:
        return FilterKey(widget, static_cast<const QKeyEvent&>(*event), true) && (event->accept(), true);
    case QEvent::KeyPress:
        return TakeKey(widget, static_cast<const QKeyEvent&>(*event));
    case QEvent::Wheel: {
        const NativeControl* native = Find(&widget);
        return native != nullptr && native->control->Kind() == Kind::ComboBox && !native->widget->hasFocus();
    }
    case QEvent::FocusIn:
        if (!showing_) {
            TrackFocus();
        }
        return false;
    default:
        return false;
    }
}

bool NativeForm::event(QEvent* event) {
    if (event->type() == kBringInLine) {
        BringAllInLine();
        return true;
    }
    return QObject::event(event);
}

// --- the window

void NativeForm::Show() {
    BringAllInLine();
    // The form's focus, not that of the control to which Qt gives it when the window is shown.
    focus_wanted_ = form_.Focused() != nullptr;
    window_->show();
    if (focus_wanted_) {
        BringAllInLine();
    } else if (window_->focusWidget() == nullptr || (tabs_ != nullptr && tabs_->Bar().hasFocus())) {
        for (const NativeControl& native : natives_) {
            if (native.widget != nullptr && native.control->Kind() != Kind::TabControl &&
                (native.widget->focusPolicy() & Qt::TabFocus) != 0 && CanBeUsed(*native.control)) {
                native.widget->setFocus(Qt::TabFocusReason);
                break;
            }
        }
    }
}

void NativeForm::RunUntilClosed() {
    while (!form_.Unloaded() && !thrown_) {
        QEventLoop loop;
        loop_ = &loop;
        loop.exec();
        loop_ = nullptr;
    }
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

} // namespace ui

// The keys of a dialog, as on Windows: mnemonics, tabs, Escape. Before Qt uses a key for its own shortcuts it
// asks whether the key is used here: then `asked` is true, and the functions only return the answer.
#include "ui/linux/qt/native_button.h"
#include "ui/linux/qt/native_form.h"
#include "ui/linux/qt/text.h"
#include "ui/operator.h"

namespace ui {
namespace {

/// The letter after the single "&" of a caption, in upper case; null if there is none.
QChar MnemonicOf(const QString& caption) {
    for (qsizetype place = 0; place + 1 < caption.size(); ++place) {
        if (caption[place] == '&' && caption[++place] != '&') {
            return caption[place].toUpper();
        }
    }
    return {};
}

QString CaptionOf(const Control& control) {
    switch (control.Kind()) {
    case Kind::Label:
    case Kind::CommandButton:
    case Kind::CheckBox:
    case Kind::OptionButton:
    case Kind::Frame:
        if ((control.Design().traits & kData) != 0) {
            return {};
        }
        return ToQt(control.Design().caption);
    default:
        return {};
    }
}

bool TakesFocus(const NativeControl& native) {
    return native.widget != nullptr && native.widget->focusPolicy() != Qt::NoFocus &&
           CanBeUsed(*native.control);
}

} // namespace

bool NativeForm::FilterKey(QWidget& widget, const QKeyEvent& key, bool asked) {
    if (Find(&widget) == nullptr && &widget != window_.get()) {
        return false;
    }
    if (TakeTabKey(key, asked) || TakeMnemonic(key, asked)) {
        return true;
    }
    if (key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier && !asked) {
        PressCancel();
        return true;
    }
    return false;
}

/// Ctrl+Tab and Ctrl+Page Down choose the next tab, Ctrl+Shift+Tab and Ctrl+Page Up the one before, wherever
/// the focus is. Home and End choose the first and the last tab while the tabs have the focus.
bool NativeForm::TakeTabKey(const QKeyEvent& key, bool asked) {
    if (tabs_ == nullptr) {
        return false;
    }
    const bool control = (key.modifiers() & Qt::ControlModifier) != 0;
    const bool on_tabs = window_->focusWidget() == &tabs_->Bar() && !control;
    std::function<void()> act;
    if (control && (key.key() == Qt::Key_Tab || key.key() == Qt::Key_PageDown)) {
        act = [this] { tabs_->ChooseNext(1, true); };
    } else if (control && (key.key() == Qt::Key_Backtab || key.key() == Qt::Key_PageUp)) {
        act = [this] { tabs_->ChooseNext(-1, true); };
    } else if (on_tabs && key.key() == Qt::Key_Home) {
        act = [this] { tabs_->ChooseFrom(0, 1); };
    } else if (on_tabs && key.key() == Qt::Key_End) {
        act = [this] { tabs_->ChooseFrom(tabs_->Bar().count() - 1, -1); };
    }
    if (act && !asked) {
        act();
    }
    return act != nullptr;
}

/// Alt and a letter: the next control after the focus with that mnemonic gets the focus. If it is a button
/// and no other control has the mnemonic, it is pressed.
bool NativeForm::TakeMnemonic(const QKeyEvent& key, bool asked) {
    if (key.modifiers() != Qt::AltModifier || key.key() < Qt::Key_Space || key.key() > Qt::Key_ydiaeresis) {
        return false;
    }
    int found = 0;
    NativeControl* wanted = NextWithMnemonic(QChar(key.key()), found);
    if (wanted == nullptr || asked) {
        return wanted != nullptr;
    }
    wanted->widget->setFocus(Qt::ShortcutFocusReason);
    auto* button = qobject_cast<QAbstractButton*>(wanted->widget);
    if (button != nullptr && found == 1 && !key.isAutoRepeat()) {
        Press(*button);
    }
    return true;
}

void NativeForm::Press(QAbstractButton& button) {
    if (auto* command = dynamic_cast<NativeButton*>(&button)) {
        command->ClickByInput();
    } else {
        button.click();
    }
}

/// The first control with the mnemonic after the focus; the search goes on at the beginning. Null if there is
/// none. `found` is set to the number of such controls; it must be 0 before.
NativeControl* NativeForm::NextWithMnemonic(QChar letter, int& found) {
    const NativeControl* focused = Find(window_->focusWidget());
    NativeControl* first = nullptr;
    NativeControl* next = nullptr;
    for (NativeControl& native : natives_) {
        if (native.widget == nullptr || MnemonicOf(CaptionOf(*native.control)) != letter.toUpper()) {
            continue;
        }
        NativeControl* bearer = Bearer(native);
        if (bearer == nullptr) {
            continue;
        }
        ++found;
        first = first == nullptr ? bearer : first;
        next = next == nullptr && bearer > focused ? bearer : next;
    }
    return next == nullptr ? first : next;
}

/// The control to which a mnemonic leads: for a label or a frame the next control that takes the focus, else
/// the control itself. Null if it cannot be used.
NativeControl* NativeForm::Bearer(NativeControl& label) {
    const Kind kind = label.control->Kind();
    if (kind != Kind::Label && kind != Kind::Frame) {
        return TakesFocus(label) ? &label : nullptr;
    }
    if (!IsShown(*label.control)) {
        return nullptr;
    }
    for (NativeControl* native = &label + 1; native != natives_.data() + natives_.size(); ++native) {
        if (TakesFocus(*native)) {
            return native;
        }
    }
    return nullptr;
}

void NativeForm::PressCancel() {
    for (const NativeControl& native : natives_) {
        if ((native.control->Design().traits & kCancel) != 0 && native.widget != nullptr) {
            Press(*static_cast<QAbstractButton*>(native.widget));
        }
    }
}

} // namespace ui

// Reports to the form what the operator does to the native controls. Changes that the program makes cause
// other signals, or signals while `showing_` is set. A native control shows an act at once, although the form
// may refuse it; so the property is marked stale, and the control is compared with the form afterwards.
#include <optional>
#include <utility>

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

#include "ui/linux/qt/native_button.h"
#include "ui/linux/qt/native_form.h"
#include "ui/linux/qt/text.h"
#include "ui/operator.h"

namespace ui {

void NativeForm::Report(const std::function<void()>& act) {
    if (showing_) {
        return;
    }
    try {
        TrackFocus();
        act();
        if (told_) {
            BringAllInLine(); // before the next input, which may be for the control that gets the focus
        }
    } catch (...) {
        thrown_ = std::current_exception();
        if (loop_ != nullptr) {
            loop_->quit();
        }
    }
}

void NativeForm::ListenToText(NativeControl& native) {
    auto& box = static_cast<TextBox&>(*native.control);
    if (auto* line = qobject_cast<QLineEdit*>(native.widget)) {
        // Not textEdited, which is not sent for a text that assistive technology enters.
        QObject::connect(line, &QLineEdit::textChanged, line, [this, &native, &box](const QString& text) {
            Stale(native, Property::Text);
            Report([&] { Edit(box, FromQt(text)); });
        });
        return;
    }
    auto* lines = static_cast<QPlainTextEdit*>(native.widget);
    QObject::connect(lines, &QPlainTextEdit::textChanged, lines, [this, &box, lines] {
        Report([&] { Edit(box, FromQt(lines->toPlainText().replace("\n", "\r\n"))); });
    });
}

void NativeForm::ReportClick(NativeControl& native) {
    Stale(native, Property::Value);
    Report([&] {
        if (native.control->Kind() == Kind::CheckBox) {
            Click(static_cast<CheckBox&>(*native.control));
        } else if (native.control->Kind() == Kind::OptionButton) {
            Click(static_cast<OptionButton&>(*native.control));
        } else {
            const bool by_input = static_cast<NativeButton*>(native.widget)->TakeByInput();
            Click(static_cast<CommandButton&>(*native.control),
                  by_input ? std::optional(last_press_) : std::nullopt);
        }
    });
}

void NativeForm::ListenToButton(NativeControl& native) {
    auto* widget = static_cast<QAbstractButton*>(native.widget);
    QObject::connect(widget, &QAbstractButton::clicked, widget, [this, &native] { ReportClick(native); });
}

/// When one option button of a group is selected another is cleared; only the selected one is reported.
void NativeForm::ListenToToggle(NativeControl& native) {
    ListenToButton(native);
    auto* widget = static_cast<QAbstractButton*>(native.widget);
    const auto* witness = dynamic_cast<const ClickWitness*>(native.widget);
    const bool option = native.control->Kind() == Kind::OptionButton;
    QObject::connect(widget, &QAbstractButton::toggled, widget, [=, this, &native](bool checked) {
        if (!showing_ && !witness->IsBeingClicked() && (checked || !option)) {
            ReportClick(native);
        }
    });
}

void NativeForm::ListenToComboBox(NativeControl& native) {
    auto& box = static_cast<ComboBox&>(*native.control);
    auto* widget = static_cast<QComboBox*>(native.widget);
    QObject::connect(widget, &QComboBox::activated, widget, [this, &native, &box](int index) {
        native.entered.reset();
        Stale(native, Property::ListIndex);
        if (index != box.ListIndex()) {
            Report([&] { Choose(box, index); });
        }
    });
    if (widget->isEditable()) {
        QObject::connect(widget->lineEdit(), &QLineEdit::textEdited, widget,
                         [this, &native, &box](const QString& text) {
                             Stale(native, Property::Text);
                             Report([&] { Edit(box, FromQt(text)); });
                         });
        ListenToEnteredText(native);
    }
}

/// A text that is neither typed nor chosen is one that assistive technology enters. A choice sets the text
/// before it is reported, so such a text is reported from the queue, when no choice has been.
void NativeForm::ListenToEnteredText(NativeControl& native) {
    auto& box = static_cast<ComboBox&>(*native.control);
    const QLineEdit* line = static_cast<QComboBox*>(native.widget)->lineEdit();
    const auto report = [this, &native, &box] {
        if (const auto text = std::exchange(native.entered, std::nullopt)) {
            Stale(native, Property::Text);
            Report([&] { Edit(box, FromQt(*text)); });
        }
    };
    QObject::connect(line, &QLineEdit::textChanged, native.widget, [=, this, &native](const QString& text) {
        native.entered.reset();
        if (!showing_ && !line->isModified()) { // a typed text is modified
            native.entered = text;
            QMetaObject::invokeMethod(native.widget, report, Qt::QueuedConnection);
        }
    });
}

void NativeForm::ListenToListBox(NativeControl& native) {
    auto* widget = static_cast<QListWidget*>(native.widget);
    QObject::connect(widget, &QListWidget::currentRowChanged, widget, [this, widget, &native](int row) {
        Report([&] {
            // For a click, Qt reports the current row before it selects the row. The handler may run for a
            // long time, so the row is selected here.
            widget->selectionModel()->select(widget->currentIndex(), QItemSelectionModel::ClearAndSelect);
            widget->viewport()->repaint();
            Stale(native, Property::ListIndex);
            Choose(static_cast<ListBox&>(*native.control), row);
        });
    });
}

/// A click on the active tab is reported too. The bar has no signal of a change for it.
void NativeForm::ListenToTabs(NativeControl& native) {
    auto& tabs = static_cast<TabControl&>(*native.control);
    QTabBar* bar = &tabs_->Bar();
    const auto choose = [this, &native, &tabs](int tab) {
        Report([&] {
            Stale(native, Property::Tab);
            Choose(tabs, tab);
        });
    };
    QObject::connect(bar, &QTabBar::currentChanged, bar, choose);
    QObject::connect(bar, &QTabBar::tabBarClicked, bar, [bar, choose](int tab) {
        if (tab == bar->currentIndex()) {
            choose(tab);
        }
    });
}

void NativeForm::Listen(NativeControl& native) {
    switch (native.control->Kind()) {
    case Kind::TextBox:
        ListenToText(native);
        break;
    case Kind::CommandButton:
        ListenToButton(native);
        break;
    case Kind::CheckBox:
    case Kind::OptionButton:
        ListenToToggle(native);
        break;
    case Kind::ComboBox:
        ListenToComboBox(native);
        break;
    case Kind::ListBox:
        ListenToListBox(native);
        break;
    case Kind::TabControl:
        ListenToTabs(native);
        break;
    default:
        break;
    }
}

} // namespace ui

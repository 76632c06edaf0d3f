// Shows the state of controls in their native controls. Each function compares first: a text that is set
// again loses its selection, and a list its scroll position.
#include <algorithm>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSignalBlocker>

#include "ui/linux/qt/native_button.h"
#include "ui/linux/qt/native_control.h"
#include "ui/linux/qt/native_list_view.h"
#include "ui/linux/qt/text.h"

namespace ui {
namespace {

bool Stale(const NativeControl& native, Property property) {
    return (native.stale & Bit(property)) != 0;
}

/// The widget's palette with this colour for this role. System colours come from the desktop's palette, which
/// may change to a dark one while the program runs.
QPalette PaletteOf(const QWidget& widget, QPalette::ColorRole role, Colour colour) {
    QPalette palette;
    switch (colour) {
    case kButtonText:
    case kWindowBackground:
        break;
    case kButtonFaceBackground:
        palette.setColor(role, widget.window()->palette().color(QPalette::Window));
        break;
    default:
        palette.setColor(role,
                         QColor(static_cast<int>(colour & 0xFFU), static_cast<int>(colour >> 8U & 0xFFU),
                                static_cast<int>(colour >> 16U & 0xFFU)));
        break;
    }
    return palette;
}

void ShowLabel(const NativeControl& native) {
    const auto& label = static_cast<const Label&>(*native.control);
    auto& widget = static_cast<QLabel&>(*native.widget);
    if (const QString caption = ToQt(label.Caption()); widget.text() != caption) {
        widget.setText(caption);
    }
    if (Stale(native, Property::ForeColor)) {
        widget.setPalette(PaletteOf(widget, QPalette::WindowText, label.ForeColor()));
    }
}

/// The box may have one line or several. The native text of several lines ends its lines with a line feed
/// only, the model's with a carriage return and a line feed.
void ShowTextBox(const NativeControl& native) {
    const auto& box = static_cast<const TextBox&>(*native.control);
    if (Stale(native, Property::BackColor)) {
        native.widget->setPalette(PaletteOf(*native.widget, QPalette::Base, box.BackColor()));
    }
    const QString text = ToQt(box.Text());
    if (auto* lines = qobject_cast<QPlainTextEdit*>(native.widget)) {
        if (const QString shown = QString(text).replace("\r\n", "\n"); lines->toPlainText() != shown) {
            lines->setPlainText(shown);
        }
        lines->setReadOnly(box.Locked());
        if (box.Locked()) {
            lines->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        }
        return;
    }
    auto& line = static_cast<QLineEdit&>(*native.widget);
    if (line.text() != text) {
        line.setText(text);
        line.setCursorPosition(static_cast<int>(box.SelStart())); // a long text is seen from its beginning
    }
    line.setReadOnly(box.Locked());
    if (Stale(native, Property::Selection)) {
        line.setSelection(static_cast<int>(box.SelStart()), static_cast<int>(box.SelLength()));
    }
}

void ShowCheckBox(const NativeControl& native) {
    static_cast<QAbstractButton*>(native.widget)
        ->setChecked(static_cast<const CheckBox&>(*native.control).Value() == 1);
}

void ShowOptionButton(const NativeControl& native) {
    const auto& button = static_cast<const OptionButton&>(*native.control);
    auto& widget = static_cast<QAbstractButton&>(*native.widget);
    if ((button.Design().traits & kData) != 0) {
        static_cast<NativeDataOption&>(widget).SetCaption(ToQt(button.Caption()));
    } else if (const QString caption = ToQt(button.Caption()); widget.text() != caption) {
        widget.setText(caption);
    }
    if (widget.isChecked() != button.Value()) {
        widget.setAutoExclusive(false); // else the last selected one of a group could not be cleared
        widget.setChecked(button.Value());
        widget.setAutoExclusive(true);
    }
}

void ShowComboBox(const NativeControl& native) {
    const auto& box = static_cast<const ComboBox&>(*native.control);
    auto& widget = static_cast<QComboBox&>(*native.widget);
    const QSignalBlocker quiet(widget);
    if (Stale(native, Property::Items)) {
        const QString typed = widget.isEditable() ? widget.lineEdit()->text() : QString();
        widget.clear();
        QStringList items;
        for (int index = 0; index < box.ListCount(); ++index) {
            items << ToQt(box.List(index));
        }
        widget.addItems(items);
        widget.setCurrentIndex(-1);
        if (widget.isEditable()) {
            widget.lineEdit()->setText(typed);
        }
    }
    // In a box with free text an index of -1 would erase the text that the operator is typing.
    const bool from_list = box.IsDropDownList() || box.ListIndex() >= 0;
    if (from_list && widget.currentIndex() != box.ListIndex()) {
        widget.setCurrentIndex(box.ListIndex());
    }
    if (const QString text = ToQt(box.Text()); widget.isEditable() && widget.lineEdit()->text() != text) {
        widget.lineEdit()->setText(text);
    }
}

void ShowListBox(const NativeControl& native) {
    const auto& box = static_cast<const ListBox&>(*native.control);
    auto& widget = static_cast<QListWidget&>(*native.widget);
    if (Stale(native, Property::Items)) {
        QStringList items;
        for (int index = 0; index < box.ListCount(); ++index) {
            items << ToQt(box.List(index));
        }
        widget.clear();
        widget.addItems(items);
    }
    if (widget.currentRow() != box.ListIndex()) {
        widget.setCurrentRow(box.ListIndex());
    }
}

void ShowListView(const NativeControl& native) {
    auto& widget = static_cast<NativeListView&>(*native.widget);
    if (Stale(native, Property::ExtendedStyle)) {
        widget.ShowExtendedStyle();
    }
    if (Stale(native, Property::Columns) || Stale(native, Property::Rows) || Stale(native, Property::Cells)) {
        widget.ShowTable(Stale(native, Property::Columns));
    }
    if (Stale(native, Property::ColumnSizes)) {
        widget.SizeColumns();
    }
}

/// The native bar counts in whole numbers; no caller uses others.
void ShowProgressBar(const NativeControl& native) {
    const auto& bar = static_cast<const ProgressBar&>(*native.control);
    auto& widget = static_cast<QProgressBar&>(*native.widget);
    const int min = static_cast<int>(bar.Min());
    widget.setRange(min, std::max(static_cast<int>(bar.Max()), min + 1)); // an empty range means "busy" to Qt
    widget.setValue(static_cast<int>(bar.Value()));
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
        native.widget->setEnabled(native.control->Enabled());
    }
    constexpr std::uint32_t kOwn = ~Bit(Property::Enabled);
    const ShowFunction show = ShowFunctionOf(native.control->Kind());
    if (show != nullptr && (native.stale & kOwn) != 0) {
        show(native);
    }
    native.stale = 0;
}

} // namespace ui

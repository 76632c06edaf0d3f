// Makes the Qt widgets. native_state.cpp shows the state of controls in them.
#include "ui/linux/qt/native_control.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>

#include "ui/linux/qt/accessible.h"
#include "ui/linux/qt/native_button.h"
#include "ui/linux/qt/native_list_view.h"
#include "ui/linux/qt/text.h"

namespace ui {
namespace {

constexpr int kShownListItems = 12; // rows of a combo box's open list

QWidget* MakeFrame(const Control& control, QWidget* parent) {
    auto* frame = new QGroupBox(ToQt(control.Design().caption), parent);
    frame->setAccessibleName(
        WithoutMnemonic(control.Design().caption)); // Qt would name it by the frame around it
    return frame;
}

QWidget* MakePictureBox(const Control& /*control*/, QWidget* parent) {
    return new QWidget(parent);
}

QWidget* MakeLabel(const Control& control, QWidget* parent) {
    constexpr int kTwoLines = 30 * kTwipsPerPixel;
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    const bool lines = control.Design().place.height >= kTwoLines;
    label->setWordWrap(lines);
    label->setAlignment(lines ? Qt::AlignTop | Qt::AlignLeft : Qt::AlignVCenter | Qt::AlignLeft);
    return label;
}

QWidget* MakeTextBox(const Control& control, QWidget* parent) {
    if ((control.Design().traits & kMultiLine) == 0) {
        const bool secret = (control.Design().traits & kSecret) != 0;
        auto* line = secret ? new SecretLine(parent) : new QLineEdit(parent);
        line->setMaxLength(INT_MAX);
        return line;
    }
    auto* lines = new QPlainTextEdit(parent);
    lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    lines->setTabChangesFocus(true);
    return lines;
}

QWidget* MakeCommandButton(const Control& control, QWidget* parent) {
    auto* button = new NativeButton(ToQt(control.Design().caption), parent);
    button->setAutoDefault(true); // Enter presses the button that has the focus
    if ((control.Design().traits & kPicture) != 0) {
        button->setIcon(QIcon(":/icons/execute.ico"));
        button->setAccessibleName(ToQt(control.Design().tool_tip)); // for a screen reader
    }
    return button;
}

QWidget* MakeCheckBox(const Control& control, QWidget* parent) {
    return new NativeToggle<QCheckBox>(ToQt(control.Design().caption), parent);
}

QWidget* MakeOptionButton(const Control& control, QWidget* parent) {
    if ((control.Design().traits & kData) != 0) {
        return new NativeDataOption(parent);
    }
    return new NativeToggle<QRadioButton>(parent);
}

QWidget* MakeComboBox(const Control& control, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->setMaxVisibleItems(kShownListItems);
    box->setFocusPolicy(Qt::StrongFocus); // the mouse wheel does not give it the focus
    if (!static_cast<const ComboBox&>(control).IsDropDownList()) {
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->setCompleter(nullptr);
        // In Qt, typing the name of an item chooses the item when the box is left or Enter is pressed. In the
        // model only a choice from the list does.
        QObject::disconnect(box->lineEdit(), &QLineEdit::editingFinished, box, nullptr);
        QObject::disconnect(box->lineEdit(), &QLineEdit::returnPressed, box, nullptr);
    }
    return box;
}

QWidget* MakeListBox(const Control& /*control*/, QWidget* parent) {
    auto* list = new QListWidget(parent);
    list->setUniformItemSizes(true);
    return list;
}

QWidget* MakeListView(const Control& control, QWidget* parent) {
    return new NativeListView(static_cast<const ListView&>(control), parent);
}

QWidget* MakeProgressBar(const Control& /*control*/, QWidget* parent) {
    auto* bar = new QProgressBar(parent);
    bar->setTextVisible(false);
    return bar;
}

using Maker = QWidget* (*)(const Control&, QWidget*);

Maker MakerOf(Kind kind) {
    switch (kind) {
    case Kind::Frame:
        return MakeFrame;
    case Kind::PictureBox:
        return MakePictureBox;
    case Kind::Label:
        return MakeLabel;
    case Kind::TextBox:
        return MakeTextBox;
    case Kind::CommandButton:
        return MakeCommandButton;
    case Kind::CheckBox:
        return MakeCheckBox;
    case Kind::OptionButton:
        return MakeOptionButton;
    case Kind::ComboBox:
        return MakeComboBox;
    case Kind::ListBox:
        return MakeListBox;
    case Kind::ListView:
        return MakeListView;
    case Kind::ProgressBar:
        return MakeProgressBar;
    case Kind::Form:
    case Kind::TabControl:
        break;
    }
    return nullptr; // both are made elsewhere
}

} // namespace

QString IdentifierOf(const Control& control) {
    QString name = control.Name();
    if (control.Index()) {
        name += QString("(%1)").arg(*control.Index());
    }
    return name;
}

QWidget* MakeNativeControl(const Control& control, QWidget* parent) {
    QWidget* widget = MakerOf(control.Kind())(control, parent);
    widget->setObjectName(IdentifierOf(control));
    widget->setToolTip(ToQt(control.Design().tool_tip));
    return widget;
}

} // namespace ui

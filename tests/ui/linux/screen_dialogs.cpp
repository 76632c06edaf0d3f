// Implements the part of ui/screen.h about message boxes and file dialogs, with Qt.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

#include "ui/linux/parts.h"

namespace screen {

Part DialogInFront() {
    QWidget* window = QApplication::activeModalWidget();
    return window != nullptr && window->isVisible() && window->inherits("QDialog") ? window : nullptr;
}

BoxIcon IconOf(Part message_box) {
    switch (As<QMessageBox>(message_box).icon()) {
    case QMessageBox::NoIcon:
        return BoxIcon::None;
    case QMessageBox::Warning:
        return BoxIcon::Exclamation;
    case QMessageBox::Critical:
        return BoxIcon::Critical;
    default:
        return BoxIcon::Other;
    }
}

std::string MessageOf(Part message_box) {
    return Latin(As<QMessageBox>(message_box).text());
}

bool HasChosen(Part dialog, const std::string& name) {
    return As<QFileDialog>(dialog).directory().dirName().toStdString() == name;
}

bool Says(Part dialog, const std::string& text) {
    return Text(dialog) == text;
}

std::vector<std::string> ButtonsOf(Part dialog) {
    std::vector<std::string> captions;
    for (QWidget* button : Of(dialog).findChildren<QPushButton*>()) {
        if (button->isVisible()) {
            captions.push_back(ShownCaption(button));
        }
    }
    return captions;
}

void Dismiss(Part dialog) {
    QMetaObject::invokeMethod(&As<QDialog>(dialog), &QDialog::reject, Qt::QueuedConnection);
}

} // namespace screen

// Corrects what Qt tells assistive technology, such as screen readers, about a password box, the tabs and a
// window.
#pragma once

#include <QLineEdit>

namespace ui {

/// A text box with a password. The screen shows the password; assistive technology cannot read it.
class SecretLine final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;
};

/// Registers a factory with Qt that makes the accessible interfaces of these controls. Must be called once,
/// before the first window is made.
void CorrectAccessibleInterfaces();

} // namespace ui

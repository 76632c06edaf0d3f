// The sides of controls and windows that assistive technology sees, where Qt's own are wrong: a password, the
// tabs, a window.
#pragma once

#include <QLineEdit>

namespace ui {

/// A text box with a password that the screen shows and assistive technology is not given.
class SecretLine final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;
};

/// To be called once, before the first window is made: Qt asks a list of functions for the accessible side of
/// a control.
void CorrectAccessibleInterfaces();

} // namespace ui

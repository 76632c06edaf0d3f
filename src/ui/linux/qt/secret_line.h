// A text box with a password that the screen shows and assistive technology is not given.
#pragma once

#include <QLineEdit>

namespace ui {

class SecretLine final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

    /// To be called once, before the first one is made: Qt asks a list of functions for the side of a control
    /// that assistive technology sees.
    static void HideFromAssistiveTechnology();
};

} // namespace ui

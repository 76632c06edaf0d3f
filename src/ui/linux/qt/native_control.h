// Makes a Qt widget, the native control, for a control of a form, and shows the control's state in it. It
// knows nothing of the window around it.
#pragma once

#include <cstdint>
#include <optional>

#include <QString>
#include <QWidget>

#include "ui/form.h"

namespace ui {

struct NativeControl {
    Control* control = nullptr;
    QWidget* widget = nullptr; ///< owned by the form's window; null until it is made
    std::uint32_t stale = 0;   ///< one bit for each Property that the native control may not show yet
    /// Of a combo box: a text that was not typed, until it is known whether it comes from a choice.
    std::optional<QString> entered;
};

constexpr std::uint32_t Bit(Property property) {
    return std::uint32_t{1} << static_cast<unsigned>(property);
}

/// Makes the native control of a control of any kind but a tab control. Its objectName is the control's
/// identifier. `parent` owns it.
QWidget* MakeNativeControl(const Control& control, QWidget* parent);

/// Returns the control's name with its index, if it has one: "edtServerName(1)", "cmdClose".
QString IdentifierOf(const Control& control);

/// Updates the stale properties that the native control does not show already. Not for a tab control.
void BringInLine(NativeControl& native);

} // namespace ui

// Makes the window of a control, the native control, places it and shows the control's state in it. It knows
// nothing of the form's window around it.
#pragma once

#include <cstdint>

#include "ui/form.h"
#include "ui/windows/dialog_font.h"

#include "platform/windows/lean_windows.h"

namespace ui {

struct NativeControl {
    Control* control = nullptr;
    HWND window = nullptr;   ///< owned by the form's window; null until it is made
    std::uint32_t stale = 0; ///< one bit for each Property that the native control may not show yet
};

constexpr std::uint32_t Bit(Property property) {
    return std::uint32_t{1} << static_cast<unsigned>(property);
}

/// Makes the window of a control of any kind but a tab control. `place` is in pixels, relative to `parent`,
/// which owns the window. `style` is added to the style of the kind, for example WS_VISIBLE. The window is
/// made with as much of the control's state as possible, because on Wine a change after that takes as long
/// again; BringInLine shows the rest.
void MakeNativeControl(NativeControl& native, HWND parent, const RECT& place, DWORD style,
                       const DialogFont& font);

/// Gives the native control a font and a place, in pixels relative to its parent.
void PlaceNativeControl(const NativeControl& native, const RECT& place, const DialogFont& font);

/// Updates the stale properties that the native control does not show already. Not for a tab control.
void BringInLine(NativeControl& native);

/// The text of a native control.
std::string WindowText(HWND window);

/// Converts a colour of the model. A system colour becomes its present value.
COLORREF ToColorRef(Colour colour);
/// The brush of a system colour; for any other colour the brush of a button's face. The system owns it.
HBRUSH SystemBrush(Colour colour);

} // namespace ui

// One native control for each control of a form: makes each kind, places it and shows the control's state.
// It knows nothing of the window around it.
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

/// Makes the window of a control of any kind but a tab control, at its place in its parent, in pixels, and
/// with all of the control's state that a window can be made with: on Wine, a control that is made first and
/// changed then costs twice. BringInLine does the rest.
/// `style` is added to the style of the kind; WS_VISIBLE may be in it.
void MakeNativeControl(NativeControl& native, HWND parent, const RECT& place, DWORD style,
                       const DialogFont& font);

/// Gives it a font and a place in its parent, in pixels.
void PlaceNativeControl(const NativeControl& native, const RECT& place, const DialogFont& font);

/// Updates the stale properties that the native control does not show already. Not for a tab control.
void BringInLine(NativeControl& native);

/// The text of a native control.
std::string WindowText(HWND window);

/// A colour as the program writes it.
COLORREF ToColorRef(Colour colour);
/// The brush of a system colour, owned by the system; that of a button's face for any other colour.
HBRUSH SystemBrush(Colour colour);

} // namespace ui

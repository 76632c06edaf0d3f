// What an operator does to a form. A toolkit reports through these, and tests press the same buttons.
// An act fires what Windows would. On a control that cannot be used it does nothing and gives false.
#pragma once

#include <string>
#include <string_view>

#include "ui/form.h"

namespace ui {

/// True if the form is there, the control and all it lies on are enabled, and its tab is the active one.
bool CanBeUsed(const Control& control);
/// The same for a frame's and a picture's children, without the control's own state: whether it is seen.
bool IsShown(const Control& control);

/// Types the text at the selection, which it takes the place of: Change for each character.
bool Type(TextBox& box, std::string_view text);
/// At the end of a free text: Change for each character. A drop-down list takes none.
bool Type(ComboBox& box, std::string_view text);
bool SelectAll(TextBox& box);

/// The box now holds this text by the operator's doing (a key, a paste, an undo): one Change if it differs.
bool Edit(TextBox& box, const std::string& text);
bool Edit(ComboBox& box, const std::string& text);

/// An item is chosen: Click, and no Change.
bool Choose(ComboBox& box, int index);
bool Choose(ListBox& box, int index);
/// A tab is chosen by mouse or keyboard: Click if it was not the active one. A disabled tab is refused.
bool Choose(TabControl& tabs, int tab);

/// Also by the space bar, Enter or a mnemonic.
bool Click(CommandButton& button);
bool Click(CheckBox& box);
/// Also on the button that is selected.
bool Click(OptionButton& button);

/// The focus is on this control now, or on none of the form's.
void FocusMoved(Form& form, Control* control);
/// The frame's close button, Alt+F4: unloads the form.
void Close(Form& form);

} // namespace ui

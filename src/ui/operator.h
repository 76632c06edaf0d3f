// What an operator does to a form. A toolkit reports through these, and tests press the same buttons.
// An act fires the events that Windows would. On a control that cannot be used it does nothing and returns
// false.
//
// Input can wait in the system's queue while a handler runs. It is judged by the state that its control had
// when it arrived, and not by the state at its delivery: a second click on a command must not start the
// command again. So for each press of a key or of the mouse's button a toolkit
//  - asks Accepts or AcceptsPress before the native control sees it, and gives the native control no press
//    that is refused (for the mouse also the press on a disabled control, which the system may deliver to its
//    parent; for a command button that has the focus only the keys that press it: Tab leads on);
//  - gives a command button no repeats of a key that is held down;
//  - reports a click of a command button with the time at which the input arrived: a mnemonic's, Enter's and
//    Escape's button is not known before.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "ui/form.h"

namespace ui {

/// True if the form is not unloaded, the control and all that it lies on are enabled, and its tab is active.
bool CanBeUsed(const Control& control);
/// True if the form is not unloaded and the control's tab is active, whether or not the control is enabled.
bool IsShown(const Control& control);

/// Presses of a command button that follow each other within this time are one double click; Windows' own
/// setting is the same by default. A toolkit takes the system's setting where that is longer.
inline constexpr std::chrono::milliseconds kDoubleClickTime{500};

/// Nobody sees that a command has ended and presses its button again within this time: such a press was meant
/// for the command that ran.
inline constexpr std::chrono::milliseconds kReactionTime{200};

/// True for input that arrived at that time and may reach the control: since then nothing that it lies on was
/// disabled, and if it is a command button, its command neither ran nor had just ended.
bool Accepts(const Control& control, InputClock::time_point arrived);
/// The same for a press of the mouse's button, which must be reported once. Of a double click a command
/// button takes the first press only.
bool AcceptsPress(Control& control, InputClock::time_point arrived,
                  std::chrono::milliseconds double_click = kDoubleClickTime);

/// Types the text in place of the selection. Fires Change for each character.
bool Type(TextBox& box, std::string_view text);
/// Types the text at the end of a free text. Fires Change for each character. A drop-down list accepts no
/// text.
bool Type(ComboBox& box, std::string_view text);
bool SelectAll(TextBox& box);

/// The operator has changed the whole text to this one (by a key, a paste, an undo). Fires one Change if the
/// text differs.
bool Edit(TextBox& box, const std::string& text);
bool Edit(ComboBox& box, const std::string& text);

/// The operator chooses an item. Fires Click, and no Change.
bool Choose(ComboBox& box, int index);
bool Choose(ListBox& box, int index);
/// The operator chooses a tab by mouse or keyboard. Fires Click, also if the tab is active already. A
/// disabled tab is refused.
bool Choose(TabControl& tabs, int tab);

/// The operator presses the button by mouse, space bar, Enter or a mnemonic. Refused while the button's
/// command runs, and if Accepts refuses input that arrived at that time. A click without a time comes from a
/// program, not from the input queue.
bool Click(CommandButton& button, std::optional<InputClock::time_point> arrived = std::nullopt);
bool Click(CheckBox& box);
/// Fires Click also if the button is selected already.
bool Click(OptionButton& button);

/// The focus is on this control now; null if it is on no control of the form.
void FocusMoved(Form& form, Control* control);
/// The frame's close button, Alt+F4: unloads the form.
void Close(Form& form);

} // namespace ui

// The acts of the operator, the person who uses the program, one function for each. A toolkit calls them when
// the operator uses the native controls; tests call them instead of an operator. An act fires the events that
// Windows would fire. On a control that cannot be used it does nothing and returns false; otherwise it
// returns true. What a handler throws goes to the caller.
//
// Input can wait in the system's queue while a handler runs. It is judged by the state that its control had
// when it arrived, not when it is delivered: a second click on a command must not start the command again. So
// for each press of a key or of the mouse's button a toolkit
//  - asks Accepts or AcceptsPress first, and passes the press on to the native control only if the answer is
//    true. It asks for a mouse press on a disabled control too, which the system may deliver to the parent.
//    For a command button that has the focus it asks only for the keys that press the button, not for Tab;
//  - passes no repeats of a key that is held down on to a command button;
//  - reports a click of a command button with the time at which the input arrived: which button a mnemonic,
//    Enter or Escape presses is known only after the key was delivered.
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

/// Presses of a command button that follow each other within this time are one double click. It is the
/// default of Windows. A toolkit uses the system's setting if that is longer.
inline constexpr std::chrono::milliseconds kDoubleClickTime{500};

/// A press of a button within this time after its command has ended is refused: nobody reacts so quickly, so
/// the press was made before the operator saw the end.
inline constexpr std::chrono::milliseconds kReactionTime{200};

/// True if input that arrived at that time may reach the control: it can be used, it and all that it lies on
/// have been enabled since then, and if it is a command button, its command was not running then and had not
/// just ended.
bool Accepts(const Control& control, InputClock::time_point arrived);
/// The same for a press of the mouse's button. Must be called exactly once for each press. Of a double click
/// a command button accepts only the first press.
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

/// The operator presses the button by mouse, space bar, Enter or a mnemonic. Returns false while the button's
/// command runs, and if Accepts refuses input that arrived at that time. A click without a time comes from a
/// program such as a screen reader, not from the input queue.
bool Click(CommandButton& button, std::optional<InputClock::time_point> arrived = std::nullopt);
bool Click(CheckBox& box);
/// Fires Click also if the button is selected already.
bool Click(OptionButton& button);

/// The operator has moved the focus to this control; null if to no control of the form.
void FocusMoved(Form& form, Control* control);
/// The operator presses the window's close button or Alt+F4: unloads the form.
void Close(Form& form);

} // namespace ui

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
/// The same for a frame's and a picture's children, without the control's own state: whether it is seen.
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

/// Types the text at the selection, which it takes the place of: Change for each character.
bool Type(TextBox& box, std::string_view text);
/// At the end of a free text: Change for each character. A drop-down list accepts no text.
bool Type(ComboBox& box, std::string_view text);
bool SelectAll(TextBox& box);

/// The box now holds this text by the operator's doing (a key, a paste, an undo): one Change if it differs.
bool Edit(TextBox& box, const std::string& text);
bool Edit(ComboBox& box, const std::string& text);

/// An item is chosen: Click, and no Change.
bool Choose(ComboBox& box, int index);
bool Choose(ListBox& box, int index);
/// A tab is chosen by mouse or keyboard: Click, also on the active one. A disabled tab is refused.
bool Choose(TabControl& tabs, int tab);

/// Also by the space bar, Enter or a mnemonic. Refused while the command runs, and where Accepts refuses what
/// arrived at that time. A click without a time comes from a program, not from the input queue.
bool Click(CommandButton& button, std::optional<InputClock::time_point> arrived = std::nullopt);
bool Click(CheckBox& box);
/// Also on the button that is selected.
bool Click(OptionButton& button);

/// The focus is on this control now; null if it is on no control of the form.
void FocusMoved(Form& form, Control* control);
/// The frame's close button, Alt+F4: unloads the form.
void Close(Form& form);

} // namespace ui

// Works at windows of another process by mouse and keyboard, and reads its list views, trees and tab strips.
// The messages for that carry pointers, which must be valid in the other process: the data is written to its
// memory and read from it.
//
// The window gets the keyboard before any key is pressed. Input can still be lost: the other process may
// handle an event of the display in that moment, which takes its focus away or tells it which keys are held
// on the display's own keyboard. So a function that can see the effect of its input sends the input again
// until there is one. A wait ends after about a minute with an exception, or with false where a function says
// so.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace remote_controls {

/// Presses and releases a key while the `held` keys are down, in a window that can be activated. Does not
/// check the effect.
void Press(HWND window, WORD key, const std::vector<WORD>& held = {});
/// Presses a key again and again until the effect is seen; not at all if it is there already. Only for a key
/// that does no harm when it is pressed once more. False if there is no effect.
bool PressUntil(HWND window, const std::function<bool()>& effect, WORD key,
                const std::vector<WORD>& held = {});
/// Types into the control of the window that has the focus. Does not check the effect.
void Type(HWND window, const std::string& text);
/// Replaces the text of a text box, or of a combo box that takes free text, by mouse and keyboard.
void Fill(HWND box, const std::string& text);

/// Clicks at a point in the window's client area. First waits until the pointer rests there, because the
/// display reports moves to the other process with a delay. A window that has just appeared can miss a click
/// (2 of 150 on a busy machine), so the caller must check the effect.
void ClickAt(HWND window, int x, int y);
/// Clicks in the middle of a window that is not a button.
void Click(HWND window);
/// Clicks on a button of any kind, and waits until the button is down before it releases the mouse. Waits
/// before the click as long as a person needs to notice that the button can be used again.
void ClickButton(HWND button);
/// Clicks on a button twice, at least `between` apart, and does not check the effect. Returns the longest
/// time that can have passed between the clicks.
std::chrono::milliseconds ClickTwice(HWND button, std::chrono::milliseconds between);

/// The rectangle of a tab in the tab strip's client area. `process` needs access to the process's memory, as
/// it does for the functions below.
RECT TabPlace(HANDLE process, HWND tabs, int tab);

std::vector<std::string> Headers(HANDLE process, HWND list_view);

/// The cells of one row, counted from 0; a text ends after its 259th character.
std::vector<std::string> Row(HANDLE process, HWND list_view, int row, int columns);

/// The text of the selected item of a tree; "" if nothing is selected.
std::string SelectedInTree(HANDLE process, HWND tree);

} // namespace remote_controls

// Clicks on windows of another process, and reads its list views, trees and tab strips. The messages for that
// carry pointers, which must be valid in the other process: the data is written to its memory and read from
// it.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace remote_controls {

/// Clicks at a point in the window's client area. First waits until the pointer rests there, because the
/// display reports moves to the other process with a delay. Throws if the pointer does not come to rest. A
/// window that has just appeared can miss a click (2 of 150 on a busy machine), so the caller must check the
/// effect.
void ClickAt(HWND window, int x, int y);
/// Clicks in the middle of a window that is not a button.
void Click(HWND window);
/// Clicks on a button of any kind, and waits until the button is down before it releases the mouse. Throws if
/// the button does not go down. Waits before the click as long as a person needs to notice that the button
/// can be used again.
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

// Clicks into the windows of another process, and reads its list views, trees and tab strips. The messages
// for that have pointers, which must be valid in the other process: the data is written to its memory and
// read from it.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace remote_controls {

/// Clicks there, in the window's client area, once the pointer has come to rest: the display tells the other
/// process of a move late, and of the one before it as well. Throws if the pointer does not come to rest.
/// Now and then a click goes past a window that has just come up (2 of 150 on a machine under load): what it
/// is to bring about must be looked for.
void ClickAt(HWND window, int x, int y);
/// In the middle of the window, which is no button.
void Click(HWND window);
/// Clicks on a button of any kind, and sees it go down before it lets go. Throws if it does not. Before it
/// presses it rests as long as a person needs to see that the button is back.
void ClickButton(HWND button);
/// Clicks on a button two times, that far apart or a little further, whatever the button makes of it. Returns
/// how far apart they were at most.
std::chrono::milliseconds ClickTwice(HWND button, std::chrono::milliseconds between);

/// Where a tab of the strip is, in the strip's client area. `process` needs the right to its memory, here and
/// below.
RECT TabPlace(HANDLE process, HWND tabs, int tab);

std::vector<std::string> Headers(HANDLE process, HWND list_view);

/// The cells of one row, counted from 0; a text ends after its 259th character.
std::vector<std::string> Row(HANDLE process, HWND list_view, int row, int columns);

/// The text of the item that is selected in a tree; "" if nothing is selected.
std::string SelectedInTree(HANDLE process, HWND tree);

} // namespace remote_controls

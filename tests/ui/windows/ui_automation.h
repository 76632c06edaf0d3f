// Real mouse and keyboard input for tests on a screen, windows found by their identifiers, and pictures of
// the screen. It knows no program and no toolkit.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace ui_automation {

/// Waits until the condition holds, letting this thread's windows run meanwhile; false if it takes too long.
bool WaitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::minutes(1));

/// The window below `top`, at any depth, with this identifier; null if there is no such window.
HWND Child(HWND top, int id);
std::string Text(HWND window);
/// The text of a label or a window, without asking the thread that it belongs to, which may be at work.
std::string Caption(HWND window);
std::string ClassOf(HWND window);
/// Where the window is in the client area of another.
RECT PlaceIn(HWND window, HWND other);

/// Brings the window to the front and waits until the keyboard goes to it.
bool Activate(HWND window);

/// The control that has the focus in the thread of that window, of whatever process.
HWND FocusIn(HWND top);

/// Presses the left button down there, in the window's client area.
void PressAt(HWND window, int x, int y);
/// Lets it go again.
void ReleaseAt(HWND window, int x, int y);
/// Both at once.
void ClickAt(HWND window, int x, int y);
/// In the middle of the window.
void Click(HWND window);
/// The keys of these characters: letters, digits, blanks and the signs of a US keyboard.
void Type(const std::string& text);
/// Presses a key while others are held.
void Press(WORD key, const std::vector<WORD>& held = {});
/// Presses a key, lets it come down `repeats` times more as a keyboard does, and lets it go.
void Hold(WORD key, int repeats);

/// Writes what the screen shows of the window with its frame into a bitmap file.
bool TakePicture(HWND window, const std::string& path);

} // namespace ui_automation

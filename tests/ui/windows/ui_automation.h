// Real mouse and keyboard input for tests on a screen. Also finds windows by their identifiers, and takes
// pictures. It knows no program and no toolkit.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace ui_automation {

/// Waits until the condition holds, and handles this thread's messages meanwhile. False after `limit`, of
/// which a look at the condition uses up a tenth of a second at most, however long it takes.
bool WaitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::minutes(1));

/// The window below `top`, at any depth, with this identifier; null if there is no such window.
HWND Child(HWND top, int id);
std::string Text(HWND window);
/// The text of a label or a window, read without a message to its thread, which may be busy.
std::string Caption(HWND window);
std::string ClassOf(HWND window);
/// The window's rectangle in the client area of another window.
RECT PlaceIn(HWND window, HWND other);

/// Brings the window to the front and waits until it or a control in it has had the keyboard's input for some
/// time. False after `limit`, and if the window goes.
bool Activate(HWND window, std::chrono::milliseconds limit = std::chrono::minutes(1));

/// The control that has the focus in the thread of that window, which may belong to another process.
HWND FocusIn(HWND top);
/// The window that gets the mouse's input while a button is held, in the same thread.
HWND CaptureIn(HWND top);

/// Presses the left mouse button at a point in the window's client area.
void PressAt(HWND window, int x, int y);
/// Releases the left mouse button there.
void ReleaseAt(HWND window, int x, int y);
/// Presses and releases the left mouse button there.
void ClickAt(HWND window, int x, int y);
/// Clicks in the middle of the window.
void Click(HWND window);
/// Types characters of a US keyboard: letters, digits, blanks and signs.
void Type(const std::string& text);
/// The same without keys, as an on-screen keyboard does it: no Shift has to be held for it.
void TypeCharacters(const std::string& text);
/// Presses and releases a key while the `held` keys are down.
void Press(WORD key, const std::vector<WORD>& held = {});
void PressDown(WORD key);
void Release(WORD key);
/// True as long as the key is held.
bool IsDown(WORD key);
/// Presses a key, repeats it `repeats` times as a held key does, and releases it.
void Hold(WORD key, int repeats);

/// Writes a bitmap file with what the screen shows of the window and its frame.
bool TakePicture(HWND window, const std::string& path);

} // namespace ui_automation

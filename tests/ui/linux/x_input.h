// Sends mouse and keyboard input to the X server, with its extension for tests (XTEST) and over a connection
// of its own, so that the input reaches the program like that of a person. The members may be called from any
// thread.
#pragma once

#include <vector>

#include <QPoint>

#include "ui/screen.h"

namespace screen {

class XInput {
  public:
    using Symbol = unsigned long;

    XInput();
    XInput(const XInput&) = delete;
    XInput& operator=(const XInput&) = delete;
    ~XInput();

    /// The number of program windows that the window manager has on the screen.
    int ManagedWindows();
    /// The upper left corner of a window's contents, as the display reports it. Places are in pixels of the
    /// screen.
    QPoint CornerOf(unsigned long window);
    void MoveTo(QPoint point);
    /// Moves the pointer by one pixel, alternately to the right and to the left.
    void Nudge();
    void Click();
    void Type(char character);
    void Press(Symbol key, const std::vector<Symbol>& held = {});
    /// Presses a key, sends `repeats` more presses, as a keyboard does while a key is held down, and releases
    /// the key.
    void Hold(Symbol key, int repeats);
    /// Presses a key that no program uses, F24.
    void PressNothing();

    static Symbol SymbolOf(Key key);
    static Symbol SymbolOf(Held held);

  private:
    void Send(Symbol key, bool down);

    int nudge_ = -1;
    void* display_ =
        nullptr; ///< Xlib's Display; its header is not included here: it has macros with names of Qt
};

} // namespace screen

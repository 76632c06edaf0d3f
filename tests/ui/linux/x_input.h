// Mouse and keyboard input of an X server, sent by its extension for tests (XTEST) over a connection apart
// from Qt's: it reaches the program as a person's input does. Its members may be called from any thread.
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

    /// How many windows of programs the window manager has on the screen.
    int ManagedWindows();
    /// Where the display has a window's contents. In pixels of the screen, as below.
    QPoint CornerOf(unsigned long window);
    void MoveTo(QPoint point);
    /// By one pixel, to and fro.
    void Nudge();
    void Click();
    void Type(char character);
    void Press(Symbol key, const std::vector<Symbol>& held = {});
    /// Presses a key, lets it come down `repeats` times more as a keyboard does, and lets it go.
    void Hold(Symbol key, int repeats);
    /// A key that no program has a use for: F24.
    void PressNothing();

    static Symbol SymbolOf(Key key);
    static Symbol SymbolOf(Held held);

  private:
    void Send(Symbol key, bool down);

    int nudge_ = -1;
    void* display_ = nullptr; ///< of Xlib, whose header has macros with names that Qt uses
};

} // namespace screen

// Mouse and keyboard of an X server, by its extension for tests, on a connection of its own: what is sent
// here comes to the program as a person's input does.
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

    /// In pixels of the screen.
    void MoveTo(QPoint point);
    void Click();
    void Type(char character);
    void Press(Symbol key, const std::vector<Symbol>& held = {});
    /// A key that no program has a use for: F24.
    void PressNothing();

    static Symbol SymbolOf(Key key);
    static Symbol SymbolOf(Held held);

  private:
    void Send(Symbol key, bool down);

    void* display_; ///< Xlib's; its header has macros by names that Qt uses
};

} // namespace screen

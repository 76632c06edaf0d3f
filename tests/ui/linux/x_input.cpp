// Sends the events of XTEST.
#include "ui/linux/x_input.h"

#include <map>
#include <stdexcept>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace screen {
namespace {

Display* Of(void* display) {
    return static_cast<Display*>(display);
}

} // namespace

XInput::XInput() {
    ::XInitThreads();
    display_ = ::XOpenDisplay(nullptr);
    if (display_ == nullptr) {
        throw std::runtime_error("there is no X server");
    }
}

XInput::~XInput() {
    ::XCloseDisplay(Of(display_));
}

int XInput::ManagedWindows() {
    const ::Atom list = ::XInternAtom(Of(display_), "_NET_CLIENT_LIST", False);
    ::Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* windows = nullptr;
    constexpr long kMost = 1000;
    ::XGetWindowProperty(Of(display_), DefaultRootWindow(Of(display_)), list, 0, kMost, False, XA_WINDOW,
                         &type, &format, &count, &left, &windows);
    ::XFree(windows);
    return static_cast<int>(count);
}

QPoint XInput::CornerOf(unsigned long window) {
    int x = 0;
    int y = 0;
    ::Window child = 0;
    ::XTranslateCoordinates(Of(display_), window, DefaultRootWindow(Of(display_)), 0, 0, &x, &y, &child);
    return {x, y};
}

void XInput::MoveTo(QPoint point) {
    ::XTestFakeMotionEvent(Of(display_), -1, point.x(), point.y(), CurrentTime);
    ::XSync(Of(display_), False);
}

void XInput::Nudge() {
    nudge_ = -nudge_;
    ::XTestFakeRelativeMotionEvent(Of(display_), nudge_, 0, CurrentTime);
    ::XSync(Of(display_), False);
}

void XInput::Click() {
    ::XTestFakeButtonEvent(Of(display_), 1, True, CurrentTime);
    ::XTestFakeButtonEvent(Of(display_), 1, False, CurrentTime);
    ::XSync(Of(display_), False);
}

void XInput::Send(Symbol key, bool down) {
    ::XTestFakeKeyEvent(Of(display_), ::XKeysymToKeycode(Of(display_), key), down ? True : False,
                        CurrentTime);
}

void XInput::Press(Symbol key, const std::vector<Symbol>& held) {
    for (const Symbol one : held) {
        Send(one, true);
    }
    Send(key, true);
    Send(key, false);
    for (auto one = held.rbegin(); one != held.rend(); ++one) {
        Send(*one, false);
    }
    ::XSync(Of(display_), False);
}

void XInput::Hold(Symbol key, int repeats) {
    for (int time = 0; time <= repeats; ++time) {
        Send(key, true);
    }
    Send(key, false);
    ::XSync(Of(display_), False);
}

/// A key's symbol is the character's code in Latin 1. A character on a key's second level needs Shift.
void XInput::Type(char character) {
    const auto symbol = static_cast<Symbol>(static_cast<unsigned char>(character));
    const KeyCode code = ::XKeysymToKeycode(Of(display_), symbol);
    const bool shift = ::XkbKeycodeToKeysym(Of(display_), code, 0, 0) != symbol;
    shift ? Press(symbol, {XK_Shift_L}) : Press(symbol);
}

void XInput::PressNothing() {
    if (::XKeysymToKeycode(Of(display_), XK_F24) == 0) {
        constexpr int kFree = 248; // a key code that no usual keyboard has
        KeySym symbol = XK_F24;
        ::XChangeKeyboardMapping(Of(display_), kFree, 1, &symbol, 1);
        ::XSync(Of(display_), False);
    }
    Press(XK_F24);
}

XInput::Symbol XInput::SymbolOf(Key key) {
    static const std::map<Key, Symbol> symbols = {
        {Key::Tab, XK_Tab},   {Key::Enter, XK_Return}, {Key::Escape, XK_Escape}, {Key::Space, XK_space},
        {Key::Home, XK_Home}, {Key::End, XK_End},      {Key::Left, XK_Left},     {Key::Right, XK_Right},
        {Key::Up, XK_Up},     {Key::Down, XK_Down},    {Key::PageUp, XK_Prior},  {Key::PageDown, XK_Next},
        {Key::F4, XK_F4},     {Key::C, XK_c},          {Key::P, XK_p},           {Key::R, XK_r},
        {Key::U, XK_u},
    };
    return symbols.at(key);
}

XInput::Symbol XInput::SymbolOf(Held held) {
    static const std::map<Held, Symbol> symbols = {
        {Held::Control, XK_Control_L}, {Held::Shift, XK_Shift_L}, {Held::Alt, XK_Alt_L}};
    return symbols.at(held);
}

} // namespace screen

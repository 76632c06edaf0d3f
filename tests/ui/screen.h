// A screen with a form's native window on it, as a test sees it and works at it: by real mouse and keyboard
// input, whichever toolkit shows the form. windows/screen.cpp and linux/screen.cpp stand for the two.
#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "ui/form.h"

namespace screen {

/// A native window or control; null where there is none.
using Part = void*;

struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Holds(const Box& other) const {
        return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
    }
    bool Meets(const Box& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

bool IsThere();
/// Waits until the condition holds, letting this thread's windows run meanwhile; false if it takes too long.
bool WaitFor(const std::function<bool()>& condition, std::chrono::seconds limit = std::chrono::seconds(60));
/// Calls `step` every few milliseconds from within whatever loop runs the windows, until it gives true or
/// this goes.
class Meanwhile {
  public:
    explicit Meanwhile(std::function<bool()> step);
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;
    ~Meanwhile();
};

// --- finding

Part WindowOf(const ui::Form& form);
/// Null as long as the control has no native one.
Part Find(const ui::Form& form, const ui::Control& control);
Part ParentOf(Part part);
/// The control of the form that has the keyboard's focus; null if none has.
const ui::Control* Focused(const ui::Form& form);

// --- seeing

bool IsOfKind(Part part, ui::Kind kind);
bool IsShown(Part part);
bool IsEnabled(Part part);
/// The caption or text. A window's is its title.
std::string Text(Part part);
bool IsTicked(Part part);
bool IsReadOnly(Part part);
/// Begin and end of what is selected in a text box.
std::pair<int, int> Selection(Part part);
/// Of a combo box or list box.
int ItemCount(Part part);
/// -1 if none is.
int ChosenItem(Part part);
bool IsDroppedDown(Part combo_box);
int BarMax(Part bar);
int BarValue(Part bar);
int ShownTab(Part tabs);

int RowCount(Part list_view);
int ColumnCount(Part list_view);
std::string Cell(Part list_view, int row, int column);
int ColumnWidth(Part list_view, int column);
bool HasGridAndFullRows(Part list_view);

int WidthOfText(Part part, const std::string& text);
/// What a control of that kind leaves for its caption.
int RoomForCaption(Part part, ui::Kind kind);
Box PlaceIn(Part part, Part other);
/// A window with its frame, on the screen.
Box FrameOf(Part window);
/// Where the children of a part may lie, and where a window's controls do.
Box Room(Part part);
Box TabPlace(Part tabs, int tab);
Box ItemPlace(Part list_box, int item);

enum class Pointer { Arrow, Beam, Hourglass, Other };
/// What the pointer looks like once it has been moved onto the part.
Pointer PointerOver(Part part);
/// The text of the tool tip on show; "" without one.
std::string ToolTip();

/// Writes what the screen shows of the window with its frame into a file, whose name gets an ending: .bmp on
/// Windows, .png on Linux.
bool TakePicture(Part window, const std::string& path);

/// The sizes at which a form must fit: pixels per inch on Windows, points of the desktop's font on Linux. The
/// first is the usual one.
std::vector<int> Sizes();
void SetSize(Part window, int size);

// --- working

enum class Key {
    Tab,
    Enter,
    Escape,
    Space,
    Home,
    End,
    Left,
    Right,
    Up,
    Down,
    PageUp,
    PageDown,
    F4,
    C,
    P,
    R,
    U
};
enum class Held { Control, Shift, Alt };

/// Brings the window to the front and waits until the keyboard goes to it.
bool Activate(Part window);
void Click(Part part);
void ClickAt(Part part, int x, int y);
/// Letters, digits, blanks and what stands on a US keyboard.
void Type(const std::string& text);
void Press(Key key, std::initializer_list<Held> held = {});
/// Returns when all input sent so far has been dealt with.
bool InputArrived();
/// As the frame's button does it, once the loop is back.
void CloseByFrame(Part window);

} // namespace screen

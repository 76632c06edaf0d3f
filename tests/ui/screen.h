// A screen that shows a form's native window: what a test sees of it, and real mouse and keyboard input.
// The same for both toolkits; windows/screen.cpp and linux/screen.cpp implement it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "ui/form.h"

namespace screen {

/// A native window or control; null if there is none.
using Part = void*;

/// A place on the screen, in pixels.
struct Spot {
    int x = 0;
    int y = 0;
};

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
bool WaitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::minutes(1));
/// Calls `step` every few milliseconds from within whatever loop runs the windows (a modal dialog's too),
/// until it returns true or this object goes. There is one at a time.
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
/// The control of the form that has the keyboard's focus; null if no control has it.
const ui::Control* Focused(const ui::Form& form);

// --- seeing

bool IsOfKind(Part part, ui::Kind kind);
bool IsShown(Part part);
bool IsEnabled(Part part);
/// The caption or text. A window's is its title.
std::string Text(Part part);
/// The caption as it is painted: without the "&" of a mnemonic.
std::string ShownCaption(Part part);
/// The sign for the part of a caption that is left out.
std::string Ellipsis();
/// How many more characters one end of such a caption may have than the other.
std::size_t EllipsisOffset();
bool IsTicked(Part part);
bool IsReadOnly(Part part);
/// Begin and end of what is selected in a text box.
std::pair<int, int> Selection(Part part);
/// Of a combo box or list box.
int ItemCount(Part part);
/// -1 if nothing is chosen.
int ChosenItem(Part part);
bool IsDroppedDown(Part combo_box);
int BarMin(Part bar);
int BarMax(Part bar);
int BarValue(Part bar);
int ShownTab(Part tabs);

int RowCount(Part list_view);
int ColumnCount(Part list_view);
std::string Cell(Part list_view, int row, int column);
int ColumnWidth(Part list_view, int column);
/// The width that the columns share.
int ViewWidth(Part list_view);
/// How many characters of a cell are shown at most.
std::size_t LongestCell();
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
/// 0 without a tool tip.
int ToolTipWidth();

bool HasIcon(Part window);
bool HasPicture(Part button);
/// Changes are not painted until painting is allowed again.
bool PaintingIsLocked(Part window);

/// 0xRRGGBB.
using Colour = std::uint32_t;
enum class Look { Face, TextBackground, DisabledText };
/// The desktop's colour for that.
Colour ColourOf(Look look);
/// What the screen shows of that part of a window or control, row by row. The window must be in front.
std::vector<Colour> Pixels(Part part, const Box& box);

/// Writes what the screen shows of the window with its frame into a file, whose name gets an ending: .bmp on
/// Windows, .png on Linux.
bool TakePicture(Part window, const std::string& path);

/// The sizes at which a form must fit: pixels per inch on Windows, points of the desktop's font on Linux. The
/// first is the usual one.
std::vector<int> Sizes();
void SetSize(Part window, int size);
/// The part of the screen that windows may cover.
Box WorkArea();

// --- dialogs of the system: message boxes and pickers

/// The topmost one that this program has on the screen; null without one.
Part DialogInFront();
enum class BoxIcon { None, Exclamation, Critical, Other };
BoxIcon IconOf(Part message_box);
std::string MessageOf(Part message_box);
/// True if that text is the dialog's title or written in it.
bool Says(Part dialog, const std::string& text);
/// True if the dialog for a folder has come to the one with this name.
bool HasChosen(Part dialog, const std::string& name);
/// The captions of its buttons, left to right, without mnemonics.
std::vector<std::string> ButtonsOf(Part dialog);
/// Cancels the dialog, or closes a message box, without any input: the end of a test that failed.
void Dismiss(Part dialog);

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
Spot MiddleOf(Part part);
/// May be called from any thread: a person clicks whatever the program does.
void ClickAt(Spot spot);
/// Letters, digits, blanks and the signs of a US keyboard.
void Type(const std::string& text);
void Press(Key key, std::initializer_list<Held> held = {});
/// Presses a key and lets it come down `repeats` times more, as a keyboard does while a key is held; then it
/// is let go.
void Hold(Key key, int repeats);
/// Returns when all input sent so far has been dealt with.
bool InputArrived();
/// As the button of the window's frame does it, but only when pending events run.
void CloseByFrame(Part window);

} // namespace screen

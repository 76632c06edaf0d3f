// Gives a test access to the real screen: reads what native windows show, and sends real mouse and keyboard
// input. It is the same for both toolkits; windows/screen.cpp and linux/screen.cpp implement it. Unless a
// function says otherwise, the given part must exist and be of the right kind.
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

/// True if there is a screen.
bool IsThere();
/// Waits until the condition holds, and runs the events of this thread's windows meanwhile. Returns false if
/// the limit is reached.
bool WaitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::minutes(1));
/// Calls `step` every few milliseconds from the loop that runs the windows, also from that of a modal dialog,
/// until it returns true or this object is destroyed. Only one may exist at a time.
class Meanwhile {
  public:
    explicit Meanwhile(std::function<bool()> step);
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;
    ~Meanwhile();
};

// --- finding windows and controls

Part WindowOf(const ui::Form& form);
/// The native control of a control; null until it is made.
Part Find(const ui::Form& form, const ui::Control& control);
Part ParentOf(Part part);
/// The control of the form that has the keyboard's focus; null if no control has it.
const ui::Control* Focused(const ui::Form& form);

// --- reading what they show. Places and sizes are in pixels.

bool IsOfKind(Part part, ui::Kind kind);
bool IsShown(Part part);
bool IsEnabled(Part part);
/// The caption or text of a control; the title of a window.
std::string Text(Part part);
/// The caption as it is painted: without the "&" of a mnemonic.
std::string ShownCaption(Part part);
/// The text that replaces the middle of a caption that is too long: "..." or one character.
std::string Ellipsis();
/// How many more characters one end of such a caption may have than the other end.
std::size_t EllipsisOffset();
bool IsTicked(Part part);
bool IsReadOnly(Part part);
/// The begin and the end of the selection in a text box, in characters.
std::pair<int, int> Selection(Part part);
/// The number of items in a combo box or list box.
int ItemCount(Part part);
/// The index of the selected item; -1 if none is selected.
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
/// The width of the area in which a list view shows its columns.
int ViewWidth(Part list_view);
/// The largest number of characters of a cell that are shown.
std::size_t LongestCell();
bool HasGridAndFullRows(Part list_view);

int WidthOfText(Part part, const std::string& text);
/// The width that a control of that kind has for its caption.
int RoomForCaption(Part part, ui::Kind kind);
/// A part's place relative to another part.
Box PlaceIn(Part part, Part other);
/// The place of a window with its frame on the screen.
Box FrameOf(Part window);
/// The area in which the children of a part may lie.
Box Room(Part part);
Box TabPlace(Part tabs, int tab);
Box ItemPlace(Part list_box, int item);

enum class Pointer { Arrow, Beam, Hourglass, Other };
/// Moves the pointer onto the part and returns its shape there.
Pointer PointerOver(Part part);
/// The text of the tool tip that is shown; "" if none is.
std::string ToolTip();
/// The width of the tool tip; 0 if none is shown.
int ToolTipWidth();

bool HasIcon(Part window);
bool HasPicture(Part button);
/// True if changes of the window are not painted at present.
bool PaintingIsLocked(Part window);

/// 0xRRGGBB.
using Colour = std::uint32_t;
enum class Look { Face, TextBackground, DisabledText };
/// The desktop's colour for a button's face, the background of a text box, or a disabled text.
Colour ColourOf(Look look);
/// The pixels that the screen shows in `box`, which is relative to the part, row by row. The window must be
/// in front.
std::vector<Colour> Pixels(Part part, const Box& box);

/// Writes the picture that the screen shows of the window and its frame into a file. Appends .bmp (Windows)
/// or .png (Linux) to the path. Returns false if it cannot be written.
bool TakePicture(Part window, const std::string& path);

/// The sizes at which a form must fit: on Windows the pixels per inch of the monitor, on Linux the size of
/// the desktop's font in points. The first is the usual size.
std::vector<int> Sizes();
void SetSize(Part window, int size);
/// The part of the screen that windows may cover.
Box WorkArea();

// --- dialogs of the system: message boxes and pickers

/// The topmost dialog of this program on the screen; null if there is none.
Part DialogInFront();
enum class BoxIcon { None, Exclamation, Critical, Other };
BoxIcon IconOf(Part message_box);
std::string MessageOf(Part message_box);
/// True if the text is the dialog's title or is shown in it.
bool Says(Part dialog, const std::string& text);
/// True if the folder with this name is selected in the folder dialog.
bool HasChosen(Part dialog, const std::string& name);
/// The captions of its buttons, left to right, without mnemonics.
std::vector<std::string> ButtonsOf(Part dialog);
/// Cancels the dialog or closes the message box, without input. It ends a test that has failed.
void Dismiss(Part dialog);

// --- input

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

/// Brings the window to the front and waits until it receives the keyboard's input. Returns false if it never
/// does.
bool Activate(Part window);
void Click(Part part);
void ClickAt(Part part, int x, int y);
Spot MiddleOf(Part part);
/// May be called from any thread, so that a test can click while the program is busy.
void ClickAt(Spot spot);
/// Types letters, digits, blanks and the other characters of a US keyboard.
void Type(const std::string& text);
void Press(Key key, std::initializer_list<Held> held = {});
/// Presses a key, sends `repeats` more presses, as a keyboard does while a key is held down, and releases the
/// key.
void Hold(Key key, int repeats);
/// Waits until all input that was sent has been handled. Returns false if that takes too long.
bool InputArrived();
/// Asks the window to close, as its close button does. It happens when pending events run.
void CloseByFrame(Part window);

} // namespace screen

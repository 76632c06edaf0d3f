// The data that a form is made from: one row for each control. Knows no toolkit and no particular form.
//
// Each row makes one object of the model and, where a toolkit shows the form, one native control.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/twips.h"

namespace ui {

enum class Kind : std::uint8_t {
    Form,
    Frame,
    PictureBox,
    Label,
    TextBox,
    CommandButton,
    CheckBox,
    OptionButton,
    ComboBox,
    ListBox,
    ListView,
    ProgressBar,
    TabControl,
};

using platform::kTwipsPerPixel;

/// A position and size in twips. Relative to the parent's upper left corner: a frame's own border and
/// caption, and a tab control's tabs, lie inside its place.
struct Place {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

/// A place in pixels of a screen with 96 DPI.
constexpr Place Pixels(int left, int top, int width, int height) {
    return {left * kTwipsPerPixel, top * kTwipsPerPixel, width * kTwipsPerPixel, height * kTwipsPerPixel};
}

/// Further properties of a row, combined by "|".
enum Trait : std::uint32_t {
    kPlain = 0,
    kReadOnly = 1U << 0U,     ///< TextBox: starts locked
    kMultiLine = 1U << 1U,    ///< TextBox: several lines, both scroll bars
    kDropDownList = 1U << 2U, ///< ComboBox: without it the box has free text
    kSelected = 1U << 3U,     ///< OptionButton: selected at start
    kButtonFace = 1U << 4U,   ///< TextBox: starts with the background of a button
    kPicture = 1U << 5U,      ///< CommandButton: the toolkit's picture for "run" in the place of a caption
    kCancel = 1U << 6U,       ///< CommandButton: Escape presses it
    /// Label, OptionButton: the caption is data. An "&" in it marks no mnemonic. A caption too long
    /// for an option button is shown with an ellipsis in its middle, and the whole of it is the tool tip.
    kData = 1U << 7U,
    /// TextBox: a password. The screen shows it as it is; assistive technology is not given it.
    kSecret = 1U << 8U,
};

/// Controls outside an array have this index.
inline constexpr int kNoIndex = -1;

struct ControlName {
    const char* name = "";
    int index = kNoIndex;
};

/// As on Windows, "&" in a caption marks a mnemonic, and "&&" is the sign itself. On a label it leads to
/// the next control that takes the focus.
struct ControlDesign {
    ui::Kind kind;
    ControlName name;
    const char* caption;
    const char* tool_tip;
    ControlName parent; ///< an earlier row; without a name the form itself
    ui::Place place;
    std::uint32_t traits = kPlain;
};

/// A form of fixed size.
struct FormDesign {
    const char* name;
    const char* caption;
    int client_width;  ///< twips
    int client_height; ///< twips
    /// In the order of the Tab key. A row's parent comes before it.
    std::span<const ControlDesign> controls;
    /// The captions of the tabs, left to right, if there is a tab control. Its child with the index i is
    /// page i.
    std::span<const char* const> tabs;
};

} // namespace ui

// The data from which a form is made: one row for each control. Knows no toolkit and no particular form.
//
// Each row makes one control (control.h) and, if a toolkit shows the form, one native control.
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

/// A position and size in twips (a pixel at 96 DPI is 15). It is relative to the upper left corner of the
/// parent, which includes a frame's border and caption and a tab control's tabs.
struct Place {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

/// Converts a place from pixels of a screen with 96 DPI.
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
    kPicture = 1U << 5U,      ///< CommandButton: shows the toolkit's picture for "run" instead of a caption
    kCancel = 1U << 6U,       ///< CommandButton: Escape presses it
    /// Label, OptionButton: the caption is data, so an "&" in it marks no mnemonic. If it is too long for an
    /// option button, it is shown with an ellipsis in its middle, and the tool tip shows all of it.
    kData = 1U << 7U,
    /// TextBox: a password. The screen shows it in plain text; assistive technology cannot read it.
    kSecret = 1U << 8U,
};

/// The index of a control outside a control array.
inline constexpr int kNoIndex = -1;

/// Identifies a control of a form. The controls of a control array have one name and different indexes.
struct ControlName {
    const char* name = "";
    int index = kNoIndex;
};

/// As on Windows, "&" in a caption marks the next letter as the mnemonic (Alt and the letter), and "&&" shows
/// "&". The mnemonic of a label leads to the next control that takes the focus. All texts are constants.
struct ControlDesign {
    ui::Kind kind;
    ControlName name;
    const char* caption;
    const char* tool_tip;
    ControlName parent; ///< the name in an earlier row; an empty name means the form itself
    ui::Place place;
    std::uint32_t traits = kPlain; ///< of Trait
};

/// A form of fixed size.
struct FormDesign {
    const char* name;
    const char* caption;
    int client_width;  ///< twips
    int client_height; ///< twips
    /// In the order of the Tab key; the row of a parent comes before those of its children.
    std::span<const ControlDesign> controls;
    /// The captions of the tabs, left to right; empty if the form has no tab control. The tab control's child
    /// with the index i is the page of tab i.
    std::span<const char* const> tabs;
};

} // namespace ui

#include "console/procedures_form_design.h"

#include <array>

namespace kv {
namespace {

using ui::ControlDesign;
using ui::Kind;
using ui::Pixels;

constexpr ui::ControlName kForm{};
constexpr std::uint32_t kShown = ui::kReadOnly | ui::kButtonFace;

// Kind, name and index, caption, tool tip, parent, position, traits.
constexpr std::array kControls = std::to_array<ControlDesign>({
    {Kind::Label, {"lblParameters"}, "&Parameters:", "", kForm, Pixels(12, 12, 220, 15)},
    {Kind::ListBox, {"lstParameters"}, "", "", kForm, Pixels(12, 30, 220, 130)},
    {Kind::Label, {"lblDataType"}, "Data type:", "", kForm, Pixels(244, 12, 344, 15)},
    {Kind::TextBox, {"edtDataType"}, "", "", kForm, Pixels(244, 30, 344, 23), kShown},
    {Kind::Label, {"lblDirection"}, "Direction:", "", kForm, Pixels(244, 64, 344, 15)},
    {Kind::TextBox, {"edtDirection"}, "", "", kForm, Pixels(244, 82, 344, 23), kShown},
    {Kind::Label, {"lblValue"}, "&Value:", "", kForm, Pixels(244, 116, 344, 15)},
    {Kind::TextBox, {"edtValue"}, "", "", kForm, Pixels(244, 134, 344, 23)},
    {Kind::PictureBox, {"picListViewFrame"}, "", "", kForm, Pixels(12, 172, 576, 220)},
    {Kind::ListView, {"lvwViewData"}, "", "", {"picListViewFrame"}, Pixels(0, 0, 576, 220)},
    {Kind::CommandButton, {"cmdReload"}, "&Reload", "", kForm, Pixels(12, 404, 96, 25)},
    {Kind::CommandButton, {"cmdExecute"}, "&Execute", "", kForm, Pixels(116, 404, 96, 25)},
    {Kind::CommandButton, {"cmdClose"}, "&Close", "", kForm, Pixels(492, 404, 96, 25), ui::kCancel},
});

constexpr ui::FormDesign kDesign{"frmStoredProcedures",    "Stored Procedures", 600 * ui::kTwipsPerPixel,
                                 441 * ui::kTwipsPerPixel, kControls,           {}};

} // namespace

const ui::FormDesign& ProceduresFormDesign() {
    return kDesign;
}

} // namespace kv

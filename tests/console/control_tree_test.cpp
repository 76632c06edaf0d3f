// Compares the program's table of the main window's controls with the tests' own (control_rows.h), and checks
// the arrangement of both windows.
#include <map>
#include <set>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "console/control_rows.h"
#include "console/form_designs.h"
#include "ui/form.h"

namespace kv {
namespace {

using console_tests::ControlRow;

const std::map<std::string, ui::Kind>& Kinds() {
    static const std::map<std::string, ui::Kind> kinds = {
        {"text box", ui::Kind::TextBox},
        {"frame", ui::Kind::Frame},
        {"command button", ui::Kind::CommandButton},
        {"label", ui::Kind::Label},
        {"check box", ui::Kind::CheckBox},
        {"option button", ui::Kind::OptionButton},
        {"combo box", ui::Kind::ComboBox},
        {"list view", ui::Kind::ListView},
        {"picture box", ui::Kind::PictureBox},
        {"list box", ui::Kind::ListBox},
    };
    return kinds;
}

const std::map<std::string, std::uint32_t>& Traits() {
    static const std::map<std::string, std::uint32_t> traits = {
        {"", ui::kPlain},
        {"drop-down list", ui::kDropDownList},
        {"drop-down with free text", ui::kPlain},
        {"read-only", ui::kReadOnly},
        {"read-only; multi-line, both scroll bars", ui::kReadOnly | ui::kMultiLine},
        {"selected at start", ui::kSelected},
        {"shows a small picture instead of a caption", ui::kPicture},
    };
    return traits;
}

std::string FullName(const char* name, int index) {
    return index == ui::kNoIndex ? name : name + ("(" + std::to_string(index) + ")");
}

const ui::ControlDesign* Find(const std::string& full_name) {
    for (const ui::ControlDesign& row : MainFormDesign().controls) {
        if (FullName(row.name.name, row.name.index) == full_name) {
            return &row;
        }
    }
    return nullptr;
}

TEST(ControlTree, EveryRowIsInTheDesign) {
    for (const ControlRow& row : console_tests::kControlRows) {
        const std::string name = FullName(row.name, row.index);
        const ui::ControlDesign* design = Find(name);
        ASSERT_NE(design, nullptr) << name;
        EXPECT_EQ(design->kind, Kinds().at(row.kind)) << name;
        EXPECT_STREQ(design->caption, row.caption) << name;
        EXPECT_STREQ(design->tool_tip, row.tool_tip) << name;
        EXPECT_EQ(design->traits & ~(ui::kData | ui::kButtonFace | ui::kSecret), Traits().at(row.remarks))
            << name;
        std::string parent = *row.inside == '\0' ? FullName("fraMainTab", row.tab) : row.inside;
        if (name == "lvwViewData") {
            parent = "picListViewFrame"; // the picture box that contains the page's list
        }
        EXPECT_EQ(FullName(design->parent.name, design->parent.index), parent) << name;
    }
}

TEST(ControlTree, OnlyServerNamesAndTheTwoStatusTextsAreMarkedAsData) {
    std::set<std::string> expected = {"lblStatus", "lblSQLServerReplicationStatus"};
    for (const char* pair :
         {"optScriptCurrentServer", "optSynchronizeSourceServer", "optUpgradeCurrentServer",
          "optSQLReplCurrentServer", "optViewDataCurrentServer", "optStoredProcCurrentServer"}) {
        expected.insert(FullName(pair, 0));
        expected.insert(FullName(pair, 1));
    }
    std::set<std::string> designed;
    for (const ui::ControlDesign& row : MainFormDesign().controls) {
        if ((row.traits & ui::kData) != 0) {
            designed.insert(FullName(row.name.name, row.name.index));
        }
    }
    EXPECT_EQ(designed, expected);
}

TEST(ControlTree, TheTwoPasswordsAreSecret) {
    std::set<std::string> designed;
    for (const ui::ControlDesign& row : MainFormDesign().controls) {
        if ((row.traits & ui::kSecret) != 0) {
            designed.insert(FullName(row.name.name, row.name.index));
        }
    }
    EXPECT_EQ(designed, (std::set<std::string>{FullName("edtPassword", 0), FullName("edtPassword", 1)}));
}

TEST(ControlTree, TheDerivedPathsHaveTheBackgroundOfReadOnlyBoxes) {
    const ui::Form form(MainFormDesign());
    for (const int server : {0, 1}) {
        EXPECT_EQ(form.Get<ui::TextBox>("edtSQLUNCReplDataPath", server).BackColor(),
                  ui::kButtonFaceBackground);
        EXPECT_EQ(form.Get<ui::TextBox>("edtSQLDataPath", server).BackColor(), ui::kWindowBackground);
    }
}

TEST(ControlTree, ThePagesAreTheSevenTabs) {
    ASSERT_EQ(MainFormDesign().tabs.size(), std::size(console_tests::kPageRows));
    for (const auto& page : console_tests::kPageRows) {
        EXPECT_STREQ(MainFormDesign().tabs[static_cast<std::size_t>(page.tab)], page.caption);
        const ui::ControlDesign* frame = Find(FullName("fraMainTab", page.tab));
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(frame->kind, ui::Kind::Frame);
        EXPECT_STREQ(frame->caption, page.frame_caption);
        EXPECT_STREQ(frame->parent.name, "tabMain");
    }
}

TEST(ControlTree, TheDesignHasNoOtherControlsButTheWindowsOwnFour) {
    std::set<std::string> expected = {"tabMain", "prbStatus", "lblStatus", "cmdClose"};
    for (const auto& page : console_tests::kPageRows) {
        expected.insert(FullName("fraMainTab", page.tab));
    }
    for (const ControlRow& row : console_tests::kControlRows) {
        expected.insert(FullName(row.name, row.index));
    }
    std::set<std::string> designed;
    for (const ui::ControlDesign& row : MainFormDesign().controls) {
        EXPECT_TRUE(designed.insert(FullName(row.name.name, row.name.index)).second) << row.name.name;
    }
    EXPECT_EQ(designed, expected);
}

TEST(ControlTree, TheWindowsOwnFourControlsAndItsTitle) {
    EXPECT_STREQ(MainFormDesign().caption, "Halvane Vindrel SQL Database Manager");
    EXPECT_STREQ(Find("cmdClose")->caption, "&Close");
    EXPECT_STREQ(Find("lblStatus")->caption, "");
    EXPECT_EQ(Find("prbStatus")->kind, ui::Kind::ProgressBar);
    for (const char* name : {"tabMain", "prbStatus", "lblStatus", "cmdClose"}) {
        EXPECT_STREQ(Find(name)->parent.name, "") << name;
    }
}

/// Checks that every control lies within its parent and overlaps none of the parent's other controls.
void ExpectNoOverlap(const ui::FormDesign& form) {
    const ui::Form made(form);
    for (const auto& control : made.Controls()) {
        const ui::Place& place = control->Design().place;
        const bool on_form = control->Parent() == nullptr;
        const int width = on_form ? form.client_width : control->Parent()->Design().place.width;
        const int height = on_form ? form.client_height : control->Parent()->Design().place.height;
        EXPECT_GT(place.width, 0) << control->Name();
        EXPECT_GE(place.left, 0) << control->Name();
        EXPECT_GE(place.top, 0) << control->Name();
        EXPECT_LE(place.left + place.width, width) << control->Name();
        EXPECT_LE(place.top + place.height, height) << control->Name();
        for (const auto& other : made.Controls()) {
            const bool pages =
                control->Parent() != nullptr && control->Parent()->Kind() == ui::Kind::TabControl;
            if (other == control || other->Parent() != control->Parent() || pages) {
                continue;
            }
            const ui::Place& theirs = other->Design().place;
            const bool apart =
                place.left + place.width <= theirs.left || theirs.left + theirs.width <= place.left ||
                place.top + place.height <= theirs.top || theirs.top + theirs.height <= place.top;
            EXPECT_TRUE(apart) << control->Name() << " and " << other->Name();
        }
    }
}

TEST(ControlTree, NoControlOverlapsAnotherOrLeavesItsParent) {
    ExpectNoOverlap(MainFormDesign());
    ExpectNoOverlap(ProceduresFormDesign());
}

TEST(ControlTree, ALabelWithAMnemonicIsFollowedByItsTextBox) {
    const auto& rows = MainFormDesign().controls;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].kind == ui::Kind::Label && std::string(rows[i].caption).find('&') != std::string::npos) {
            ASSERT_LT(i + 1, rows.size());
            EXPECT_EQ(rows[i + 1].kind, ui::Kind::TextBox) << rows[i].name.name;
        }
    }
}

/// The list of parameters is on the left, the fields of one parameter are on its right, the result is below
/// both, and the buttons are in a row at the bottom, with Close on the right.
TEST(ControlTree, TheControlsOfTheDialogAreArranged) {
    const ui::FormDesign& design = ProceduresFormDesign();
    const ui::Form form(design);
    const auto place = [&form](const char* name) { return form.Find(name)->Design().place; };
    const auto right = [&place](const char* name) { return place(name).left + place(name).width; };
    const auto bottom = [&place](const char* name) { return place(name).top + place(name).height; };
    EXPECT_LT(place("lstParameters").left, design.client_width / 4);
    for (const char* field : {"edtDataType", "edtDirection", "edtValue"}) {
        EXPECT_GT(place(field).left, right("lstParameters")) << field;
        EXPECT_LE(bottom(field), bottom("lstParameters")) << field;
    }
    EXPECT_LT(bottom("edtDataType"), place("edtDirection").top);
    EXPECT_LT(bottom("edtDirection"), place("edtValue").top);
    const std::pair<const char*, const char*> labels[] = {{"lblParameters", "lstParameters"},
                                                          {"lblDataType", "edtDataType"},
                                                          {"lblDirection", "edtDirection"},
                                                          {"lblValue", "edtValue"}};
    for (const auto& [label, field] : labels) {
        EXPECT_EQ(place(label).left, place(field).left) << label;
        EXPECT_LE(bottom(label), place(field).top) << label;
        EXPECT_LT(place(field).top - bottom(label), 10 * ui::kTwipsPerPixel) << label;
    }
    EXPECT_GT(place("picListViewFrame").top, bottom("lstParameters"));
    EXPECT_EQ(place("picListViewFrame").left, place("lstParameters").left);
    EXPECT_EQ(right("picListViewFrame"), right("edtValue"));
    EXPECT_EQ(place("lvwViewData").width, place("picListViewFrame").width);
    EXPECT_EQ(place("lvwViewData").height, place("picListViewFrame").height);
    for (const char* button : {"cmdReload", "cmdExecute", "cmdClose"}) {
        EXPECT_GT(place(button).top, bottom("picListViewFrame")) << button;
        EXPECT_EQ(place(button).top, place("cmdReload").top) << button;
    }
    EXPECT_LT(right("cmdReload"), place("cmdExecute").left);
    EXPECT_LT(right("cmdExecute"), design.client_width / 2);
    EXPECT_EQ(right("cmdClose"), right("picListViewFrame"));
}

TEST(ControlTree, TheControlsOfTheDialogAreInTabOrder) {
    const std::tuple<ui::Kind, const char*, const char*> rows[] = {
        {ui::Kind::Label, "lblParameters", "&Parameters:"},
        {ui::Kind::ListBox, "lstParameters", ""},
        {ui::Kind::Label, "lblDataType", "Data type:"},
        {ui::Kind::TextBox, "edtDataType", ""},
        {ui::Kind::Label, "lblDirection", "Direction:"},
        {ui::Kind::TextBox, "edtDirection", ""},
        {ui::Kind::Label, "lblValue", "&Value:"},
        {ui::Kind::TextBox, "edtValue", ""},
        {ui::Kind::PictureBox, "picListViewFrame", ""},
        {ui::Kind::ListView, "lvwViewData", ""},
        {ui::Kind::CommandButton, "cmdReload", "&Reload"},
        {ui::Kind::CommandButton, "cmdExecute", "&Execute"},
        {ui::Kind::CommandButton, "cmdClose", "&Close"},
    };
    const ui::FormDesign& design = ProceduresFormDesign();
    ASSERT_EQ(design.controls.size(), std::size(rows));
    for (std::size_t i = 0; i < design.controls.size(); ++i) {
        const auto& [kind, name, caption] = rows[i];
        EXPECT_EQ(design.controls[i].kind, kind) << name;
        EXPECT_STREQ(design.controls[i].name.name, name);
        EXPECT_STREQ(design.controls[i].caption, caption);
        EXPECT_STREQ(design.controls[i].tool_tip, "");
        const bool result = std::string(name) == "lvwViewData";
        EXPECT_STREQ(design.controls[i].parent.name, result ? "picListViewFrame" : "") << name;
        const bool close = std::string(name) == "cmdClose";
        EXPECT_EQ((design.controls[i].traits & ui::kCancel) != 0, close) << "Escape closes the dialog";
    }
    EXPECT_STREQ(design.caption, "Stored Procedures");
    const ui::Form form(design);
    EXPECT_TRUE(form.Get<ui::TextBox>("edtDataType").Locked());
    EXPECT_TRUE(form.Get<ui::TextBox>("edtDirection").Locked());
    EXPECT_FALSE(form.Get<ui::TextBox>("edtValue").Locked());
    EXPECT_EQ(form.Get<ui::TextBox>("edtDataType").BackColor(), ui::kButtonFaceBackground);
    EXPECT_EQ(form.Get<ui::TextBox>("edtDirection").BackColor(), ui::kButtonFaceBackground);
    EXPECT_EQ(form.Get<ui::TextBox>("edtValue").BackColor(), ui::kWindowBackground);
}

} // namespace
} // namespace kv

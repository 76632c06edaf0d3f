// Tests the controls without a toolkit: their state, and the events that fire when the program sets a
// property.
#include <gtest/gtest.h>

#include "ui/operator.h"
#include "ui/recorded_form.h"

namespace {

using ui::Property;
using ui_tests::Recorder;

class ControlModel : public ::testing::Test {
  protected:
    ControlModel() { form_.Attach(&mirror_); }

    /// Counts how often the handler fires.
    static void CountIn(ui::Handler& handler, int& count) {
        handler = [&count] { ++count; };
    }

    Recorder mirror_;
    ui::Form form_{ui_tests::SmallDesign()};
    ui::TextBox& text_ = form_.Get<ui::TextBox>("text");
    ui::ComboBox& list_ = form_.Get<ui::ComboBox>("list");
    ui::ComboBox& free_ = form_.Get<ui::ComboBox>("free");
    ui::ListBox& box_ = form_.Get<ui::ListBox>("box");
    ui::ListView& view_ = form_.Get<ui::ListView>("view");
};

TEST_F(ControlModel, ADesignBecomesATreeOfControls) {
    EXPECT_EQ(form_.Controls().size(), ui_tests::SmallDesign().controls.size());
    EXPECT_EQ(form_.Get<ui::CommandButton>("button").Parent(), form_.Find("inner"));
    EXPECT_EQ(form_.Find("inner")->Parent(), form_.Find("page", 0));
    EXPECT_EQ(form_.Find("label")->Parent(), nullptr);
    EXPECT_EQ(form_.Find("option", 1)->Index(), 1);
    EXPECT_FALSE(text_.Index());
    EXPECT_EQ(form_.Controls()[2]->Id(), 1002);
    EXPECT_EQ(form_.Find("option"), nullptr);
    EXPECT_THROW(form_.Get<ui::TextBox>("label"), ui::Refusal);
    EXPECT_THROW(form_.Get<ui::TextBox>("nothing"), ui::Refusal);
    EXPECT_TRUE(form_.Get<ui::TextBox>("locked").Locked());
    EXPECT_TRUE(list_.IsDropDownList());
    EXPECT_FALSE(free_.IsDropDownList());
}

TEST_F(ControlModel, ATextBoxFiresChangeForADifferentTextOnly) {
    int changes = 0;
    CountIn(text_.on_change, changes);
    text_.Text("a");
    text_.Text("a");
    EXPECT_EQ(changes, 1);
    text_.Text("b");
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(mirror_.Count(text_, Property::Text), 2);
}

TEST_F(ControlModel, TheHandlerOfChangeReadsTheNewText) {
    std::string seen;
    text_.on_change = [&] { seen = text_.Text(); };
    text_.Text("new");
    EXPECT_EQ(seen, "new");
}

TEST_F(ControlModel, AFreeComboFiresChangeForADifferentTextOnly) {
    int changes = 0;
    int clicks = 0;
    CountIn(free_.on_change, changes);
    CountIn(free_.on_click, clicks);
    free_.AddItem("a");
    free_.Text("a");
    free_.Text("a");
    free_.Text("not in the list");
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(free_.Text(), "not in the list");
}

TEST_F(ControlModel, SettingADropDownListToAnItemFiresNothing) {
    int events = 0;
    CountIn(list_.on_change, events);
    CountIn(list_.on_click, events);
    list_.AddItem("a");
    list_.AddItem("b");
    list_.Text("b");
    EXPECT_EQ(list_.ListIndex(), 1);
    EXPECT_EQ(events, 0);
}

TEST_F(ControlModel, ADropDownListRefusesATextThatIsNotInItsList) {
    EXPECT_THROW(list_.Text("a"), ui::Refusal);
    EXPECT_THROW(list_.Text(""), ui::Refusal);
    list_.AddItem("a");
    list_.Text("a");
    EXPECT_THROW(list_.Text("A"), ui::Refusal);
    EXPECT_EQ(list_.Text(), "a");
    EXPECT_EQ(list_.ListIndex(), 0);
}

TEST_F(ControlModel, ListIndexFiresClickEachTime) {
    int clicks = 0;
    int changes = 0;
    for (ui::ComboBox* combo : {&list_, &free_}) {
        CountIn(combo->on_click, clicks);
        CountIn(combo->on_change, changes);
        combo->AddItem("a");
        combo->ListIndex(0);
        combo->ListIndex(0);
        EXPECT_EQ(combo->Text(), "a");
    }
    CountIn(box_.on_click, clicks);
    box_.AddItem("a");
    box_.ListIndex(0);
    EXPECT_EQ(box_.Text(), "a");
    box_.ListIndex(-1);
    EXPECT_EQ(box_.Text(), "");
    EXPECT_EQ(clicks, 6);
    EXPECT_EQ(changes, 0);
}

TEST_F(ControlModel, AnIndexOutsideAListIsRefused) {
    box_.AddItem("a");
    EXPECT_THROW(box_.ListIndex(1), ui::Refusal);
    EXPECT_THROW(box_.ListIndex(-2), ui::Refusal);
    EXPECT_THROW(list_.ListIndex(0), ui::Refusal);
    EXPECT_THROW(list_.ListIndex(-2), ui::Refusal);
    EXPECT_THROW(box_.List(1), ui::Refusal);
    EXPECT_THROW(box_.ItemData(-1), ui::Refusal);
}

TEST_F(ControlModel, ItemDataStaysWithItsItem) {
    box_.AddItem("a");
    box_.AddItem("b");
    box_.ItemData(1, 7);
    EXPECT_EQ(box_.ItemData(0), 0);
    EXPECT_EQ(box_.ItemData(1), 7);
}

TEST_F(ControlModel, ClearEmptiesAListAndItsTextAndFiresChangeForFreeText) {
    int events = 0;
    int changes = 0;
    free_.on_change = [&] {
        EXPECT_EQ(free_.ListCount(), 0);
        EXPECT_EQ(free_.Text(), "");
        ++changes;
    };
    CountIn(free_.on_click, events);
    free_.AddItem("a");
    free_.ListIndex(0);
    events = 0;
    free_.Clear();
    EXPECT_EQ(changes, 1);
    free_.Clear();
    EXPECT_EQ(changes, 1) << "there was no text to take away";
    EXPECT_EQ(free_.Text(), "");
    EXPECT_EQ(free_.ListIndex(), -1);
    EXPECT_EQ(free_.ListCount(), 0);
    box_.AddItem("a");
    box_.ListIndex(0);
    box_.Clear();
    EXPECT_EQ(box_.ListIndex(), -1);
    list_.AddItem("a");
    list_.Text("a");
    CountIn(list_.on_change, events);
    CountIn(list_.on_click, events);
    list_.Clear();
    EXPECT_EQ(list_.Text(), "");
    EXPECT_EQ(events, 0);
}

TEST_F(ControlModel, ATypedTextHasNoListIndex) {
    free_.AddItem("a");
    free_.ListIndex(0);
    free_.Text("typed");
    EXPECT_EQ(free_.ListIndex(), -1);
}

TEST_F(ControlModel, CheckBoxesAndOptionsFireNothingWhenTheyAreSet) {
    int clicks = 0;
    auto& check = form_.Get<ui::CheckBox>("check");
    auto& option = form_.Get<ui::OptionButton>("option", 1);
    CountIn(check.on_click, clicks);
    CountIn(option.on_click, clicks);
    CountIn(form_.Get<ui::OptionButton>("option", 0).on_click, clicks);
    check.Value(1);
    option.Value(true);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(mirror_.Count(check, Property::Value), 1);
}

TEST_F(ControlModel, OnlyOneOptionOfAGroupIsSelected) {
    form_.Get<ui::OptionButton>("option", 1).Value(true);
    EXPECT_FALSE(form_.Get<ui::OptionButton>("option", 0).Value());
    EXPECT_TRUE(form_.Get<ui::OptionButton>("other", 0).Value()) << "another frame is another group";
    form_.Get<ui::OptionButton>("option", 1).Value(false);
    EXPECT_FALSE(form_.Get<ui::OptionButton>("option", 0).Value()) << "none may be selected";
}

TEST_F(ControlModel, SettingTheActiveTabFiresNothing) {
    int clicks = 0;
    auto& tabs = form_.Get<ui::TabControl>("tabs");
    CountIn(tabs.on_click, clicks);
    tabs.Tab(1);
    EXPECT_EQ(tabs.Tab(), 1);
    EXPECT_EQ(clicks, 0);
    EXPECT_THROW(tabs.Tab(3), ui::Refusal);
}

TEST_F(ControlModel, ASelectionIsCutAtTheEndOfTheText) {
    text_.Text("abc");
    text_.SelStart(1);
    text_.SelLength(9);
    EXPECT_EQ(text_.SelStart(), 1U);
    EXPECT_EQ(text_.SelLength(), 2U);
    text_.Text("x");
    EXPECT_EQ(text_.SelStart(), 0U);
    EXPECT_EQ(text_.SelLength(), 0U);
}

TEST_F(ControlModel, TheMirrorIsNotifiedOfChangesOnly) {
    auto& label = form_.Get<ui::Label>("label");
    label.Caption("Text");
    label.Enabled(true);
    label.ForeColor(ui::kButtonText);
    EXPECT_TRUE(mirror_.seen.empty());
    label.Caption("Other");
    label.Enabled(false);
    label.ForeColor(ui::kRed);
    form_.Caption("Title");
    EXPECT_EQ(mirror_.Count(label, Property::Caption), 1);
    EXPECT_EQ(mirror_.Count(label, Property::Enabled), 1);
    EXPECT_EQ(mirror_.Count(label, Property::ForeColor), 1);
    EXPECT_EQ(mirror_.Count(form_.Root(), Property::Caption), 1);
    form_.Attach(nullptr);
    label.Caption("Unseen");
    EXPECT_EQ(mirror_.Count(label, Property::Caption), 1);
}

TEST_F(ControlModel, OnlyAControlThatCanBeUsedGetsTheFocus) {
    auto& button = form_.Get<ui::CommandButton>("button");
    form_.SetFocus(button);
    EXPECT_EQ(form_.Focused(), &button);
    form_.SetFocus(form_.Get<ui::CommandButton>("far"));
    EXPECT_EQ(form_.Focused(), &button) << "its tab is not the active one";
    text_.Enabled(false);
    form_.SetFocus(text_);
    EXPECT_EQ(form_.Focused(), &button);
    EXPECT_EQ(mirror_.Count(form_.Root(), Property::Focus), 1);
}

TEST_F(ControlModel, OneUnlockEndsAnyNumberOfLocks) {
    form_.LockPainting();
    form_.LockPainting();
    EXPECT_TRUE(form_.PaintingLocked());
    EXPECT_EQ(form_.PaintingLocks(), 2);
    form_.UnlockPainting();
    EXPECT_FALSE(form_.PaintingLocked());
    EXPECT_EQ(form_.PaintingLocks(), 0);
}

TEST_F(ControlModel, AFormIsUnloadedOnce) {
    int unloads = 0;
    int mirrored = 0;
    form_.on_unload = [&] {
        ++unloads;
        mirrored = mirror_.Count(form_.Root(), Property::Unloaded);
    };
    form_.Unload();
    form_.Unload();
    EXPECT_EQ(unloads, 1);
    EXPECT_EQ(mirrored, 0) << "the window goes behind the handler";
    EXPECT_TRUE(form_.Unloaded());
    EXPECT_EQ(mirror_.Count(form_.Root(), Property::Unloaded), 1);
}

TEST_F(ControlModel, AListViewHoldsColumnsAndRows) {
    view_.AddColumn("Id", "Id *");
    view_.AddColumn("Name", "Name");
    const int row = view_.AddRow("row_1", "1");
    view_.SetCell(row, 1, "one");
    EXPECT_EQ(view_.ColumnAt(0).text, "Id *");
    EXPECT_EQ(view_.Cell(0, 0), "1");
    EXPECT_EQ(view_.Cell(0, 1), "one");
    EXPECT_EQ(view_.Cell(0, 5), "");
    EXPECT_EQ(view_.RowKey(0), "row_1");
    view_.AutoSizeColumn(1);
    EXPECT_EQ(view_.AutoSized(), (std::vector<bool>{false, true}));
    EXPECT_THROW(view_.AutoSizeColumn(2), ui::Refusal);
    view_.ClearColumns();
    EXPECT_TRUE(view_.AutoSized().empty());
    EXPECT_EQ(view_.RowCount(), 1) << "rows and columns are cleared apart";
    view_.ClearRows();
    EXPECT_EQ(view_.RowCount(), 0);
}

TEST_F(ControlModel, AListViewRefusesAKeyThatIsInUse) {
    view_.AddColumn("Id", "");
    EXPECT_THROW(view_.AddColumn("Id", ""), ui::Refusal);
    view_.AddColumn("", "");
    view_.AddColumn("", "");
    EXPECT_EQ(view_.ColumnCount(), 3);
    view_.AddRow("row_1", "");
    EXPECT_THROW(view_.AddRow("row_1", ""), ui::Refusal);
    EXPECT_EQ(view_.RowCount(), 1);
    view_.AddRow("", "");
    view_.AddRow("", "");
    EXPECT_EQ(view_.RowCount(), 3);
    view_.ClearRows();
    view_.AddRow("row_1", "");
}

TEST_F(ControlModel, TheMirrorIsNotifiedOfEachRowAndCellOfAFullList) {
    constexpr int kRows = 32'767;
    constexpr int kColumns = 10;
    for (int column = 0; column < kColumns; ++column) {
        view_.AddColumn(std::to_string(column), "");
    }
    mirror_.seen.clear();
    for (int r = 1; r <= kRows; ++r) {
        const int row = view_.AddRow("row_" + std::to_string(r), "a");
        for (int column = 1; column < kColumns; ++column) {
            view_.SetCell(row, column, "b");
        }
    }
    EXPECT_EQ(mirror_.Count(view_, Property::Rows), kRows);
    EXPECT_EQ(mirror_.Count(view_, Property::Cells), kRows * (kColumns - 1));
    EXPECT_EQ(view_.Cell(kRows - 1, kColumns - 1), "b");
}

} // namespace

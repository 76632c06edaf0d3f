// Tests the operator's acts (ui/operator.h): which events they fire, and when they do nothing.
#include "ui/operator.h"

#include <gtest/gtest.h>

#include "ui/recorded_form.h"

namespace {

class Operator : public ::testing::Test {
  protected:
    ui::Form form_{ui_tests::SmallDesign()};
    ui::TextBox& text_ = form_.Get<ui::TextBox>("text");
    ui::ComboBox& list_ = form_.Get<ui::ComboBox>("list");
    ui::ComboBox& free_ = form_.Get<ui::ComboBox>("free");
    ui::TabControl& tabs_ = form_.Get<ui::TabControl>("tabs");
    ui::CommandButton& button_ = form_.Get<ui::CommandButton>("button");
};

TEST_F(Operator, TypingFiresChangeForEachCharacter) {
    std::vector<std::string> seen;
    text_.on_change = [&] { seen.push_back(text_.Text()); };
    EXPECT_TRUE(ui::Type(text_, "abc"));
    EXPECT_EQ(seen, (std::vector<std::string>{"a", "ab", "abc"}));
    free_.on_change = [&] { seen.push_back(free_.Text()); };
    EXPECT_TRUE(ui::Type(free_, "xy"));
    EXPECT_EQ(seen.back(), "xy");
    EXPECT_EQ(seen.size(), 5U);
}

TEST_F(Operator, TypingReplacesTheSelection) {
    text_.Text("old text");
    ui::SelectAll(text_);
    ui::Type(text_, "new");
    EXPECT_EQ(text_.Text(), "new");
    text_.SelStart(0);
    ui::Type(text_, "a ");
    EXPECT_EQ(text_.Text(), "a new");
}

TEST_F(Operator, AnEditFiresOneChangeAndNoneIfTheTextIsTheSame) {
    int changes = 0;
    text_.on_change = [&] { ++changes; };
    EXPECT_TRUE(ui::Edit(text_, "pasted"));
    EXPECT_TRUE(ui::Edit(text_, "pasted"));
    EXPECT_EQ(changes, 1);
    ui::Type(text_, "!");
    EXPECT_EQ(text_.Text(), "pasted!") << "the operator stands behind it";
}

TEST_F(Operator, ALockedOrDisabledBoxAndADropDownListAcceptNoText) {
    EXPECT_FALSE(ui::Type(form_.Get<ui::TextBox>("locked"), "a"));
    EXPECT_FALSE(ui::Edit(form_.Get<ui::TextBox>("locked"), "a"));
    EXPECT_FALSE(ui::Type(list_, "a"));
    text_.Enabled(false);
    EXPECT_FALSE(ui::Type(text_, "a"));
    EXPECT_EQ(text_.Text(), "");
}

TEST_F(Operator, TypingStopsIfAHandlerDisablesTheBox) {
    text_.on_change = [&] { text_.Enabled(text_.Text().size() < 2); };
    EXPECT_FALSE(ui::Type(text_, "abc"));
    EXPECT_EQ(text_.Text(), "ab");
    text_.Enabled(true);
    EXPECT_FALSE(ui::Type(text_, "c")) << "also at the last character";
}

TEST_F(Operator, ChoosingFiresClickAndNoChange) {
    int clicks = 0;
    int changes = 0;
    for (ui::ComboBox* combo : {&list_, &free_}) {
        combo->AddItem("a");
        combo->AddItem("b");
        combo->on_click = [&] { ++clicks; };
        combo->on_change = [&] { ++changes; };
        EXPECT_TRUE(ui::Choose(*combo, 1));
        EXPECT_EQ(combo->Text(), "b");
        EXPECT_FALSE(ui::Choose(*combo, 2));
        EXPECT_FALSE(ui::Choose(*combo, -1));
    }
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(changes, 0);
}

TEST_F(Operator, AClickTogglesACheckBoxAndSelectsAnOption) {
    auto& check = form_.Get<ui::CheckBox>("check");
    std::vector<int> values;
    check.on_click = [&] { values.push_back(check.Value()); };
    ui::Click(check);
    ui::Click(check);
    EXPECT_EQ(values, (std::vector<int>{1, 0}));
    int clicks = 0;
    auto& option = form_.Get<ui::OptionButton>("option", 1);
    option.on_click = [&] { ++clicks; };
    ui::Click(option);
    ui::Click(option);
    EXPECT_TRUE(option.Value());
    EXPECT_EQ(clicks, 2);
}

TEST_F(Operator, TheActiveTabCanBeClickedAndADisabledTabCannot) {
    int clicks = 0;
    tabs_.on_click = [&] { ++clicks; };
    tabs_.TabEnabled(2, false);
    EXPECT_FALSE(ui::Choose(tabs_, 2));
    EXPECT_TRUE(ui::Choose(tabs_, 1));
    EXPECT_TRUE(ui::Choose(tabs_, 1));
    EXPECT_EQ(tabs_.Tab(), 1);
    EXPECT_EQ(clicks, 2);
}

TEST_F(Operator, AControlCanBeUsedOnlyIfItsParentsCan) {
    int clicks = 0;
    button_.on_click = [&] { ++clicks; };
    EXPECT_TRUE(ui::Click(button_));
    for (ui::Control* control : {static_cast<ui::Control*>(&button_), form_.Find("inner"),
                                 form_.Find("page", 0), static_cast<ui::Control*>(&tabs_)}) {
        control->Enabled(false);
        EXPECT_FALSE(ui::Click(button_)) << control->Name();
        control->Enabled(true);
    }
    ui::Choose(tabs_, 1);
    EXPECT_FALSE(ui::Click(button_)) << "on a tab that is not shown";
    EXPECT_TRUE(ui::Click(form_.Get<ui::CommandButton>("far")));
    EXPECT_EQ(clicks, 1);
}

TEST_F(Operator, AClickMovesTheFocus) {
    ui::Click(button_);
    EXPECT_EQ(form_.Focused(), &button_);
    ui::Click(form_.Get<ui::CheckBox>("check"));
    EXPECT_EQ(form_.Focused(), form_.Find("check"));
    ui::Click(form_.Get<ui::OptionButton>("option", 1));
    EXPECT_EQ(form_.Focused(), form_.Find("option", 1));
}

TEST_F(Operator, AfterClosingNothingCanBeUsed) {
    bool unloaded = false;
    form_.on_unload = [&] { unloaded = true; };
    ui::Close(form_);
    EXPECT_TRUE(unloaded);
    EXPECT_FALSE(ui::Click(button_));
}

TEST_F(Operator, AnExceptionOfAHandlerGoesToTheCallerOfTheAct) {
    button_.on_click = [] { throw ui::Refusal("failed"); };
    EXPECT_THROW(ui::Click(button_), ui::Refusal);
}

// --- input that had to wait

using std::chrono::milliseconds;

class WaitingInput : public Operator {
  protected:
    WaitingInput() {
        button_.on_click = [this] { ++clicks_; };
    }
    static ui::InputClock::time_point Ago(int time) { return ui::InputClock::now() - milliseconds(time); }
    static ui::InputClock::time_point In(int time) { return ui::InputClock::now() + milliseconds(time); }

    int clicks_ = 0;
};

TEST_F(WaitingInput, IsDroppedIfItsControlOrAParentWasDisabled) {
    const auto before = Ago(1);
    for (ui::Control* control : {static_cast<ui::Control*>(&button_), form_.Find("inner"),
                                 form_.Find("page", 0), static_cast<ui::Control*>(&tabs_)}) {
        const auto earlier = Ago(0);
        EXPECT_TRUE(ui::Accepts(button_, In(1)));
        control->Enabled(false);
        EXPECT_FALSE(ui::Accepts(button_, In(1))) << control->Name();
        control->Enabled(true);
        EXPECT_FALSE(ui::Accepts(button_, earlier)) << control->Name();
        EXPECT_FALSE(ui::AcceptsPress(button_, earlier)) << control->Name();
        EXPECT_FALSE(ui::Click(button_, earlier)) << control->Name();
    }
    EXPECT_EQ(clicks_, 0);
    EXPECT_TRUE(ui::Click(button_, In(1)));
    text_.Enabled(false);
    text_.Enabled(true);
    EXPECT_FALSE(ui::Accepts(text_, before));
    EXPECT_TRUE(ui::Accepts(text_, In(1)));
}

TEST_F(WaitingInput, IsAcceptedByAControlThatWasNeverDisabled) {
    EXPECT_TRUE(ui::Accepts(button_, Ago(60000)));
    EXPECT_TRUE(ui::Click(button_, Ago(60000)));
    button_.Enabled(true);
    EXPECT_TRUE(ui::Accepts(text_, Ago(60000))) << "it was enabled already";
    EXPECT_EQ(clicks_, 1);
}

TEST_F(WaitingInput, ForACommandThatRanOrHasJustEndedIsDropped) {
    const auto before = Ago(1);
    EXPECT_TRUE(ui::Click(button_, Ago(0)));
    EXPECT_FALSE(ui::Accepts(button_, before));
    EXPECT_FALSE(ui::Click(button_, In(0)));
    EXPECT_FALSE(ui::Click(button_, button_.EndedAt() + ui::kReactionTime - milliseconds(1)));
    EXPECT_EQ(clicks_, 1);
    EXPECT_TRUE(ui::Click(button_, button_.EndedAt() + ui::kReactionTime));
    EXPECT_EQ(clicks_, 2);
    EXPECT_TRUE(ui::Accepts(text_, before)) << "only the command's own button";
}

TEST_F(WaitingInput, DeliveredDuringACommandDoesNotStartItAgain) {
    button_.on_click = [this] {
        ++clicks_;
        EXPECT_TRUE(button_.Running());
        EXPECT_FALSE(ui::Accepts(button_, In(1000)));
        EXPECT_FALSE(ui::Click(button_, In(1000)));
        EXPECT_FALSE(ui::Click(button_)) << "nor does a program";
    };
    EXPECT_TRUE(ui::Click(button_));
    EXPECT_FALSE(button_.Running());
    EXPECT_EQ(clicks_, 1);
}

TEST_F(WaitingInput, ForACommandThatFailedIsDroppedToo) {
    button_.on_click = [] { throw ui::Refusal("failed"); };
    EXPECT_THROW(ui::Click(button_), ui::Refusal);
    EXPECT_FALSE(button_.Running());
    EXPECT_FALSE(ui::Click(button_, In(0)));
}

TEST_F(WaitingInput, OfADoubleClickOnlyTheFirstPressIsAccepted) {
    const auto first = ui::InputClock::now();
    EXPECT_TRUE(ui::AcceptsPress(button_, first));
    EXPECT_FALSE(ui::AcceptsPress(button_, first)) << "both at once";
    EXPECT_FALSE(ui::AcceptsPress(button_, first + milliseconds(499)));
    EXPECT_FALSE(ui::AcceptsPress(button_, first + milliseconds(900))) << "a third one after the second";
    EXPECT_TRUE(ui::AcceptsPress(button_, first + milliseconds(1400)));
    EXPECT_FALSE(ui::AcceptsPress(button_, first + milliseconds(2300), milliseconds(1000)))
        << "where the system's time is longer";
}

TEST_F(WaitingInput, TheSecondPressIsRefusedEvenIfTheFirstWasRefused) {
    const auto first = ui::InputClock::now();
    button_.Enabled(false);
    EXPECT_FALSE(ui::AcceptsPress(button_, first));
    button_.Enabled(true);
    EXPECT_FALSE(ui::AcceptsPress(button_, first + milliseconds(400)));
}

TEST_F(WaitingInput, OtherControlsAcceptEachPress) {
    const auto first = ui::InputClock::now();
    EXPECT_TRUE(ui::AcceptsPress(*form_.Find("check"), first));
    EXPECT_TRUE(ui::AcceptsPress(*form_.Find("check"), first));
}

} // namespace

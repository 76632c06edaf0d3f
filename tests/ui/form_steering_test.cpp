// Tests a form that is operated by real mouse and keyboard input.
#include <stdexcept>
#include <string>
#include <vector>

#include "console/wait_cursor.h"
#include "ui/on_screen.h"
#include "ui/operator.h"

namespace {

using screen::Held;
using screen::Key;

class OperatedForm : public OnScreen {
  protected:
    /// Pixels from the left and upper edges of the tabs: a place that the dialog does not cover.
    static constexpr int kBesideDialog = 8;

    ui::TabControl& Tabs() { return Get<ui::TabControl>("tabMain"); }

    void ClickTab(int tab) {
        const screen::Box place = screen::TabPlace(Native("tabMain"), tab);
        screen::ClickAt(Native("tabMain"), (place.left + place.right) / 2, (place.top + place.bottom) / 2);
    }
    bool TabBecomes(int tab) {
        return screen::WaitFor([this, tab] { return Tabs().Tab() == tab; });
    }
    bool FocusBecomes(const std::string& name) {
        const bool there = screen::WaitFor([this, &name] { return FocusName() == name; });
        EXPECT_TRUE(there) << "the focus is on '" << FocusName() << "' and not on '" << name << "'";
        return there;
    }
    /// Waits longer than the time of a double click.
    static void Rest() {
        const auto end = ui::InputClock::now() + ui::kDoubleClickTime + std::chrono::milliseconds(100);
        EXPECT_TRUE(screen::WaitFor([end] { return ui::InputClock::now() > end; }));
    }
};

TEST_F(OperatedForm, FiresAChangeForEachKeyThatIsTyped) {
    auto& folder = Get<ui::TextBox>("edtScriptFolder");
    std::string seen;
    folder.on_change = [&] { seen += folder.Text() + "|"; };
    screen::Click(Native("edtScriptFolder"));
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    screen::Type("C:\\x");
    EXPECT_TRUE(screen::WaitFor([&] { return folder.Text() == "C:\\x"; })) << folder.Text();
    EXPECT_EQ(seen, "C|C:|C:\\|C:\\x|");
}

TEST_F(OperatedForm, LetsTheOperatorTypeInTheMiddleOfAText) {
    auto& folder = Get<ui::TextBox>("edtScriptFolder");
    folder.Text("ad");
    form_.SetFocus(folder);
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    screen::Press(Key::Home);
    screen::Press(Key::Right);
    screen::Type("bc");
    EXPECT_TRUE(screen::WaitFor([&] { return folder.Text().size() == 4; }));
    EXPECT_EQ(folder.Text(), "abcd");
}

TEST_F(OperatedForm, AcceptsNoTextInALockedBox) {
    screen::Click(Native("edtSQLUNCReplDataPath", 0));
    ASSERT_TRUE(FocusBecomes("edtSQLUNCReplDataPath0"));
    screen::Type("x");
    ExpectInputArrives();
    EXPECT_EQ(screen::Text(Native("edtSQLUNCReplDataPath", 0)), "");
}

TEST_F(OperatedForm, ChoosesATabByMouse) {
    int clicks = 0;
    Tabs().on_click = [&] { ++clicks; };
    ClickTab(3);
    EXPECT_TRUE(TabBecomes(3));
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(screen::WaitFor([this] { return screen::IsShown(Native("fraMainTab", 3)); }));
}

TEST_F(OperatedForm, ClicksTheActiveTabAgainByMouse) {
    int clicks = 0;
    Tabs().on_click = [&] { ++clicks; };
    ClickTab(3);
    EXPECT_TRUE(TabBecomes(3));
    Rest();
    ClickTab(3);
    ClickTab(3); // a double click
    EXPECT_TRUE(screen::WaitFor([&] { return clicks == 2; }));
    ExpectInputArrives();
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(Tabs().Tab(), 3);
}

TEST_F(OperatedForm, DoesNotClickTheActiveTabWhenItIsDisabled) {
    int clicks = 0;
    Tabs().TabEnabled(0, false);
    Tabs().on_click = [&] { ++clicks; };
    Settle();
    ClickTab(0);
    ExpectInputArrives();
    EXPECT_EQ(clicks, 0);
}

TEST_F(OperatedForm, DoesNotChooseADisabledTabByMouse) {
    Tabs().TabEnabled(2, false);
    Settle();
    ClickTab(2);
    ExpectInputArrives();
    EXPECT_EQ(Tabs().Tab(), 0);
    EXPECT_EQ(screen::ShownTab(Native("tabMain")), 0);
}

TEST_F(OperatedForm, SkipsDisabledTabsByKeyboard) {
    for (const int tab : {1, 2, 4, 6}) {
        Tabs().TabEnabled(tab, false);
    }
    Settle();
    screen::Press(Key::Tab, {Held::Control});
    EXPECT_TRUE(TabBecomes(3));
    screen::Press(Key::PageDown, {Held::Control});
    EXPECT_TRUE(TabBecomes(5));
    screen::Press(Key::Tab, {Held::Control});
    EXPECT_TRUE(TabBecomes(0)) << "after the last comes the first";
    screen::Press(Key::Tab, {Held::Control, Held::Shift});
    EXPECT_TRUE(TabBecomes(5));
    screen::Press(Key::PageUp, {Held::Control});
    EXPECT_TRUE(TabBecomes(3));
    form_.SetFocus(Tabs());
    ASSERT_TRUE(FocusBecomes("tabMain"));
    screen::Press(Key::Right);
    EXPECT_TRUE(TabBecomes(5));
    screen::Press(Key::Home);
    EXPECT_TRUE(TabBecomes(0));
    screen::Press(Key::End);
    EXPECT_TRUE(TabBecomes(5));
    screen::Press(Key::Left);
    EXPECT_TRUE(TabBecomes(3));
}

TEST_F(OperatedForm, MovesTheFocusByTheTabKeyInTheOrderOfTheDesign) {
    std::vector<std::string> expected;
    for (const auto& control : form_.Controls()) {
        const bool stops = control->Kind() == ui::Kind::TextBox ||
                           control->Kind() == ui::Kind::CommandButton ||
                           control->Kind() == ui::Kind::TabControl;
        if (stops && ui::IsShown(*control)) {
            expected.push_back(Name(*control));
        }
    }
    form_.SetFocus(Tabs());
    ASSERT_TRUE(FocusBecomes("tabMain"));
    std::vector<std::string> walked = {FocusName()};
    for (std::size_t step = 1; step < expected.size(); ++step) {
        screen::Press(Key::Tab);
        const std::string before = walked.back();
        screen::WaitFor([&] { return FocusName() != before; });
        walked.push_back(FocusName());
    }
    EXPECT_EQ(walked, expected);
    screen::Press(Key::Tab, {Held::Shift});
    EXPECT_TRUE(FocusBecomes(expected[expected.size() - 2]));
}

TEST_F(OperatedForm, GivesABoxTheFocusByTheMnemonicOfItsLabel) {
    screen::Press(Key::U, {Held::Alt});
    EXPECT_TRUE(FocusBecomes("edtUserID0"));
    screen::Press(Key::U, {Held::Alt});
    EXPECT_TRUE(FocusBecomes("edtUserID1"));
}

TEST_F(OperatedForm, FindsMnemonicsOnTheShownPageOnly) {
    int packages = 0;
    Get<ui::CommandButton>("cmdGetInstalledPackages").on_click = [&] { ++packages; };
    int runs = 0;
    Get<ui::CommandButton>("cmdCreateInstall").on_click = [&] { ++runs; };
    screen::Press(Key::P, {Held::Alt});
    ASSERT_TRUE(FocusBecomes("edtPassword0"));
    EXPECT_EQ(packages, 0);
    screen::Press(Key::Tab, {Held::Control});
    ASSERT_TRUE(TabBecomes(kv::kScriptTab));
    screen::Press(Key::P, {Held::Alt});
    EXPECT_TRUE(screen::WaitFor([&] { return packages == 1; }));
    screen::Press(Key::R, {Held::Alt});
    EXPECT_TRUE(screen::WaitFor([&] { return runs == 1; }));
    screen::Press(Key::Tab, {Held::Control, Held::Shift});
    ASSERT_TRUE(TabBecomes(kv::kGeneralTab));
    screen::Press(Key::R, {Held::Alt});
    EXPECT_TRUE(FocusBecomes("edtSQLUNCReplDataPath0"));
    EXPECT_EQ(runs, 1);
}

// --- the mouse pointer

TEST_F(OperatedForm, ShowsTheHourglassWhileACommandRunsWhereverThePointerIs) {
    const auto becomes = [](screen::Part part, screen::Pointer wanted) {
        return screen::WaitFor([&] { return screen::PointerOver(part) == wanted; });
    };
    EXPECT_TRUE(becomes(Native("edtScriptFolder"), screen::Pointer::Beam));
    bool over_box = false;
    bool over_page = false;
    bool over_button = false;
    int commands = 0;
    Get<ui::CommandButton>("cmdGetLocalSettings").on_click = [&] {
        const kv::CWaitCursor wait;
        over_box = becomes(Native("edtScriptFolder"), screen::Pointer::Hourglass);
        over_page = becomes(Native("fraServer", 0), screen::Pointer::Hourglass);
        over_button = becomes(Native("cmdClose"), screen::Pointer::Hourglass);
        ++commands;
    };
    screen::Click(Native("cmdGetLocalSettings"));
    EXPECT_TRUE(screen::WaitFor([&] { return commands == 1; }));
    EXPECT_TRUE(over_box);
    EXPECT_TRUE(over_page);
    EXPECT_TRUE(over_button);
    EXPECT_TRUE(becomes(Native("edtScriptFolder"), screen::Pointer::Beam));
    EXPECT_TRUE(becomes(Native("cmdClose"), screen::Pointer::Arrow));
}

// --- tool tips

TEST_F(OperatedForm, ShowsTheToolTipOfTheControlUnderThePointer) {
    const auto tip_becomes = [](const std::string& text) {
        return screen::WaitFor([&] { return screen::ToolTip() == text; });
    };
    const auto& box = Get<ui::TextBox>("edtUserID", 1);
    screen::PointerOver(Native("edtUserID", 1));
    EXPECT_TRUE(tip_becomes(box.Design().tool_tip)) << screen::ToolTip();
    EXPECT_GT(screen::ToolTipWidth(), 100);
    screen::PointerOver(Native("lblStatus")); // a label without a tool tip
    EXPECT_TRUE(tip_becomes("")) << screen::ToolTip();
    ShowTab(kv::kScriptTab); // its controls are made now
    const auto& package = Get<ui::CheckBox>("chkStandardSynchronize");
    screen::PointerOver(Native("chkStandardSynchronize"));
    EXPECT_TRUE(tip_becomes(package.Design().tool_tip)) << screen::ToolTip();
}

TEST_F(OperatedForm, ShowsAServerNameThatIsCutAsAWholeInItsToolTip) {
    const auto tip_becomes = [](const std::string& text) {
        return screen::WaitFor([&] { return screen::ToolTip() == text; });
    };
    ShowTab(kv::kScriptTab);
    const std::string name = "A-COMPUTER-WITH-A-LONG-NAME\\AN_INSTANCE_WITH_R&D";
    Get<ui::OptionButton>("optScriptCurrentServer", 0).Caption(name);
    Settle();
    screen::PointerOver(Native("optScriptCurrentServer", 0));
    EXPECT_TRUE(tip_becomes(name)) << screen::ToolTip();
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Caption("SRVB");
    screen::PointerOver(Native("optScriptCurrentServer", 1));
    EXPECT_TRUE(tip_becomes("")) << screen::ToolTip();
}

// --- buttons

TEST_F(OperatedForm, PressesAButtonByMouseSpaceEnterAndMnemonic) {
    int clicks = 0;
    auto& button = Get<ui::CommandButton>("cmdClose");
    button.on_click = [&] { ++clicks; };
    const auto becomes = [&](int wanted) {
        const bool pressed = screen::WaitFor([&] { return clicks == wanted; });
        // An earlier press would be refused as one that was meant for the command which has just ended.
        return pressed && screen::WaitFor([&] {
                   return ui::InputClock::now() > button.EndedAt() + 2 * ui::kReactionTime;
               });
    };
    screen::Click(Native("cmdClose"));
    EXPECT_TRUE(becomes(1));
    screen::Press(Key::Space);
    EXPECT_TRUE(becomes(2));
    screen::Press(Key::Enter);
    EXPECT_TRUE(becomes(3));
    screen::Press(Key::C, {Held::Alt});
    EXPECT_TRUE(becomes(4));
}

TEST_F(OperatedForm, DoesNothingOnEnterInATextBoxAndOnEscape) {
    int clicks = 0;
    for (const auto& control : form_.Controls()) {
        if (control->Kind() == ui::Kind::CommandButton) {
            static_cast<ui::CommandButton&>(*control).on_click = [&] { ++clicks; };
        }
    }
    screen::Click(Native("edtScriptFolder"));
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    screen::Press(Key::Enter);
    screen::Press(Key::Escape);
    ExpectInputArrives();
    EXPECT_EQ(clicks, 0);
    EXPECT_FALSE(form_.Unloaded());
}

TEST_F(OperatedForm, DoesNothingOnEnterInATextBoxAfterAButtonWasPressed) {
    ShowTab(kv::kUpgradeTab);
    int clicks = 0;
    Get<ui::CommandButton>("cmdRename").on_click = [&] {
        ++clicks;
        form_.SetFocus(Get<ui::CommandButton>("cmdRename"));
    };
    screen::Click(Native("cmdRename"));
    EXPECT_TRUE(screen::WaitFor([&] { return clicks == 1; }));
    Rest();
    for (const char* box : {"edtRenameNewDatabase", "cboUpgradeDatabaseDest"}) {
        screen::Click(Native(box));
        ASSERT_TRUE(FocusBecomes(box));
        screen::Press(Key::Enter);
        ExpectInputArrives();
        EXPECT_EQ(clicks, 1) << box;
    }
}

TEST_F(OperatedForm, TicksABoxAndSelectsAnOption) {
    Tabs().Tab(kv::kScriptTab);
    Settle();
    auto& box = Get<ui::CheckBox>("chkCreateInstallBatchDatabase");
    screen::Click(Native("chkCreateInstallBatchDatabase"));
    EXPECT_TRUE(screen::WaitFor([&] { return box.Value() == 1; }));
    screen::Press(Key::Space);
    EXPECT_TRUE(screen::WaitFor([&] { return box.Value() == 0; }));
    int clicks = 0;
    Get<ui::OptionButton>("optCreateInstallScriptFiles", 1).on_click = [&] { ++clicks; };
    screen::Click(Native("optCreateInstallScriptFiles", 1));
    EXPECT_TRUE(screen::WaitFor([&] { return clicks == 1; }));
    EXPECT_FALSE(Get<ui::OptionButton>("optCreateInstallScriptFiles", 0).Value());
    EXPECT_TRUE(Get<ui::OptionButton>("optScriptCurrentServer", 0).Value()) << "it is in another group";
    screen::Press(Key::Up);
    EXPECT_TRUE(
        screen::WaitFor([&] { return Get<ui::OptionButton>("optCreateInstallScriptFiles", 0).Value(); }));
}

TEST_F(OperatedForm, ChoosesFromADropDownListByKeyAndMouse) {
    Tabs().Tab(kv::kUpgradeTab);
    auto& databases = Get<ui::ComboBox>("cboRemoveDatabase");
    for (const char* name : {"master", "Batch", "pubs"}) {
        databases.AddItem(name);
    }
    databases.Text("master");
    int clicks = 0;
    databases.on_click = [&] { ++clicks; };
    form_.SetFocus(databases);
    ASSERT_TRUE(FocusBecomes("cboRemoveDatabase"));
    screen::Press(Key::Down);
    EXPECT_TRUE(screen::WaitFor([&] { return databases.Text() == "Batch"; }));
    EXPECT_EQ(clicks, 1);
    screen::Click(Native("cboRemoveDatabase"));
    EXPECT_TRUE(screen::WaitFor([this] { return screen::IsDroppedDown(Native("cboRemoveDatabase")); }));
    screen::Press(Key::Down);
    screen::Press(Key::Enter);
    EXPECT_TRUE(screen::WaitFor([&] { return databases.Text() == "pubs"; }));
}

TEST_F(OperatedForm, AcceptsTypedTextInAComboBoxWithFreeText) {
    Tabs().Tab(kv::kUpgradeTab);
    auto& destination = Get<ui::ComboBox>("cboUpgradeDatabaseDest");
    destination.AddItem("Batch");
    destination.ListIndex(0);
    int changes = 0;
    destination.on_change = [&] { ++changes; };
    form_.SetFocus(destination);
    ASSERT_TRUE(FocusBecomes("cboUpgradeDatabaseDest"));
    screen::Press(Key::End);
    screen::Type("2b");
    EXPECT_TRUE(screen::WaitFor([&] { return destination.Text() == "Batch2b"; })) << destination.Text();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(destination.ListIndex(), -1);
}

TEST_F(OperatedForm, ChoosesFromAListBox) {
    Tabs().Tab(kv::kViewDataTab);
    auto& tables = Get<ui::ListBox>("lstViewDataTables");
    for (int table = 0; table < 5; ++table) {
        tables.AddItem("Table" + std::to_string(table));
    }
    Settle();
    int clicks = 0;
    tables.on_click = [&] { ++clicks; };
    const screen::Box third = screen::ItemPlace(Native("lstViewDataTables"), 2);
    screen::ClickAt(Native("lstViewDataTables"), third.left + 10, (third.top + third.bottom) / 2);
    EXPECT_TRUE(screen::WaitFor([&] { return tables.ListIndex() == 2; }));
    EXPECT_EQ(clicks, 1);
}

TEST_F(OperatedForm, DoesNotPressADisabledButton) {
    auto& button = Get<ui::CommandButton>("cmdGetLocalSettings");
    int clicks = 0;
    button.on_click = [&] { ++clicks; };
    button.Enabled(false);
    Settle();
    screen::Click(Native("cmdGetLocalSettings"));
    ExpectInputArrives();
    EXPECT_EQ(clicks, 0);
}

TEST_F(OperatedForm, ThrowsTheExceptionOfAHandlerAgain) {
    Get<ui::CommandButton>("cmdClose").on_click = [] { throw std::runtime_error("out of a handler"); };
    screen::Click(Native("cmdClose"));
    EXPECT_THROW(RunUntilClosed(), std::runtime_error);
}

TEST_F(OperatedForm, MovesTheFocusToTheNextControlIfItsControlIsDisabled) {
    auto& button = Get<ui::CommandButton>("cmdGetLocalSettings");
    button.on_click = [&] { button.Enabled(false); };
    Get<ui::TextBox>("edtServerName", 1).on_change = [this] { form_.Unload(); };
    form_.SetFocus(button);
    ASSERT_TRUE(FocusBecomes("cmdGetLocalSettings"));
    screen::Press(Key::Space);
    screen::Type("z"); // arrives at the control that has the focus now
    RunUntilClosed();
    EXPECT_EQ(Get<ui::TextBox>("edtServerName", 1).Text(), "z");
}

TEST_F(OperatedForm, FollowsTheFocusThatAHandlerGives) {
    auto& path = Get<ui::TextBox>("edtSQLDataPath", 0);
    Get<ui::CommandButton>("cmdGetLocalSettings").on_click = [&] { form_.SetFocus(path); };
    path.on_change = [this] { form_.Unload(); };
    screen::Click(Native("cmdGetLocalSettings"));
    const screen::Meanwhile typing(WithEnd(form_, [this] {
        if (FocusName() != "edtSQLDataPath0") {
            return false;
        }
        screen::Type("q");
        return true;
    }));
    window_->RunUntilClosed(); // its loop tracks the operator's focus, but must not undo the handler's
    EXPECT_EQ(path.Text(), "q");
}

TEST_F(OperatedForm, IsUnloadedByTheWindowsCloseButton) {
    bool unloaded = false;
    form_.on_unload = [&] { unloaded = true; };
    screen::Press(Key::F4, {Held::Alt});
    RunUntilClosed();
    EXPECT_TRUE(unloaded);
    EXPECT_FALSE(screen::IsShown(top_));
}

// --- the dialog

TEST_F(OperatedForm, AcceptsNoInputWhileADialogIsAboveIt) {
    ui::Form dialog(kv::ProceduresFormDesign());
    int below = 0;
    Tabs().on_click = [&] { ++below; };
    screen::Box place;
    screen::Box owner;
    auto& run = dialog.Get<ui::CommandButton>("cmdExecute");
    run.on_click = [&] {
        owner = screen::FrameOf(top_);
        place = screen::FrameOf(screen::WindowOf(dialog));
        screen::ClickAt(Native("tabMain"), kBesideDialog, kBesideDialog);
        EXPECT_TRUE(screen::InputArrived());
        EXPECT_TRUE(screen::Activate(screen::WindowOf(dialog)));
        screen::Press(Key::Escape);
    };
    dialog.Get<ui::CommandButton>("cmdClose").on_click = [&] { dialog.Unload(); };
    dialog.SetFocus(run);
    Get<ui::CommandButton>("cmdClose").on_click = [&] { ui::ShowModally(dialog, form_); };
    const screen::Meanwhile operating(WithEnd(dialog, [&] {
        if (screen::WindowOf(dialog) == nullptr || screen::Focused(dialog) != &run) {
            return false;
        }
        screen::Press(Key::Space);
        return true;
    }));
    screen::Click(Native("cmdClose"));
    EXPECT_TRUE(screen::WaitFor([&] { return dialog.Unloaded(); }));
    EXPECT_EQ(below, 0);
    EXPECT_NEAR(place.left + place.right, owner.left + owner.right, 2);
    EXPECT_GT(place.left, owner.left + kBesideDialog) << "the click was not on the dialog";
    ASSERT_TRUE(screen::Activate(top_));
    screen::ClickAt(Native("tabMain"), kBesideDialog, kBesideDialog);
    EXPECT_TRUE(screen::WaitFor([&] { return below == 1; }))
        << "the window takes input again after the dialog";
}

} // namespace

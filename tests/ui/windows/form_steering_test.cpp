// A form steered by real mouse and keyboard input, as a person does.
#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "console/wait_cursor.h"
#include "ui/operator.h"
#include "ui/windows/on_screen.h"

namespace {

class SteeredForm : public OnScreen {
  protected:
    ui::TabControl& Tabs() { return Get<ui::TabControl>("tabMain"); }

    void ClickTab(int tab) {
        RECT place{};
        ::SendMessageA(Native("tabMain"), TCM_GETITEMRECT, static_cast<WPARAM>(tab),
                       reinterpret_cast<LPARAM>(&place));
        hands::ClickAt(Native("tabMain"), (place.left + place.right) / 2, (place.top + place.bottom) / 2);
    }
    bool TabBecomes(int tab) {
        return hands::WaitFor([this, tab] { return Tabs().Tab() == tab; });
    }
    bool FocusBecomes(const std::string& name) {
        const bool there = hands::WaitFor([this, &name] { return FocusName() == name; });
        EXPECT_TRUE(there) << "the focus is on '" << FocusName() << "' and not on '" << name << "'";
        return there;
    }
    /// Input has been dealt with by the time that a key pressed behind it has: F24 does nothing else, and its
    /// toggle is what this thread has taken from its queue.
    static void InputArrived() {
        const int before = ::GetKeyState(VK_F24) & 1;
        hands::Press(VK_F24);
        EXPECT_TRUE(hands::WaitFor([before] { return (::GetKeyState(VK_F24) & 1) != before; }));
        Settle();
    }
};

TEST_F(SteeredForm, FiresAChangeForEachKeyThatIsTyped) {
    auto& folder = Get<ui::TextBox>("edtScriptFolder");
    std::string seen;
    folder.on_change = [&] { seen += folder.Text() + "|"; };
    hands::Click(Native("edtScriptFolder"));
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    hands::Type("C:\\x");
    EXPECT_TRUE(hands::WaitFor([&] { return folder.Text() == "C:\\x"; })) << folder.Text();
    EXPECT_EQ(seen, "C|C:|C:\\|C:\\x|");
}

TEST_F(SteeredForm, LetsTheOperatorTypeInTheMiddleOfAText) {
    auto& folder = Get<ui::TextBox>("edtScriptFolder");
    folder.Text("ad");
    form_.SetFocus(folder);
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    hands::Press(VK_HOME);
    hands::Press(VK_RIGHT);
    hands::Type("bc");
    EXPECT_TRUE(hands::WaitFor([&] { return folder.Text().size() == 4; }));
    EXPECT_EQ(folder.Text(), "abcd");
}

TEST_F(SteeredForm, TakesNoTextForALockedBox) {
    hands::Click(Native("edtSQLUNCReplDataPath", 0));
    ASSERT_TRUE(FocusBecomes("edtSQLUNCReplDataPath0"));
    hands::Type("x");
    InputArrived();
    EXPECT_EQ(hands::Text(Native("edtSQLUNCReplDataPath", 0)), "");
}

TEST_F(SteeredForm, ChoosesATabByMouse) {
    int clicks = 0;
    Tabs().on_click = [&] { ++clicks; };
    ClickTab(3);
    EXPECT_TRUE(TabBecomes(3));
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(hands::WaitFor([this] { return ::IsWindowVisible(Native("fraMainTab", 3)) != 0; }));
}

TEST_F(SteeredForm, ClicksTheActiveTabAgainByMouse) {
    int clicks = 0;
    Tabs().on_click = [&] { ++clicks; };
    ClickTab(3);
    EXPECT_TRUE(TabBecomes(3));
    std::this_thread::sleep_for(ui::kDoubleClickTime + std::chrono::milliseconds(100));
    ClickTab(3);
    EXPECT_TRUE(hands::WaitFor([&] { return clicks == 2; }));
    ClickTab(3); // a double click
    InputArrived();
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(Tabs().Tab(), 3);
}

TEST_F(SteeredForm, DoesNotClickTheActiveTabWhenItIsDisabled) {
    int clicks = 0;
    Tabs().TabEnabled(0, false);
    Tabs().on_click = [&] { ++clicks; };
    Settle();
    ClickTab(0);
    InputArrived();
    EXPECT_EQ(clicks, 0);
}

TEST_F(SteeredForm, DoesNotChooseADisabledTabByMouse) {
    Tabs().TabEnabled(2, false);
    Settle();
    ClickTab(2);
    InputArrived();
    EXPECT_EQ(Tabs().Tab(), 0);
    EXPECT_EQ(::SendMessageA(Native("tabMain"), TCM_GETCURSEL, 0, 0), 0);
}

TEST_F(SteeredForm, PassesOverDisabledTabsByKeyboard) {
    for (const int tab : {1, 2, 4, 6}) {
        Tabs().TabEnabled(tab, false);
    }
    Settle();
    hands::Press(VK_TAB, {VK_CONTROL});
    EXPECT_TRUE(TabBecomes(3));
    hands::Press(VK_NEXT, {VK_CONTROL});
    EXPECT_TRUE(TabBecomes(5));
    hands::Press(VK_TAB, {VK_CONTROL});
    EXPECT_TRUE(TabBecomes(0)) << "behind the last comes the first";
    hands::Press(VK_TAB, {VK_CONTROL, VK_SHIFT});
    EXPECT_TRUE(TabBecomes(5));
    hands::Press(VK_PRIOR, {VK_CONTROL});
    EXPECT_TRUE(TabBecomes(3));
    form_.SetFocus(Tabs());
    ASSERT_TRUE(FocusBecomes("tabMain"));
    hands::Press(VK_RIGHT);
    EXPECT_TRUE(TabBecomes(5));
    hands::Press(VK_HOME);
    EXPECT_TRUE(TabBecomes(0));
    hands::Press(VK_END);
    EXPECT_TRUE(TabBecomes(5));
    hands::Press(VK_LEFT);
    EXPECT_TRUE(TabBecomes(3));
}

TEST_F(SteeredForm, WalksByTheTabKeyInTheOrderOfTheDesign) {
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
        hands::Press(VK_TAB);
        const std::string before = walked.back();
        hands::WaitFor([&] { return FocusName() != before; });
        walked.push_back(FocusName());
    }
    EXPECT_EQ(walked, expected);
    hands::Press(VK_TAB, {VK_SHIFT});
    EXPECT_TRUE(FocusBecomes(expected[expected.size() - 2]));
}

TEST_F(SteeredForm, ReachesABoxByTheMnemonicOfItsLabel) {
    hands::Press('U', {VK_MENU});
    EXPECT_TRUE(FocusBecomes("edtUserID0"));
    hands::Press('U', {VK_MENU});
    EXPECT_TRUE(FocusBecomes("edtUserID1"));
}

TEST_F(SteeredForm, ReachesWhatLiesOnAPageJustShownByItsMnemonicAndNothingOnTheOthers) {
    int packages = 0;
    Get<ui::CommandButton>("cmdGetInstalledPackages").on_click = [&] { ++packages; };
    int runs = 0;
    Get<ui::CommandButton>("cmdCreateInstall").on_click = [&] { ++runs; };
    hands::Press('P', {VK_MENU});
    ASSERT_TRUE(FocusBecomes("edtPassword0"));
    EXPECT_EQ(packages, 0);
    hands::Press(VK_TAB, {VK_CONTROL});
    ASSERT_TRUE(TabBecomes(kv::kScriptTab));
    hands::Press('P', {VK_MENU});
    EXPECT_TRUE(hands::WaitFor([&] { return packages == 1; }));
    hands::Press('R', {VK_MENU});
    EXPECT_TRUE(hands::WaitFor([&] { return runs == 1; }));
    hands::Press(VK_TAB, {VK_CONTROL, VK_SHIFT});
    ASSERT_TRUE(TabBecomes(kv::kGeneralTab));
    hands::Press('R', {VK_MENU});
    EXPECT_TRUE(FocusBecomes("edtSQLUNCReplDataPath0"));
    EXPECT_EQ(runs, 1);
}

// --- the mouse pointer

/// Moves the pointer onto the window as a hand does, and says what it looks like there.
HCURSOR PointerOver(HWND window) {
    RECT place{};
    ::GetWindowRect(window, &place);
    const POINT middle{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    ::SetCursorPos(middle.x - 1, middle.y);
    platform::RunPendingEvents();
    ::SetCursorPos(middle.x, middle.y);
    const auto is_there = [&middle] {
        POINT now{};
        ::GetCursorPos(&now);
        return now.x == middle.x && now.y == middle.y;
    };
    EXPECT_TRUE(hands::WaitFor(is_there));
    platform::RunPendingEvents();
    return ::GetCursor();
}

TEST_F(SteeredForm, ShowsTheHourglassWhileACommandRunsWhereverThePointerIs) {
    const HCURSOR beam = ::LoadCursorA(nullptr, IDC_IBEAM);
    const HCURSOR hourglass = ::LoadCursorA(nullptr, IDC_WAIT);
    const auto becomes = [](HWND window, HCURSOR wanted) {
        return hands::WaitFor([&] { return PointerOver(window) == wanted; });
    };
    EXPECT_TRUE(becomes(Native("edtScriptFolder"), beam));
    bool over_box = false;
    bool over_page = false;
    bool over_button = false;
    int commands = 0;
    Get<ui::CommandButton>("cmdGetLocalSettings").on_click = [&] {
        const kv::CWaitCursor wait;
        over_box = becomes(Native("edtScriptFolder"), hourglass);
        over_page = becomes(Native("fraServer", 0), hourglass);
        over_button = becomes(Native("cmdClose"), hourglass);
        ++commands;
    };
    hands::Click(Native("cmdGetLocalSettings"));
    EXPECT_TRUE(hands::WaitFor([&] { return commands == 1; }));
    EXPECT_TRUE(over_box);
    EXPECT_TRUE(over_page);
    EXPECT_TRUE(over_button);
    EXPECT_TRUE(becomes(Native("edtScriptFolder"), beam));
    EXPECT_TRUE(becomes(Native("cmdClose"), ::LoadCursorA(nullptr, IDC_ARROW)));
}

// --- tool tips

struct ShownTip {
    std::string text;
    RECT place{};
};

BOOL CALLBACK TakeTip(HWND window, LPARAM found) {
    if (hands::ClassOf(window) == TOOLTIPS_CLASSA && ::IsWindowVisible(window) != 0) {
        auto& tip = *reinterpret_cast<ShownTip*>(found);
        tip.text = hands::Text(window);
        ::GetWindowRect(window, &tip.place);
    }
    return TRUE;
}

TEST_F(SteeredForm, ShowsTheToolTipOfWhatThePointerRestsOn) {
    ShownTip tip;
    const auto tip_becomes = [&tip](const std::string& text) {
        return hands::WaitFor([&] {
            tip = ShownTip{};
            ::EnumThreadWindows(::GetCurrentThreadId(), TakeTip, reinterpret_cast<LPARAM>(&tip));
            return tip.text == text;
        });
    };
    const auto& box = Get<ui::TextBox>("edtUserID", 1);
    PointerOver(Native("edtUserID", 1));
    EXPECT_TRUE(tip_becomes(box.Design().tool_tip)) << tip.text;
    EXPECT_GT(tip.place.right - tip.place.left, 100);
    PointerOver(Native("lblStatus")); // a label without a tool tip
    EXPECT_TRUE(tip_becomes("")) << tip.text;
    ShowTab(kv::kScriptTab); // made later than the others
    const auto& package = Get<ui::CheckBox>("chkStandardSynchronize");
    PointerOver(Native("chkStandardSynchronize"));
    EXPECT_TRUE(tip_becomes(package.Design().tool_tip)) << tip.text;
}

TEST_F(SteeredForm, ShowsTheWholeNameOfAServerThatIsCutAsItsToolTip) {
    ShownTip tip;
    const auto tip_becomes = [&tip](const std::string& text) {
        return hands::WaitFor([&] {
            tip = ShownTip{};
            ::EnumThreadWindows(::GetCurrentThreadId(), TakeTip, reinterpret_cast<LPARAM>(&tip));
            return tip.text == text;
        });
    };
    ShowTab(kv::kScriptTab);
    const std::string name = "A-COMPUTER-WITH-A-LONG-NAME\\AN_INSTANCE_WITH_R&D";
    Get<ui::OptionButton>("optScriptCurrentServer", 0).Caption(name);
    Settle();
    PointerOver(Native("optScriptCurrentServer", 0));
    EXPECT_TRUE(tip_becomes(name)) << tip.text;
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Caption("SRVB");
    PointerOver(Native("optScriptCurrentServer", 1));
    EXPECT_TRUE(tip_becomes("")) << tip.text;
}

// --- buttons

TEST_F(SteeredForm, PressesAButtonByMouseSpaceEnterAndMnemonic) {
    int clicks = 0;
    Get<ui::CommandButton>("cmdClose").on_click = [&] { ++clicks; };
    const auto becomes = [&](int wanted) {
        const bool there = hands::WaitFor([&] { return clicks == wanted; });
        std::this_thread::sleep_for(2 * ui::kReactionTime); // as a person, who sees first that it has ended
        return there;
    };
    hands::Click(Native("cmdClose"));
    EXPECT_TRUE(becomes(1));
    hands::Press(VK_SPACE);
    EXPECT_TRUE(becomes(2));
    hands::Press(VK_RETURN);
    EXPECT_TRUE(becomes(3));
    hands::Press('C', {VK_MENU});
    EXPECT_TRUE(becomes(4));
}

TEST_F(SteeredForm, DoesNothingOnEnterInATextBoxAndOnEscape) {
    int clicks = 0;
    for (const auto& control : form_.Controls()) {
        if (control->Kind() == ui::Kind::CommandButton) {
            static_cast<ui::CommandButton&>(*control).on_click = [&] { ++clicks; };
        }
    }
    hands::Click(Native("edtScriptFolder"));
    ASSERT_TRUE(FocusBecomes("edtScriptFolder"));
    hands::Press(VK_RETURN);
    hands::Press(VK_ESCAPE);
    InputArrived();
    EXPECT_EQ(clicks, 0);
    EXPECT_FALSE(form_.Unloaded());
}

TEST_F(SteeredForm, DoesNothingOnEnterInATextBoxAfterAButtonWasPressed) {
    ShowTab(kv::kUpgradeTab);
    int clicks = 0;
    Get<ui::CommandButton>("cmdRename").on_click = [&] {
        ++clicks;
        form_.SetFocus(Get<ui::CommandButton>("cmdRename"));
    };
    hands::Click(Native("cmdRename"));
    EXPECT_TRUE(hands::WaitFor([&] { return clicks == 1; }));
    std::this_thread::sleep_for(2 * ui::kReactionTime);
    for (const char* box : {"edtRenameNewDatabase", "cboUpgradeDatabaseDest"}) {
        hands::Click(Native(box));
        ASSERT_TRUE(FocusBecomes(box));
        hands::Press(VK_RETURN);
        InputArrived();
        EXPECT_EQ(clicks, 1) << box;
    }
}

TEST_F(SteeredForm, TicksABoxAndSelectsAnOption) {
    Tabs().Tab(kv::kScriptTab);
    Settle();
    auto& box = Get<ui::CheckBox>("chkCreateInstallBatchDatabase");
    hands::Click(Native("chkCreateInstallBatchDatabase"));
    EXPECT_TRUE(hands::WaitFor([&] { return box.Value() == 1; }));
    hands::Press(VK_SPACE);
    EXPECT_TRUE(hands::WaitFor([&] { return box.Value() == 0; }));
    int clicks = 0;
    Get<ui::OptionButton>("optCreateInstallScriptFiles", 1).on_click = [&] { ++clicks; };
    hands::Click(Native("optCreateInstallScriptFiles", 1));
    EXPECT_TRUE(hands::WaitFor([&] { return clicks == 1; }));
    EXPECT_FALSE(Get<ui::OptionButton>("optCreateInstallScriptFiles", 0).Value());
    EXPECT_TRUE(Get<ui::OptionButton>("optScriptCurrentServer", 0).Value()) << "another group";
    hands::Press(VK_UP);
    EXPECT_TRUE(
        hands::WaitFor([&] { return Get<ui::OptionButton>("optCreateInstallScriptFiles", 0).Value(); }));
}

TEST_F(SteeredForm, ChoosesFromADropDownListByKeyAndMouse) {
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
    hands::Press(VK_DOWN);
    EXPECT_TRUE(hands::WaitFor([&] { return databases.Text() == "Batch"; }));
    EXPECT_EQ(clicks, 1);
    hands::Click(Native("cboRemoveDatabase"));
    EXPECT_TRUE(hands::WaitFor(
        [this] { return ::SendMessageA(Native("cboRemoveDatabase"), CB_GETDROPPEDSTATE, 0, 0) != 0; }));
    hands::Press(VK_DOWN);
    hands::Press(VK_RETURN);
    EXPECT_TRUE(hands::WaitFor([&] { return databases.Text() == "pubs"; }));
}

TEST_F(SteeredForm, TakesFreeTextInAComboBoxThatAllowsIt) {
    Tabs().Tab(kv::kUpgradeTab);
    auto& destination = Get<ui::ComboBox>("cboUpgradeDatabaseDest");
    destination.AddItem("Batch");
    destination.ListIndex(0);
    int changes = 0;
    destination.on_change = [&] { ++changes; };
    form_.SetFocus(destination);
    ASSERT_TRUE(FocusBecomes("cboUpgradeDatabaseDest"));
    hands::Press(VK_END);
    hands::Type("2b");
    EXPECT_TRUE(hands::WaitFor([&] { return destination.Text() == "Batch2b"; })) << destination.Text();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(destination.ListIndex(), -1);
}

TEST_F(SteeredForm, ChoosesFromAListBox) {
    Tabs().Tab(kv::kViewDataTab);
    auto& tables = Get<ui::ListBox>("lstViewDataTables");
    for (int table = 0; table < 5; ++table) {
        tables.AddItem("Table" + std::to_string(table));
    }
    Settle();
    int clicks = 0;
    tables.on_click = [&] { ++clicks; };
    RECT third{};
    ::SendMessageA(Native("lstViewDataTables"), LB_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&third));
    hands::ClickAt(Native("lstViewDataTables"), third.left + 10, (third.top + third.bottom) / 2);
    EXPECT_TRUE(hands::WaitFor([&] { return tables.ListIndex() == 2; }));
    EXPECT_EQ(clicks, 1);
}

TEST_F(SteeredForm, DoesNotPressWhatIsDisabled) {
    auto& button = Get<ui::CommandButton>("cmdGetLocalSettings");
    int clicks = 0;
    button.on_click = [&] { ++clicks; };
    button.Enabled(false);
    Settle();
    hands::Click(Native("cmdGetLocalSettings"));
    InputArrived();
    EXPECT_EQ(clicks, 0);
}

TEST_F(SteeredForm, ThrowsAgainWhatAHandlerHasThrown) {
    Get<ui::CommandButton>("cmdClose").on_click = [] { throw std::runtime_error("out of a handler"); };
    hands::Click(Native("cmdClose"));
    EXPECT_THROW(window_->RunUntilClosed(), std::runtime_error);
}

TEST_F(SteeredForm, MovesTheFocusOnWhenItsControlIsDisabled) {
    auto& button = Get<ui::CommandButton>("cmdGetLocalSettings");
    button.on_click = [&] { button.Enabled(false); };
    Get<ui::TextBox>("edtServerName", 1).on_change = [this] { form_.Unload(); };
    form_.SetFocus(button);
    ASSERT_TRUE(FocusBecomes("cmdGetLocalSettings"));
    hands::Press(VK_SPACE);
    hands::Type("z"); // arrives where the focus has gone
    window_->RunUntilClosed();
    EXPECT_EQ(Get<ui::TextBox>("edtServerName", 1).Text(), "z");
}

TEST_F(SteeredForm, FollowsTheFocusThatAHandlerGives) {
    auto& path = Get<ui::TextBox>("edtSQLDataPath", 0);
    Get<ui::CommandButton>("cmdGetLocalSettings").on_click = [&] { form_.SetFocus(path); };
    path.on_change = [this] { form_.Unload(); };
    hands::Click(Native("cmdGetLocalSettings"));
    const std::jthread typing([this, box = Native("edtSQLDataPath", 0)] {
        for (int time = 0; time < 500 && hands::FocusIn(handle_) != box; ++time) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        hands::Type("q");
        std::this_thread::sleep_for(std::chrono::seconds(1));
        ::PostMessageA(handle_, WM_CLOSE, 0, 0); // if it is still there, so that a failure has an end
    });
    window_->RunUntilClosed(); // its loop follows the operator's focus, and may not take the handler's away
    EXPECT_EQ(path.Text(), "q");
}

TEST_F(SteeredForm, IsUnloadedByItsFrame) {
    bool unloaded = false;
    form_.on_unload = [&] { unloaded = true; };
    hands::Press(VK_F4, {VK_MENU});
    window_->RunUntilClosed();
    EXPECT_TRUE(unloaded);
    EXPECT_FALSE(::IsWindowVisible(handle_));
}

// --- what another thread sends: GetMessage hands it to the window and does not return

/// Sends a message from a second thread once the window's loop is idle, and wakes a loop that has not ended
/// by itself, so that a failure has an end.
class Sender {
  public:
    Sender(HWND top, UINT message)
        : thread_([this, top, message] {
              for (int time = 0; time < 10; ++time) {
                  ::SendMessageA(top, WM_NULL, 0, 0); // answered by the loop alone
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
              ::SendMessageA(top, message, 0, 0);
              for (int time = 0; time < 3000 && !ended_; ++time) {
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
              woken_ = !ended_;
              ::PostMessageA(top, WM_CLOSE, 0, 0);
          }) {}
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() = default;

    bool LoopEndedByItself() {
        ended_ = true;
        thread_.join();
        return !woken_;
    }

  private:
    std::atomic<bool> ended_ = false;
    bool woken_ = false;
    std::jthread thread_;
};

TEST_F(SteeredForm, EndsItsLoopWhenItIsClosedByAMessageThatIsSent) {
    Sender sender(handle_, WM_CLOSE);
    window_->RunUntilClosed();
    EXPECT_TRUE(sender.LoopEndedByItself());
    EXPECT_TRUE(form_.Unloaded());
}

TEST_F(SteeredForm, EndsItsLoopByWhatAHandlerThrowsOnAMessageThatIsSent) {
    form_.on_unload = [] { throw std::runtime_error("out of a handler"); };
    Sender sender(handle_, WM_CLOSE);
    EXPECT_THROW(window_->RunUntilClosed(), std::runtime_error);
    EXPECT_TRUE(sender.LoopEndedByItself());
}

TEST_F(SteeredForm, EndsADialogThatIsClosedByAMessageThatIsSent) {
    ui::Form dialog(kv::ProceduresFormDesign());
    std::optional<Sender> sender;
    dialog.Get<ui::CommandButton>("cmdExecute").on_click = [&] {
        sender.emplace(ui::NativeForm::HandleOf(dialog), WM_CLOSE);
    };
    Get<ui::CommandButton>("cmdClose").on_click = [&] {
        ui::ShowModally(dialog, form_);
        EXPECT_TRUE(sender->LoopEndedByItself());
        form_.Unload();
    };
    dialog.SetFocus(dialog.Get<ui::CommandButton>("cmdExecute"));
    hands::Click(Native("cmdClose"));
    const std::jthread pressing([&dialog] {
        HWND window = nullptr;
        hands::WaitFor([&] {
            window = ::FindWindowA("KVForm", "Stored Procedures");
            return window != nullptr && ::IsWindowVisible(window) != 0;
        });
        ::PostMessageA(hands::Child(window, dialog.Get<ui::CommandButton>("cmdExecute").Id()), BM_CLICK, 0,
                       0);
    });
    window_->RunUntilClosed();
    EXPECT_TRUE(dialog.Unloaded());
    EXPECT_TRUE(::IsWindowEnabled(handle_));
}

// --- the dialog

TEST_F(SteeredForm, TakesNoInputWhileADialogStandsAboveIt) {
    ui::Form dialog(kv::ProceduresFormDesign());
    bool owner_enabled = true;
    LONG_PTR style = 0;
    RECT place{};
    auto& run = dialog.Get<ui::CommandButton>("cmdExecute");
    run.on_click = [&] {
        owner_enabled = ::IsWindowEnabled(handle_) != 0;
        ::GetWindowRect(ui::NativeForm::HandleOf(dialog), &place);
        style = ::GetWindowLongPtrA(ui::NativeForm::HandleOf(dialog), GWL_STYLE);
        hands::Press(VK_ESCAPE);
    };
    dialog.Get<ui::CommandButton>("cmdClose").on_click = [&] { dialog.Unload(); };
    dialog.SetFocus(run);
    Get<ui::CommandButton>("cmdClose").on_click = [&] { ui::ShowModally(dialog, form_); };
    {
        const std::jthread operating([&run] {
            HWND window = nullptr;
            HWND button = nullptr;
            for (int time = 0; time < 500 && (button == nullptr || hands::FocusIn(window) != button);
                 ++time) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                window = ::FindWindowA("KVForm", "Stored Procedures");
                button = window == nullptr ? nullptr : hands::Child(window, run.Id());
            }
            EXPECT_EQ(::GetDlgCtrlID(hands::FocusIn(window)), run.Id()) << "the control that has the focus";
            hands::Press(VK_SPACE);
            std::this_thread::sleep_for(std::chrono::seconds(1));
            ::PostMessageA(window, WM_CLOSE, 0, 0); // if it is still there, so that a failure has an end
        });
        hands::Click(Native("cmdClose"));
        EXPECT_TRUE(hands::WaitFor([&] { return dialog.Unloaded(); }));
    }
    EXPECT_FALSE(owner_enabled) << "true also where the button was not pressed";
    EXPECT_TRUE(::IsWindowEnabled(handle_));
    RECT owner{};
    ::GetWindowRect(handle_, &owner);
    EXPECT_NEAR(place.left + place.right, owner.left + owner.right, 2);
    EXPECT_EQ(style & (WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX),
              WS_CAPTION | WS_SYSMENU);
}

} // namespace

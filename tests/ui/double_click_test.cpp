// Tests that a second click on a command button, by real mouse or keyboard input, does not run the command
// again, whenever the click arrives.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "console/wait_cursor.h"
#include "ui/on_screen.h"
#include "ui/operator.h"

namespace {

using screen::Key;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// True for the commands that disable their own button while they run.
bool DisablesItself(const std::string& name) {
    for (const char* other : {"cmdCreateInstall", "cmdSynchronize", "cmdRename", "cmdUpgrade", "cmdRemove"}) {
        if (name == other) {
            return true;
        }
    }
    return false;
}

class SecondClicks : public OnScreen {
  protected:
    using OnScreen::OnScreen;
    static constexpr milliseconds kWork{80}; // how long a command runs
    static constexpr int kEnough = 3; // runs after which a test stops in which each run could cause another

    /// Does what the console's commands do: runs pending events once, waits for a server, then enables the
    /// button and gives it the focus.
    void RunFor(ui::CommandButton& button) {
        const kv::CWaitCursor wait;
        const bool disables = DisablesItself(button.Name());
        ++runs_;
        if (disables) {
            button.Enabled(false);
        }
        std::this_thread::sleep_for(kWork / 2);
        platform::RunPendingEvents();
        std::this_thread::sleep_for(kWork / 2);
        if (disables) {
            button.Enabled(true);
        }
        form_.SetFocus(button);
    }
    /// Makes RunFor the handler of every command button.
    void Arm() {
        for (const auto& control : form_.Controls()) {
            if (control->Kind() == ui::Kind::CommandButton) {
                auto& button = static_cast<ui::CommandButton&>(*control);
                button.on_click = [this, &button] { RunFor(button); };
            }
        }
    }
    /// Waits longer than the time of a double click, so that the next press is not taken for a second one.
    static void Rest() {
        const auto end = steady_clock::now() + ui::kDoubleClickTime + milliseconds(100);
        EXPECT_TRUE(screen::WaitFor([end] { return steady_clock::now() > end; }));
    }
    /// The system's clock counts in steps of 16 ms and may be wrong by one for each click.
    static constexpr milliseconds kSteps{32};
    /// How often a double click is tried: on a busy machine the time between the clicks may be too long.
    static constexpr int kTries = 100;

    /// Returns false if the machine was so busy that the time between the clicks was too long for a double
    /// click.
    bool ClickTwice(screen::Part native, milliseconds between) {
        auto took = ui::kDoubleClickTime;
        {
            // Clicks in another thread, because the command keeps this one busy when the second click comes.
            const std::jthread clicking([spot = screen::MiddleOf(native), between, &took] {
                const auto start = steady_clock::now();
                screen::ClickAt(spot);
                std::this_thread::sleep_for(between);
                screen::ClickAt(spot);
                took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
            });
            EXPECT_TRUE(screen::WaitFor([this] { return runs_ > 0; }));
        }
        ExpectInputArrives();
        return took < ui::kDoubleClickTime - kSteps;
    }
    void ExpectOneRunOfTwoClicks(const ui::CommandButton& button, milliseconds between) {
        SCOPED_TRACE(Name(button) + ", " + std::to_string(between.count()) + " ms between the clicks");
        screen::Part native = Native(button);
        ASSERT_NE(native, nullptr);
        for (int time = 0; time < kTries; ++time) {
            runs_ = 0;
            if (ClickTwice(native, between)) {
                EXPECT_EQ(runs_, 1);
                return;
            }
            Rest();
        }
        ADD_FAILURE() << "the machine is too busy for a double click";
    }
    void ExpectOneRunEach(const std::vector<ui::CommandButton*>& buttons) {
        for (const int between : {0, 50, 120, 350}) {
            Rest();
            for (const ui::CommandButton* button : buttons) {
                ExpectOneRunOfTwoClicks(*button, milliseconds(between));
            }
        }
    }
    std::vector<ui::CommandButton*> ButtonsOnShow() const {
        std::vector<ui::CommandButton*> buttons;
        for (const auto& control : form_.Controls()) {
            if (control->Kind() == ui::Kind::CommandButton && ui::CanBeUsed(*control)) {
                buttons.push_back(static_cast<ui::CommandButton*>(control.get()));
            }
        }
        return buttons;
    }

    int runs_ = 0;
};

class SecondClicksInTheDialog : public SecondClicks {
  protected:
    SecondClicksInTheDialog() : SecondClicks(kv::ProceduresFormDesign()) {}
};

TEST_F(SecondClicks, DoNotRunACommandOfAnyTabAgain) {
    Arm();
    std::size_t commands = 0;
    for (int tab = 0; tab < kv::kMainTabs; ++tab) {
        ShowTab(tab);
        std::vector<ui::CommandButton*> buttons = ButtonsOnShow();
        if (tab != 0) {
            std::erase(buttons, &Get<ui::CommandButton>("cmdClose")); // the same button on each tab
        }
        commands += buttons.size();
        ExpectOneRunEach(buttons);
    }
    EXPECT_EQ(commands, 16U);
}

TEST_F(SecondClicksInTheDialog, DoNotRunACommandOfTheDialogAgain) {
    Arm();
    ASSERT_EQ(ButtonsOnShow().size(), 3U);
    ExpectOneRunEach(ButtonsOnShow());
}

TEST_F(SecondClicks, AfterARestRunTheCommandAgain) {
    Arm();
    ShowTab(kv::kUpgradeTab);
    for (int time = 1; time <= 3; ++time) {
        Rest();
        screen::Click(Native("cmdRemove"));
        EXPECT_TRUE(screen::WaitFor([this, time] { return runs_ == time; })) << runs_;
    }
}

/// The second key is pressed after the command has run events for the last time, so it waits in the queue
/// until the command has ended.
TEST_F(SecondClicks, ByAKeyInTheQueueDoNotRunACommandAgain) {
    ShowTab(kv::kUpgradeTab);
    auto& remove = Get<ui::CommandButton>("cmdRemove");
    for (const bool disables : {true, false}) {
        for (const Key key : {Key::Space, Key::Enter}) {
            remove.on_click = [&] {
                ++runs_;
                remove.Enabled(!disables);
                Settle();
                if (runs_ < kEnough) {
                    screen::Press(key);
                }
                remove.Enabled(true);
                form_.SetFocus(remove);
            };
            Rest();
            form_.SetFocus(remove);
            Settle();
            runs_ = 0;
            screen::Press(key);
            EXPECT_TRUE(screen::WaitFor([this] { return runs_ > 0; }));
            ExpectInputArrives();
            EXPECT_EQ(runs_, 1) << (key == Key::Space ? "space" : "Enter")
                                << (disables ? ", disabled" : ", enabled");
        }
    }
}

TEST_F(SecondClicks, ByKeysThatMoveTheFocusAreNotDropped) {
    Arm();
    ShowTab(kv::kUpgradeTab);
    auto& remove = Get<ui::CommandButton>("cmdRemove");
    remove.on_click = [this] { ++runs_; };
    form_.SetFocus(remove);
    Settle();
    screen::Press(Key::Space);
    screen::Press(Key::Tab);
    EXPECT_TRUE(screen::WaitFor([this] { return FocusName() == "cmdClose"; })) << FocusName();
    EXPECT_EQ(runs_, 1);
}

TEST_F(SecondClicks, ByAMnemonicInTheQueueDoNotRunACommandAgain) {
    ShowTab(kv::kScriptTab);
    auto& run = Get<ui::CommandButton>("cmdCreateInstall");
    run.on_click = [&] {
        ++runs_;
        run.Enabled(false);
        Settle();
        if (runs_ < kEnough) {
            screen::Press(Key::R, {screen::Held::Alt});
        }
        run.Enabled(true);
    };
    screen::Press(Key::R, {screen::Held::Alt});
    EXPECT_TRUE(screen::WaitFor([this] { return runs_ > 0; }));
    ExpectInputArrives();
    EXPECT_EQ(runs_, 1);
}

/// A key that is held down is pressed again and again.
TEST_F(SecondClicks, ByAKeyThatIsHeldDownDoNotRunACommandAgain) {
    ShowTab(kv::kUpgradeTab);
    auto& remove = Get<ui::CommandButton>("cmdRemove");
    remove.on_click = [this] { ++runs_; };
    form_.SetFocus(remove);
    Settle();
    screen::Hold(Key::Enter, 5);
    ExpectInputArrives();
    EXPECT_EQ(runs_, 1);
    Rest();
    screen::Press(Key::Enter);
    EXPECT_TRUE(screen::WaitFor([this] { return runs_ == 2; })) << "the key is pressed anew";
}

/// The first press hits the disabled button; the system delivers it to the page below the button.
TEST_F(SecondClicks, OfADoubleClickThatBeganOnADisabledButtonRunNothing) {
    Arm();
    ShowTab(kv::kUpgradeTab);
    auto& remove = Get<ui::CommandButton>("cmdRemove");
    for (int time = 0; time < kTries; ++time) {
        Rest();
        runs_ = 0;
        remove.Enabled(false);
        Settle();
        const auto start = steady_clock::now();
        screen::Click(Native(remove));
        ExpectInputArrives();
        remove.Enabled(true);
        Settle();
        screen::Click(Native(remove));
        const auto took = steady_clock::now() - start;
        ExpectInputArrives();
        if (took < ui::kDoubleClickTime - kSteps) {
            EXPECT_EQ(runs_, 0);
            return;
        }
    }
    ADD_FAILURE() << "the machine is too busy for a double click";
}

} // namespace

// frmStatus and the hourglass of CWaitCursor, with a screen that records the calls.
#include "status/status_form.h"

#include <optional>

#include <gtest/gtest.h>

#include "console/wait_cursor.h"
#include "fakes/fake_screen.h"

namespace kv {
namespace {

class StatusForm : public ::testing::Test {
  protected:
    fakes::FakeScreen screen_;
};

TEST_F(StatusForm, TheBarStopsAtBothEnds) {
    frmStatus status;
    status.InitProgressBar(0, 17, 16);
    status.StepProgessBar(Int16(5));
    EXPECT_EQ(screen_.calls.back(), "bar 0 17 17");
    status.InitProgressBar(0, 17, 1);
    status.StepProgessBar(Int16(-5));
    EXPECT_EQ(screen_.calls.back(), "bar 0 17 0");
}

TEST_F(StatusForm, TheBarIsFullAfterAsManyStepsAsItsMaximum) {
    frmStatus status;
    status.InitProgressBar(0, 8, 0);
    for (int i = 1; i <= 8; ++i) {
        status.StepProgessBar(Int16(1));
        EXPECT_EQ(screen_.calls.back(), "bar 0 8 " + std::to_string(i));
    }
}

TEST_F(StatusForm, AStepOfZeroDoesNotMoveIt) {
    frmStatus status;
    status.InitProgressBar(2, 5, 3);
    status.StepProgessBar(Int16(0));
    EXPECT_EQ(screen_.calls.back(), "bar 2 5 3");
}

TEST_F(StatusForm, AStepAwayFromAnEndIsNotStoppedByIt) {
    frmStatus status;
    status.InitProgressBar(2, 5, 9);
    status.StepProgessBar(Int16(-1));
    EXPECT_EQ(screen_.calls.back(), "bar 2 5 8");
    status.InitProgressBar(2, 5, 0);
    status.StepProgessBar(Int16(1));
    EXPECT_EQ(screen_.calls.back(), "bar 2 5 1");
}

TEST_F(StatusForm, ATextIsShownAndPendingEventsRunOnce) {
    frmStatus status;
    screen_.calls.clear();
    status.StatusText("Working...");
    EXPECT_EQ(screen_.calls, (std::vector<std::string>{"label Working...", "events"}));
}

TEST_F(StatusForm, AStepDoesNotRunOtherEvents) {
    frmStatus status;
    status.InitProgressBar(0, 2, 0);
    screen_.calls.clear();
    status.StepProgessBar(Int16(1));
    EXPECT_EQ(screen_.calls, std::vector<std::string>{"bar 0 2 1"});
}

TEST_F(StatusForm, TheWindowIsLoadedBeforeItIsShown) {
    { frmStatus().Show(); }
    EXPECT_EQ(screen_.calls.front(), "window made Installing / Upgrading Lotkeeper database");
    EXPECT_EQ(screen_.calls[screen_.calls.size() - 2], "show");
    EXPECT_EQ(screen_.calls.back(), "window gone");
}

TEST_F(StatusForm, ItsSizeAndPositionsAreTheProducts) {
    const frmStatus status;
    const platform::StatusWindowLayout& layout = screen_.status_layout;
    EXPECT_EQ(layout.client_width, 5565);
    EXPECT_EQ(layout.client_height, 870);
    const auto places = [](const platform::TwipsRect& rect) {
        return std::vector<int>{rect.left, rect.top, rect.width, rect.height};
    };
    EXPECT_EQ(places(layout.label), (std::vector<int>{120, 120, 5295, 255}));
    EXPECT_EQ(places(layout.bar), (std::vector<int>{60, 420, 5415, 375}));
}

TEST_F(StatusForm, TheHourglassLastsAsLongAsTheObject) {
    screen_.pointer = 2;
    {
        const CWaitCursor cursor;
        EXPECT_EQ(screen_.pointer, 11);
        EXPECT_EQ(screen_.calls, (std::vector<std::string>{"pointer 11", "events"}));
    }
    EXPECT_EQ(screen_.pointer, 2);
}

TEST_F(StatusForm, NestedHourglassesRestoreWhatEachFound) {
    std::optional<CWaitCursor> outer;
    outer.emplace();
    {
        const CWaitCursor inner;
        EXPECT_EQ(screen_.pointer, 11);
    }
    EXPECT_EQ(screen_.pointer, 11);
    outer.reset();
    EXPECT_EQ(screen_.pointer, 0);
}

} // namespace
} // namespace kv

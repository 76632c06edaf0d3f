// The status window on a real screen, as the operator sees it during an unattended run on Windows.
#include "platform/status_window.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/pending_events.h"
#include "platform/windows/desktop.h"

#include <commctrl.h>

namespace platform {
namespace {

constexpr char kCaption[] = "Installing / Upgrading Lotkeeper database";

/// The layout of the program's own window, in pixels of 96 DPI: 371 by 58, label 8,8 353 by 17, bar 4,28 361
/// by 25.
StatusWindowLayout Layout() {
    return {kCaption, 5565, 870, {120, 120, 5295, 255}, {60, 420, 5415, 375}};
}

std::string TextOf(HWND window) {
    std::string text(200, '\0');
    text.resize(
        static_cast<std::size_t>(::GetWindowTextA(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

RECT PlaceOf(HWND child) {
    RECT place{};
    ::GetWindowRect(child, &place);
    ::MapWindowPoints(nullptr, ::GetParent(child), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void ExpectPlace(HWND child, long left, long top, long width, long height) {
    const RECT place = PlaceOf(child);
    EXPECT_EQ(place.left, left);
    EXPECT_EQ(place.top, top);
    EXPECT_EQ(place.right - place.left, width);
    EXPECT_EQ(place.bottom - place.top, height);
}

class NativeStatusWindow : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(DesktopIsVisible()) << "this suite needs a screen";
        status_ = MakeStatusWindow(Layout());
        window_ = ::FindWindowA(nullptr, kCaption);
        ASSERT_NE(window_, nullptr);
        label_ = ::FindWindowExA(window_, nullptr, "STATIC", nullptr);
        bar_ = ::FindWindowExA(window_, nullptr, PROGRESS_CLASSA, nullptr);
        ASSERT_NE(label_, nullptr);
        ASSERT_NE(bar_, nullptr);
    }

    std::unique_ptr<StatusWindow> status_;
    HWND window_ = nullptr;
    HWND label_ = nullptr;
    HWND bar_ = nullptr;
};

TEST_F(NativeStatusWindow, IsInvisibleAtFirstAndHasItsSizeAndPlaces) {
    EXPECT_FALSE(::IsWindowVisible(window_));
    RECT client{};
    ::GetClientRect(window_, &client);
    EXPECT_EQ(client.right, 371);
    EXPECT_EQ(client.bottom, 58);
    ExpectPlace(label_, 8, 8, 353, 17);
    ExpectPlace(bar_, 4, 28, 361, 25);
}

TEST_F(NativeStatusWindow, IsTopmostOnceItIsActive) {
    EXPECT_EQ(::GetWindowLongPtrA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    status_->Show();
    RunPendingEvents();
    EXPECT_TRUE(::IsWindowVisible(window_));
    EXPECT_NE(::GetWindowLongPtrA(window_, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
}

TEST_F(NativeStatusWindow, ShowsItsTextAndHowFarItIs) {
    status_->Show();
    status_->SetLabel("Installing the new database... 100 % & more");
    status_->SetBar(2, 14, 5);
    EXPECT_EQ(TextOf(label_), "Installing the new database... 100 % & more");
    EXPECT_EQ(::SendMessageA(bar_, PBM_GETRANGE, TRUE, 0), 2);
    EXPECT_EQ(::SendMessageA(bar_, PBM_GETRANGE, FALSE, 0), 14);
    EXPECT_EQ(::SendMessageA(bar_, PBM_GETPOS, 0, 0), 5);
}

TEST_F(NativeStatusWindow, PaintsItsTextAtOnce) {
    status_->Show();
    RunPendingEvents();
    ASSERT_FALSE(::GetUpdateRect(label_, nullptr, FALSE));
    ::InvalidateRect(label_, nullptr, TRUE); // as the system may leave it after a change of its text
    status_->SetLabel("Installing the new database...");
    EXPECT_FALSE(::GetUpdateRect(label_, nullptr, FALSE));
}

TEST_F(NativeStatusWindow, HasTheProgramsIconAndNoButtonToCloseIt) {
    EXPECT_NE(::GetClassLongPtrA(window_, GCLP_HICON), 0U);
    EXPECT_NE(::GetClassLongPtrA(window_, GCLP_HICONSM), 0U);
    EXPECT_NE(::GetWindowLongPtrA(window_, GWL_STYLE) & WS_SYSMENU, 0)
        << "without this style the window has no icon";
    EXPECT_NE(::GetClassLongPtrA(window_, GCL_STYLE) & CS_NOCLOSE, 0U);
}

TEST_F(NativeStatusWindow, CannotBeClosedByTheOperatorAndIsDestroyedWithItsObject) {
    status_->Show();
    ::SendMessageA(window_, WM_CLOSE, 0, 0);
    RunPendingEvents();
    EXPECT_TRUE(::IsWindow(window_));
    status_.reset();
    EXPECT_FALSE(::IsWindow(window_));
}

} // namespace
} // namespace platform

// Tests that the windows follow the desktop's colours when they change while the program runs, and that they
// do not follow its text direction.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include <QApplication>
#include <QPalette>
#include <QWidget>

#include "ui/on_screen.h"

namespace {

QPalette DarkPalette() {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(48, 48, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Button, QColor(60, 60, 60));
    dark.setColor(QPalette::AlternateBase, QColor(48, 48, 48));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText}) {
        dark.setColor(role, QColor(230, 230, 230));
        dark.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    }
    return dark;
}

class DarkDesktop : public OnScreen {
  protected:
    DarkDesktop() : OnScreen(kv::MainFormDesign()) {}
    void TearDown() override { QApplication::setPalette(before_); }
    static QColor Colour(screen::Part part, QPalette::ColorRole role) {
        return static_cast<QWidget*>(part)->palette().color(role);
    }
    void GoDark() {
        before_ = QApplication::palette();
        QApplication::setPalette(DarkPalette());
        Settle();
    }

    QPalette before_;
};

TEST_F(DarkDesktop, ChangesEverySystemColour) {
    auto& status = Get<ui::Label>("lblSQLServerReplicationStatus");
    auto& user = Get<ui::TextBox>("edtUserID", 0);
    user.BackColor(ui::kButtonFaceBackground);
    ShowTab(kv::kReplicationTab);
    status.Caption("Replication status");
    GoDark();
    EXPECT_EQ(Colour(top_, QPalette::Window), QColor(48, 48, 48));
    EXPECT_EQ(Colour(Native(status), QPalette::WindowText), QColor(230, 230, 230));
    EXPECT_EQ(Colour(Native("edtUserID", 0), QPalette::Base), QColor(48, 48, 48));
    EXPECT_EQ(Colour(Native("edtUserID", 1), QPalette::Base), QColor(30, 30, 30));
    status.ForeColor(ui::kRed);
    user.BackColor(ui::kWindowBackground);
    Settle();
    EXPECT_EQ(Colour(Native(status), QPalette::WindowText), QColor(255, 0, 0));
    EXPECT_EQ(Colour(Native("edtUserID", 0), QPalette::Base), QColor(30, 30, 30));
    if (const char* folder = std::getenv("KV_PICTURES")) {
        EXPECT_TRUE(screen::TakePicture(top_, std::string(folder) + "/dark-replication"));
        ShowTab(kv::kGeneralTab);
        screen::WaitFor([turns = 0]() mutable { return ++turns > 150; });
        EXPECT_TRUE(screen::TakePicture(top_, std::string(folder) + "/dark-general"));
    }
}

TEST_F(DarkDesktop, CanTurnLightAgain) {
    ShowTab(kv::kReplicationTab);
    auto& status = Get<ui::Label>("lblSQLServerReplicationStatus");
    auto& user = Get<ui::TextBox>("edtUserID", 0);
    user.BackColor(ui::kButtonFaceBackground);
    Settle();
    const QColor window = Colour(top_, QPalette::Window);
    const QColor text = Colour(Native(status), QPalette::WindowText);
    GoDark();
    QApplication::setPalette(before_);
    Settle();
    EXPECT_EQ(Colour(top_, QPalette::Window), window);
    EXPECT_EQ(Colour(Native(status), QPalette::WindowText), text);
    EXPECT_EQ(Colour(Native("edtUserID", 0), QPalette::Base), window);
}

class DesktopFromRightToLeft : public OnScreen {
  protected:
    void TearDown() override { QApplication::setLayoutDirection(Qt::LeftToRight); }
    /// True if something dark is painted in that half of a label.
    bool IsPainted(const char* label, int index, bool right_half) {
        constexpr screen::Colour kDark = 100;
        screen::Part native = Native(label, index);
        const screen::Box all = screen::PlaceIn(native, native);
        const int middle = all.Width() / 2;
        const std::vector<screen::Colour> pixels = screen::Pixels(
            native, {right_half ? middle : 0, 0, right_half ? all.Width() : middle, all.Height()});
        return std::any_of(pixels.begin(), pixels.end(),
                           [](screen::Colour pixel) { return (pixel & 0xFFU) < kDark; });
    }
};

/// The program's texts are English, so they are beside their boxes and read from left to right on every
/// desktop.
TEST_F(DesktopFromRightToLeft, DoesNotMoveEnglishLabels) {
    ASSERT_TRUE(IsPainted("lblUserID", 0, false));
    ASSERT_FALSE(IsPainted("lblUserID", 0, true));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    Settle();
    EXPECT_TRUE(IsPainted("lblUserID", 0, false));
    EXPECT_FALSE(IsPainted("lblUserID", 0, true));
    ShowTab(kv::kReplicationTab); // its controls are made after the change
    EXPECT_TRUE(IsPainted("lblSQLReplicationDatabase", ui::kNoIndex, false));
}

} // namespace

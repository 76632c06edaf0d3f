// Tests the colours, pictures and captions that the screen shows of the native window.
#include <algorithm>
#include <vector>

#include "ui/on_screen.h"

namespace {

using screen::Colour;
using screen::Look;

constexpr Colour kRed = 0xFF0000;
/// A difference in brightness, of 255: less than that between a colour and its dimmed form, more than that
/// which the edges of letters cause.
constexpr int kClearlyPaler = 30;

int Brightness(Colour colour) {
    return static_cast<int>(((colour >> 16U & 0xFFU) + (colour >> 8U & 0xFFU) + (colour & 0xFFU)) / 3);
}

class FormLooks : public OnScreen {
  protected:
    using OnScreen::OnScreen;

    static screen::Box All(screen::Part part) {
        const screen::Box place = screen::PlaceIn(part, part);
        return {0, 0, place.Width(), place.Height()};
    }
    static int Darkest(const std::vector<Colour>& pixels) {
        int darkest = 255;
        for (const Colour pixel : pixels) {
            darkest = std::min(darkest, Brightness(pixel));
        }
        return darkest;
    }
    static int Darkest(screen::Part part) { return Darkest(screen::Pixels(part, All(part))); }
    static bool Shows(screen::Part part, Colour colour) {
        const std::vector<Colour> pixels = screen::Pixels(part, All(part));
        return std::find(pixels.begin(), pixels.end(), colour) != pixels.end();
    }
    /// The colour of a text box right of its text.
    Colour BackgroundOf(const char* box, int index = ui::kNoIndex) {
        const screen::Box all = All(Native(box, index));
        const int middle = all.Height() / 2;
        const int right = all.Width() - kEdge;
        return screen::Pixels(Native(box, index), {right - 1, middle, right, middle + 1}).front();
    }

  private:
    static constexpr int kEdge = 7;
};

class DialogLooks : public FormLooks {
  protected:
    DialogLooks() : FormLooks(kv::ProceduresFormDesign()) {}
};

TEST_F(FormLooks, ADisabledTabIsGrey) {
    constexpr int kEdges = 3;
    screen::Part tabs = Native("tabMain");
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    screen::Box caption = screen::TabPlace(tabs, 2);
    caption = {caption.left + kEdges, caption.top + kEdges, caption.right - kEdges, caption.bottom - kEdges};
    const int enabled = Darkest(screen::Pixels(tabs, caption));
    Get<ui::TabControl>("tabMain").TabEnabled(2, false);
    Settle();
    const int disabled = Darkest(screen::Pixels(tabs, caption));
    EXPECT_GT(disabled, enabled + kClearlyPaler);
    EXPECT_GE(disabled, Brightness(screen::ColourOf(Look::DisabledText)));
    Get<ui::TabControl>("tabMain").TabEnabled(2, true);
    Settle();
    EXPECT_EQ(Darkest(screen::Pixels(tabs, caption)), enabled);
}

TEST_F(FormLooks, ALabelHasTheColourOfItsModelAndIsPaintedAtOnce) {
    ShowTab(kv::kReplicationTab);
    auto& status = Get<ui::Label>("lblSQLServerReplicationStatus");
    status.Caption("Transaction replication");
    Settle();
    screen::Part native = Native("lblSQLServerReplicationStatus");
    const int black = Darkest(native);
    EXPECT_FALSE(Shows(native, kRed));
    status.ForeColor(ui::kRed);
    status.Refresh(); // no event runs before the screen is read
    EXPECT_TRUE(Shows(native, kRed));
    EXPECT_GE(Darkest(native), Brightness(kRed) - 5);
    EXPECT_LT(black, Brightness(kRed) - kClearlyPaler);
}

TEST_F(FormLooks, AReadOnlyBoxHasTheColourOfTheForm) {
    const Colour face = screen::ColourOf(Look::Face);
    const Colour text = screen::ColourOf(Look::TextBackground);
    ASSERT_NE(face, text);
    for (const int server : {0, 1}) {
        EXPECT_EQ(BackgroundOf("edtSQLUNCReplDataPath", server), face);
        EXPECT_EQ(BackgroundOf("edtSQLDataPath", server), text);
    }
    ShowTab(kv::kStoredProcTab);
    EXPECT_EQ(BackgroundOf("edtStoredProcedure"), text) << "a text to be read";
}

TEST_F(DialogLooks, TheValueBoxIsGreyForAnOutputAndWhiteForAnInput) {
    const Colour face = screen::ColourOf(Look::Face);
    const Colour text = screen::ColourOf(Look::TextBackground);
    EXPECT_EQ(BackgroundOf("edtDataType"), face);
    EXPECT_EQ(BackgroundOf("edtDirection"), face);
    EXPECT_EQ(BackgroundOf("edtValue"), text);
    auto& value = Get<ui::TextBox>("edtValue");
    value.Locked(true);
    value.BackColor(ui::kButtonFaceBackground);
    Settle();
    EXPECT_EQ(BackgroundOf("edtValue"), face);
    value.BackColor(ui::kWindowBackground);
    value.Locked(false);
    Settle();
    EXPECT_EQ(BackgroundOf("edtValue"), text);
}

TEST_F(FormLooks, TheTickOfADisabledCheckBoxIsPaler) {
    ShowTab(kv::kScriptTab);
    screen::Part native = Native("chkCreateInstallScriptFile");
    auto& box = Get<ui::CheckBox>("chkCreateInstallScriptFile");
    box.Value(1);
    Settle();
    const int enabled = Darkest(native);
    box.Enabled(false);
    Settle();
    EXPECT_GT(Darkest(native), enabled + kClearlyPaler);
    box.Enabled(true);
    Settle();
    EXPECT_EQ(Darkest(native), enabled);
}

TEST_F(FormLooks, TheWindowHasTheProgramsIconAndTheCommandItsPicture) {
    EXPECT_TRUE(screen::WaitFor([this] { return screen::HasIcon(top_); }));
    ShowTab(kv::kStoredProcTab);
    EXPECT_TRUE(screen::HasPicture(Native("cmdExecute")));
    EXPECT_LT(Darkest(Native("cmdExecute")), 180) << "the picture is painted";
}

// --- captions that are data

TEST_F(FormLooks, AnAmpersandInDataIsShown) {
    Get<ui::Label>("lblStatus").Caption("Removing R&D...");
    ShowTab(kv::kReplicationTab);
    Get<ui::Label>("lblSQLServerReplicationStatus").Caption("'R&D'");
    Get<ui::OptionButton>("optSQLReplCurrentServer", 0).Caption("R&D");
    Settle();
    EXPECT_EQ(screen::ShownCaption(Native("lblStatus")), "Removing R&D...");
    EXPECT_EQ(screen::ShownCaption(Native("lblSQLServerReplicationStatus")), "'R&D'");
    EXPECT_EQ(screen::ShownCaption(Native("optSQLReplCurrentServer", 0)), "R&D");
    ShowTab(kv::kGeneralTab);
    EXPECT_EQ(screen::ShownCaption(Native("lblUserID", 0)), "UserID:") << "a mnemonic is not";
}

TEST_F(FormLooks, ALongServerNameIsCutInItsMiddle) {
    ShowTab(kv::kScriptTab);
    const std::string name = "A-COMPUTER-WITH-A-LONG-NAME\\AN_INSTANCE_WITH_ANOTHER";
    Get<ui::OptionButton>("optScriptCurrentServer", 0).Caption(name);
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Caption("SRVB\\KV_BATCH");
    Settle();
    const std::string ellipsis = screen::Ellipsis();
    const std::string shown = screen::ShownCaption(Native("optScriptCurrentServer", 0));
    const std::size_t cut = shown.find(ellipsis);
    ASSERT_NE(cut, std::string::npos) << shown;
    EXPECT_GE(cut, 8U) << shown;
    EXPECT_EQ(shown.substr(0, cut), name.substr(0, cut));
    const std::string end = shown.substr(cut + ellipsis.size());
    EXPECT_GE(end.size(), 8U) << shown;
    EXPECT_EQ(end, name.substr(name.size() - end.size()));
    EXPECT_LE(std::max(cut, end.size()) - std::min(cut, end.size()), screen::EllipsisOffset()) << shown;
    EXPECT_EQ(screen::ShownCaption(Native("optScriptCurrentServer", 1)), "SRVB\\KV_BATCH");
    SetSize(screen::Sizes().back());
    const std::string larger = screen::ShownCaption(Native("optScriptCurrentServer", 0));
    EXPECT_NE(larger.find(ellipsis), std::string::npos) << "it is measured anew at another size";
}

TEST_F(FormLooks, LockedPaintingLocksTheWindow) {
    EXPECT_FALSE(screen::PaintingIsLocked(top_));
    form_.LockPainting();
    form_.LockPainting();
    EXPECT_TRUE(screen::PaintingIsLocked(top_));
    form_.UnlockPainting();
    EXPECT_FALSE(screen::PaintingIsLocked(top_));
}

} // namespace

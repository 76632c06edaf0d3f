// What a person sees of the native window beyond texts: colours, pictures, marks and painting at once.
#include <algorithm>
#include <vector>

#include "ui/windows/on_screen.h"

namespace {

/// What the screen shows of a part of a window's client area.
class Picture {
  public:
    Picture(HWND window, const RECT& part) : width_(part.right - part.left) {
        ::UpdateWindow(window);
        const HDC paper = ::GetDC(window);
        for (LONG y = part.top; y < part.bottom; ++y) {
            for (LONG x = part.left; x < part.right; ++x) {
                pixels_.push_back(::GetPixel(paper, x, y));
            }
        }
        ::ReleaseDC(window, paper);
    }
    explicit Picture(HWND window) : Picture(window, ClientOf(window)) {}

    static RECT ClientOf(HWND window) {
        RECT client{};
        ::GetClientRect(window, &client);
        return client;
    }
    static int Brightness(COLORREF colour) {
        return (GetRValue(colour) + GetGValue(colour) + GetBValue(colour)) / 3;
    }
    int Darkest() const {
        int darkest = 255;
        for (const COLORREF pixel : pixels_) {
            darkest = std::min(darkest, Brightness(pixel));
        }
        return darkest;
    }
    bool Holds(COLORREF colour) const {
        return std::find(pixels_.begin(), pixels_.end(), colour) != pixels_.end();
    }
    /// Where the two differ, as places in a part of the same size.
    std::vector<POINT> Differences(const Picture& other) const {
        std::vector<POINT> places;
        for (std::size_t i = 0; i < pixels_.size(); ++i) {
            if (pixels_[i] != other.pixels_.at(i)) {
                const auto index = static_cast<LONG>(i);
                places.push_back({index % width_, index / width_});
            }
        }
        return places;
    }

  private:
    LONG width_;
    std::vector<COLORREF> pixels_;
};

COLORREF PixelAt(HWND window, LONG x, LONG y) {
    ::UpdateWindow(window);
    const HDC paper = ::GetDC(window);
    const COLORREF colour = ::GetPixel(paper, x, y);
    ::ReleaseDC(window, paper);
    return colour;
}

class FormLooks : public OnScreen {
  protected:
    using OnScreen::OnScreen;

    RECT TabPlace(int tab) {
        RECT place{};
        ::SendMessageA(Native("tabMain"), TCM_GETITEMRECT, static_cast<WPARAM>(tab),
                       reinterpret_cast<LPARAM>(&place));
        return place;
    }
    /// The background of a text box, right of its text.
    COLORREF BackgroundOf(const char* box, int index = ui::kNoIndex) {
        const RECT client = Picture::ClientOf(Native(box, index));
        return PixelAt(Native(box, index), client.right - 4, client.bottom / 2);
    }
};

class DialogLooks : public FormLooks {
  protected:
    DialogLooks() : FormLooks(kv::ProceduresFormDesign()) {}
};

// --- tabs

TEST_F(FormLooks, TheSelectedTabAndWhatIsRoundAPageHaveThePagesColour) {
    const HWND tabs = Native("tabMain");
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE);
    const RECT client = Picture::ClientOf(tabs);
    for (const int tab : {0, 3}) {
        ShowTab(tab);
        const RECT place = TabPlace(tab);
        EXPECT_EQ(PixelAt(tabs, place.left + 1, place.top + 1), face);
        EXPECT_EQ(PixelAt(tabs, place.left + 1, place.bottom), face) << "no line below the selected tab";
        for (const LONG inside : {1, 2, 3, 4}) {
            EXPECT_EQ(PixelAt(tabs, inside, client.bottom / 2), face);
            EXPECT_EQ(PixelAt(tabs, client.right - 1 - inside, client.bottom / 2), face);
            EXPECT_EQ(PixelAt(tabs, client.right / 2, client.bottom - 1 - inside), face);
        }
        EXPECT_EQ(PixelAt(tabs, 0, client.bottom / 2), ::GetSysColor(COLOR_BTNSHADOW)) << "its edge";
    }
}

TEST_F(FormLooks, ADisabledTabIsGrey) {
    const HWND tabs = Native("tabMain");
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    RECT caption = TabPlace(2);
    ::InflateRect(&caption, -3, -3); // without its edge
    EXPECT_LT(Picture(tabs, caption).Darkest(), 40);
    Get<ui::TabControl>("tabMain").TabEnabled(2, false);
    Settle();
    EXPECT_GE(Picture(tabs, caption).Darkest(), Picture::Brightness(::GetSysColor(COLOR_GRAYTEXT)));
    Get<ui::TabControl>("tabMain").TabEnabled(2, true);
    Settle();
    EXPECT_LT(Picture(tabs, caption).Darkest(), 40);
}

TEST_F(FormLooks, TheFocusOfATabIsOneRectangleAndLeavesNothing) {
    const HWND tabs = Native("tabMain");
    ::SendMessageA(handle_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    RECT strip = Picture::ClientOf(tabs);
    strip.bottom = TabPlace(0).bottom + 4;
    const Picture before(tabs, strip);
    form_.SetFocus(Get<ui::TabControl>("tabMain"));
    Settle();
    ASSERT_EQ(FocusName(), "tabMain");
    const std::vector<POINT> changed = Picture(tabs, strip).Differences(before);
    ASSERT_GT(changed.size(), 20U);
    RECT box{9999, 9999, 0, 0};
    for (const POINT& place : changed) {
        box = {std::min(box.left, place.x), std::min(box.top, place.y), std::max(box.right, place.x),
               std::max(box.bottom, place.y)};
    }
    for (const POINT& place : changed) {
        const bool on_edge =
            place.x == box.left || place.x == box.right || place.y == box.top || place.y == box.bottom;
        EXPECT_TRUE(on_edge) << place.x << "," << place.y;
    }
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    EXPECT_TRUE(Picture(tabs, strip).Differences(before).empty());
}

// --- colours

TEST_F(FormLooks, ALabelHasTheColourOfItsModelAndIsPaintedAtOnce) {
    ShowTab(kv::kReplicationTab);
    auto& status = Get<ui::Label>("lblSQLServerReplicationStatus");
    status.Caption("Transaction replication");
    Settle();
    const HWND native = Native("lblSQLServerReplicationStatus");
    EXPECT_FALSE(Picture(native).Holds(RGB(255, 0, 0)));
    EXPECT_LT(Picture(native).Darkest(), 40);
    status.ForeColor(ui::kRed);
    status.Refresh();
    EXPECT_FALSE(::GetUpdateRect(native, nullptr, FALSE)) << "nothing of it waits to be painted";
    EXPECT_TRUE(Picture(native).Holds(RGB(255, 0, 0)));
    EXPECT_GE(Picture(native).Darkest(), 80) << "nothing of it is black";
}

TEST_F(FormLooks, ABoxThatNobodyTypesInHasTheColourOfAButton) {
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE);
    const COLORREF window = ::GetSysColor(COLOR_WINDOW);
    ASSERT_NE(face, window);
    for (const int server : {0, 1}) {
        EXPECT_EQ(BackgroundOf("edtSQLUNCReplDataPath", server), face);
        EXPECT_EQ(BackgroundOf("edtSQLDataPath", server), window);
    }
    ShowTab(kv::kStoredProcTab);
    EXPECT_EQ(BackgroundOf("edtStoredProcedure"), window) << "a text to be read";
}

TEST_F(DialogLooks, TheBoxOfAnOutputTurnsGreyAndThatOfAnInputWhite) {
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE);
    const COLORREF window = ::GetSysColor(COLOR_WINDOW);
    EXPECT_EQ(BackgroundOf("edtDataType"), face);
    EXPECT_EQ(BackgroundOf("edtDirection"), face);
    EXPECT_EQ(BackgroundOf("edtValue"), window);
    auto& value = Get<ui::TextBox>("edtValue");
    value.Locked(true);
    value.BackColor(ui::kButtonFaceBackground);
    Settle();
    EXPECT_EQ(BackgroundOf("edtValue"), face);
    value.BackColor(ui::kWindowBackground);
    value.Locked(false);
    Settle();
    EXPECT_EQ(BackgroundOf("edtValue"), window);
}

TEST_F(FormLooks, ADisabledCheckBoxWithoutACaptionIsPalerThanAnEnabledOne) {
    ShowTab(kv::kScriptTab);
    const HWND native = Native("chkCreateInstallScriptFile");
    auto& box = Get<ui::CheckBox>("chkCreateInstallScriptFile");
    const int enabled = Picture(native).Darkest();
    box.Enabled(false);
    Settle();
    EXPECT_GT(Picture(native).Darkest(), enabled + 30);
    const Picture once(native);
    ::InvalidateRect(native, nullptr, FALSE);
    EXPECT_TRUE(Picture(native).Differences(once).empty()) << "the same however often it is painted";
    box.Value(1);
    Settle();
    EXPECT_GT(Picture(native).Darkest(), 80) << "its tick is pale too";
    box.Value(0);
    box.Enabled(true);
    Settle();
    EXPECT_EQ(Picture(native).Darkest(), enabled);
}

// --- pictures

TEST_F(FormLooks, TheWindowHasTheProgramsIconAndTheCommandItsPicture) {
    EXPECT_NE(::GetClassLongPtrA(handle_, GCLP_HICON), 0U);
    EXPECT_NE(::GetClassLongPtrA(handle_, GCLP_HICONSM), 0U);
    EXPECT_NE(::GetWindowLongPtrA(handle_, GWL_STYLE) & WS_SYSMENU, 0) << "without it no icon is shown";
    ShowTab(kv::kStoredProcTab);
    EXPECT_NE(::SendMessageA(Native("cmdExecute"), BM_GETIMAGE, IMAGE_ICON, 0), 0);
    EXPECT_LT(Picture(Native("cmdExecute")).Darkest(), 180) << "the picture is there";
}

// --- marks of texts

bool NothingMarked(HWND combo_box) {
    DWORD begin = 1;
    DWORD end = 0;
    ::SendMessageA(combo_box, CB_GETEDITSEL, reinterpret_cast<WPARAM>(&begin),
                   reinterpret_cast<LPARAM>(&end));
    return begin == end;
}

TEST_F(FormLooks, TheTextOfABoxWithoutTheFocusIsNotMarked) {
    ShowTab(kv::kUpgradeTab);
    auto& box = Get<ui::ComboBox>("cboUpgradeDatabaseDest");
    const HWND native = Native("cboUpgradeDatabaseDest");
    box.AddItem("Batch");
    box.AddItem("Batch2");
    box.ListIndex(0);
    Settle();
    ::SendMessageA(native, CB_SETEDITSEL, 0, MAKELPARAM(0, -1)); // as Windows does it, and Wine does not
    ASSERT_FALSE(NothingMarked(native));
    box.ListIndex(0);
    Settle();
    EXPECT_TRUE(NothingMarked(native)) << "chosen by the program";
    form_.SetFocus(box);
    Settle();
    ASSERT_EQ(FocusName(), "cboUpgradeDatabaseDest");
    box.ListIndex(1);
    Settle();
    EXPECT_FALSE(NothingMarked(native)) << "with the focus";
    form_.SetFocus(Get<ui::CommandButton>("cmdUpgrade"));
    Settle();
    ASSERT_EQ(FocusName(), "cmdUpgrade");
    EXPECT_TRUE(NothingMarked(native)) << "when the focus has gone";
    EXPECT_EQ(hands::Text(native), "Batch2");
}

// --- captions that are data

TEST_F(FormLooks, AnAmpersandInDataIsShown) {
    Get<ui::Label>("lblStatus").Caption("Removing R&D...");
    ShowTab(kv::kReplicationTab);
    Get<ui::Label>("lblSQLServerReplicationStatus").Caption("'R&D'");
    Get<ui::OptionButton>("optSQLReplCurrentServer", 0).Caption("R&D");
    Settle();
    EXPECT_EQ(hands::Text(Native("lblStatus")), "Removing R&D...");
    EXPECT_EQ(hands::Text(Native("lblSQLServerReplicationStatus")), "'R&D'");
    for (const char* label : {"lblStatus", "lblSQLServerReplicationStatus"}) {
        EXPECT_NE(::GetWindowLongPtrA(Native(label), GWL_STYLE) & SS_NOPREFIX, 0) << label;
    }
    EXPECT_EQ(::GetWindowLongPtrA(Native("lblSQLReplicationDatabase"), GWL_STYLE) & SS_NOPREFIX, 0);
    // A button knows no such style: the sign is doubled, which shows one.
    EXPECT_EQ(hands::Text(Native("optSQLReplCurrentServer", 0)), "R&&D");
}

TEST_F(FormLooks, ALongNameOfAServerIsCutInItsMiddle) {
    ShowTab(kv::kScriptTab);
    const std::string name = "A-COMPUTER-WITH-A-LONG-NAME\\AN_INSTANCE_WITH_ANOTHER";
    Get<ui::OptionButton>("optScriptCurrentServer", 0).Caption(name);
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Caption("SRVB\\KV_BATCH");
    Settle();
    const std::string shown = hands::Text(Native("optScriptCurrentServer", 0));
    const std::size_t dots = shown.find("...");
    ASSERT_NE(dots, std::string::npos) << shown;
    EXPECT_GE(dots, 8U) << shown;
    EXPECT_EQ(shown.substr(0, dots), name.substr(0, dots));
    const std::string end = shown.substr(dots + 3);
    EXPECT_GE(end.size(), 8U) << shown;
    EXPECT_EQ(end, name.substr(name.size() - end.size()));
    EXPECT_LE(dots - end.size(), 1U) << "as much of the one as of the other";
    EXPECT_EQ(hands::Text(Native("optScriptCurrentServer", 1)), "SRVB\\KV_BATCH");
    Scale(144);
    const std::string scaled = hands::Text(Native("optScriptCurrentServer", 0));
    EXPECT_NE(scaled.find("..."), std::string::npos) << "it is measured anew at another scale";
}

// --- tool tips

BOOL CALLBACK TakeTips(HWND window, LPARAM found) {
    if (hands::ClassOf(window) == TOOLTIPS_CLASSA) {
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    return TRUE;
}

TEST_F(FormLooks, AToolTipIsAsWideAsTheScaleAllows) {
    HWND tips = nullptr;
    ::EnumThreadWindows(::GetCurrentThreadId(), TakeTips, reinterpret_cast<LPARAM>(&tips));
    ASSERT_NE(tips, nullptr);
    EXPECT_EQ(::SendMessageA(tips, TTM_GETMAXTIPWIDTH, 0, 0), 480);
    Scale(144);
    EXPECT_EQ(::SendMessageA(tips, TTM_GETMAXTIPWIDTH, 0, 0), 720);
}

// --- painting and input that are stopped

TEST_F(FormLooks, LockedPaintingLocksTheWindow) {
    const auto lock_is_taken = [this] {
        const bool taken = ::LockWindowUpdate(Native("cmdClose")) == 0; // one window at a time
        if (!taken) {
            ::LockWindowUpdate(nullptr);
        }
        return taken;
    };
    EXPECT_FALSE(lock_is_taken());
    form_.LockPainting();
    form_.LockPainting();
    EXPECT_TRUE(lock_is_taken());
    form_.UnlockPainting();
    EXPECT_FALSE(lock_is_taken());
}

TEST_F(FormLooks, AListViewIsDisabledWithItsModel) {
    ShowTab(kv::kViewDataTab);
    EXPECT_TRUE(::IsWindowEnabled(Native("lvwViewData")));
    Get<ui::ListView>("lvwViewData").Enabled(false);
    Settle();
    EXPECT_FALSE(::IsWindowEnabled(Native("lvwViewData")));
    Get<ui::ListView>("lvwViewData").Enabled(true);
    Settle();
    EXPECT_TRUE(::IsWindowEnabled(Native("lvwViewData")));
}

TEST_F(FormLooks, AChoiceThatStandsAtAnotherPlaceOfTheListIsShown) {
    ShowTab(kv::kUpgradeTab);
    auto& box = Get<ui::ComboBox>("cboRemoveDatabase");
    box.AddItem("Batch");
    box.Text("Batch");
    Settle();
    box.Clear();
    for (const char* name : {"Alpha", "Batch", "Gamma"}) {
        box.AddItem(name);
    }
    box.Text("Batch");
    Settle();
    const HWND native = Native("cboRemoveDatabase");
    EXPECT_EQ(::SendMessageA(native, CB_GETCURSEL, 0, 0), 1);
    EXPECT_EQ(::SendMessageA(native, CB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(hands::Text(native), "Batch");
}

TEST_F(FormLooks, TheBarHasBothItsEnds) {
    auto& bar = Get<ui::ProgressBar>("prbStatus");
    bar.Min(3);
    bar.Max(14);
    bar.Value(5);
    Settle();
    EXPECT_EQ(::SendMessageA(Native("prbStatus"), PBM_GETRANGE, TRUE, 0), 3);
    EXPECT_EQ(::SendMessageA(Native("prbStatus"), PBM_GETRANGE, FALSE, 0), 14);
}

} // namespace
